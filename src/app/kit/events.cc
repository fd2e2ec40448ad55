// SPDX-License-Identifier: MIT
#include "app/kit/events.h"

#include <chrono>

#include "app/kit/toolkit.h"

namespace gw {

namespace {

// After one the server has done all that it was asked for before, and its events are here. What they lead to
// takes another.
constexpr int IDLE_ROUNDS = 2;

bool is_on_screen(Widget w) {
    XWindowAttributes attributes;
    return XGetWindowAttributes(XtDisplay(w), XtWindow(w), &attributes) != 0 &&
           attributes.map_state == IsViewable;
}

/// Notices when a window comes to the screen: the server says then how much of it is seen.
class Arrival {
  public:
    explicit Arrival(Widget w) : widget_(w) {
        XtAddEventHandler(w, VisibilityChangeMask, False, note, this);
        has_come_ = is_on_screen(w);
    }
    ~Arrival() { XtRemoveEventHandler(widget_, VisibilityChangeMask, False, note, this); }
    Arrival(const Arrival&) = delete;
    Arrival& operator=(const Arrival&) = delete;

    [[nodiscard]] bool has_come() const { return has_come_; }

  private:
    static void note(Widget, XtPointer self, XEvent*, Boolean*) {
        static_cast<Arrival*>(self)->has_come_ = true;
    }
    Widget widget_;
    bool has_come_;
};

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
    const Arrival arrival(dialog);
    while (!arrival.has_come() && std::chrono::steady_clock::now() < limit) XtAppProcessEvent(app, XtIMAll);
    process_xt_events();
}

}  // namespace gw

void process_xt_events() {
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
