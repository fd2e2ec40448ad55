// SPDX-License-Identifier: MIT
//
// Characters as the user writes them.
#pragma once

#include <optional>
#include <string>

namespace gw {

/// The code that is meant by what the user typed, in the encoding of the locale: the character itself, or its
/// code in two to six hexadecimal digits, alone or behind "U+" or "0x". None for anything else.
[[nodiscard]] std::optional<char32_t> typed_character(const std::string& typed);

/// The code of a character as texts write it: "U+20AC", or "0x2121" where codes are not Unicode.
[[nodiscard]] std::string code_text(char32_t code, bool is_unicode);

}  // namespace gw
