// SPDX-License-Identifier: MIT
#include "app/installing/notoffereddlg.h"

#include "app/installing/lines_dialog.h"
#include "app/kit/callbacks.h"

Widget wi_not_offered_dlg = nullptr;

namespace {

using gw::Message;

gw::LinesDialog dialog;

}  // namespace

Widget create_not_offered_dlg(const char* name, Widget parent) {
    wi_not_offered_dlg = dialog.create(name, parent, Message::NOT_OFFERED_TITLE, Message::NOT_OFFERED_CLOSE,
                                       gw::call_cb<stop_not_offered_dlg>);
    return wi_not_offered_dlg;
}

void start_not_offered_dlg(const gw::NotOffered& what) {
    if (wi_not_offered_dlg == nullptr) return;
    dialog.show(what.summary(), what.all_lines());
    XtManageChild(wi_not_offered_dlg);
}

void update_not_offered_dlg(const gw::NotOffered& what) {
    if (dialog.is_open()) dialog.show(what.summary(), what.all_lines());
}

void stop_not_offered_dlg() {
    if (wi_not_offered_dlg != nullptr) XtUnmanageChild(wi_not_offered_dlg);
}
