// SPDX-License-Identifier: MIT
#include "fontfiles/server_index.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "core/text.h"

namespace gw {

namespace {

bool is_blank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

/// The server takes a NUL for the end of a word, wherever the word ends in the file.
std::string until_nul(std::string_view word) {
    return std::string(word.substr(0, word.find('\0')));
}

/// A text that is read word by word, as `fscanf` does it.
class Scanner {
  public:
    explicit Scanner(std::string_view text) : text_(text) {}

    [[nodiscard]] bool is_at_end() const { return at_ >= text_.size(); }
    [[nodiscard]] int line() const { return line_; }

    void skip_blanks() {
        while (!is_at_end() && is_blank(text_[at_])) step();
    }
    /// Until a blank, or as much as the server has room for.
    std::string word() {
        const std::size_t start = at_;
        while (!is_at_end() && !is_blank(text_[at_]) && at_ - start < LONGEST_SERVER_WORD) step();
        return until_nul(text_.substr(start, at_ - start));
    }
    /// Until the end of the line, or as much as the server has room for.
    std::string rest_of_line() {
        const std::size_t start = at_;
        while (!is_at_end() && text_[at_] != '\n' && at_ - start < LONGEST_SERVER_WORD) step();
        return until_nul(text_.substr(start, at_ - start));
    }
    /// False when there is no number, or one that a server has no use for: it takes the lower 32 bits.
    bool count() {
        const bool is_negative = !is_at_end() && text_[at_] == '-';
        if (!is_at_end() && (text_[at_] == '-' || text_[at_] == '+')) step();
        constexpr std::uint64_t LARGEST = std::numeric_limits<std::int64_t>::max();
        std::uint64_t number = 0;
        const std::size_t start = at_;
        for (; !is_at_end() && is_digit(text_[at_]); step()) {
            const auto digit = static_cast<std::uint64_t>(text_[at_] - '0');
            number = number > (LARGEST - digit) / 10 ? LARGEST : number * 10 + digit;
        }
        const auto taken = static_cast<std::int32_t>(is_negative ? 0 - number : number);
        return at_ > start && taken >= 0 && taken <= MOST_ENTRIES;
    }

  private:
    /// The server's table of entries, each of 48 bytes, must be smaller than 2 GB.
    static constexpr std::int32_t MOST_ENTRIES = std::numeric_limits<std::int32_t>::max() / 48;

    void step() {
        if (text_[at_++] == '\n') ++line_;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    int line_ = 1;
};

// --- fonts.alias -------------------------------------------------------------

IndexFault fault_of(AliasPair::Kind kind) {
    if (kind == AliasPair::Kind::TOO_LONG) return IndexFault::NAME_TOO_LONG;
    return kind == AliasPair::Kind::OF_ITSELF ? IndexFault::OWN_ALIAS : IndexFault::NO_TARGET;
}

/// False when the server stops there.
bool take(const AliasPair& pair, ServerAliases& aliases) {
    if (pair.is_fault()) {
        aliases.fault = FaultInIndex{fault_of(pair.kind), pair.alias.line, pair.alias.text};
        return false;
    }
    if (pair.kind == AliasPair::Kind::FILE_NAMES) {
        if (!aliases.has_file_names) aliases.before_file_names = aliases.aliases.size();
        aliases.has_file_names = true;
    } else {
        aliases.aliases.push_back({server_lower_case(pair.alias.text), server_lower_case(pair.target.text)});
    }
    return true;
}

// --- the names of files ------------------------------------------------------

struct Suffix {
    FontRenderer renderer = FontRenderer::NONE;
    std::size_t length = 0;
};

Suffix suffix_of(std::string_view file_name) {
    std::string name = lower_case(file_name);
    for (const std::string_view outline : {".pfa", ".pfb", ".ttf", ".ttc", ".otf", ".otc"}) {
        if (name.ends_with(outline)) return {FontRenderer::OUTLINE, outline.size()};
    }
    std::size_t length = 0;
    for (const std::string_view packed : {".z", ".gz", ".bz2"}) {
        if (!name.ends_with(packed)) continue;
        length = packed.size();
        name.erase(name.size() - length);
        break;
    }
    for (const std::string_view bitmap : {".pcf", ".bdf"}) {
        if (name.ends_with(bitmap)) return {FontRenderer::BITMAP, length + bitmap.size()};
    }
    return {};
}

}  // namespace

ServerIndex read_server_index(std::string_view text) {
    ServerIndex index;
    Scanner scanner(text);
    scanner.skip_blanks();
    if (!scanner.count()) {
        index.fault = FaultInIndex{IndexFault::NO_COUNT, 1, scanner.word()};
        return index;
    }
    for (scanner.skip_blanks(); !scanner.is_at_end(); scanner.skip_blanks()) {
        const int line = scanner.line();
        IndexEntry entry;
        entry.file_name = scanner.word();
        scanner.skip_blanks();
        if (scanner.is_at_end()) {
            index.fault = FaultInIndex{IndexFault::NO_NAME, line, entry.file_name};
            return index;
        }
        entry.font_name = server_lower_case(scanner.rest_of_line());
        if (!entry.file_name.empty()) index.entries.push_back(std::move(entry));
    }
    return index;
}

ServerAliases read_server_aliases(std::string_view text) {
    ServerAliases aliases;
    for (const AliasLine& line : alias_lines(text)) {
        for (const AliasPair& pair : line.pairs) {
            if (!take(pair, aliases)) return aliases;
        }
    }
    return aliases;
}

FontRenderer renderer_of(std::string_view file_name) {
    return suffix_of(file_name).renderer;
}

std::string_view without_renderer_suffix(std::string_view file_name) {
    return file_name.substr(0, file_name.size() - suffix_of(file_name).length);
}

}  // namespace gw
