// SPDX-License-Identifier: MIT
#include "app/start/later_dialogs.h"

#include <deque>
#include <set>
#include <utility>

#include "app/kit/toolkit.h"

namespace gw {

namespace {

constexpr unsigned long MOMENT = 1000;       // milliseconds
constexpr unsigned long BETWEEN_STEPS = 10;  // in which the user's events come first

std::deque<void (*)()>& steps() {
    static std::deque<void (*)()> steps;
    return steps;
}

void make_next() {
    void (*const make)() = steps().front();
    steps().pop_front();
    make();
}

void make_one_cb(XtPointer context, XtIntervalId*) {
    if (steps().empty()) return;
    make_next();
    XtAppAddTimeOut(static_cast<XtAppContext>(context), BETWEEN_STEPS, make_one_cb, context);
}

/// What a window manager says to every window of its own accord: the keyboard is there, an answer is wanted,
/// this is how large the frame is.
bool is_of_window_manager(const XClientMessageEvent& message) {
    const auto atom = [&](const char* name) { return XInternAtom(message.display, name, False); };
    static const std::set<std::pair<Atom, Atom>> KNOWN = {
        {atom("WM_PROTOCOLS"), atom("WM_TAKE_FOCUS")},
        {atom("WM_PROTOCOLS"), atom("_NET_WM_PING")},
        {atom("_MOTIF_WM_MESSAGES"), atom("_MOTIF_WM_OFFSET")},
    };
    return message.format == 32 &&
           KNOWN.contains({message.message_type, static_cast<Atom>(message.data.l[0])});
}

bool can_ask_for_dialog(const XEvent& event) {
    switch (event.type) {
        case KeyPress:
        case KeyRelease:
        case ButtonPress:
        case ButtonRelease:
            return true;
        case ClientMessage:
            return !is_of_window_manager(event.xclient);
        default:
            return false;
    }
}

}  // namespace

void make_later(void (*make)()) {
    steps().push_back(make);
}

void make_dialogs_now() {
    while (!steps().empty()) make_next();
}

void run_with_dialogs(XtAppContext context) {
    XtAppAddTimeOut(context, MOMENT, make_one_cb, context);
    for (;;) {
        XEvent event;
        XtAppNextEvent(context, &event);
        if (can_ask_for_dialog(event)) make_dialogs_now();
        XtDispatchEvent(&event);
    }
}

}  // namespace gw
