// SPDX-License-Identifier: MIT
//
// Texts of several lines that break at the edge of their window: one that the user can only read and copy,
// and one that takes whatever is pasted.
#pragma once

#include <string>

#include <X11/Intrinsic.h>

namespace gw {

/// A text with a scroll bar, `rows` lines high, in the colour of its parent. What is selected is the primary
/// selection, and Ctrl+C puts it on the clipboard. Returns the text; its parent is the scrolled window.
Widget wrapped_text(Widget parent, const char* name, short rows);
/// Shows `text`, with its control characters but the newlines escaped, from its beginning.
void show_wrapped(Widget text, const std::string& shown);

/// As many bytes as a text that the user edits takes.
inline constexpr long MOST_WRITTEN = 1024L * 1024L;

/// A text that the user edits, `rows` lines high. What is pasted loses its control characters but newlines
/// and tabs, and its end if that is too long. Tab leaves the text, Return and Ctrl+Return call `entered` with
/// `client_data`, and Shift+Return begins a line. Returns the text; its parent is the scrolled window.
Widget pasted_text(Widget parent, const char* name, short rows, XtCallbackProc entered,
                   XtPointer client_data = nullptr);

/// The whole text of either.
std::string wrapped_text_of(Widget text);

}  // namespace gw
