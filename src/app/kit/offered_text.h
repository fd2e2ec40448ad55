// SPDX-License-Identifier: MIT
//
// A text that no widget shows, for other programs to paste: on the clipboard and as the primary selection.
#pragma once

#include <string>

#include <X11/Intrinsic.h>

namespace gw {

/// Offers `text`, in the locale's encoding, from now on until another program or widget offers something. `w`
/// must be realized and live as long. False when the server gives the selections to somebody else.
bool offer_text(Widget w, const std::string& text);

}  // namespace gw
