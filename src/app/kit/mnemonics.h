// SPDX-License-Identifier: MIT
//
// Letters that reach the controls of a window with Alt. The toolkit underlines such a letter, but has keys
// for those in menus only. Here each window gets letters by itself, in every language: no two controls of a
// window have the same.
#pragma once

#include <X11/Intrinsic.h>

namespace gw {

/// From now on windows have such letters and their keys. Without this the functions below do nothing.
void use_mnemonics(Display* display);

/// Gives every button and toggle of the window, and every label of `label_for`, a letter of its own, which
/// none of the menus of its menu bar has. To be called again when a text in the window changes. A text
/// without Latin letters gets one behind it, in parentheses, where the encoding is UTF-8, and none in others.
void assign_mnemonics(Widget window);
/// The same for the window of a widget whose text has changed.
void assign_mnemonics_around(Widget w);

/// The letter of this label brings the keyboard to the control.
void label_for(Widget label, Widget control);

}  // namespace gw
