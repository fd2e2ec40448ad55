// SPDX-License-Identifier: MIT
#include "app/common/workingdlg.h"

#include "app/kit/dialogs.h"
#include "app/kit/events.h"
#include "app/kit/handles.h"
#include "texts/messages.h"

#include <Xm/MessageB.h>

Widget wi_working_dlg = nullptr;

namespace {

void set_message(const char* text) {
    const gw::XmText message = gw::xm_text(text != nullptr ? text : "");
    XtVaSetValues(wi_working_dlg, XmNmessageString, message.get(), nullptr);
}

}  // namespace

Widget create_working_dlg(const char* name, Widget parent) {
    wi_working_dlg =
        gw::message_dialog(parent, name, XmDIALOG_WORKING, gw::text_of(gw::Message::WORKING_TITLE), "",
                           {XmDIALOG_HELP_BUTTON, XmDIALOG_CANCEL_BUTTON, XmDIALOG_OK_BUTTON,
                            XmDIALOG_DEFAULT_BUTTON, XmDIALOG_SEPARATOR});
    return wi_working_dlg;
}

void start_working_dlg(const char* text) {
    set_message(text);
    XtManageChild(wi_working_dlg);
    gw::draw_at_once(wi_working_dlg);
}

void update_working_dlg(const char* text) {
    set_message(text);
    process_xt_events();
}

void stop_working_dlg() {
    XtUnmanageChild(wi_working_dlg);
}
