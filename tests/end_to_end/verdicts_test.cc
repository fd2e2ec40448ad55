// SPDX-License-Identifier: MIT
//
// What the install dialog says about a mixed directory before anything is installed, by mouse.
#include <filesystem>
#include <string>

#include "end_to_end/waiting.h"

#include "end_to_end/program_test.h"

#include "end_to_end/install_dialog.h"

namespace {

using namespace gw::e2e;
using gw::test::TempDir;

constexpr const char* NOT_OFFERED = "Glyph Warden - Not Offered";
constexpr const char* QUESTION = "Glyph Warden - Convert Fonts";
constexpr const char* GOOD = "/usr/share/fonts/truetype/dejavu/DejaVuSansMono-Bold.ttf";
constexpr const char* WITHOUT_NAMES = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
constexpr const char* CONVERTED = "/usr/share/texmf/fonts/opentype/public/lm/lmmono10-regular.otf";

class Verdicts : public ProgramTest {
  protected:
    void SetUp() override {
        if (is_as_ever()) GTEST_SKIP() << "what is said with the resources on";
    }
    /// Half a font, a whole one, text that is called a font, and other files.
    void write_mixed_files() {
        const std::string bytes = TempDir::read_bytes(WITHOUT_NAMES);
        source.write("cut.ttf", bytes.substr(0, bytes.size() / 2));
        std::filesystem::copy_file(GOOD, source.file("Mono Bold.TTF"));
        source.write("noise.pfb", std::string(200, 'n'));
        for (int i = 0; i < 20; ++i) source.write("text" + std::to_string(i) + ".txt", "x");
    }
    void open_on_source() {
        start();
        ASSERT_NE(open_by_menu("f", "i", InstallDialog::TITLE), 0U);
        dialog = std::make_unique<InstallDialog>(desktop);
        ASSERT_TRUE(dialog->is_there());
        ASSERT_TRUE(dialog->list_fonts_of(source.path()));
        ASSERT_TRUE(wait_until([&] { return dialog->has_message(); })) << "what is not offered";
    }
    void take_picture(const char* name) const {
        desktop.park_pointer();
        desktop.picture(name);
    }
    /// Whether the message changes when the line is clicked.
    [[nodiscard]] bool says_something_about(int line) const {
        const auto before = desktop.settled_pixels(dialog->message());
        return follows([&] { return desktop.settled_pixels(dialog->message()) != before; },
                       [&] { dialog->click_line(line); });
    }
    /// Shows the window behind a button of the dialog.
    bool button_opens(const char* button, const char* title) {
        const Window part = desktop.part_named(dialog->window, button);
        return part != 0 && opens(title, [&] { desktop.click_middle(part); }) != 0;
    }

    TempDir source;
    std::unique_ptr<InstallDialog> dialog;
};

TEST_F(Verdicts, OfAMixedDirectoryOnlyWhatIsGoodIsInstalled) {
    write_mixed_files();
    open_on_source();
    take_picture("verdicts-list");
    EXPECT_TRUE(says_something_about(0));
    take_picture("verdicts-damaged");
    ASSERT_TRUE(button_opens("_not_offered_button", NOT_OFFERED));
    take_picture("verdicts-not-offered");
    ASSERT_TRUE(leave_window(NOT_OFFERED, Leaving::ESCAPE, nullptr));
    // Two lines; only the first one stays selected.
    dialog->click_line(1);
    dialog->click_line(2, "Shift_L");
    take_picture("verdicts-selected");
    ASSERT_TRUE(press(InstallDialog::TITLE, "_install_button"));
    ASSERT_TRUE(desktop.appears(SUMMARY)) << program->errors();
    EXPECT_TRUE(wait_until([&] {
        const Window list = desktop.part_named(desktop.window_titled(SUMMARY), "failed_list");
        return list != 0 && desktop.ink(desktop.place_of(list)) > 100;
    }));
    take_picture("verdicts-summary");
    EXPECT_EQ(TempDir::read_bytes(default_destination() + "Mono_Bold.ttf"), TempDir::read_bytes(GOOD));
    EXPECT_FALSE(std::filesystem::exists(default_destination() + "cut.ttf"));
    EXPECT_FALSE(std::filesystem::exists(default_destination() + "noise.pfb"));
    EXPECT_TRUE(press(SUMMARY, "ok_button") && hint_comes_and_goes());
    EXPECT_EQ(leave(), 0);
}

TEST_F(Verdicts, AQuestionComesBeforeAConversion) {
    std::filesystem::copy_file(CONVERTED, source.file("Mono.otf"));
    source.write("read.me", "x");
    open_on_source();
    dialog->click_line(0);
    ASSERT_TRUE(button_opens("_install_button", QUESTION)) << program->errors();
    take_picture("verdicts-question");
    EXPECT_TRUE(leave_window(QUESTION, Leaving::ESCAPE, nullptr));
    EXPECT_TRUE(desktop.is_visible(InstallDialog::TITLE));
    EXPECT_FALSE(std::filesystem::exists(default_destination() + "Mono.ttf"));
    EXPECT_TRUE(leave_window(InstallDialog::TITLE, Leaving::ESCAPE, nullptr));
    EXPECT_EQ(leave(), 0);
}

}  // namespace
