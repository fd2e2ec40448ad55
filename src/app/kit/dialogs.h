// SPDX-License-Identifier: MIT
//
// What all dialogs do alike: how they begin, their buttons, how they end.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "app/kit/messages.h"

#include <Xm/Xm.h>

namespace gw {

/// A dialog: a form in a shell of its own, unmanaged, centred when it appears.
Widget form_dialog(Widget parent, const char* name, Message title);

/// A message box: its `type` (XmDIALOG_WARNING, ...) gives the symbol; the parts in `without`
/// (XmDIALOG_OK_BUTTON, ...) are taken away. Unmanaged, centred when it appears. Where OK is its only button,
/// Escape and the close box press it; where there is no button, nothing closes it. A box with Cancel gets its
/// end from `end_dialog`.
Widget message_dialog(Widget parent, const char* name, unsigned char type, const std::string& title,
                      const std::string& message, std::initializer_list<unsigned char> without);

/// What happens when a dialog appears: it is centred, and its windows are named. The builders have done it.
void add_map_callbacks(Widget dialog);

/// Gives the window of every widget below `w` the widget's name, for those who look from outside: with
/// `xwininfo -tree` the parts of a window can be told apart, and `xdotool` finds them.
void name_windows(Widget w);

/// One button of a row. One without a callback is insensitive.
struct RowButton {
    const char* name;
    Message text;
    XtCallbackProc callback;
    XtPointer client_data = nullptr;
    /// Where it stands, in hundredths of the row's width; 0 and 0 for an equal share of it.
    int left = 0;
    int right = 0;
};
/// Makes the buttons of a row, and returns them in order. Where they stand from top to bottom is left open.
std::vector<Widget> make_buttons(Widget parent, const std::vector<RowButton>& buttons);
/// Fills a form with the buttons, which are as high as it is.
std::vector<Widget> fill_with_buttons(Widget form, const std::vector<RowButton>& buttons);
/// The end of a dialog that is built from the top: below `above` a separator, a form "button_form" of
/// buttons, and the message line "msg_label", which is returned through `message`. Returns the buttons in
/// order.
std::vector<Widget> button_row(Widget dialog, Widget above, const std::vector<RowButton>& buttons,
                               Widget* message = nullptr);

/// The end of a dialog that is built from the bottom, so that a list in its middle takes what height there
/// is: the message line, above that the buttons, above those a separator.
struct BottomRow {
    std::vector<Widget> buttons;  ///< in order
    Widget message;
    Widget separator;
};
/// What its parts are called.
struct BottomRowNames {
    const char* message;
    const char* form;
    const char* separator;
};
BottomRow bottom_row(Widget dialog, const BottomRowNames& names, const std::vector<RowButton>& buttons);

/// How a dialog is left.
struct DialogEnd {
    Widget default_button = nullptr;  ///< what Return presses
    Widget cancel_button = nullptr;   ///< what Escape presses
    Widget initial_focus = nullptr;   ///< what has the keyboard when the dialog appears
    /// What the window manager's close box runs: what Cancel or Close does. Null hides the dialog.
    XtCallbackProc close = nullptr;
};
/// Wires all of it, at once. A dialog has one end.
void end_dialog(Widget dialog, const DialogEnd& end);

/// Has the window manager's close box of a window run `callback`, with `client_data`.
void on_close_box(Widget window, XtCallbackProc callback, XtPointer client_data = nullptr);

}  // namespace gw
