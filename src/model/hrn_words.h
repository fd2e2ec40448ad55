// SPDX-License-Identifier: MIT
//
// The parts of human-readable names that fonts and aliases share.
#pragma once

#include <string>
#include <string_view>

namespace gw {

/// Appends `note` to a line of a list: at column 46, or after three blanks when the line reaches that column.
void append_at_column(std::string& line, std::string_view note);

/// The slant word for an XLFD slant field, with its leading blank: " Italic", "", " Oblique", " Reverse
/// Oblique", " Reverse Italic", or a blank and the field itself. Case is ignored.
[[nodiscard]] std::string slant_word(std::string_view slant);

/// A blank and the additional style with its first letter in upper case; nothing when the field is empty or
/// begins with a blank.
[[nodiscard]] std::string add_style_word(std::string_view add_style);

}  // namespace gw

/// Appends "[Read Only]" with `gw::append_at_column`.
void set_read_only_str(std::string& s);
