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
/// (XmDIALOG_OK_BUTTON, ...) are taken away. Unmanaged, centred when it appears. Escape presses OK where OK
/// is its only button.
Widget message_dialog(Widget parent, const char* name, unsigned char type, const std::string& title,
                      const std::string& message, std::initializer_list<unsigned char> without);

/// What happens when a dialog appears: it is centred, and its windows are named. The builders have done it.
void add_map_callbacks(Widget dialog);

/// Gives the window of every widget below `w` the widget's name, for those who look from outside: with
/// `xwininfo -tree` the parts of a window can be told apart, and `xdotool` finds them.
void name_windows(Widget w);

/// One button of a row; one without a callback is insensitive.
struct RowButton {
    const char* name;
    Message text;
    XtCallbackProc callback;
    XtPointer client_data = nullptr;
};
/// Fills a form with buttons of equal width and height; returns them in order.
std::vector<Widget> fill_with_buttons(Widget form, const std::vector<RowButton>& buttons);
/// The end of a dialog: below `above` a separator, a form "button_form" of buttons of equal width, and the
/// message line "msg_label", which is returned through `message`. Returns the buttons in order.
std::vector<Widget> button_row(Widget dialog, Widget above, const std::vector<RowButton>& buttons,
                               Widget* message = nullptr);

/// The window manager's close box of a dialog (or of the main window) runs `callback`, which should do what
/// Cancel or Close does.
void on_close_box(Widget dialog, XtCallbackProc callback);

}  // namespace gw
