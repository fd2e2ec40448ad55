// SPDX-License-Identifier: MIT
#include "app/initdlg.h"

#include "app/gw_gui_util.h"
#include "app/program_objects.h"
#include "app/sample_text_cb.h"

#include <Xm/MessageB.h>

// Only the text shows: no button lets the user close the notice.
Widget create_init_dlg(const char* name, Widget parent) {
    const gw::XmText message = gw::xm_text(gw::text_of(gw::Message::NOTICE));
    Arg args[4];
    XtSetArg(args[0], XmNdialogType, XmDIALOG_INFORMATION);
    XtSetArg(args[1], XmNmessageString, message.get());
    XtSetArg(args[2], XmNautoUnmanage, False);
    XtSetArg(args[3], XmNdefaultPosition, False);
    wi_init_dlg = XmCreateMessageDialog(parent, gw::name_arg(name), args, 4);
    set_window_title(wi_init_dlg, gw::text_of(gw::Message::NOTICE_TITLE));
    for (const unsigned char child : {XmDIALOG_SEPARATOR, XmDIALOG_OK_BUTTON, XmDIALOG_CANCEL_BUTTON,
                                      XmDIALOG_HELP_BUTTON, XmDIALOG_DEFAULT_BUTTON, XmDIALOG_SYMBOL_LABEL}) {
        if (Widget part = XmMessageBoxGetChild(wi_init_dlg, child); part != nullptr) XtUnmanageChild(part);
    }
    XtAddCallback(wi_init_dlg, XmNmapCallback, popup_cb, nullptr);
    gw::on_close_box(wi_init_dlg, [](Widget, XtPointer, XtPointer) {});
    return wi_init_dlg;
}

void start_init_dlg() {
    XtManageChild(wi_init_dlg);
    gw::draw_at_once(wi_init_dlg);
    set_watch_cursor(wi_init_dlg, 1);
}

void stop_init_dlg() {
    set_watch_cursor(wi_init_dlg, 0);
    XtUnmanageChild(wi_init_dlg);
}
