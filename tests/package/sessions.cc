// SPDX-License-Identifier: MIT
//
// An ordinary user works with the installed package, one session for each test. This program is not started
// as a suite: the package's test starts each test in a session of the user, in this order.
#include <cstdlib>

#include "end_to_end/waiting.h"

#include "end_to_end/todays_fonts.h"

namespace {

using namespace gw::e2e;

class Session : public TodaysFontsTest {
  protected:
    void SetUp() override {
        ASSERT_FALSE(is_root());
        // A new session begins with the server's default font path.
        ASSERT_EQ(std::system("xset fp default"), 0);
        EXPECT_FALSE(server_has_outline());
        EXPECT_FALSE(server_has_bitmap());
        // A starting session sources its scripts like this.
        ASSERT_EQ(std::system("set -e; . /etc/X11/Xsession.d/60glyphward-session"), 0);
        write_fonts();
    }
    [[nodiscard]] std::string home_path() const override { return "/home/glyph/"; }
};

TEST_F(Session, OfTheFirstDayInstallsFonts) {
    start();
    open_on_source();
    install_both();
    EXPECT_EQ(leave(), 0);
    EXPECT_EQ(program->errors(), "");
}

TEST_F(Session, OfTheSecondDayHasThemFromTheStartAndDeletesThem) {
    EXPECT_TRUE(server_has_outline()) << "before the program starts";
    EXPECT_TRUE(server_has_bitmap());
    start();
    ASSERT_TRUE(main_sample_of_line(OUTLINE_LINE));
    desktop.picture("package-outline");
    ASSERT_TRUE(main_sample_of_line(BITMAP_LINE));
    desktop.picture("package-bitmap");
    delete_both();
    EXPECT_EQ(leave(), 0);
    EXPECT_EQ(program->errors(), "");
}

}  // namespace
