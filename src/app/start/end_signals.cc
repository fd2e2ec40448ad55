// SPDX-License-Identifier: MIT
#include "app/start/end_signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <initializer_list>

#include "app/program/end_request.h"

namespace gw {

namespace {

// The handler writes into the pipe, and the event loop reads from it. A signal that only set a flag could
// arrive just before the loop begins to wait, and would then have no effect until the next event.
int pipe_ends[2] = {-1, -1};
void (*end_program)() = nullptr;

void on_signal(int) {
    const int before = errno;
    request_end();
    [[maybe_unused]] const ssize_t written = ::write(pipe_ends[1], "", 1);
    errno = before;
}

void on_input(XtPointer, int* source, XtInputId*) {
    char byte = 0;
    if (::read(*source, &byte, 1) == 1) end_program();
}

void listen_to(int signal) {
    struct sigaction action = {};
    if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) return;
    action = {};
    action.sa_handler = on_signal;
    // A second one ends a program that does not come back to its event loop.
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    ::sigaction(signal, &action, nullptr);
}

}  // namespace

void end_on_signals(XtAppContext context, void (*end)()) {
    if (::pipe2(pipe_ends, O_CLOEXEC | O_NONBLOCK) != 0) return;
    end_program = end;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): Xt has the mask for a pointer
    XtAppAddInput(context, pipe_ends[0], reinterpret_cast<XtPointer>(XtInputReadMask), on_input, nullptr);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) listen_to(signal);
}

}  // namespace gw
