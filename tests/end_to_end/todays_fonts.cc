// SPDX-License-Identifier: MIT
#include "end_to_end/todays_fonts.h"

#include <cstdlib>
#include <filesystem>

#include "end_to_end/waiting.h"

namespace gw::e2e {

namespace {

using gw::test::TempDir;

constexpr const char* WARNING = "Glyph Warden - Deletion Confirmation";
constexpr const char* OUTLINE = "/usr/share/texmf/fonts/type1/public/lm/lmb10.pfb";
constexpr const char* BITMAP = "/usr/share/fonts/X11/75dpi/helvR24-ISO8859-1.pcf.gz";
// The files store names with their length, so the new names must be as long as the old ones.
const std::string OUTLINE_FAMILY_BEFORE = "LMRomanDemi10";
const std::string OUTLINE_FAMILY = "Aarddaemon 10";
const std::string BITMAP_FAMILY_BEFORE = "Helvetica";
const std::string BITMAP_FAMILY = "Aardvarks";

}  // namespace

void TodaysFontsTest::write_fonts() {
    std::string bytes = TempDir::read_bytes(OUTLINE);
    const std::size_t family = bytes.find("/FamilyName(" + OUTLINE_FAMILY_BEFORE + ")");
    ASSERT_NE(family, std::string::npos);
    bytes.replace(bytes.find(OUTLINE_FAMILY_BEFORE, family), OUTLINE_FAMILY_BEFORE.size(), OUTLINE_FAMILY);
    source.write(OUTLINE_FILE, bytes);
    bitmap_file = "aardvarks24.pcf.gz";
    const std::string renamed = std::string("gunzip -c ") + BITMAP + " | LC_ALL=C sed s/" +
                                BITMAP_FAMILY_BEFORE + '/' + BITMAP_FAMILY + "/g | gzip -c >'" +
                                source.file(bitmap_file) + "'";
    ASSERT_EQ(std::system(renamed.c_str()), 0);
}

void TodaysFontsTest::open_on_source() {
    ASSERT_NE(open_by_menu("f", "i", InstallDialog::TITLE), 0U);
    dialog = std::make_unique<InstallDialog>(desktop);
    ASSERT_TRUE(dialog->is_there());
    ASSERT_TRUE(dialog->list_fonts_of(source.path()));
}

void TodaysFontsTest::install_both() {
    ASSERT_TRUE(follows([&] { return dialog->sample_is_drawn(); }, [&] { dialog->click_line(OUTLINE_LINE); }))
        << "the outline, before it is installed";
    dialog->click_line(BITMAP_LINE, "Shift_L");
    ASSERT_TRUE(press(InstallDialog::TITLE, "_install_button"));
    for (const std::string& name : {std::string(OUTLINE_FILE), bitmap_file}) {
        ASSERT_TRUE(arrives(name)) << program->errors();
        EXPECT_EQ(installed(name), source.read(name));
    }
    EXPECT_TRUE(wait_until([&] { return server_has_outline() && server_has_bitmap(); }));
}

void TodaysFontsTest::delete_both() {
    delete_line(BITMAP_LINE);
    EXPECT_TRUE(wait_until([&] { return installed("fonts.dir").find(bitmap_file) == std::string::npos; }));
    EXPECT_NE(installed("fonts.dir").find(OUTLINE_FILE), std::string::npos);
    delete_line(OUTLINE_LINE);
    EXPECT_TRUE(wait_until([&] { return installed("fonts.dir") == "0\n"; }));
    // The files follow the index.
    EXPECT_TRUE(
        wait_until([&] { return installed(OUTLINE_FILE).empty() && installed(bitmap_file).empty(); }));
}

bool TodaysFontsTest::main_sample_of_line(int line) {
    const auto before = desktop.settled_pixels(main->sample());
    return follows(
        [&] { return main->sample_is_drawn() && desktop.settled_pixels(main->sample()) != before; },
        [&] {
            main->take_keyboard();
            main->click_line(line);
        });
}

void TodaysFontsTest::delete_line(int line) {
    ASSERT_NE(opens(WARNING,
                    [&] {
                        main->click_line(line);
                        desktop.click_middle(main->delete_button);
                    }),
              0U);
    // Return alone would mean No.
    desktop.key("Left");
    desktop.key("space");
    ASSERT_TRUE(desktop.disappears(WARNING));
}

std::string TodaysFontsTest::installed(const std::string& name) const {
    return TempDir::read_bytes(default_destination() + name);
}

bool TodaysFontsTest::arrives(const std::string& name) const {
    return wait_until([&] { return std::filesystem::exists(default_destination() + name); });
}

bool TodaysFontsTest::server_has_outline() const {
    return desktop.has_font("-*-" + OUTLINE_FAMILY + "-*");
}

bool TodaysFontsTest::server_has_bitmap() const {
    return desktop.has_font("-*-" + BITMAP_FAMILY + "-*");
}

}  // namespace gw::e2e
