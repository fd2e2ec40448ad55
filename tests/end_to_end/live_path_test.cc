// SPDX-License-Identifier: MIT
//
// The font path dialog while other programs (mkfontdir, xset) change a directory and the server, as somebody
// sees it who operates it.
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "end_to_end/program_test.h"
#include "end_to_end/selected_text.h"
#include "end_to_end/waiting.h"

namespace {

using namespace gw::e2e;
using gw::test::TempDir;

constexpr const char* MODIFY_FP = "Glyph Warden - Modify Font Path";
constexpr const char* NOTHING_COPIED = "nothing was copied";
constexpr int BEGINNING = 20;
constexpr int FIRST_LINE = 10;

bool run(const std::string& command) {
    return std::system(command.c_str()) == 0;
}

class LivePath : public ProgramTest {
  protected:
    void SetUp() override {
        if (is_as_ever()) GTEST_SKIP() << "the dialog does not show the server";
        ::chmod(fonts.c_str(), 0755);
        std::filesystem::copy("/usr/share/fonts/X11/misc/6x13-ISO8859-1.pcf.gz", fonts.path());
        list_fonts_of(fonts.path());
        start();
        dialog = open_by_menu("o", "m", MODIFY_FP);
        ASSERT_NE(dialog, 0U);
        desktop.click(desktop.part_named(dialog, "_fpe_list"), BEGINNING, FIRST_LINE);
    }
    /// What the dialog says about the first element, copied from it.
    [[nodiscard]] std::string notes() const {
        const SelectedText before(NOTHING_COPIED);
        desktop.click(desktop.part_named(dialog, "_state_text"), BEGINNING, FIRST_LINE);
        desktop.key("Control_L", "a");
        desktop.key("Control_L", "c");
        return desktop.clipboard();
    }
    [[nodiscard]] bool notes_become(const std::string& beginning) const {
        return wait_until([&] { return notes().starts_with(beginning); });
    }

    TempDir fonts;
    Window dialog = 0;
};

TEST_F(LivePath, ShowsWhatOtherProgramsDo) {
    EXPECT_TRUE(notes_become(fonts.path() + ": No fonts.dir"));
    desktop.picture("live-path-no-index");
    ASSERT_TRUE(run("mkfontdir " + fonts.path()));
    EXPECT_TRUE(notes_become(fonts.path() + ": Not on the server"));
    ASSERT_TRUE(run("xset fp+ " + fonts.path()));
    EXPECT_TRUE(notes_become(fonts.path() + ": On the server"));
    desktop.picture("live-path-on-the-server");
    ASSERT_TRUE(run("xset fp- " + fonts.path()));
    EXPECT_TRUE(notes_become(fonts.path() + ": Not on the server"));
    EXPECT_TRUE(leave_window(MODIFY_FP, Leaving::ESCAPE, nullptr));
    EXPECT_EQ(leave(), 0);
}

TEST_F(LivePath, PutsThePathOnTheServer) {
    ASSERT_TRUE(run("mkfontdir " + fonts.path()));
    EXPECT_TRUE(notes_become(fonts.path() + ": Not on the server"));
    desktop.click_middle(desktop.part_named(dialog, "_apply_now_button"));
    EXPECT_TRUE(wait_until([&] { return is_on_font_path(fonts.path()); }));
    EXPECT_TRUE(notes_become("The X server has the whole font path now."));
    desktop.picture("live-path-applied");
    EXPECT_TRUE(leave_window(MODIFY_FP, Leaving::BUTTON, "_cancel_button"));
    EXPECT_EQ(leave(), 0);
}

}  // namespace
