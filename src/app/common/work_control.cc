// SPDX-License-Identifier: MIT
#include "app/common/work_control.h"

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "app/common/problemdlg.h"
#include "app/common/progressdlg.h"
#include "app/kit/toolkit.h"
#include "app/program/end_request.h"
#include "app/program/failures.h"
#include "app/program/window_policy.h"
#include "core/long_work.h"
#include "core/text.h"

#include <Xm/AtomMgr.h>
#include <Xm/Xm.h>

namespace gw {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds BETWEEN_SIGHTS(40);  // between two changes of what the window shows
constexpr milliseconds BEFORE_WINDOW(300);  // work that is shorter has no window
constexpr milliseconds LONGEST_WAIT(20);    // for the next event, while a question is asked

struct Control {
    bool is_on = false;
    bool is_stopped = false;
    bool skips_all = false;
    bool is_shown = false;  // what the window shows is what is in work
    int count = 0;
    int number = 0;
    std::string name;
    Message title = Message::PROGRESS_TITLE;
    Message action = Message::INSTALLING_COUNT;
    Clock::time_point window_at;
    Clock::time_point next_sight;
    bool is_serving = false;
};

Control& control() {
    static Control of_the_work;
    return of_the_work;
}

// --- what the window shows -----------------------------------------------------

void show_window() {
    if (!XtIsManaged(wi_progress_dlg)) open_progress_dlg(control().count, text_of(control().title));
}

void show_what_is_done() {
    Control& now = control();
    if (now.is_shown || Clock::now() < std::max(now.next_sight, now.window_at)) return;
    show_window();
    // What is asked about all fonts, before the first one, is a part of the work on that one.
    const int number = std::max(now.number, 1);
    const std::string count = text_of(now.action, {std::to_string(number), std::to_string(now.count)});
    show_progress(number - 1, count, now.name);
    now.is_shown = true;
    now.next_sight = Clock::now() + BETWEEN_SIGHTS;
}

// --- the user in the middle of work ---------------------------------------------

/// Whether the event is for the progress window or the question.
bool is_for_control(const XEvent& event) {
    for (Widget w = XtWindowToWidget(event.xany.display, event.xany.window); w != nullptr; w = XtParent(w)) {
        if (w == XtParent(wi_progress_dlg) || w == XtParent(wi_problem_dlg)) return true;
    }
    return false;
}

bool closes_window(const XEvent& event) {
    static const Atom protocols = XmInternAtom(display, const_cast<char*>("WM_PROTOCOLS"), False);
    static const Atom closing = XmInternAtom(display, const_cast<char*>("WM_DELETE_WINDOW"), False);
    return event.xclient.message_type == protocols && event.xclient.format == 32 &&
           static_cast<Atom>(event.xclient.data.l[0]) == closing;
}

/// What the user does elsewhere waits. But the main window shall be closed: that ends the work too.
Bool may_be_served(Display*, XEvent* event, XPointer) {
    switch (event->type) {
        case KeyPress:
        case KeyRelease:
        case ButtonPress:
        case ButtonRelease:
        case MotionNotify:
            return is_for_control(*event) || XtIsManaged(wi_problem_dlg) ? True : False;
        case ClientMessage:
            if (!closes_window(*event) || is_for_control(*event)) return True;
            if (event->xclient.window == XtWindow(wi_toplevel)) control().is_stopped = true;
            return False;
        default:
            return True;
    }
}

void serve_events() {
    XEvent event;
    while (XCheckIfEvent(display, &event, may_be_served, nullptr) != False) XtDispatchEvent(&event);
}

void serve_user() {
    Control& now = control();
    if (now.is_serving) return;
    now.is_serving = true;
    if (is_end_requested()) now.is_stopped = true;
    show_what_is_done();
    serve_events();
    now.is_serving = false;
}

bool serve_work() {
    serve_user();
    return control().is_stopped;
}

bool serve_end_of_work() {
    serve_user();
    return false;
}

void cancel() {
    control().is_stopped = true;
    show_progress_text(text_of(Message::PROGRESS_CANCELLING));
}

// --- the question ---------------------------------------------------------------

/// Timers go on: other windows are alive while the user thinks.
void wait_for_event() {
    pollfd server = {ConnectionNumber(display), POLLIN, 0};
    XFlush(display);
    (void)::poll(&server, 1, static_cast<int>(LONGEST_WAIT.count()));
    if ((XtAppPending(app) & XtIMTimer) != 0) XtAppProcessEvent(app, XtIMTimer);
}

Decision ask(const std::vector<std::string>& reasons) {
    show_window();
    start_problem_dlg(reasons);
    // A question that went away without an answer must not be waited for.
    while (problem_decision() == Decision::NONE && !control().is_stopped &&
           XtIsManaged(wi_problem_dlg) != False) {
        serve_user();
        wait_for_event();
    }
    stop_problem_dlg();
    const bool is_answered = !control().is_stopped && problem_decision() != Decision::NONE;
    return is_answered ? problem_decision() : Decision::STOP;
}

// --- one item -------------------------------------------------------------------

void begin_work(Message title, Message action, std::size_t count, milliseconds before_window) {
    if (!window_policy().controls_work()) return;
    Control& now = control() = {};
    now.is_on = true;
    now.count = static_cast<int>(count);
    now.title = title;
    now.action = action;
    now.window_at = Clock::now() + before_window;
    set_progress_cancel(cancel);
    listen_to_long_work(serve_work);
}

bool begin_item(std::size_t number, const std::string& name) {
    Control& now = control();
    if (!now.is_on) return true;
    now.number = static_cast<int>(number);
    now.name = name;
    now.is_shown = false;
    return !is_given_up() && !now.is_stopped;
}

bool goes_on_after_item(const std::vector<std::string>& reasons) {
    Control& now = control();
    if (!now.is_on) return true;
    if (now.is_stopped || reasons.empty() || now.skips_all || now.number >= now.count) return !now.is_stopped;
    const Decision decision = ask(reasons);
    now.skips_all = decision == Decision::SKIP_ALL;
    if (decision == Decision::STOP) now.is_stopped = true;
    return !now.is_stopped;
}

void end_work() {
    listen_to_long_work(nullptr);
    set_progress_cancel(nullptr);
    control() = {};
}

/// What is not tried any more.
void stop_there(WorkRecord& work) {
    work.untried = work.positions.size() - work.index;
    work.index = work.positions.size();
}

}  // namespace

void begin_control(Message action) {
    begin_work(Message::PROGRESS_TITLE, action, the_wp_cl_data.positions.size(), milliseconds(0));
}

bool begin_entry(WorkRecord& work, const std::string& name) {
    if (begin_item(work.index + 1, name)) return true;
    stop_there(work);
    return false;
}

void end_entry(WorkRecord& work, bool is_done, const std::vector<std::string>& reasons) {
    // While the question is there, the work is not done yet.
    const bool goes_on = goes_on_after_item(reasons);
    const bool was_given_up = !goes_on && !is_done && reasons.empty();
    if (!was_given_up) ++work.index;
    if (!goes_on) stop_there(work);
}

void show_done(int done) {
    if (!control().is_on) update_progress_dlg(done);
}

void begin_to_finish() {
    if (!control().is_on) return;
    listen_to_long_work(serve_end_of_work);
    set_progress_cancel(nullptr);
    show_progress_text(text_of(Message::PROGRESS_FINISHING));
}

unsigned end_control(WorkRecord& work) {
    end_work();
    return static_cast<unsigned>(std::exchange(work.untried, 0));
}

std::vector<std::string> reasons_since(const FontReport& report, std::size_t before) {
    std::vector<std::string> lines;
    for (std::size_t i = before; i < report.failed().size(); ++i) {
        const FontReport::Entry& entry = report.failed()[i];
        if (was_always_silent(entry.why.reason)) continue;
        lines.push_back(escaped(entry.font) + ": " + reason_in_words(entry.why));
        lines.push_back("    " + escaped(entry.why.subject));
    }
    return lines;
}

std::string untried_text(unsigned count) {
    return count == 0 ? "" : text_of(Message::ONE_NOT_TRIED, Message::MANY_NOT_TRIED, count);
}

std::string with_untried(const std::string& text, const std::string& untried) {
    return untried.empty() ? text : text + "  " + untried;
}

ControlledWork::ControlledWork(Message title, Message action, std::size_t count) {
    begin_work(title, action, count, BEFORE_WINDOW);
    if (!control().is_on) return;
    // Other work sees that something goes on.
    the_wp_cl_data = {{1}, 0, 0};
    work_permissions().emit(false);
}

ControlledWork::~ControlledWork() {
    if (!control().is_on) return;
    end_work();
    stop_progress_dlg();
    the_wp_cl_data = {};
    work_permissions().emit(true);
}

bool ControlledWork::begin(std::size_t number, const std::string& name) {
    return begin_item(number, name);
}

bool ControlledWork::goes_on_after(const std::vector<std::string>& reasons) {
    return goes_on_after_item(reasons);
}

void ControlledWork::finish() {
    begin_to_finish();
}

bool ControlledWork::is_stopped() const {
    return control().is_stopped;
}

}  // namespace gw
