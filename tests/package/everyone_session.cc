// SPDX-License-Identifier: MIT
//
// An ordinary user installs a font for everyone in the window, with the mouse. This program is not started as
// a suite: the test of the package starts each test in a session of the user, on a machine whose polkit
// service has an answer ready.
#include <sys/stat.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "end_to_end/waiting.h"
#include "platform/host_paths.h"

#include "end_to_end/todays_fonts.h"

namespace {

using namespace gw::e2e;
using gw::test::TempDir;

constexpr const char* NOTHING_INSTALLED = "Glyph Warden - For Everyone";
constexpr int LINE_OF_ANOTHER = 9;  // a bitmap font of the distribution
const std::string DESTINATION = gw::SUPERUSER_FONT_DIR;

class SessionForEveryone : public TodaysFontsTest {
  protected:
    void SetUp() override {
        ASSERT_FALSE(is_root());
        // A starting session sources its scripts like this.
        ASSERT_EQ(std::system("set -e; . /usr/vantor/share/session/60glyphward-session"), 0);
        ASSERT_FALSE(server_has_bitmap());
        write_fonts();
    }
    [[nodiscard]] std::string home_path() const override { return "/home/glyph/"; }
    /// Chooses the destination and the bitmap font, and presses Install.
    void install_for_everyone() {
        start();
        open_on_source();
        const Window choice = desktop.part_named(dialog->window, "_for_everyone_toggle");
        ASSERT_NE(choice, 0U);
        desktop.click(choice, 8, desktop.place_of(choice).height / 2);
        ASSERT_TRUE(
            follows([&] { return dialog->sample_is_drawn(); }, [&] { dialog->click_line(BITMAP_LINE); }));
        desktop.picture("everyone-chosen");
        ASSERT_TRUE(press(InstallDialog::TITLE, "_install_button"));
    }
};

TEST_F(SessionForEveryone, InstallsTheFontWhereTheRuleSaysYes) {
    install_for_everyone();
    const std::string file = DESTINATION + bitmap_file;
    ASSERT_TRUE(wait_until([&] { return std::filesystem::exists(file); }));
    EXPECT_TRUE(wait_until([&] { return is_on_font_path(DESTINATION); }));
    EXPECT_EQ(TempDir::read_bytes(file), source.read(bitmap_file));
    EXPECT_FALSE(std::filesystem::exists(DESTINATION + OUTLINE_FILE)) << "it was not selected";
    struct stat info = {};
    ASSERT_EQ(::stat(file.c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, 0U);
    EXPECT_EQ(info.st_mode & 07777U, 0644U);
    desktop.settle();
    desktop.picture("everyone-yes");
    EXPECT_FALSE(desktop.is_visible(SUMMARY)) << "there is nothing to tell but success";
    EXPECT_TRUE(main_sample_of_line(LINE_OF_ANOTHER));
    EXPECT_TRUE(main_sample_of_line(0)) << "the list has it";
    EXPECT_EQ(leave(), 0);
    EXPECT_TRUE(server_has_bitmap()) << "other programs have it";
    EXPECT_EQ(program->errors(), "");
}

TEST_F(SessionForEveryone, ReplacesAFontWhoseNameIsTakenWhereTheRuleSaysYes) {
    install_for_everyone();
    const std::string file = DESTINATION + bitmap_file;
    ASSERT_TRUE(wait_until([&] { return is_on_font_path(DESTINATION); }));
    const std::string before = TempDir::read_bytes(file);
    ASSERT_NE(before, "");
    const std::string again = "gunzip -c " + file + " | gzip -1 -c >" + source.file(bitmap_file);
    ASSERT_EQ(std::system(again.c_str()), 0);
    ASSERT_NE(source.read(bitmap_file), before);
    // Everyone's directory is still chosen.
    open_on_source();
    ASSERT_TRUE(follows([&] { return dialog->sample_is_drawn(); }, [&] { dialog->click_line(BITMAP_LINE); }));
    ASSERT_TRUE(press(InstallDialog::TITLE, "_install_button"));
    const Window resolve = opens(RESOLVE, [] {});
    ASSERT_NE(resolve, 0U);
    desktop.settle();
    desktop.picture("everyone-taken");
    EXPECT_EQ(TempDir::read_bytes(file), before);
    desktop.click_middle(desktop.part_named(resolve, "not_keep_all_button"));
    ASSERT_TRUE(press(RESOLVE, "ok_button"));
    ASSERT_NE(opens(SUMMARY, [] {}), 0U);
    desktop.picture("everyone-replaced");
    EXPECT_EQ(TempDir::read_bytes(file), source.read(bitmap_file));
    ASSERT_TRUE(press(SUMMARY, "ok_button"));
    EXPECT_EQ(leave(), 0);
    EXPECT_EQ(program->errors(), "");
}

TEST_F(SessionForEveryone, SaysWhyNothingIsInstalledWhereTheRuleSaysNo) {
    install_for_everyone();
    ASSERT_NE(opens(NOTHING_INSTALLED, [] {}), 0U);
    desktop.picture("everyone-no");
    desktop.key("Return");
    ASSERT_TRUE(desktop.disappears(NOTHING_INSTALLED));
    EXPECT_FALSE(std::filesystem::exists(DESTINATION + bitmap_file));
    EXPECT_FALSE(main->sample_is_drawn());
    EXPECT_EQ(leave(), 0);
    EXPECT_FALSE(server_has_bitmap());
    EXPECT_EQ(program->errors(), "");
}

}  // namespace
