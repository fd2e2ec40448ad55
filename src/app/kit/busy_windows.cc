// SPDX-License-Identifier: MIT
#include "app/kit/busy_windows.h"

#include <algorithm>
#include <utility>

#include "app/kit/gw_gui_util.h"

namespace gw {

BusyWindows::BusyWindows() {
    show(1);
}

BusyWindows::~BusyWindows() {
    show(0);
    const bool is_last = turn_->is_first();
    turn_.reset();
    if (!is_last) return;
    for (Widget w : std::exchange(retired, {})) XtDestroyWidget(w);
}

void BusyWindows::include(const Widget& window) {
    if (std::find(windows.begin(), windows.end(), &window) == windows.end()) windows.push_back(&window);
}

void BusyWindows::destroy(Widget w) {
    if (scopes.is_pending()) {
        retired.push_back(w);
    } else {
        XtDestroyWidget(w);
    }
}

void BusyWindows::show(int on) {
    // A copy: events are handled in this loop.
    const std::vector<const Widget*> all = windows;
    for (const Widget* w : all) set_watch_cursor(*w, on);
}

}  // namespace gw
