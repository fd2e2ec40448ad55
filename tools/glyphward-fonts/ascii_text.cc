// SPDX-License-Identifier: MIT
#include "glyphward-fonts/ascii_text.h"

#include <algorithm>
#include <charconv>

namespace gw::fonts {

namespace {

constexpr std::string_view DIGITS = "0123456789abcdef";
constexpr int BASE = 16;

bool is_ascii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

std::string in_hexadecimal(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return {DIGITS[byte / BASE], DIGITS[byte % BASE]};
}

/// Whether a text in TOML stands for one with the character. "\u007e" in quotation marks does, for one.
bool may_have(std::string_view text, char c) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return text.find(c) != std::string_view::npos ||
           lower.find("00" + in_hexadecimal(c)) != std::string::npos;
}

}  // namespace

std::optional<AsciiText> AsciiText::from(std::string_view text) {
    AsciiText ascii;
    if (std::all_of(text.begin(), text.end(), is_ascii)) {
        ascii.text_ = text;
        return ascii;
    }
    const auto* const mark =
        std::find_if_not(MARKS.begin(), MARKS.end(), [&](char c) { return may_have(text, c); });
    if (mark == MARKS.end()) return {};
    ascii.mark_ = *mark;
    for (const char c : text) {
        if (is_ascii(c)) {
            ascii.text_ += c;
        } else {
            ascii.text_ += *mark + in_hexadecimal(c);
        }
    }
    return ascii;
}

std::string AsciiText::original(std::string_view part) const {
    std::string original;
    for (std::size_t at = 0; at < part.size(); ++at) {
        const std::string_view digits = part.substr(at + 1, 2);
        unsigned byte = 0;
        if (part[at] == mark_ &&
            std::from_chars(digits.data(), digits.data() + digits.size(), byte, BASE).ec == std::errc()) {
            original += static_cast<char>(byte);
            at += digits.size();
        } else {
            original += part[at];
        }
    }
    return original;
}

}  // namespace gw::fonts
