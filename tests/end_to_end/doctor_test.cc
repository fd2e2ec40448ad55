// SPDX-License-Identifier: MIT
//
// A program that does not find its font, from its own message to the answer, the cure and the way back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "end_to_end/broken_setups.h"
#include "end_to_end/doctor_window.h"
#include "end_to_end/program_test.h"
#include "end_to_end/victim.h"
#include "end_to_end/waiting.h"

namespace {

using namespace gw::e2e;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class DoctorTest : public ProgramTest {
  protected:
    void SetUp() override {
        if (is_as_ever()) GTEST_SKIP() << "there is no such window";
    }
    /// A directory of fonts that is configured, and that the server does not have.
    std::string configured_fonts() {
        const Ground ground{home, desktop, [this](const std::string& dir) { list_fonts_of(dir); }};
        const std::string dir = ground.fonts("fonts", {FONT});
        list_fonts_of(dir);
        return dir;
    }
    const PatternFont FONT{.family = "aardvark"};
};

TEST_F(DoctorTest, ADirectoryThatIsNotServedIsServedAndTakenBack) {
    const std::string dir = configured_fonts();
    const std::string message = complaint_of(Victim::XTERM, FONT.xlfd(), desktop);
    ASSERT_THAT(message, HasSubstr(FONT.xlfd()));
    const std::vector<std::string> path_before = desktop.font_path();
    start();
    ASSERT_NE(open_by_menu("t", "w", DoctorWindow::TITLE), 0U);
    const DoctorWindow doctor(desktop);
    ASSERT_TRUE(doctor.is_there());

    const std::string verdict = doctor.ask(message);
    desktop.picture("doctor-answer");
    EXPECT_NE(verdict, "");
    EXPECT_THAT(verdict, Not(HasSubstr("It works now")));
    EXPECT_EQ(desktop.font_path(), path_before) << "only asking changes nothing";
    EXPECT_THAT(doctor.report(), HasSubstr(dir));

    EXPECT_THAT(doctor.cure(), StartsWith("It works now: drawn from " + dir));
    desktop.picture("doctor-cured");
    EXPECT_TRUE(is_on_font_path(dir));
    EXPECT_TRUE(shows_text(Victim::XTERM, FONT.xlfd(), FONT.xlfd(), desktop));

    EXPECT_THAT(doctor.undo(), StartsWith("This was taken back."));
    EXPECT_FALSE(is_on_font_path(dir));
    EXPECT_FALSE(desktop.has_font(FONT.xlfd()));
    EXPECT_TRUE(leave_window(DoctorWindow::TITLE, Leaving::ESCAPE, nullptr));
    EXPECT_EQ(leave(), 0);
}

TEST_F(DoctorTest, TheKeyboardAloneIsEnough) {
    configured_fonts();
    start();
    ASSERT_NE(open_by_menu("t", "w", DoctorWindow::TITLE), 0U);
    const DoctorWindow doctor(desktop);
    ASSERT_TRUE(doctor.is_there());
    ASSERT_TRUE(gets_keyboard(DoctorWindow::TITLE));
    desktop.type(FONT.xlfd());
    desktop.key("Return");
    EXPECT_TRUE(wait_until([&] { return doctor.verdict() != ""; }));
    EXPECT_TRUE(leave_window(DoctorWindow::TITLE, Leaving::ESCAPE, nullptr));
}

TEST_F(DoctorTest, AllWaysOfLeavingCloseIt) {
    start();
    for (const Leaving way : WAYS_OF_LEAVING) {
        ASSERT_NE(open_by_menu("t", "w", DoctorWindow::TITLE), 0U);
        ASSERT_TRUE(DoctorWindow(desktop).is_there());
        EXPECT_TRUE(leave_window(DoctorWindow::TITLE, way, "close_button"));
    }
}

}  // namespace
