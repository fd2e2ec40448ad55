// SPDX-License-Identifier: MIT
//
// A strict reader of PostScript resource files for tests. It accepts only what the format guarantees to every
// reader, and throws for a line that is too long, a section that is not announced, or entries out of order.
#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace gw::test {

class StrictUpr {
  public:
    using Entries = std::vector<std::pair<std::string, std::string>>;

    explicit StrictUpr(std::string bytes) : text_(std::move(bytes)) {
        const std::string first = logical_line().plain();
        exclusive = first == "PS-Resources-Exclusive-1.0";
        check(exclusive || first == "PS-Resources-1.0", "the first line");
        for (Line line = logical_line(); !line.ends_section(); line = logical_line())
            names.push_back(line.plain());
        for (const std::string& name : names) {
            Line header = logical_line();
            if (&name == &names.front() && header.is_directory()) {
                directory = header.plain().substr(1);
                header = logical_line();
            }
            check(header.plain() == name, "a header for each section of the list, in its order");
            for (Line line = logical_line(); !line.ends_section(); line = logical_line())
                entries[name].push_back(split(line));
            check(!entries[name].empty(), "no section without entries");
        }
        check(at_ == text_.size(), "nothing behind the last section");
    }

    /// The files of a section by name; relative ones are joined to the directory.
    [[nodiscard]] std::map<std::string, std::string> files(const std::string& section) const {
        std::map<std::string, std::string> found;
        const auto place = entries.find(section);
        if (place == entries.end()) return found;
        for (const auto& [name, file] : place->second) {
            const bool is_final = file.starts_with('=');
            check(is_final || !directory.empty(), "a directory for a relative file");
            check(found.emplace(name, is_final ? file.substr(1) : directory + '/' + file).second,
                  "each name once");
        }
        return found;
    }

    bool exclusive = false;
    std::string directory;
    std::vector<std::string> names;
    std::map<std::string, Entries> entries;  ///< a file that is final begins with "="

  private:
    static constexpr std::size_t LONGEST = 255;

    struct Character {
        char value;
        bool quoted;
    };
    struct Line {
        std::vector<Character> characters;
        [[nodiscard]] bool begins(char c) const {
            return !characters.empty() && characters[0].value == c && !characters[0].quoted;
        }
        [[nodiscard]] bool ends_section() const { return begins('.') && characters.size() == 1; }
        [[nodiscard]] bool is_directory() const { return begins('/'); }
        [[nodiscard]] std::string plain() const {
            std::string text;
            for (const Character& c : characters) text += c.value;
            return text;
        }
    };

    static void check(bool holds, const char* what) {
        if (!holds) throw std::runtime_error(std::string("a resource file has ") + what);
    }

    std::string physical_line() {
        const std::size_t end = text_.find('\n', at_);
        check(end != std::string::npos, "a line feed at the end of each line");
        std::string line = text_.substr(at_, end - at_);
        at_ = end + 1;
        check(line.size() + 1 <= LONGEST, "lines of 255 characters at most");
        return line;
    }

    Line logical_line() {
        Line line;
        bool continued = true;
        for (bool is_first = true; continued; is_first = false) {
            continued = false;
            const std::string piece = physical_line();
            check(!piece.empty(), "no empty lines");
            check(is_first || piece[0] != '.', "no continuation that looks like the end of a section");
            for (std::size_t i = 0; i < piece.size(); ++i) {
                check(piece[i] != '%', "no comments");
                if (piece[i] != '\\') {
                    line.characters.push_back({piece[i], false});
                } else if (++i == piece.size()) {
                    continued = true;
                } else {
                    line.characters.push_back({piece[i], true});
                }
            }
            const Character last = line.characters.back();
            check(continued || last.quoted || (last.value != ' ' && last.value != '\t'),
                  "no blanks at the end of a line, where they are lost");
        }
        check(line.ends_section() || !line.begins('.'), "sections that end with a single full stop");
        return line;
    }

    static std::pair<std::string, std::string> split(const Line& line) {
        std::string name;
        std::string file;
        bool in_file = false;
        for (const Character& c : line.characters) {
            if (!in_file && c.value == '=' && !c.quoted) {
                in_file = true;
            } else {
                (in_file ? file : name) += c.value;
            }
        }
        check(in_file && !name.empty() && !file.empty(), "entries with a name and a file");
        return {name, file};
    }

    std::string text_;
    std::size_t at_ = 0;
};

}  // namespace gw::test
