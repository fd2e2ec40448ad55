// SPDX-License-Identifier: MIT
#include "app/kit/dialogs.h"

#include <algorithm>

#include "app/kit/attach.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"

#include <Xm/AtomMgr.h>
#include <Xm/Form.h>
#include <Xm/MessageB.h>
#include <Xm/Protocols.h>

namespace gw {

namespace {

void name_windows_cb(Widget dialog, XtPointer, XtPointer) {
    name_windows(dialog);
}

/// A dialog whose size a resource gives has it, and its shell not yet: left alone, the shell would make the
/// dialog as small as its parts allow.
void fit_shell_cb(Widget dialog, XtPointer, XtPointer) {
    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(dialog, XmNwidth, &width, XmNheight, &height, nullptr);
    XtVaSetValues(XtParent(dialog), XmNwidth, width, XmNheight, height, nullptr);
}

void press_ok(Widget dialog, XEvent*, String*, Cardinal*) {
    if (!XtIsManaged(XmMessageBoxGetChild(dialog, XmDIALOG_OK_BUTTON))) return;
    XtUnmanageChild(dialog);
    XtCallCallbacks(dialog, XmNokCallback, nullptr);
}

/// A message box knows its own Cancel button only, and that is not there.
void let_escape_press_ok(Widget dialog) {
    static XtActionsRec actions[] = {{name_arg("PressOk"), press_ok}};
    static const XtTranslations ON_ESCAPE = [] {
        XtAppAddActions(app, actions, XtNumber(actions));
        return XtParseTranslationTable("<Key>osfCancel: PressOk()");
    }();
    XtOverrideTranslations(dialog, ON_ESCAPE);
}

}  // namespace

Widget form_dialog(Widget parent, const char* name, Message title) {
    Arg args[2];
    XtSetArg(args[0], XmNautoUnmanage, False);
    XtSetArg(args[1], XmNdefaultPosition, False);
    Widget dialog = XmCreateFormDialog(parent, name_arg(name), args, 2);
    set_window_title(dialog, text_of(title));
    add_map_callbacks(dialog);
    return dialog;
}

Widget message_dialog(Widget parent, const char* name, unsigned char type, const std::string& title,
                      const std::string& message, std::initializer_list<unsigned char> without) {
    const XmText text = xm_text(message);
    // Return presses OK even where it has been taken away: a dialog without it stays.
    const bool has_ok = std::find(without.begin(), without.end(), XmDIALOG_OK_BUTTON) == without.end();
    Arg args[3];
    XtSetArg(args[0], XmNmessageString, text.get());
    XtSetArg(args[1], XmNdefaultPosition, False);
    XtSetArg(args[2], XmNautoUnmanage, has_ok);
    Widget dialog = XmCreateMessageDialog(parent, name_arg(name), args, 3);
    // The function that creates it has a type of its own.
    XtVaSetValues(dialog, XmNdialogType, type, nullptr);
    set_window_title(dialog, title.c_str());
    for (const unsigned char part : without) {
        if (Widget w = XmMessageBoxGetChild(dialog, part); w != nullptr) XtUnmanageChild(w);
    }
    if (!XtIsManaged(XmMessageBoxGetChild(dialog, XmDIALOG_CANCEL_BUTTON))) let_escape_press_ok(dialog);
    add_map_callbacks(dialog);
    return dialog;
}

void add_map_callbacks(Widget dialog) {
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

std::vector<Widget> fill_with_buttons(Widget form, const std::vector<RowButton>& buttons) {
    const int step = 100 / static_cast<int>(buttons.size());
    int column = 0;
    std::vector<Widget> made;
    for (const RowButton& button : buttons) {
        Widget w = push_button(form, button.name, button.text);
        Attach(w).top_form(0).bottom_form(0).columns(column + 2, column + step - 2);
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

std::vector<Widget> button_row(Widget dialog, Widget above, const std::vector<RowButton>& buttons,
                               Widget* message) {
    constexpr int GAP = 8;
    Widget line = separator(dialog, "separator");
    Attach(line).below(above, GAP).sides(0);
    Widget row = form(dialog, "button_form");
    Attach(row).below(line, GAP).sides(0);
    std::vector<Widget> made = fill_with_buttons(row, buttons);
    Widget text = label(dialog, "msg_label", " ");
    Attach(text).below(row, 2).sides(GAP).bottom_form(2);
    if (message != nullptr) *message = text;
    return made;
}

void on_close_box(Widget dialog, XtCallbackProc callback) {
    Widget shell = dialog;
    while (!XtIsShell(shell)) shell = XtParent(shell);
    XtVaSetValues(shell, XmNdeleteResponse, XmDO_NOTHING, nullptr);
    XmAddWMProtocolCallback(shell, XmInternAtom(XtDisplay(shell), name_arg("WM_DELETE_WINDOW"), False),
                            callback, nullptr);
}

}  // namespace gw
