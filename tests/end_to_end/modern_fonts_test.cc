// SPDX-License-Identifier: MIT
//
// Fonts as Debian ships them, a ".pfb" and a ".pcf.gz", installed and deleted by mouse and keyboard.
#include "end_to_end/program_test.h"

#include <cstdlib>
#include <filesystem>

#include "end_to_end/bitmap_fonts.h"
#include "end_to_end/waiting.h"

#include "end_to_end/install_dialog.h"

namespace {

using namespace gw::e2e;
using gw::test::TempDir;

constexpr const char* WARNING = "Glyph Warden - Deletion Confirmation";
constexpr const char* OUTLINE = "/usr/share/texmf/fonts/type1/public/lm/lmb10.pfb";
constexpr const char* OUTLINE_FILE = "aardwolf.pfb";
// Their lines stand before those of all staged fonts, the outline's on top.
const std::string OUTLINE_FAMILY = "Aarddaemon 10";
const BitmapFont AARDVARKS{"Aardvarks"};

class TodaysFonts : public ProgramTest {
  protected:
    void SetUp() override {
        if (is_root()) GTEST_SKIP() << "whose new directory is put on the font path by hand";
        write_outline();
        const std::string bitmap = AARDVARKS.write_to(source.path());
        ASSERT_EQ(std::system(("gzip '" + bitmap + "'").c_str()), 0);
        bitmap_file = AARDVARKS.file_name() + ".gz";
    }
    /// The Latin Modern font under a family name of the test's own, as long as its real one.
    void write_outline() {
        static const std::string REAL_FAMILY = "LMRomanDemi10";
        std::string bytes = TempDir::read_bytes(OUTLINE);
        const std::size_t family = bytes.find("/FamilyName(" + REAL_FAMILY + ")");
        ASSERT_NE(family, std::string::npos);
        bytes.replace(bytes.find(REAL_FAMILY, family), REAL_FAMILY.size(), OUTLINE_FAMILY);
        source.write(OUTLINE_FILE, bytes);
    }
    /// What makes the program one without the installation's choice.
    [[nodiscard]] std::map<std::string, std::optional<std::string>> plain() const {
        return {{"XENVIRONMENT", home.write("plain.resources", "Glyphward*gw_modern_fonts: False\n")}};
    }
    void open_on_source() {
        ASSERT_NE(opens(InstallDialog::TITLE,
                        [&] {
                            main->take_keyboard();
                            main->choose("f", "i");
                        }),
                  0U);
        dialog = std::make_unique<InstallDialog>(desktop);
        ASSERT_TRUE(dialog->is_there());
        ASSERT_TRUE(dialog->list_fonts_of(source.path()));
    }
    bool dialog_sample_of_line(int line) {
        return until([&] { return dialog->sample_is_drawn(); }, [&] { dialog->click_line(line); });
    }
    bool main_sample_of_line(int line) {
        return until([&] { return main->sample_is_drawn(); },
                     [&] {
                         main->take_keyboard();
                         main->click_line(line);
                     });
    }
    void delete_line(int line) {
        ASSERT_NE(opens(WARNING,
                        [&] {
                            main->click_line(line);
                            desktop.click_middle(main->delete_button);
                        }),
                  0U);
        // Return alone would be no.
        desktop.key("Left");
        desktop.key("space");
        ASSERT_TRUE(desktop.disappears(WARNING));
    }
    [[nodiscard]] std::string installed(const std::string& name) const {
        return TempDir::read_bytes(default_destination() + name);
    }
    [[nodiscard]] bool arrives(const std::string& name) const {
        return wait_until([&] { return std::filesystem::exists(default_destination() + name); });
    }
    [[nodiscard]] std::string outline_xlfd() const { return "-*-" + OUTLINE_FAMILY + "-*"; }

    TempDir source;
    std::string bitmap_file;
    std::unique_ptr<InstallDialog> dialog;
};

TEST_F(TodaysFonts, AreInstalledByteForByteDrawnAndDeleted) {
    start();
    open_on_source();
    ASSERT_TRUE(dialog_sample_of_line(0)) << "the outline, before it is installed";
    dialog->click_line(1, "Shift_L");
    ASSERT_TRUE(press(InstallDialog::TITLE, "_install_button"));
    for (const std::string& name : {std::string(OUTLINE_FILE), bitmap_file}) {
        ASSERT_TRUE(arrives(name)) << program->errors();
        EXPECT_EQ(installed(name), source.read(name));
    }
    EXPECT_TRUE(wait_until([&] { return desktop.has_font(outline_xlfd()); }));
    EXPECT_TRUE(wait_until([&] { return desktop.has_font(AARDVARKS.xlfd()); }));
    EXPECT_TRUE(main_sample_of_line(0));
    EXPECT_EQ(leave(), 0);

    start();  // the directory is on the user's font path from now on
    ASSERT_TRUE(main_sample_of_line(0));
    desktop.picture("modern-outline");
    const auto outline = desktop.settled_pixels(main->sample());
    EXPECT_TRUE(
        until([&] { return main->sample_is_drawn() && desktop.settled_pixels(main->sample()) != outline; },
              [&] { main->click_line(1); }))
        << "the bitmap";
    desktop.picture("modern-bitmap");
    delete_line(1);
    EXPECT_TRUE(wait_until([&] { return installed("fonts.dir").starts_with("1\n"); }));
    delete_line(0);
    EXPECT_TRUE(wait_until([&] { return installed("fonts.dir") == "0\n"; }));
    EXPECT_EQ(installed(OUTLINE_FILE), "");
    EXPECT_EQ(installed(bitmap_file), "");
    EXPECT_EQ(leave(), 0);
}

TEST_F(TodaysFonts, AreTextAndNothingWithoutTheResource) {
    start(plain());
    open_on_source();
    // The name is not read from the header, so the line's place is not known; it is the only one.
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
