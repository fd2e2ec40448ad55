// SPDX-License-Identifier: MIT
//
// Windows that only show information.
#include "end_to_end/program_test.h"

namespace {

using namespace gw::e2e;

constexpr const char* ABOUT = "About Glyph Warden";
constexpr const char* HELP = "Glyph Warden - Help";

using Notice = ProgramTest;

TEST_F(Notice, TheAboutBoxGoesByEscapeAndCloseBox) {
    start();
    for (const Leaving way : {Leaving::ESCAPE, Leaving::CLOSE_BOX}) {
        ASSERT_NE(open_by_menu("h", "a", ABOUT), 0U);
        desktop.picture("about");
        EXPECT_TRUE(leave_window(ABOUT, way, nullptr));
    }
    EXPECT_EQ(leave(), 0);
}

// Its button does nothing.
TEST_F(Notice, TheHelpWindowGoesByItsCloseBoxAndComesAgain) {
    start();
    for (int time = 0; time < 2; ++time) {
        const Window help = open_by_menu("h", "h", HELP);
        ASSERT_NE(help, 0U);
        desktop.picture("help");
        EXPECT_TRUE(leave_window(HELP, Leaving::CLOSE_BOX, nullptr));
    }
    EXPECT_EQ(leave(), 0);
}

}  // namespace
