// SPDX-License-Identifier: MIT
//
// Fonts as Debian ships them, a ".pfb" and a ".pcf.gz", installed and deleted by mouse and keyboard.
#include <filesystem>

#include "end_to_end/waiting.h"

#include "end_to_end/todays_fonts.h"

namespace {

using namespace gw::e2e;

class TodaysFonts : public TodaysFontsTest {
  protected:
    void SetUp() override {
        if (is_as_ever()) GTEST_SKIP() << "what is done with the resource on";
        if (is_root()) GTEST_SKIP() << "whose new directory is put on the font path by hand";
        write_fonts();
    }
    /// The environment of a program for which `gw_modern_fonts` is off.
    [[nodiscard]] std::map<std::string, std::optional<std::string>> plain() const {
        return {{"XENVIRONMENT", home.write("plain.resources", "Glyphward*gw_modern_fonts: False\n")}};
    }
};

TEST_F(TodaysFonts, AreInstalledByteForByteDrawnAndDeleted) {
    start();
    open_on_source();
    install_both();
    EXPECT_TRUE(main_sample_of_line(OUTLINE_LINE));
    EXPECT_EQ(leave(), 0);

    start();  // from now on the directory is on the configured font path
    ASSERT_TRUE(main_sample_of_line(OUTLINE_LINE));
    desktop.picture("modern-outline");
    EXPECT_TRUE(main_sample_of_line(BITMAP_LINE));
    desktop.picture("modern-bitmap");
    delete_both();
    EXPECT_EQ(leave(), 0);
}

TEST_F(TodaysFonts, AreTextAndNothingWithoutTheResource) {
    start(plain());
    open_on_source();
    // The name is not read from the header, so there is no sample. The list has only this line.
    EXPECT_TRUE(wait_until([&] { return is_on_font_path("/tmp/gw_dir/"); }));
    dialog->click_line(0);
    ASSERT_TRUE(press(InstallDialog::TITLE, "_install_button"));
    ASSERT_TRUE(arrives(OUTLINE_FILE));
    EXPECT_TRUE(wait_until([&] { return installed("fonts.dir").starts_with("1\n"); }));
    EXPECT_TRUE(installed(OUTLINE_FILE).starts_with("%!PS-AdobeFont"));
    EXPECT_FALSE(std::filesystem::exists(default_destination() + bitmap_file));
    EXPECT_EQ(leave(), 0);
}

}  // namespace
