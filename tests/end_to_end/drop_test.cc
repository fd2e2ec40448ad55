// SPDX-License-Identifier: MIT
//
// Fonts that come from other programs: dropped on the main window, and as arguments. They are installed, and
// the server has them, for both users.
#include "end_to_end/program_test.h"

#include <filesystem>
#include <string>
#include <vector>

#include "end_to_end/bitmap_fonts.h"
#include "end_to_end/waiting.h"

#include "end_to_end/install_dialog.h"
#include "end_to_end/main_window.h"
#include "support/drag_source.h"

namespace {

using namespace gw::e2e;
using gw::test::DragSource;
using gw::test::TempDir;
using gw::test::uri_list_of;

constexpr const char* NOT_USABLE = "Glyph Warden - Not Usable";
const BitmapFont AARDVARKS{"Aardvarks"};
const BitmapFont ABYSSINIA{"Abyssinia"};

class GivenFonts : public ProgramTest {
  protected:
    GivenFonts() {
        for (const BitmapFont& font : {AARDVARKS, ABYSSINIA}) font.write_to(source.path());
    }
    void SetUp() override {
        ProgramTest::SetUp();
        if (is_as_ever()) GTEST_SKIP() << "nothing can be given to the windows";
    }
    /// Starts the program with these arguments.
    void start_with(const std::vector<std::string>& arguments,
                    std::map<std::string, std::optional<std::string>> environment = {}) {
        environment.insert({"HOME", home_path().substr(0, home_path().size() - 1)});
        program = std::make_unique<Program>(environment, arguments);
        desktop.attend_to(program->pid());
        main = std::make_unique<MainWindow>(desktop);
        ASSERT_TRUE(main->is_there()) << program->errors();
    }
    /// Drags over the window and drops there; false when the window does not take it.
    [[nodiscard]] static bool drop_on(Window window, DragSource& from) {
        from.enter(window);
        const bool is_welcome = wait_until([&] {
            from.serve();
            return from.is_welcome() == true;
        });
        if (!is_welcome) return false;
        from.drop();
        return wait_until([&] {
            from.serve();
            return from.was_taken() == true;
        });
    }
    [[nodiscard]] bool arrives(const BitmapFont& font) const {
        return wait_until([&] { return std::filesystem::exists(default_destination() + font.file_name()); });
    }

    TempDir source;
};

TEST_F(GivenFonts, DroppedFontsAreInstalledAndServed) {
    start();
    const Window target = desktop.window_titled(MainWindow::TITLE);
    DragSource files(uri_list_of({source.file(AARDVARKS.file_name())}));
    ASSERT_TRUE(wait_until([&] { return files.awareness_of(target) == 5; }));
    ASSERT_TRUE(drop_on(target, files));
    InstallDialog dialog(desktop);
    ASSERT_TRUE(dialog.is_there());
    ASSERT_TRUE(follows([&] { return dialog.sample_is_drawn(); }, [&] { dialog.click_line(0); }));
    desktop.picture("dropped-files");
    EXPECT_FALSE(desktop.is_visible(NOT_USABLE));
    ASSERT_TRUE(press(InstallDialog::TITLE, "_install_button"));
    EXPECT_TRUE(arrives(AARDVARKS));
    EXPECT_TRUE(wait_until([&] { return is_on_font_path(default_destination()); }));
    EXPECT_TRUE(hint_comes_and_goes());
    EXPECT_FALSE(std::filesystem::exists(default_destination() + ABYSSINIA.file_name()));
    EXPECT_EQ(leave(), 0);
}

TEST_F(GivenFonts, ArgumentsAreTheSourceAndWhatIsNotThereIsTold) {
    start_with({source.path(), source.file("no such font.pcf")}, {{"LC_ALL", "C"}});
    ASSERT_TRUE(desktop.appears(NOT_USABLE));
    desktop.picture("arguments-not-usable");
    ASSERT_TRUE(press(NOT_USABLE, "close_button"));
    InstallDialog dialog(desktop);
    ASSERT_TRUE(dialog.is_there());
    ASSERT_TRUE(follows([&] { return dialog.sample_is_drawn(); }, [&] { dialog.click_line(1); }));
    ASSERT_TRUE(press(InstallDialog::TITLE, "_install_button"));
    EXPECT_TRUE(arrives(ABYSSINIA));
    EXPECT_EQ(leave(), 0);
}

TEST_F(GivenFonts, InGermanToo) {
    start_with({source.path(), "nichts.ttf"}, {{"LC_ALL", "de_DE.UTF-8"}});
    ASSERT_TRUE(desktop.appears("Glyph Warden - Nicht verwendbar"));
    desktop.key("Escape");
    EXPECT_TRUE(desktop.disappears("Glyph Warden - Nicht verwendbar"));
    EXPECT_TRUE(desktop.is_visible("Glyph Warden - Installieren"));
    desktop.picture("arguments-german");
}

TEST_F(GivenFonts, WithTheWindowsOfEverArgumentsAreIgnored) {
    start_with({"-xrm", "Glyphward*gw_modern_windows: False", source.path()});
    ASSERT_TRUE(gets_keyboard(MainWindow::TITLE));
    desktop.settle();
    EXPECT_FALSE(desktop.is_visible(InstallDialog::TITLE));
    const DragSource files("");
    EXPECT_EQ(files.awareness_of(desktop.window_titled(MainWindow::TITLE)), 0);
    EXPECT_EQ(leave(), 0);
}

}  // namespace
