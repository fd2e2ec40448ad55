// SPDX-License-Identifier: MIT
#include "app/main_window/propsdlg.h"

#include <string>

#include "app/kit/attach.h"
#include "app/kit/dialogs.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/messages.h"
#include "app/kit/widgets.h"
#include "app/samples/rc_sample_text.h"
#include "app/samples/sample_text.h"

#include <Xm/Form.h>
#include <Xm/TextF.h>

Widget wi_props_dlg = nullptr;

namespace {

using gw::Attach;
using gw::Message;

constexpr int GAP = 10;
constexpr short TEXT_COLUMNS = 45;

Widget wi_text = nullptr;

// A field drops the characters that its font lacks: what it shows of the kept text stands for the whole.
std::string kept_text;
std::string shown_of_it;

void show_kept_text() {
    kept_text = get_rc_sample_text();
    XmTextFieldSetString(wi_text, gw::name_arg(kept_text.c_str()));
    shown_of_it = gw::field_text(wi_text);
}

std::string text_to_keep() {
    std::string text = gw::field_text(wi_text);
    return text == shown_of_it ? kept_text : text;
}

void reset_cb(Widget, XtPointer, XtPointer) {
    show_kept_text();
}

void apply_cb(Widget, XtPointer, XtPointer) {
    set_rc_sample_text(text_to_keep().c_str());
}

void cancel_cb(Widget, XtPointer, XtPointer) {
    XtUnmanageChild(wi_props_dlg);
}

void ok_cb(Widget w, XtPointer client_data, XtPointer call_data) {
    apply_cb(w, client_data, call_data);
    XtUnmanageChild(wi_props_dlg);
}

Widget button(Widget parent, const char* name, Message text, int column, XtCallbackProc callback) {
    Widget w = gw::push_button(parent, name, text);
    Attach(w).top_form(0).bottom_form(0).columns(column * 20 + 2, column * 20 + 18);
    if (callback != nullptr) {
        XtAddCallback(w, XmNactivateCallback, callback, nullptr);
    } else {
        activate(w, 0);
    }
    return w;
}

}  // namespace

Widget create_props_dlg(const char* name, Widget parent) {
    wi_props_dlg = gw::form_dialog(parent, name, Message::PROPS_TITLE);
    Widget label = gw::label(wi_props_dlg, "sample_label", Message::PROPS_TEXT);
    Attach(label).top_form(GAP).sides(GAP);
    wi_text = gw::text_field(wi_props_dlg, "sample_textField");
    XtVaSetValues(wi_text, XmNcolumns, TEXT_COLUMNS, nullptr);
    Attach(wi_text).below(label, 2).sides(GAP);
    Widget line = gw::separator(wi_props_dlg, "separator");
    Attach(line).below(wi_text, GAP).sides(0);

    Widget buttons = gw::form(wi_props_dlg, "button_form");
    Attach(buttons).below(line, GAP).sides(0).bottom_form(GAP);
    Widget ok = button(buttons, "ok_button", Message::PROPS_OK, 0, ok_cb);
    button(buttons, "apply_button", Message::PROPS_APPLY, 1, apply_cb);
    button(buttons, "reset_button", Message::PROPS_RESET, 2, reset_cb);
    Widget cancel = button(buttons, "cancel_button", Message::PROPS_CANCEL, 3, cancel_cb);
    button(buttons, "help_button", Message::PROPS_HELP, 4, nullptr);

    XtVaSetValues(wi_props_dlg, XmNdefaultButton, ok, XmNcancelButton, cancel, XmNinitialFocus, wi_text,
                  nullptr);
    XtAddCallback(wi_props_dlg, XmNmapCallback, reset_cb, nullptr);
    gw::on_close_box(wi_props_dlg, cancel_cb);
    return wi_props_dlg;
}

void start_props_dlg() {
    XtManageChild(wi_props_dlg);
}
