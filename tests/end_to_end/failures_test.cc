// SPDX-License-Identifier: MIT
//
// What fails is shown to the user in a window, with its reason; with the windows as they always were,
// standard error says it and nothing else opens.
#include "end_to_end/program_test.h"

#include <sys/stat.h>

#include <filesystem>

#include "end_to_end/bitmap_fonts.h"
#include "end_to_end/outline_font.h"
#include "end_to_end/waiting.h"
#include "support/small_disk.h"

#include "end_to_end/install_dialog.h"

namespace {

using namespace gw::e2e;
using gw::test::SmallDisk;
using gw::test::TempDir;

constexpr const char* SAMPLE_TEXT = "Glyph Warden - Set Sample Text";
const BitmapFont AARDVARKS{"Aardvarks"};
using Environment = std::map<std::string, std::optional<std::string>>;

class Failures : public ProgramTest {
  protected:
    /// The program as it was before it had any of the resources for today.
    [[nodiscard]] Environment both_off() const {
        return {{"XENVIRONMENT", home.write("off.resources",
                                            "Glyphward*gw_modern_fonts: False\n"
                                            "Glyphward*gw_modern_windows: False\n")}};
    }
    void SetUp() override {
        if (is_as_ever()) GTEST_SKIP() << "what is shown with the resources on";
    }
    /// Starts the program and installs all fonts of the source into `destination`.
    void install_all(const std::string& destination, const Environment& environment = {}) {
        start(environment);
        ASSERT_NE(open_by_menu("f", "i", InstallDialog::TITLE), 0U);
        const InstallDialog dialog(desktop);
        ASSERT_TRUE(dialog.is_there());
        ASSERT_TRUE(dialog.list_fonts_of(source.path()));
        ASSERT_TRUE(destination.empty() || dialog.install_to(destination));
        dialog.click_line(0);
        ASSERT_TRUE(press(InstallDialog::TITLE, "_install_button"));
    }
    /// Whether the summary appears with a list of what was not done.
    bool summary_lists_failures(const std::string& picture) {
        if (!desktop.appears(SUMMARY)) return false;
        const Window window = desktop.window_titled(SUMMARY);
        const bool listed = wait_until([&] {
            const Window list = desktop.part_named(window, "failed_list");
            return list != 0 && desktop.ink(desktop.place_of(list)) > 100;
        });
        desktop.park_pointer();
        desktop.picture(picture);
        return listed;
    }
    bool close_summary() { return press(SUMMARY, "ok_button") && hint_comes_and_goes(); }
    [[nodiscard]] bool program_says(const std::string& words) const {
        return wait_until([&] { return program->errors().find(words) != std::string::npos; });
    }

    TempDir source;
};

TEST_F(Failures, AFontWhoseFileNameIsTooLongIsShownWithTheReason) {
    OutlineFont{"Longford"}.write_to(source.path());
    const OutlineFont font{"Longford"};
    std::filesystem::rename(source.file(font.file_name()), source.file(std::string(100, 'n') + ".pfb"));
    install_all("");
    ASSERT_TRUE(summary_lists_failures("failure-name"));
    EXPECT_TRUE(close_summary());
    EXPECT_EQ(leave(), 0);
}

TEST_F(Failures, AFullDiskIsShownAsTheReason) {
    const SmallDisk disk;
    std::filesystem::permissions(disk.path(), std::filesystem::perms::all);
    AARDVARKS.write_to(source.path());
    disk.leave_blocks(1);
    install_all(disk.path());
    ASSERT_TRUE(summary_lists_failures("failure-disk"));
    EXPECT_TRUE(program_says("No space left on device; the font is left out"));
    EXPECT_TRUE(close_summary());
    EXPECT_FALSE(disk.exists(AARDVARKS.file_name()));
    EXPECT_EQ(leave(), 0);
}

TEST_F(Failures, WithBothResourcesOffStandardErrorSaysItAndNoWindowOpens) {
    const SmallDisk disk;
    std::filesystem::permissions(disk.path(), std::filesystem::perms::all);
    AARDVARKS.write_to(source.path());
    disk.leave_blocks(1);
    install_all(disk.path(), both_off());
    EXPECT_TRUE(program_says("No space left on device; the font is left out"));
    EXPECT_TRUE(hint_comes_and_goes(true));
    EXPECT_FALSE(desktop.is_visible(SUMMARY));
    EXPECT_EQ(leave(), 0);
}

TEST_F(Failures, AFontPathFileThatMayNotBeWrittenIsShown) {
    if (is_root()) GTEST_SKIP() << "the superuser has no such file";
    AARDVARKS.write_to(source.path());
    const std::string file = home.write(".VTfontpath", "");
    ::chmod(file.c_str(), 0444);
    install_all("");
    ASSERT_TRUE(summary_lists_failures("failure-font-path"));
    EXPECT_TRUE(program_says("will not be listed at the next start"));
    EXPECT_TRUE(std::filesystem::exists(default_destination() + AARDVARKS.file_name()));
    EXPECT_TRUE(close_summary());
    EXPECT_EQ(leave(), 0);
}

TEST_F(Failures, ASampleTextThatCannotBeSavedIsSaidInItsDialog) {
    if (is_root()) GTEST_SKIP() << "the superuser's text is not kept";
    std::filesystem::create_directory(home.file(".glyphwdrc"));
    start();
    const Window dialog = open_by_menu("o", "s", SAMPLE_TEXT);
    ASSERT_NE(dialog, 0U);
    desktop.click_middle(desktop.part_named(dialog, "apply_button"));
    const Window message = desktop.part_named(dialog, "msg_label");
    ASSERT_NE(message, 0U);
    EXPECT_TRUE(wait_until([&] { return desktop.ink(desktop.place_of(message)) > 50; }));
    desktop.park_pointer();
    desktop.picture("failure-sample-text");
    EXPECT_TRUE(leave_window(SAMPLE_TEXT, Leaving::BUTTON, "cancel_button"));
    EXPECT_EQ(leave(), 0);
}

}  // namespace
