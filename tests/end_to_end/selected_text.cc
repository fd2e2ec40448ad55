// SPDX-License-Identifier: MIT
#include "end_to_end/selected_text.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <stdexcept>
#include <vector>

#include <X11/Xatom.h>
#include <X11/Xlib.h>

namespace gw::e2e {

namespace {

void give(Display* display, const XSelectionRequestEvent& request, const std::string& text) {
    const Atom targets = XInternAtom(display, "TARGETS", False);
    const Atom utf8 = XInternAtom(display, "UTF8_STRING", False);
    XEvent answer{};
    answer.xselection.type = SelectionNotify;
    answer.xselection.requestor = request.requestor;
    answer.xselection.selection = request.selection;
    answer.xselection.target = request.target;
    answer.xselection.time = request.time;
    answer.xselection.property = request.property;
    if (request.target == targets) {
        std::vector<Atom> all = {targets, utf8, XA_STRING};
        XChangeProperty(display, request.requestor, request.property, XA_ATOM, 32, PropModeReplace,
                        reinterpret_cast<unsigned char*>(all.data()), static_cast<int>(all.size()));
    } else if (request.target == utf8 || request.target == XA_STRING) {
        XChangeProperty(display, request.requestor, request.property, request.target, 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
    } else {
        answer.xselection.property = 0;
    }
    XSendEvent(display, request.requestor, False, NoEventMask, &answer);
}

/// Never returns. Says through `ready` that the text can be pasted.
[[noreturn]] void serve(const std::string& text, int ready) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) ::_exit(1);
    const Window owner = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1, 1, 0, 0, 0);
    for (const Atom selection : {XA_PRIMARY, XInternAtom(display, "CLIPBOARD", False)})
        XSetSelectionOwner(display, selection, owner, CurrentTime);
    XSync(display, False);
    if (::write(ready, "r", 1) != 1) ::_exit(1);
    for (;;) {
        XEvent event;
        XNextEvent(display, &event);
        if (event.type == SelectionRequest) give(display, event.xselectionrequest, text);
    }
}

}  // namespace

SelectedText::SelectedText(const std::string& text) {
    int ends[2];
    if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
    pid_ = ::fork();
    if (pid_ == 0) serve(text, ends[1]);
    ::close(ends[1]);
    char is_ready = 0;
    const bool came = pid_ > 0 && ::read(ends[0], &is_ready, 1) == 1;
    ::close(ends[0]);
    if (!came) throw std::runtime_error("nobody selects a text");
}

SelectedText::~SelectedText() {
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
}

}  // namespace gw::e2e
