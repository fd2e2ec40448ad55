// SPDX-License-Identifier: MIT
//
// Widget tests run the program's own windows in the test's process. These functions start the program as
// main() does, wait for conditions instead of sleeping, call callbacks as the toolkit would, and read what a
// user would see.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

// X headers come last, behind gtest's, which must precede them in the test.
#include <Xm/Xm.h>

namespace gw::test {

/// Starts the program once per process: everything up to its event loop. Later calls do nothing. Unless the
/// arguments mention `gw_modern_windows`, that is off.
void start_program(const std::vector<std::string>& arguments = {});

/// The two halves of `start_program`, for tests that check the state between them.
void start_toolkit(const std::vector<std::string>& arguments = {});
void finish_start();

/// Handles events until `condition` holds; false when it does not within `milliseconds`.
bool pump_until(const std::function<bool()>& condition, int milliseconds = 10000);
/// Handles all pending events.
void pump();

/// The descendant of `root` with that name or path ("_command_form._delete_button"), at any depth; null when
/// there is none.
Widget find(Widget root, const std::string& name);

/// Whether the window of `widget` is on the screen.
bool is_viewable(Widget widget);
/// Whether the window manager would show the title `title` on the window of `widget`.
std::string title_of(Widget widget);

/// Presses a button or menu entry: false, and nothing happens, when it is insensitive or not managed.
bool press(Widget button);
/// Chooses the entry with that text in an option menu; false when there is none.
bool choose(Widget option_menu, const std::string& text);
/// The texts of the entries of an option menu's pulldown, and the one that it shows.
std::vector<std::string> choices(Widget pulldown);
std::string chosen(Widget option_menu);

/// How many pixels a size in font units is, along an orientation (XmHORIZONTAL, XmVERTICAL).
int in_pixels(int font_units, unsigned char orientation);

/// Uses the window manager's close box of the window of `widget`.
void close_box(Widget widget);
/// Presses and releases the key of that name ("Escape") in the window of `widget`, which must be on the
/// screen, with these modifiers (ControlMask).
void press_key(Widget widget, const char* key, unsigned modifiers = 0);

/// The text of a message box.
std::string message_of(Widget message_box);
/// A part of a message or file selection box (XmDIALOG_OK_BUTTON, ...); null when it has none.
Widget part_of(Widget box, unsigned char part);

/// Selects exactly these positions and calls the list's callbacks.
void select(Widget list, std::initializer_list<int> positions);
std::vector<std::string> items(Widget list);
/// What a text field shows.
std::string shown_text(Widget field);
/// Replaces the field's content by `text`, as a user would by typing.
void type_into(Widget field, const std::string& text);

/// One call of XDefineCursor; `cursor` 0 removes the window's own cursor.
struct CursorChange {
    Window window;
    Cursor cursor;
};
/// All calls since the process began.
const std::vector<CursorChange>& cursor_changes();

}  // namespace gw::test
