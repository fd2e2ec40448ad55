// SPDX-License-Identifier: MIT
#include "glyphward-fonts/interruption.h"

#include <poll.h>
#include <signal.h>

#include <initializer_list>

#include "core/long_work.h"

namespace gw::fonts {

namespace {

volatile sig_atomic_t has_come = 0;
int watched_pipe = -1;

void note_signal(int) {
    has_come = 1;
}

}  // namespace

void await_interruption() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before = {};
        ::sigaction(signal, nullptr, &before);
        // Who starts a job with a signal ignored wants it to go on.
        if (before.sa_handler == SIG_IGN) continue;
        struct sigaction action = {};
        action.sa_handler = note_signal;
        // Calls that are under way are finished; the next signal finds the default action.
        action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
        ::sigaction(signal, &action, nullptr);
    }
}

void await_hang_up(int fd) {
    watched_pipe = fd;
}

bool is_interrupted() {
    pollfd pipe = {watched_pipe, 0, 0};
    if (watched_pipe >= 0 && ::poll(&pipe, 1, 0) > 0) has_come = 1;
    return has_come != 0;
}

Interruptible::Interruptible() {
    listen_to_long_work(is_interrupted);
}

Interruptible::~Interruptible() {
    listen_to_long_work(nullptr);
}

}  // namespace gw::fonts
