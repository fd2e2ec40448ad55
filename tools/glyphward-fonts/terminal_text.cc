// SPDX-License-Identifier: MIT
#include "glyphward-fonts/terminal_text.h"

#include <langinfo.h>

#include <algorithm>
#include <array>
#include <cwchar>
#include <utility>

#include "fontfiles/unicode_text.h"

namespace gw::fonts {

namespace {

constexpr unsigned char FIRST_BEHIND_ASCII = 0x80;

struct Character {
    std::size_t length;  // in bytes; 0 where they are none
    char32_t code;
};

Character first_of_utf8(std::string_view text) {
    constexpr std::size_t LONGEST = 4;
    for (std::size_t length = 1; length <= std::min(LONGEST, text.size()); ++length) {
        if (is_utf8(text.substr(0, length))) return {length, characters_of(text.substr(0, length)).front()};
    }
    return {0, 0};
}

Character first_of_locale(std::string_view text) {
    std::mbstate_t state = {};
    wchar_t code = 0;
    const std::size_t length = std::mbrtowc(&code, text.data(), text.size(), &state);
    return {length > text.size() ? 0 : length, static_cast<char32_t>(code)};
}

/// Controls of the second set, separators of lines, and what turns the direction of writing.
bool is_control(char32_t code) {
    static constexpr std::array<std::pair<char32_t, char32_t>, 5> CONTROLS = {
        {{0x80, 0x9F}, {0x61C, 0x61C}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}}};
    return std::any_of(CONTROLS.begin(), CONTROLS.end(),
                       [code](const auto& range) { return code >= range.first && code <= range.second; });
}

std::string in_digits(std::string_view bytes) {
    constexpr const char* DIGITS = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text.append("\\x").append(1, DIGITS[byte >> 4U]).append(1, DIGITS[byte & 0xFU]);
    }
    return text;
}

}  // namespace

std::string for_terminal(std::string_view text) {
    const std::string_view charset = ::nl_langinfo(CODESET);
    const bool is_unicode = charset == "UTF-8" || charset == "ANSI_X3.4-1968";
    std::string shown;
    while (!text.empty()) {
        const bool is_ascii = static_cast<unsigned char>(text.front()) < FIRST_BEHIND_ASCII;
        const Character first = is_ascii     ? Character{1, 0}
                                : is_unicode ? first_of_utf8(text)
                                             : first_of_locale(text);
        const std::string_view bytes = text.substr(0, std::max<std::size_t>(first.length, 1));
        shown += first.length == 0 || is_control(first.code) ? in_digits(bytes) : std::string(bytes);
        text.remove_prefix(bytes.size());
    }
    return shown;
}

}  // namespace gw::fonts
