// SPDX-License-Identifier: MIT
#include "app/kit/events.h"

#include <chrono>

#include "app/kit/toolkit.h"

namespace gw {

namespace {

// After one the server has done all that it was asked for before, and its events are here. What they lead to
// takes another.
constexpr int IDLE_ROUNDS = 2;

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds PATIENCE(30);

bool is_on_screen(Widget w) {
    XWindowAttributes attributes;
    return XGetWindowAttributes(XtDisplay(w), XtWindow(w), &attributes) != 0 &&
           attributes.map_state == IsViewable;
}

/// Notices when a window comes to the screen: the server says then how much of it is seen.
class Arrival {
  public:
    explicit Arrival(Widget w) : widget_(w) { XtAddEventHandler(w, VisibilityChangeMask, False, note, this); }
    ~Arrival() { XtRemoveEventHandler(widget_, VisibilityChangeMask, False, note, this); }
    Arrival(const Arrival&) = delete;
    Arrival& operator=(const Arrival&) = delete;

    [[nodiscard]] bool has_come() const { return has_come_; }

  private:
    static void note(Widget, XtPointer self, XEvent*, Boolean*) {
        static_cast<Arrival*>(self)->has_come_ = true;
    }
    Widget widget_;
    bool has_come_ = false;
};

}  // namespace

void Ticker::start() {
    constexpr unsigned long MILLISECONDS = 20;
    id_ = XtAppAddTimeOut(
        app, MILLISECONDS, [](XtPointer ticker, XtIntervalId*) { static_cast<Ticker*>(ticker)->start(); },
        this);
}

void draw_at_once(Widget dialog) {
    const auto limit = Clock::now() + std::chrono::seconds(1);
    const Ticker ticker;
    const Arrival arrival(dialog);
    // Nothing tells of a dialog that was on the screen before: that is asked for.
    auto next_question = Clock::now() + PATIENCE;
    while (!arrival.has_come() && Clock::now() < limit) {
        XtAppProcessEvent(app, XtIMAll);
        if (Clock::now() < next_question) continue;
        if (is_on_screen(dialog)) break;
        next_question = Clock::now() + PATIENCE;
    }
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
