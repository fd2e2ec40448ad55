// SPDX-License-Identifier: MIT
#include "app/main_window/aboutdlg.h"

#include "app/kit/dialogs.h"
#include "texts/messages.h"

#include <Xm/MessageB.h>

Widget wi_about_dlg = nullptr;

namespace {

void ok_cb(Widget, XtPointer, XtPointer) {
    XtUnmanageChild(wi_about_dlg);
}

}  // namespace

Widget create_about_dlg(const char* name, Widget parent) {
    wi_about_dlg =
        gw::message_dialog(parent, name, XmDIALOG_INFORMATION, gw::text_of(gw::Message::ABOUT_TITLE),
                           gw::text_of(gw::Message::NOTICE), {XmDIALOG_CANCEL_BUTTON, XmDIALOG_HELP_BUTTON});
    XtAddCallback(wi_about_dlg, XmNokCallback, ok_cb, nullptr);
    return wi_about_dlg;
}

void start_about_dlg() {
    XtManageChild(wi_about_dlg);
}
