// SPDX-License-Identifier: MIT
#include "app/installing/nottakendlg.h"

#include "app/installing/lines_dialog.h"
#include "app/kit/callbacks.h"

Widget wi_not_taken_dlg = nullptr;

namespace {

using gw::Message;

constexpr std::size_t MOST_LINES = 1000;

gw::LinesDialog dialog;

}  // namespace

Widget create_not_taken_dlg(const char* name, Widget parent) {
    wi_not_taken_dlg = dialog.create(name, parent, Message::NOT_TAKEN_TITLE, Message::NOT_TAKEN_CLOSE,
                                     gw::call_cb<stop_not_taken_dlg>);
    return wi_not_taken_dlg;
}

void start_not_taken_dlg(const std::vector<std::string>& lines) {
    if (wi_not_taken_dlg == nullptr) return;
    std::vector<std::string> shown(lines);
    if (lines.size() > MOST_LINES) {
        shown.resize(MOST_LINES);
        shown.push_back(gw::text_of(Message::AND_MORE, static_cast<unsigned>(lines.size() - MOST_LINES)));
    }
    dialog.show(
        gw::text_of(Message::NOT_TAKEN_ONE, Message::NOT_TAKEN_MANY, static_cast<unsigned>(lines.size())),
        shown);
    XtManageChild(wi_not_taken_dlg);
}

void stop_not_taken_dlg() {
    if (wi_not_taken_dlg != nullptr) XtUnmanageChild(wi_not_taken_dlg);
}
