// SPDX-License-Identifier: MIT
#include "makepsres/font_name.h"

#include <algorithm>

namespace gw::psres {

namespace {

constexpr std::string_view DELIMITERS("\0\t\n\f\r ()<>[]{}/%", 16);
constexpr std::string_view LINE_ENDS = "\r\n";
constexpr std::string_view BLANKS = " \t";

// The segments of a .pfb file: Adobe Type 1 Font Format, supporting software for PC.
constexpr char SEGMENT_MARK = static_cast<char>(128);
constexpr char TEXT_SEGMENT = 1;
constexpr std::size_t SEGMENT_HEADER = 6;
constexpr std::size_t LENGTH_AT = 2;

bool is_usable(std::string_view name) {
    return !name.empty() && name.size() <= LONGEST_FONT_NAME &&
           std::none_of(name.begin(), name.end(), [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; });
}

std::optional<std::string> usable(std::string_view name) {
    if (!is_usable(name)) return std::nullopt;
    return std::string(name);
}

std::size_t segment_length(std::string_view header) {
    std::size_t length = 0;
    for (std::size_t i = SEGMENT_HEADER; i-- > LENGTH_AT;)
        length = length << 8 | static_cast<unsigned char>(header[i]);
    return length;
}

std::string clear_text(std::string_view head) {
    std::string text;
    while (head.size() >= SEGMENT_HEADER && head[0] == SEGMENT_MARK && head[1] == TEXT_SEGMENT) {
        const std::size_t length = segment_length(head);
        head.remove_prefix(SEGMENT_HEADER);
        text += head.substr(0, length);
        head.remove_prefix(std::min(length, head.size()));
    }
    return text;
}

/// The PostScript tokens that are needed here: literal names ("/Name") and words. Everything else is skipped.
class Tokens {
  public:
    explicit Tokens(std::string_view source) : text(source) {}

    /// The next token; empty at the end.
    std::string_view next() {
        while (at < text.size()) {
            const char c = text[at];
            if (c == '%') {
                at = std::min(text.find_first_of(LINE_ENDS, at), text.size());
            } else if (c == '(') {
                skip_string();
            } else if (c == '/' || DELIMITERS.find(c) == std::string_view::npos) {
                return take(c == '/' ? 1 : 0);
            } else {
                ++at;
            }
        }
        return {};
    }

    [[nodiscard]] bool is_over() const { return at == text.size(); }

  private:
    void skip_string() {
        int depth = 0;
        for (; at < text.size(); ++at) {
            if (text[at] == '\\') {
                ++at;
            } else if (text[at] == '(') {
                ++depth;
            } else if (text[at] == ')' && --depth == 0) {
                ++at;
                return;
            }
        }
    }
    std::string_view take(std::size_t marks) {
        const std::size_t begin = at;
        at = std::min(text.find_first_of(DELIMITERS, begin + marks), text.size());
        return text.substr(begin, at - begin);
    }

    std::string_view text;
    std::size_t at = 0;
};

std::optional<std::string> name_in_text(std::string_view text) {
    Tokens tokens(text);
    std::string_view token = tokens.next();
    while (!token.empty() && token != "eexec") {
        const bool announces = token == "/FontName";
        token = tokens.next();
        if (!announces || !token.starts_with('/')) continue;
        // A name at the very end of the text may be cut off.
        return tokens.is_over() ? std::nullopt : usable(token.substr(1));
    }
    return std::nullopt;
}

std::string_view without_blanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(BLANKS), text.size()));
    return text.substr(0, text.find_last_not_of(BLANKS) + 1);
}

}  // namespace

std::optional<std::string> outline_font_name(std::string_view head) {
    if (head.starts_with(SEGMENT_MARK)) return name_in_text(clear_text(head));
    return name_in_text(head);
}

std::optional<std::string> metrics_font_name(std::string_view head) {
    static constexpr std::string_view KEY = "FontName";
    while (!head.empty()) {
        const std::size_t end = std::min(head.find_first_of(LINE_ENDS), head.size());
        const std::string_view line = without_blanks(head.substr(0, end));
        if (line.starts_with("StartCharMetrics")) break;
        if (line.starts_with(KEY) && line.size() > KEY.size() &&
            BLANKS.find(line[KEY.size()]) != std::string_view::npos) {
            return usable(without_blanks(line.substr(KEY.size())));
        }
        head.remove_prefix(std::min(end + 1, head.size()));
    }
    return std::nullopt;
}

}  // namespace gw::psres
