// SPDX-License-Identifier: MIT
#include "app/kit/dialogs.h"

#include <algorithm>

#include "app/kit/attach.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/looks.h"
#include "app/kit/mnemonics.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/kit/window_titles.h"

#include <Xm/AtomMgr.h>
#include <Xm/Form.h>
#include <Xm/MessageB.h>
#include <Xm/Protocols.h>

namespace gw {

namespace {

constexpr int GAP = 8;
constexpr int MESSAGE_GAP = 2;

void name_windows_cb(Widget dialog, XtPointer, XtPointer) {
    tell_title_of(dialog);
    name_windows(dialog);
}

/// A resource may give a dialog its size, but its shell does not know that yet. The shell would make the
/// dialog as small as its parts allow.
void fit_shell_cb(Widget dialog, XtPointer, XtPointer) {
    keep_on_screen(dialog);
    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(dialog, XmNwidth, &width, XmNheight, &height, nullptr);
    XtVaSetValues(XtParent(dialog), XmNwidth, width, XmNheight, height, nullptr);
}

void assign_mnemonics_cb(Widget dialog, XtPointer, XtPointer) {
    assign_mnemonics(dialog);
}

void hide_cb(Widget, XtPointer dialog, XtPointer) {
    XtUnmanageChild(static_cast<Widget>(dialog));
}

/// Does nothing when the box has no such button.
void press_ok(Widget box) {
    if (!XtIsManaged(XmMessageBoxGetChild(box, XmDIALOG_OK_BUTTON))) return;
    XtUnmanageChild(box);
    XtCallCallbacks(box, XmNokCallback, nullptr);
}

void press_ok_cb(Widget, XtPointer box, XtPointer) {
    press_ok(static_cast<Widget>(box));
}

void press_ok_action(Widget box, XEvent*, String*, Cardinal*) {
    press_ok(box);
}

/// In a message box, Escape works only for its own Cancel button, which this one does not have.
void let_escape_press_ok(Widget dialog) {
    static XtActionsRec actions[] = {{name_arg("PressOk"), press_ok_action}};
    static const XtTranslations ON_ESCAPE = [] {
        XtAppAddActions(app, actions, XtNumber(actions));
        return XtParseTranslationTable("<Key>osfCancel: PressOk()");
    }();
    XtOverrideTranslations(dialog, ON_ESCAPE);
}

/// They live as long as the program.
std::vector<Widget>& all_dialogs() {
    static std::vector<Widget> dialogs;
    return dialogs;
}

bool is_open_and_modal(Widget dialog) {
    unsigned char style = XmDIALOG_MODELESS;
    XtVaGetValues(dialog, XmNdialogStyle, &style, nullptr);
    return XtIsManaged(dialog) && style != XmDIALOG_MODELESS && style != XmDIALOG_WORK_AREA;
}

}  // namespace

bool is_modal_dialog_open() {
    return std::any_of(all_dialogs().begin(), all_dialogs().end(), is_open_and_modal);
}

Widget form_dialog(Widget parent, const char* name, Message title) {
    Arg args[3];
    XtSetArg(args[0], XmNautoUnmanage, False);
    XtSetArg(args[1], XmNdefaultPosition, False);
    XtSetArg(args[2], XmNshadowThickness, 0);
    // Lines and buttons go to the very edge, over a bevel.
    Widget dialog = XmCreateFormDialog(parent, name_arg(name), args, looks().fits_screen ? 3 : 2);
    set_window_title(dialog, text_of(title));
    add_map_callbacks(dialog);
    return dialog;
}

Widget message_dialog(Widget parent, const char* name, unsigned char type, const std::string& title,
                      const std::string& message, std::initializer_list<unsigned char> without) {
    const XmText text = xm_text(message);
    // Return would press OK even when that button was removed and hide the dialog. A dialog without OK must
    // stay.
    const bool has_ok = std::find(without.begin(), without.end(), XmDIALOG_OK_BUTTON) == without.end();
    Arg args[4];
    XtSetArg(args[0], XmNmessageString, text.get());
    XtSetArg(args[1], XmNdefaultPosition, False);
    XtSetArg(args[2], XmNautoUnmanage, has_ok);
    XtSetArg(args[3], XmNshadowThickness, 0);
    Widget dialog = XmCreateMessageDialog(parent, name_arg(name), args, looks().fits_screen ? 4 : 3);
    // The function that creates the box sets a type of its own.
    const bool has_symbol = std::find(without.begin(), without.end(), XmDIALOG_SYMBOL_LABEL) == without.end();
    if (has_symbol || !looks().spares_requests) XtVaSetValues(dialog, XmNdialogType, type, nullptr);
    set_window_title(dialog, title.c_str());
    for (const unsigned char part : without) {
        if (Widget w = XmMessageBoxGetChild(dialog, part); w != nullptr) XtUnmanageChild(w);
    }
    if (!XtIsManaged(XmMessageBoxGetChild(dialog, XmDIALOG_CANCEL_BUTTON))) {
        let_escape_press_ok(dialog);
        end_dialog(dialog, {.close = press_ok_cb});
    }
    add_map_callbacks(dialog);
    return dialog;
}

void add_map_callbacks(Widget dialog) {
    all_dialogs().push_back(dialog);
    // This comes first: a letter may make a text longer.
    XtAddCallback(dialog, XmNmapCallback, assign_mnemonics_cb, nullptr);
    XtAddCallback(dialog, XmNmapCallback, fit_shell_cb, nullptr);
    XtAddCallback(dialog, XmNmapCallback, popup_cb, nullptr);
    XtAddCallback(dialog, XmNmapCallback, name_windows_cb, nullptr);
}

void name_windows(Widget w) {
    if (!XtIsComposite(w)) return;
    WidgetList children = nullptr;
    Cardinal count = 0;
    XtVaGetValues(w, XmNchildren, &children, XmNnumChildren, &count, nullptr);
    for (Cardinal i = 0; i < count; ++i) {
        Widget child = children[i];
        if (!XtIsWidget(child) || !XtIsRealized(child)) continue;  // a gadget has no window of its own
        XStoreName(XtDisplay(child), XtWindow(child), XtName(child));
        name_windows(child);
    }
}

std::vector<Widget> make_buttons(Widget parent, const std::vector<RowButton>& buttons) {
    constexpr std::size_t MANY = 5;
    // On a fine screen there would be no room for the words of some languages.
    const int margin = looks().fits_screen && buttons.size() >= MANY ? 1 : 2;
    const int step = 100 / static_cast<int>(buttons.size());
    int column = 0;
    std::vector<Widget> made;
    for (const RowButton& button : buttons) {
        Widget w = push_button(parent, button.name, button.text);
        if (button.right > 0) {
            Attach(w).columns(button.left, button.right);
        } else {
            Attach(w).columns(column + margin, column + step - margin);
        }
        if (button.callback != nullptr) {
            XtAddCallback(w, XmNactivateCallback, button.callback, button.client_data);
        } else {
            activate(w, 0);
        }
        made.push_back(w);
        column += step;
    }
    return made;
}

std::vector<Widget> fill_with_buttons(Widget form, const std::vector<RowButton>& buttons) {
    std::vector<Widget> made = make_buttons(form, buttons);
    for (Widget w : made) Attach(w).top_form(0).bottom_form(0);
    return made;
}

std::vector<Widget> button_row(Widget dialog, Widget above, const std::vector<RowButton>& buttons,
                               Widget* message) {
    Widget line = separator(dialog, "separator");
    Attach(line).below(above, GAP).sides(0);
    Widget row = form(dialog, "button_form");
    Attach(row).below(line, GAP).sides(0);
    std::vector<Widget> made = fill_with_buttons(row, buttons);
    Widget text = label(dialog, "msg_label", " ");
    Attach(text).below(row, MESSAGE_GAP).sides(GAP).bottom_form(MESSAGE_GAP);
    if (message != nullptr) *message = text;
    return made;
}

namespace {

/// The words of some languages need more room than a resource gives the window.
void widen_for(Widget dialog, const std::vector<Widget>& buttons) {
    constexpr int OF_A_COLUMN = 90;  // per cent that a button fills
    if (!looks().fits_screen) return;
    int widest = 0;
    for (Widget w : buttons) {
        XtWidgetGeometry preferred = {};
        XtQueryGeometry(w, nullptr, &preferred);
        widest = std::max<int>(widest, preferred.width);
    }
    const int needed = widest * static_cast<int>(buttons.size()) * 100 / OF_A_COLUMN;
    Dimension width = 0;
    XtVaGetValues(dialog, XmNwidth, &width, nullptr);
    if (width > 1 && width < needed) XtVaSetValues(dialog, XmNwidth, static_cast<Dimension>(needed), nullptr);
}

}  // namespace

BottomRow bottom_row(Widget dialog, const BottomRowNames& names, const std::vector<RowButton>& buttons) {
    BottomRow row;
    row.message = label(dialog, names.message, " ");
    Attach(row.message).sides(GAP).bottom_form(MESSAGE_GAP);
    // The window must not follow the lengths of texts.
    if (looks().fits_screen) XtVaSetValues(row.message, XmNrecomputeSize, False, nullptr);
    Widget form = gw::form(dialog, names.form);
    Attach(form).sides(0).above(row.message, GAP);
    row.buttons = fill_with_buttons(form, buttons);
    widen_for(dialog, row.buttons);
    row.separator = separator(dialog, names.separator);
    Attach(row.separator).sides(0).above(form, GAP);
    return row;
}

void end_dialog(Widget dialog, const DialogEnd& end) {
    // This comes first: the ring of the default button has its place around the whole text.
    assign_mnemonics(dialog);
    if (end.default_button != nullptr) XtVaSetValues(dialog, XmNdefaultButton, end.default_button, nullptr);
    if (end.cancel_button != nullptr) XtVaSetValues(dialog, XmNcancelButton, end.cancel_button, nullptr);
    if (end.initial_focus != nullptr) XtVaSetValues(dialog, XmNinitialFocus, end.initial_focus, nullptr);
    on_close_box(dialog, end.close != nullptr ? end.close : hide_cb, dialog);
}

void on_close_box(Widget window, XtCallbackProc callback, XtPointer client_data) {
    Widget shell = window;
    while (!XtIsShell(shell)) shell = XtParent(shell);
    XtVaSetValues(shell, XmNdeleteResponse, XmDO_NOTHING, nullptr);
    XmAddWMProtocolCallback(shell, XmInternAtom(XtDisplay(shell), name_arg("WM_DELETE_WINDOW"), False),
                            callback, client_data);
}

}  // namespace gw
