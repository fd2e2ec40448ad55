// SPDX-License-Identifier: MIT
#include "app/kit/busy_windows.h"

#include <utility>

#include "app/fontsets/fontsetsdlg.h"
#include "app/installing/installdlg.h"
#include "app/installing/rmediadlg.h"
#include "app/kit/gw_gui_util.h"
#include "app/main_window/glyphwardapp.h"
#include "app/printer/printerdlg.h"
#include "app/samples/attrdlg.h"

namespace gw {

BusyWindows::BusyWindows() {
    ++depth;
    show(1);
}

BusyWindows::~BusyWindows() {
    show(0);
    if (--depth > 0) return;
    for (Widget w : std::exchange(retired, {})) XtDestroyWidget(w);
}

void BusyWindows::destroy(Widget w) {
    if (depth > 0) {
        retired.push_back(w);
    } else {
        XtDestroyWidget(w);
    }
}

void BusyWindows::show(int on) {
    for (Widget w : {wi_mainwindow, wi_install_dlg, wi_rmedia_dlg, wi_attr_dlg, wi_pr_install_dlg,
                     wi_fontsets_dlg, wi_delete_set_dlg})
        set_watch_cursor(w, on);
}

}  // namespace gw
