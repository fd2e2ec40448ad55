// SPDX-License-Identifier: MIT
//
// Small helpers that all windows use.
#pragma once

#include <X11/Intrinsic.h>

/// Callback of every dialog when it appears: centres its shell on the screen.
void popup_cb(Widget w, void* client_data, void* call_data);
/// Sets the dialog's title, in the current locale.
void set_window_title(Widget dialog, const char* title);
/// Shows or removes the busy cursor on `w`, if it is managed.
void show_watch_cursor(Widget w, bool on);
/// The same (`on` non-zero shows it), and draws the display.
void set_watch_cursor(Widget w, int on);
/// Sets the widget's sensitivity.
void activate(Widget w, char on);
/// The child of `ancestor` that is, or contains, `w`; null when `w` is not inside.
Widget get_constraint_widget(Widget w, Widget ancestor);
/// Sets the label to `a` followed by `b`, together less than 10000 bytes; null counts as empty. A form that
/// holds the label makes room for it.
void update_label(Widget w, const char* a, const char* b);
