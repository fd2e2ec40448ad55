// SPDX-License-Identifier: MIT
//
// Commands that cannot be killed, as one that looks at a directory on a dead mount.
#include "platform/child_process.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>

#include "platform/shell_command.h"
#include "support/children.h"
#include "support/sleeping_files.h"

namespace {

using gw::test::has_children;
using gw::test::NobodyDies;

// The window would be frozen for ever.
TEST(ChildProcess, ACommandThatCannotDieIsLeftBehindAndCollectedLater) {
    {
        const NobodyDies alive;
        const gw::Outcome run = gw::run_command("sleep 1000", {}, std::chrono::milliseconds(100));
        ASSERT_FALSE(run);
        EXPECT_EQ(run.failure().reason, gw::Reason::NO_ANSWER);
        ASSERT_EQ(NobodyDies::spared().size(), 1U);
        EXPECT_TRUE(has_children());
    }
    const pid_t group = NobodyDies::spared().front();
    ASSERT_LT(group, 0);
    ::kill(group, SIGKILL);
    // Waits for its end without collecting it.
    siginfo_t info = {};
    ::waitid(P_PID, static_cast<id_t>(-group), &info, WEXITED | WNOWAIT);
    EXPECT_TRUE(gw::run_command("true", {}, gw::MOMENTS));
    EXPECT_FALSE(has_children());
}

}  // namespace
