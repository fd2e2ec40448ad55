// SPDX-License-Identifier: MIT
#include "app/samples/typed_character.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <cwchar>
#include <string_view>

namespace gw {

namespace {

constexpr char32_t LAST_CODE = 0x10FFFF;

/// A wide character of the system has the code of its character.
std::optional<char32_t> only_character(const std::string& text) {
    std::mbstate_t state = {};
    wchar_t character = 0;
    const std::size_t length = std::mbrtowc(&character, text.data(), text.size(), &state);
    if (text.empty() || length != text.size()) return std::nullopt;
    return static_cast<char32_t>(character);
}

std::string_view without_prefix(std::string_view text) {
    for (const std::string_view prefix : {"U+", "u+", "0x", "0X"}) {
        if (text.starts_with(prefix)) return text.substr(prefix.size());
    }
    return text;
}

std::optional<char32_t> hexadecimal(std::string_view digits, std::size_t fewest) {
    constexpr std::size_t MOST_DIGITS = 6;
    if (digits.size() < fewest || digits.size() > MOST_DIGITS) return std::nullopt;
    unsigned long code = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
    if (error != std::errc() || end != digits.data() + digits.size() || code > LAST_CODE) return std::nullopt;
    return static_cast<char32_t>(code);
}

}  // namespace

std::optional<char32_t> typed_character(const std::string& typed) {
    if (const auto character = only_character(typed)) return character;
    const std::string_view digits = without_prefix(typed);
    return hexadecimal(digits, digits.size() < typed.size() ? 1 : 2);
}

std::string code_text(char32_t code, bool is_unicode) {
    std::array<char, 16> text = {};
    std::snprintf(text.data(), text.size(), "%s%04X", is_unicode ? "U+" : "0x", static_cast<unsigned>(code));
    return text.data();
}

}  // namespace gw
