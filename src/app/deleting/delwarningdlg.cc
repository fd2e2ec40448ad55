// SPDX-License-Identifier: MIT
#include "app/deleting/delwarningdlg.h"

#include <utility>

#include "app/kit/dialogs.h"
#include "app/kit/handles.h"
#include "app/program/window_policy.h"
#include "texts/messages.h"

#include <Xm/MessageB.h>

Widget wi_del_warning_dlg = nullptr;

namespace {

using gw::Message;

void (*_warn_cb)(char) = nullptr;

void answer(char confirmed) {
    auto* const cb = std::exchange(_warn_cb, nullptr);
    XtUnmanageChild(wi_del_warning_dlg);
    if (cb != nullptr) cb(confirmed);
}

void ok_cb(Widget, XtPointer, XtPointer) {
    answer(1);
}

void cancel_cb(Widget, XtPointer, XtPointer) {
    answer(0);
}

}  // namespace

Widget create_del_warning_dlg(const char* name, Widget parent) {
    wi_del_warning_dlg =
        gw::message_dialog(parent, name, XmDIALOG_WARNING, gw::text_of(Message::DEL_WARNING_TITLE),
                           gw::text_of(Message::DEL_WARNING), {XmDIALOG_HELP_BUTTON});
    const gw::XmText ok = gw::xm_text(gw::text_of(Message::DEL_WARNING_DELETE));
    if (gw::window_policy().names_what_is_deleted()) {
        const gw::XmText cancel = gw::xm_text(gw::text_of(Message::CONVERT_CANCEL));
        XtVaSetValues(wi_del_warning_dlg, XmNcancelLabelString, cancel.get(), nullptr);
    }
    // Return must not delete anything.
    XtVaSetValues(wi_del_warning_dlg, XmNokLabelString, ok.get(), XmNdefaultButtonType,
                  XmDIALOG_CANCEL_BUTTON, nullptr);
    XtAddCallback(wi_del_warning_dlg, XmNokCallback, ok_cb, nullptr);
    XtAddCallback(wi_del_warning_dlg, XmNcancelCallback, cancel_cb, nullptr);
    gw::end_dialog(wi_del_warning_dlg, {.close = cancel_cb});
    return wi_del_warning_dlg;
}

void set_del_warning(const std::string& question) {
    const gw::XmText text = gw::xm_text(question);
    XtVaSetValues(wi_del_warning_dlg, XmNmessageString, text.get(), nullptr);
}

void start_del_warning_dlg(void (*cb)(char)) {
    _warn_cb = cb;
    XtManageChild(wi_del_warning_dlg);
}

void stop_del_warning_dlg() {
    answer(0);
}
