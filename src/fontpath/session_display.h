// SPDX-License-Identifier: MIT
//
// The display whose server is "the running session" for the font path store. This is a separate file, so that
// the store's own header needs no X header.
#pragma once

#include <X11/Xlib.h>

namespace gw {

/// Sets the session's display; null means that no display is open. The caller keeps the ownership.
void set_font_path_display(Display* display);

}  // namespace gw
