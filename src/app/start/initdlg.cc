// SPDX-License-Identifier: MIT
#include "app/start/initdlg.h"

#include "app/kit/dialogs.h"
#include "app/kit/events.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/looks.h"
#include "texts/messages.h"

#include <Xm/MessageB.h>

Widget wi_init_dlg = nullptr;

// Only the text is shown: without buttons the user cannot close the notice.
Widget create_init_dlg(const char* name, Widget parent) {
    wi_init_dlg = gw::message_dialog(parent, name, XmDIALOG_INFORMATION,
                                     gw::text_of(gw::Message::NOTICE_TITLE), gw::text_of(gw::Message::NOTICE),
                                     {XmDIALOG_SEPARATOR, XmDIALOG_OK_BUTTON, XmDIALOG_CANCEL_BUTTON,
                                      XmDIALOG_HELP_BUTTON, XmDIALOG_DEFAULT_BUTTON, XmDIALOG_SYMBOL_LABEL});
    gw::use_fonts(XmMessageBoxGetChild(wi_init_dlg, XmDIALOG_MESSAGE_LABEL), gw::looks().notice_fonts);
    return wi_init_dlg;
}

void start_init_dlg() {
    XtManageChild(wi_init_dlg);
    show_watch_cursor(wi_init_dlg, true);
    gw::draw_at_once(wi_init_dlg);
}

void stop_init_dlg() {
    show_watch_cursor(wi_init_dlg, false);
    XtUnmanageChild(wi_init_dlg);
}
