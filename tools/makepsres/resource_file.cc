// SPDX-License-Identifier: MIT
#include "makepsres/resource_file.h"

#include <algorithm>

namespace gw::psres {

namespace {

constexpr char QUOTE = '\\';
constexpr std::string_view SPECIAL = "\\%=,";
constexpr std::string_view SPECIAL_AT_START = "./ \t";
constexpr std::string_view BLANKS = " \t";
constexpr std::string_view END_OF_SECTION = ".";

bool is_one_of(std::string_view set, char c) {
    return set.find(c) != std::string_view::npos;
}

/// The lines of a resource file, still quoted. Comments and empty lines are removed, continued lines are
/// joined.
class Lines {
  public:
    explicit Lines(std::string_view bytes) : rest(bytes) {}

    std::optional<std::string> next() {
        while (!rest.empty()) {
            std::string line;
            while (append_piece(line) && !rest.empty()) {
            }
            if (!line.empty()) return line;
        }
        return std::nullopt;
    }

  private:
    /// Appends one line of the file to `line`; true when the line is continued.
    bool append_piece(std::string& line) {
        std::string_view piece = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(piece.size() + 1, rest.size()));
        if (piece.ends_with('\r')) piece.remove_suffix(1);

        std::size_t kept = line.size();  // length without the blanks at the end
        for (std::size_t i = 0; i < piece.size(); ++i) {
            if (piece[i] == '%') break;
            if (piece[i] == QUOTE && i + 1 == piece.size()) return true;
            const bool is_quote = piece[i] == QUOTE;
            line += piece[i];
            if (is_quote) line += piece[++i];
            if (is_quote || !is_one_of(BLANKS, line.back())) kept = line.size();
        }
        line.resize(kept);
        return false;
    }

    std::string_view rest;
};

std::string unquoted(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == QUOTE && i + 1 < text.size()) ++i;
        plain += text[i];
    }
    return plain;
}

/// The position of the first "=" that is not quoted.
std::size_t equals_sign(std::string_view line) {
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == QUOTE) {
            ++i;
        } else if (line[i] == '=') {
            return i;
        }
    }
    return std::string_view::npos;
}

Entry entry_of(std::string line) {
    Entry entry;
    const std::string_view text = line;
    const std::size_t equals = equals_sign(text);
    entry.name = unquoted(text.substr(0, equals));
    if (equals != std::string_view::npos) {
        std::string_view file = text.substr(equals + 1);
        entry.is_final = file.starts_with('=');
        if (entry.is_final) file.remove_prefix(1);
        entry.file = unquoted(file);
    }
    entry.line = std::move(line);
    return entry;
}

/// Reads up to the line that ends a section; false when that line is missing.
template <typename Take>
bool each_line(Lines& lines, Take take) {
    while (std::optional<std::string> line = lines.next()) {
        if (line->starts_with(END_OF_SECTION)) return true;
        take(std::move(*line));
    }
    return false;
}

bool read_sections(Lines& lines, ResourceFile& file) {
    std::optional<std::string> line = lines.next();
    if (line && line->starts_with('/')) {
        file.directory = unquoted(std::string_view(*line).substr(1));
        line = lines.next();
    }
    for (; line; line = lines.next()) {
        if (line->starts_with(END_OF_SECTION)) return false;
        Section& section = file.sections.emplace_back(Section{unquoted(*line), {}});
        if (!each_line(lines,
                       [&](std::string entry) { section.entries.push_back(entry_of(std::move(entry))); })) {
            return false;
        }
    }
    return true;
}

/// The next piece that must stay on one line: a character, or a quoted character with its "\".
std::string_view next_unit(std::string_view text) {
    return text.substr(0, text[0] == QUOTE ? 2 : 1);
}

}  // namespace

std::optional<ResourceFile> parse_resource_file(std::string_view bytes) {
    Lines lines(bytes);
    const std::optional<std::string> first = lines.next();
    ResourceFile file;
    file.exclusive = first == "PS-Resources-Exclusive-1.0";
    if (!file.exclusive && first != "PS-Resources-1.0") return std::nullopt;
    file.complete = each_line(lines, [](const std::string&) {}) && read_sections(lines, file);
    return file;
}

bool can_be_written(std::string_view text) {
    return text.find_first_of(std::string_view("\n\r\0", 3)) == std::string_view::npos;
}

std::string quoted(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (is_one_of(SPECIAL, c)) result += QUOTE;
        result += c;
    }
    return result;
}

std::optional<std::string> written_directory_line(std::string_view directory) {
    std::string line = '/' + quoted(directory);
    if (is_one_of(BLANKS, line.back())) line.insert(line.size() - 1, 1, QUOTE);
    line += '\n';
    if (line.size() > LONGEST_LINE) return std::nullopt;
    return line;
}

std::string written_line(std::string_view quoted_text) {
    // Each line has room for the "\" that continues it and for its line feed.
    static constexpr std::size_t ROOM = LONGEST_LINE - 2;
    std::string result;
    std::size_t used = 0;
    while (!quoted_text.empty()) {
        const std::string_view unit = next_unit(quoted_text);
        quoted_text.remove_prefix(unit.size());
        const bool is_last = quoted_text.empty();
        if (used + unit.size() > ROOM) {
            result += "\\\n";
            used = 0;
        }
        // At the beginning or end of a line, quotes a character that would end a section, name a directory or
        // be lost.
        if (unit.size() == 1 && ((used == 0 && is_one_of(SPECIAL_AT_START, unit[0])) ||
                                 (is_last && is_one_of(BLANKS, unit[0])))) {
            result += QUOTE;
            ++used;
        }
        result += unit;
        used += unit.size();
    }
    return result + '\n';
}

}  // namespace gw::psres
