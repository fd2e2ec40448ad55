// SPDX-License-Identifier: MIT
//
// The environment that the program makes for itself before it starts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "app/start/main_start.h"

namespace {

using testing::StartsWith;

class SetEnvTest : public testing::Test {
  protected:
    SetEnvTest() : path_(std::getenv("PATH")) {}
    ~SetEnvTest() override {
        ::setenv("PATH", path_.c_str(), 1);
        ::unsetenv("NLSPATH");
        ::unsetenv("XFILESEARCHPATH");
    }

  private:
    std::string path_;
};

TEST_F(SetEnvTest, CommandsOfTheInstallationAreFoundLast) {
    ::setenv("PATH", "/usr/bin:/bin", 1);
    set_env();
    EXPECT_STREQ(std::getenv("PATH"), "/usr/bin:/bin:/usr/vantor/bin");
    ::setenv("PATH", "/usr/vantor/bin:/usr/bin:/bin", 1);
    set_env();
    EXPECT_STREQ(std::getenv("PATH"), "/usr/vantor/bin:/usr/bin:/bin") << "the user has it elsewhere";
}

TEST_F(SetEnvTest, GivesTheSearchPathsTheirDefaults) {
    ::unsetenv("NLSPATH");
    ::unsetenv("XFILESEARCHPATH");
    set_env();
    EXPECT_STREQ(std::getenv("NLSPATH"),
                 "/usr/dt/lib/nls/msg/%L/%N.cat:/usr/dt/lib/nls/msg/%L/%N:"
                 "/usr/vantor/lib/locale/%L/LC_MESSAGES/%N.cat:/usr/vantor/lib/locale/%L/LC_MESSAGES/%N");
    EXPECT_STREQ(std::getenv("XFILESEARCHPATH"),
                 "/usr/dt/app-defaults/%L/%N:/usr/dt/lib/app-defaults/%N:"
                 "/usr/vantor/lib/locale/%L/%T/%N%S:/usr/vantor/lib/%T/%N%S");
}

TEST_F(SetEnvTest, LeavesWhatTheUserHasSet) {
    ::setenv("NLSPATH", "/my/%N", 1);
    ::setenv("XFILESEARCHPATH", "", 1);
    set_env();
    EXPECT_STREQ(std::getenv("NLSPATH"), "/my/%N");
    EXPECT_STREQ(std::getenv("XFILESEARCHPATH"), "") << "set to nothing is set";
}

TEST_F(SetEnvTest, EachOfThemAlone) {
    ::setenv("NLSPATH", "/my/%N", 1);
    ::unsetenv("XFILESEARCHPATH");
    set_env();
    EXPECT_STREQ(std::getenv("NLSPATH"), "/my/%N");
    EXPECT_THAT(std::getenv("XFILESEARCHPATH"), StartsWith("/usr/dt/app-defaults/"));
}

}  // namespace
