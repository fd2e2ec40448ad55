// SPDX-License-Identifier: MIT
#include "app/program/server_watch.h"

#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "app/kit/toolkit.h"
#include "fontpath/path_element.h"
#include "fontpath/xlib_server_view.h"

namespace gw {

namespace {

constexpr unsigned long INTERVAL = 2000;  // milliseconds

struct Watch {
    std::unique_ptr<ServerView> view;
    int uses = 0;
    std::optional<ServerPlace> place;
    std::vector<std::string> path;
    std::set<Widget> shown;  ///< the windows on the screen
    XtIntervalId timer = 0;
};

Watch& the_watch() {
    static Watch watch;
    return watch;
}

void tick();

void tick_cb(XtPointer, XtIntervalId*) {
    the_watch().timer = 0;
    tick();
}

/// Asks at once, and from then on as long as there is a window that shows what the server says.
void tick() {
    Watch& watch = the_watch();
    if (watch.shown.empty()) return;
    if (watch.timer != 0) XtRemoveTimeOut(watch.timer);
    watch.timer = XtAppAddTimeOut(app, INTERVAL, tick_cb, nullptr);
    ask_server();
    server_ticks().emit();
}

void window_event(Widget shell, XtPointer, XEvent* event, Boolean*) {
    Watch& watch = the_watch();
    if (event->type == UnmapNotify) {
        watch.shown.erase(shell);
    } else if (event->type == MapNotify) {
        watch.shown.insert(shell);
        tick();
    } else if (event->type == EnterNotify && event->xcrossing.detail != NotifyInferior) {
        tick();
    }
}

}  // namespace

ServerUse::ServerUse() {
    if (++the_watch().uses == 1) the_watch().view = connect_to_server(DisplayString(display));
}

ServerUse::~ServerUse() {
    if (--the_watch().uses == 0) the_watch().view.reset();
}

ServerView* ServerUse::view() {
    Watch& watch = the_watch();
    return watch.view && watch.view->answers() ? watch.view.get() : nullptr;
}

ServerPlace server_place() {
    std::optional<ServerPlace>& place = the_watch().place;
    if (!place) {
        const ServerUse server;
        place = ServerUse::view() != nullptr ? ServerUse::view()->place() : ServerPlace::UNKNOWN;
    }
    return *place;
}

const std::vector<std::string>& served_path() {
    return the_watch().path;
}

void ask_server() {
    int count = 0;
    char** elements = XGetFontPath(display, &count);
    std::vector<std::string> path(elements, elements + count);
    if (elements != nullptr) XFreeFontPath(elements);
    take_served_path(std::move(path));
}

void take_served_path(std::vector<std::string> path) {
    if (path == the_watch().path) return;
    find_newly_silent(path);
    the_watch().path = std::move(path);
    served_path_changes().emit();
}

Signal<>& served_path_changes() {
    static Signal<> changes;
    return changes;
}

Signal<>& server_ticks() {
    static Signal<> ticks;
    return ticks;
}

void ask_server_while_shown(Widget shell) {
    XtAddEventHandler(shell, StructureNotifyMask | EnterWindowMask, False, window_event, nullptr);
}

}  // namespace gw
