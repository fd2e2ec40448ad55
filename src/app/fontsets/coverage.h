// SPDX-License-Identifier: MIT
//
// Which character sets of the locale a fontset covers, as the X server has it: a part of the fontsets dialog.
#pragma once

#include <string>

#include "fontfiles/gw_fontset.h"

#include <X11/Intrinsic.h>

namespace gw {

/// Makes the list of character sets above `below`, and returns the widget at its top. Null, and there is no
/// such list, unless windows show what a fontset covers.
Widget create_coverage(Widget dialog, Widget below);

/// Shows in the list what the fontset covers, and which of its fonts are for other character sets. Returns
/// the character sets that keep the server from making the set, separated by commas; "" when it is made, or
/// there is no list.
std::string show_coverage(const GWFontSet& set);

/// A sample text in the language of the locale: letters, digits, names of days and months.
[[nodiscard]] std::string text_of_locale();

}  // namespace gw
