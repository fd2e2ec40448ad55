// SPDX-License-Identifier: MIT
#include "app/font_path/fpinfodlg.h"

#include "app/kit/dialogs.h"
#include "texts/messages.h"

#include <Xm/MessageB.h>

Widget wi_fp_info_dlg = nullptr;

Widget create_fp_info_dlg(const char* name, Widget parent) {
    wi_fp_info_dlg =
        gw::message_dialog(parent, name, XmDIALOG_INFORMATION, gw::text_of(gw::Message::FP_INFO_TITLE),
                           gw::text_of(gw::Message::FP_INFO), {XmDIALOG_CANCEL_BUTTON, XmDIALOG_HELP_BUTTON});
    return wi_fp_info_dlg;
}

void start_fp_info_dlg() {
    XtManageChild(wi_fp_info_dlg);
}

void stop_fp_info_dlg() {
    XtUnmanageChild(wi_fp_info_dlg);
}
