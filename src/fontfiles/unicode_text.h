// SPDX-License-Identifier: MIT
//
// Texts from font files, in whatever encoding they are there, as UTF-8 that can be shown.
#pragma once

#include <string>
#include <string_view>

namespace gw {

/// Adds the character to a text in UTF-8. What is no character is added as U+FFFD.
void append_utf8(std::string& text, char32_t character);
/// The characters of a text in UTF-8; U+FFFD for a byte that is in no character.
[[nodiscard]] std::u32string characters_of(std::string_view utf8);
[[nodiscard]] bool is_utf8(std::string_view bytes);
/// UTF-16, the higher byte first, as UTF-8. Half a surrogate pair becomes U+FFFD.
[[nodiscard]] std::string utf8_from_utf16(std::string_view bytes);
/// Latin-1 as UTF-8.
[[nodiscard]] std::string utf8_from_latin1(std::string_view bytes);
/// Mac Roman as UTF-8; "" where the system has no table for it.
[[nodiscard]] std::string utf8_from_mac_roman(std::string_view bytes);

/// The text as one line of at most `limit` characters: without control characters (also those that turn the
/// direction of writing), and without blanks at its ends.
[[nodiscard]] std::string as_one_line(std::string_view utf8, std::size_t limit);

}  // namespace gw
