// SPDX-License-Identifier: MIT
//
// Windows that only show information.
#include "end_to_end/program_test.h"

#include <string>

#include "end_to_end/bitmap_fonts.h"

#include "end_to_end/main_window.h"

namespace {

using namespace gw::e2e;
using gw::test::TempDir;

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

class TodaysWindows : public ProgramTest {
  protected:
    void SetUp() override {
        ProgramTest::SetUp();
        if (is_as_ever()) GTEST_SKIP() << "windows are as ever";
    }
    /// Opens the help window by its key, and leaves it by each of these.
    void open_and_leave_help(const char* title) {
        for (const char* key : {"Return", "Escape"}) {
            ASSERT_NE(opens(title, [&] { desktop.key("F1"); }), 0U) << key;
            desktop.key(key);
            EXPECT_TRUE(desktop.disappears(title)) << key;
        }
    }
};

TEST_F(TodaysWindows, HelpGoesByEveryKeyForIt) {
    start();
    open_and_leave_help(HELP);
    EXPECT_EQ(leave(), 0);
}

TEST_F(TodaysWindows, HelpGoesByEveryKeyForItInAnotherLanguage) {
    start({{"LC_ALL", "de_DE.UTF-8"}, {"LANG", "de_DE.UTF-8"}});
    open_and_leave_help("Glyph Warden - Hilfe");
    desktop.key("Control_L", "q");
    EXPECT_EQ(program->wait_for_exit(), 0);
}

// The text takes no tabs: the keyboard goes on to the button, which the blank presses.
TEST_F(TodaysWindows, TabLeavesTheTextOfTheHelpWindow) {
    start();
    for (const char* held : {"", "Control_L", "Shift_L"}) {
        ASSERT_NE(opens(HELP, [&] { desktop.key("F1"); }), 0U);
        if (*held == '\0') {
            desktop.key("Tab");
        } else {
            desktop.key(held, "Tab");
        }
        desktop.key("space");
        EXPECT_TRUE(desktop.disappears(HELP)) << held;
    }
    EXPECT_EQ(leave(), 0);
}

TEST_F(TodaysWindows, AButtonIsPressedByItsLetter) {
    const TempDir mine;
    BitmapFont{"Aardvarks"}.write_to(mine.path());
    index_fonts(mine.path());
    list_fonts_of(mine.path());
    start();
    main->click_line(0);
    ASSERT_NE(opens("Glyph Warden - Deletion Confirmation", [&] { desktop.key("Alt_L", "d"); }), 0U);
    desktop.picture("letters");
    desktop.key("Escape");
    EXPECT_TRUE(desktop.disappears("Glyph Warden - Deletion Confirmation"));
    EXPECT_TRUE(mine.exists(BitmapFont{"Aardvarks"}.file_name()));
    EXPECT_EQ(leave(), 0);
}

TEST_F(TodaysWindows, ATypedDirectoryIsTakenAndItsFontsInstalledByKeys) {
    const TempDir source;
    BitmapFont{"Aardvarks"}.write_to(source.path());
    index_fonts(source.path());
    start();
    ASSERT_NE(opens("Glyph Warden - Install", [&] { desktop.key("Control_L", "i"); }), 0U);
    ASSERT_NE(opens("Glyph Warden : List Fonts From", [&] { desktop.key("Alt_L", "d"); }), 0U);
    desktop.key("Control_L", "slash");
    desktop.type(source.path());
    desktop.key("Return");
    EXPECT_TRUE(desktop.disappears("Glyph Warden : List Fonts From"));
    desktop.picture("typed-directory");
    desktop.key("Escape");
    EXPECT_TRUE(desktop.disappears("Glyph Warden - Install"));
    EXPECT_EQ(leave(), 0);
}

// Its button does nothing where windows are as ever.
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
