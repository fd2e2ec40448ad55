// SPDX-License-Identifier: MIT
#include "app/common/warningdlg.h"

#include "app/kit/dialogs.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "texts/messages.h"

#include <Xm/MessageB.h>

Widget wi_warning_dlg = nullptr;

Widget create_warning_dlg(const char* name, Widget parent) {
    wi_warning_dlg = gw::message_dialog(parent, name, XmDIALOG_WARNING, "", "",
                                        {XmDIALOG_CANCEL_BUTTON, XmDIALOG_HELP_BUTTON});
    const gw::XmText ok = gw::xm_text(gw::text_of(gw::Message::WARNING_OK));
    XtVaSetValues(wi_warning_dlg, XmNokLabelString, ok.get(), nullptr);
    return wi_warning_dlg;
}

void start_warning_dlg(const char* title, const char* message) {
    const gw::XmText text = gw::xm_text(message);
    set_window_title(wi_warning_dlg, title);
    XtVaSetValues(wi_warning_dlg, XmNmessageString, text.get(), nullptr);
    XtManageChild(wi_warning_dlg);
}
