// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "app/start/end_signals.h"

namespace {

bool is_ended = false;

/// Gets the signal twice, without going to the event loop between them.
void get_twice(int signal) {
    gw::end_on_signals(XtCreateApplicationContext(), [] { is_ended = true; });
    std::raise(signal);
    std::fputs("still here", stderr);
    std::raise(signal);
    ::_exit(EXIT_FAILURE);
}

TEST(EndSignals, TheEventLoopEndsTheProgram) {
    XtAppContext context = XtCreateApplicationContext();
    gw::end_on_signals(context, [] { is_ended = true; });
    std::raise(SIGTERM);
    EXPECT_FALSE(is_ended);
    XtAppProcessEvent(context, XtIMAlternateInput);
    EXPECT_TRUE(is_ended);
    XtDestroyApplicationContext(context);
}

// A program that hangs could be ended by SIGKILL only.
TEST(EndSignals, TheSecondOneEndsAProgramThatHangs) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        EXPECT_EXIT(get_twice(signal), testing::KilledBySignal(signal), "still here");
}

}  // namespace
