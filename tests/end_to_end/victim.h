// SPDX-License-Identifier: MIT
//
// Programs that do not find their font: what they print, and what their windows show once they find it.
#pragma once

#include <string>

#include "end_to_end/desktop.h"
#include "end_to_end/drawn_text.h"

namespace gw::e2e {

enum class Victim { XTERM, XFD, XMESSAGE, MOTIF_TEXT };
inline constexpr Victim VICTIMS[] = {Victim::XTERM, Victim::XFD, Victim::XMESSAGE, Victim::MOTIF_TEXT};

/// What the program prints when it is to use that font, up to the first line; "" when it opens its window
/// without a word.
std::string complaint_of(Victim victim, const std::string& font, const Desktop& desktop);

/// Whether the program, told to use the font `asked`, shows text just as the server draws it in the font
/// `named`.
bool shows_text(Victim victim, const std::string& asked, const std::string& named, const Desktop& desktop);

}  // namespace gw::e2e
