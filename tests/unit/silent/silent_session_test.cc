// SPDX-License-Identifier: MIT
//
// The font path of a session when a directory does not answer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "fontpath/session_path.h"
#include "support/sleeping_files.h"
#include "support/temp_dir.h"

namespace {

using namespace gw::session;
using gw::PathHost;
using gw::test::SleepingDirectory;
using gw::test::TempDir;
using testing::ElementsAre;
using testing::IsEmpty;

class SilentSession : public testing::Test {
  protected:
    SilentSession() {
        for (const char* name : {"a/fonts.dir", "mount/fonts.dir", "b/fonts.dir"}) dir.write(name, "0\n");
        asleep.emplace(mount);
    }
    ~SilentSession() override { EXPECT_THAT(asleep->looked_at(), IsEmpty()); }
    const TempDir dir;
    const std::string a = dir.file("a/"), b = dir.file("b/"), mount = dir.file("mount/");
    std::optional<SleepingDirectory> asleep;
};

TEST_F(SilentSession, IsListedAsSkipped) {
    EXPECT_THAT(reasons_to_skip({a, mount + ":unscaled", b, mount}),
                ElementsAre("", "does not answer", "", "does not answer"));
}

TEST_F(SilentSession, IsNotAddedToTheServersPath) {
    const Plan plan = make_plan({{mount, b}, 0, {}}, {a, "built-ins"}, PathHost::THIS);
    EXPECT_THAT(plan.path, ElementsAre(a, "built-ins", b));
    EXPECT_THAT(plan.skipped, ElementsAre(Remark{mount, "does not answer"}));
    EXPECT_THAT(plan.dropped, IsEmpty());
}

TEST_F(SilentSession, KeepsItsPlaceOnTheServersPath) {
    const Configuration chosen{{b, mount}, 2, {}};
    const Plan plan = make_plan(chosen, {a, dir.file("mount"), "built-ins"}, PathHost::THIS);
    EXPECT_THAT(plan.path, ElementsAre(b, a, dir.file("mount"), "built-ins"));
    EXPECT_THAT(plan.skipped, IsEmpty());
    EXPECT_THAT(plan.dropped, IsEmpty());
}

TEST_F(SilentSession, ThePathOfAnotherHostIsNotAskedForHere) {
    const Plan plan = make_plan({{b}, 0, {}}, {mount}, PathHost::ANOTHER);
    EXPECT_THAT(plan.path, ElementsAre(mount, b));
    EXPECT_FALSE(gw::is_silent(mount));
}

}  // namespace
