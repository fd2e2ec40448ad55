// SPDX-License-Identifier: MIT
//
// The words of human-readable names that fonts and aliases have in common.
#pragma once

#include <string>
#include <string_view>

namespace gw {

/// Appends `note` to a list line: at column 46, or behind three blanks when the line reaches that column.
void append_at_column(std::string& line, std::string_view note);

/// The slant word for an XLFD slant field, with its leading blank: " Italic", "", " Oblique", " Reverse
/// Oblique", " Reverse Italic", or a blank and the field itself. Case does not count.
[[nodiscard]] std::string slant_word(std::string_view slant);

/// A blank and the additional style with its first letter in upper case; nothing when the field is empty or
/// begins with a blank.
[[nodiscard]] std::string add_style_word(std::string_view add_style);

}  // namespace gw

/// Appends "[Read Only]" there.
void set_read_only_str(std::string& s);
