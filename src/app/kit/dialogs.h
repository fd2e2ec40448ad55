// SPDX-License-Identifier: MIT
//
// What all dialogs do alike: how they begin, their buttons, how they end.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "texts/messages.h"

#include <Xm/Xm.h>

namespace gw {

/// A dialog: a form in a shell of its own. It is not managed yet, and is centred when it appears.
Widget form_dialog(Widget parent, const char* name, Message title);

/// A message box: `type` (XmDIALOG_WARNING, ...) gives the symbol; the parts in `without`
/// (XmDIALOG_OK_BUTTON, ...) are removed. Unmanaged, centred when it appears. If OK is the only button,
/// Escape and the close box press it. If there is no button, the user cannot close it. For a box with Cancel,
/// call `end_dialog`.
Widget message_dialog(Widget parent, const char* name, unsigned char type, const std::string& title,
                      const std::string& message, std::initializer_list<unsigned char> without);

/// Centres the dialog and names its windows whenever it appears. `form_dialog` and `message_dialog` call
/// this.
void add_map_callbacks(Widget dialog);

/// Whether a dialog is open that must be answered first: other windows get no mouse and no keyboard.
[[nodiscard]] bool is_modal_dialog_open();

/// Gives the window of every widget below `w` the widget's name, for other programs: `xwininfo -tree` shows
/// which part is which, and `xdotool` finds them.
void name_windows(Widget w);

/// One button of a row. A button without a callback is insensitive.
struct RowButton {
    const char* name;
    Message text;
    XtCallbackProc callback;
    XtPointer client_data = nullptr;
    /// Its left and right edge in hundredths of the row's width; with 0 and 0 all buttons have equal shares.
    int left = 0;
    int right = 0;
};
/// Makes the buttons of a row, and returns them in order. The caller attaches their tops and bottoms.
std::vector<Widget> make_buttons(Widget parent, const std::vector<RowButton>& buttons);
/// Fills a form with the buttons, which are as high as the form.
std::vector<Widget> fill_with_buttons(Widget form, const std::vector<RowButton>& buttons);
/// The lower end of a dialog that is laid out from top to bottom. Below `above` come a separator, the form
/// "button_form" with the buttons, and the message line "msg_label", which is returned in `message`. Returns
/// the buttons in order.
std::vector<Widget> button_row(Widget dialog, Widget above, const std::vector<RowButton>& buttons,
                               Widget* message = nullptr);

/// The end of a dialog that is built from the bottom, so that a list in the middle gets the rest of the
/// height: the message line, above it the buttons, above them a separator.
struct BottomRow {
    std::vector<Widget> buttons;  ///< in order
    Widget message;
    Widget separator;
};
/// The widget names of its parts.
struct BottomRowNames {
    const char* message;
    const char* form;
    const char* separator;
};
BottomRow bottom_row(Widget dialog, const BottomRowNames& names, const std::vector<RowButton>& buttons);

/// The ways to leave a dialog.
struct DialogEnd {
    Widget default_button = nullptr;  ///< what Return presses
    Widget cancel_button = nullptr;   ///< what Escape presses
    Widget initial_focus = nullptr;   ///< what has the keyboard when the dialog appears
    /// What the window manager's close box calls; it should do what Cancel or Close does. Null hides the
    /// dialog.
    XtCallbackProc close = nullptr;
};
/// Sets all of them. Call it once for each dialog.
void end_dialog(Widget dialog, const DialogEnd& end);

/// Makes the window manager's close box of a window call `callback` with `client_data`.
void on_close_box(Widget window, XtCallbackProc callback, XtPointer client_data = nullptr);

}  // namespace gw
