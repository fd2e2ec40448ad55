// SPDX-License-Identifier: MIT
//
// Texts that the user cannot change, but select and copy: what is selected is the primary selection, and
// Ctrl+C, Ctrl+Insert or a button put it on the clipboard. Mouse and keyboard can do all of it.
#pragma once

#include <string>

#include <X11/Intrinsic.h>

namespace gw {

/// A text field that shows one line, in the colour of its parent.
Widget copyable_field(Widget parent, const char* name);
/// Shows `text` in such a field, its control characters escaped, and its beginning if it is too long.
void show_in_field(Widget field, const std::string& text);

/// A list with scroll bars. Each selection of the user becomes the primary selection. Returns the list; its
/// parent is the scrolled window.
Widget copyable_list(Widget parent, const char* name);

/// Puts what is selected in the field or list on the clipboard; false when nothing is.
bool copy_field(Widget field);
bool copy_list(Widget list);

}  // namespace gw
