// SPDX-License-Identifier: MIT
#include "app/kit/events.h"

#include <chrono>

#include "app/kit/toolkit.h"

namespace gw {

namespace {

constexpr int IDLE_ROUNDS = 10;

bool is_on_screen(Widget w) {
    XWindowAttributes attributes;
    return XGetWindowAttributes(XtDisplay(w), XtWindow(w), &attributes) != 0 &&
           attributes.map_state == IsViewable;
}

}  // namespace

void Ticker::start() {
    constexpr unsigned long MILLISECONDS = 20;
    id_ = XtAppAddTimeOut(
        app, MILLISECONDS, [](XtPointer ticker, XtIntervalId*) { static_cast<Ticker*>(ticker)->start(); },
        this);
}

void draw_at_once(Widget dialog) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    const Ticker ticker;
    while (!is_on_screen(dialog) && std::chrono::steady_clock::now() < limit) XtAppProcessEvent(app, XtIMAll);
    process_xt_events();
}

}  // namespace gw

void process_xt_events() {
    XSync(display, False);
    for (int idle = 0; idle < gw::IDLE_ROUNDS;) {
        // When only a timer is due, there is no event to take. Taking one would wait for the user's next
        // event.
        if ((XtAppPending(app) & XtIMXEvent) != 0) {
            XEvent event;
            XtAppNextEvent(app, &event);
            XtDispatchEvent(&event);
        } else {
            XSync(display, False);
            ++idle;
        }
    }
}
