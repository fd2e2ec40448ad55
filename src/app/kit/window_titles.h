// SPDX-License-Identifier: MIT
//
// Titles of windows in UTF-8. The toolkit gives window managers a title in an older encoding, of which many
// show Latin letters only.
#pragma once

#include <string>

#include <X11/Intrinsic.h>

namespace gw {

/// From now on every window has its title in UTF-8 as well. Without this the functions below do nothing.
void give_titles_in_utf8();

/// Gives the window of `shell`, if it has one already, the title and the same name for its icon (properties
/// _NET_WM_NAME and _NET_WM_ICON_NAME). `title` is in the encoding of the locale.
void tell_title(Widget shell, const std::string& title);
/// The same with the title that a dialog has.
void tell_title_of(Widget dialog);

}  // namespace gw
