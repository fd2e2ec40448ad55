// SPDX-License-Identifier: MIT
//
// The display whose server is "the running session" for the font path store. Apart, so that the store's own
// header needs no X header.
#pragma once

#include <X11/Xlib.h>

namespace gw {

/// From now on `display` is the session's; null means that no display is open. It stays with the caller.
void set_font_path_display(Display* display);
[[nodiscard]] Display* font_path_display();

}  // namespace gw
