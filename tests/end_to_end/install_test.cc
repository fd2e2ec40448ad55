// SPDX-License-Identifier: MIT
//
// Installing fonts by mouse and keyboard.
#include "end_to_end/program_test.h"

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>

#include "end_to_end/bitmap_fonts.h"
#include "end_to_end/outline_font.h"
#include "end_to_end/waiting.h"
#include "support/small_disk.h"
#include "support/strict_upr.h"

#include "end_to_end/install_dialog.h"

namespace {

using namespace gw::e2e;
using gw::test::SmallDisk;
using gw::test::StrictUpr;
using gw::test::TempDir;

constexpr const char* PROBLEM = "Glyph Warden - Font Not Done";
constexpr const char* ATTRIBUTES = "Glyph Warden - Font Attributes";
constexpr const char* HELP = "Glyph Warden - Help";
constexpr const char* STAGING = "gw_dir";
constexpr const char* PROGRESS = "Font Installation Progress Dialog";
// Their lines come before those of all staged fonts.
const BitmapFont AARDVARKS{"Aardvarks"};
const BitmapFont ABYSSINIA{"Abyssinia"};
const BitmapFont ACROPOLIS{"Acropolis"};

class Install : public ProgramTest {
  protected:
    /// What runs of the program have in the directory for temporary files.
    [[nodiscard]] static std::vector<std::string> scratch() {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator("/tmp")) {
            const std::string name = entry.path().filename();
            if (name == "gw_dir" || name == "pcf" || name == "errors" || name == "Vantor.fs" ||
                (name.starts_with("glyphward-") && !name.starts_with("glyphward-test")))
                names.push_back(name);
        }
        return names;
    }
    void open_dialog() {
        ASSERT_NE(open_by_menu("f", "i", InstallDialog::TITLE), 0U);
        dialog = std::make_unique<InstallDialog>(desktop);
        ASSERT_TRUE(dialog->is_there());
    }
    /// Starts the program with the dialog on the source's fonts.
    void open_on_source(const std::map<std::string, std::optional<std::string>>& environment = {}) {
        start(environment);
        open_dialog();
        ASSERT_TRUE(dialog->list_fonts_of(source.path()));
    }
    /// Selects the lines 0 to `last` of the dialog. The sample of the first one shows that the fonts are
    /// listed.
    void select_lines(int last) {
        ASSERT_TRUE(sample_of_line(0));
        if (last > 0) dialog->click_line(last, "Shift_L");
    }
    bool sample_of_line(int line) {
        return follows([&] { return dialog->sample_is_drawn(); }, [&] { dialog->click_line(line); });
    }
    /// Waits for the summary of what was not installed, and closes it. Returns true at once with the
    /// resources for today off.
    bool reasons_come_and_go() {
        return is_as_ever() || (desktop.appears(SUMMARY) && press(SUMMARY, "ok_button"));
    }
    /// A font that fails before the last one is asked about.
    bool is_skipped() { return is_as_ever() || (desktop.appears(PROBLEM) && press(PROBLEM, "skip_button")); }
    bool install() { return press(InstallDialog::TITLE, "_install_button"); }
    bool main_sample_of_line(int line) {
        return follows([&] { return main->sample_is_drawn(); },
                       [&] {
                           main->take_keyboard();
                           main->click_line(line);
                       });
    }
    /// Waits until the font's file is in the destination.
    [[nodiscard]] bool arrives(const BitmapFont& font) const { return arrives(font, default_destination()); }
    [[nodiscard]] static bool arrives(const BitmapFont& font, const std::string& dir) {
        return wait_until([&] { return std::filesystem::exists(dir + font.file_name()); });
    }
    [[nodiscard]] bool is_installed(const BitmapFont& font) const {
        return std::filesystem::exists(default_destination() + font.file_name());
    }
    [[nodiscard]] static std::string index_of(const std::string& dir) {
        return TempDir::read_bytes(dir + "fonts.dir");
    }
    [[nodiscard]] static bool lists_no_font(const std::string& dir) {
        const std::string index = index_of(dir);
        return index.empty() || index == "0\n";
    }
    TempDir source;
    std::unique_ptr<InstallDialog> dialog;
};

TEST_F(Install, DrawsASampleOfAFontThatIsNotInstalled) {
    AARDVARKS.write_to(source.path());
    open_on_source();
    EXPECT_TRUE(sample_of_line(0));
    desktop.picture("install-preview");
    EXPECT_TRUE(previews(STAGING));
    EXPECT_EQ(leave(), 0);
    EXPECT_FALSE(previews(STAGING));
}

TEST_F(Install, ASignalEndsTheProgramAsTheCloseBoxDoes) {
    AARDVARKS.write_to(source.path());
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        open_on_source();
        ASSERT_TRUE(sample_of_line(0));
        ASSERT_TRUE(previews(STAGING));
        ASSERT_FALSE(scratch().empty());
        ::kill(program->pid(), signal);
        EXPECT_EQ(program->wait_for_exit(), 0) << signal;
        EXPECT_FALSE(previews(STAGING)) << signal;
        EXPECT_EQ(scratch(), std::vector<std::string>{}) << signal;
    }
}

TEST_F(Install, WhatAKilledProgramPreviewedGoesAtTheNextStart) {
    if (is_as_ever()) GTEST_SKIP() << "its scratch directories have fixed names, and are used again";
    AARDVARKS.write_to(source.path());
    open_on_source();
    ASSERT_TRUE(sample_of_line(0));
    const std::string left = staged(STAGING).at(0);
    ::kill(program->pid(), SIGKILL);
    ASSERT_FALSE(program->wait_for_exit().has_value());
    const std::filesystem::path dir = std::filesystem::path(left).parent_path().parent_path();
    std::filesystem::last_write_time(dir,
                                     std::filesystem::file_time_type::clock::now() - std::chrono::minutes(5));
    start();
    EXPECT_FALSE(is_on_font_path(left));
    EXPECT_FALSE(std::filesystem::exists(dir));
    EXPECT_EQ(leave(), 0);
}

TEST_F(Install, TheServerAndTheMainWindowShowTheNewFontAtOnce) {
    AARDVARKS.write_to(source.path());
    ABYSSINIA.write_to(source.path());
    open_on_source();
    select_lines(0);
    ASSERT_TRUE(install());
    ASSERT_TRUE(arrives(AARDVARKS));
    ASSERT_TRUE(hint_comes_and_goes());
    EXPECT_FALSE(is_installed(ABYSSINIA)) << "it was not selected";
    if (is_root()) return;  // the superuser adds the directory to the font path by hand
    EXPECT_TRUE(wait_until([&] { return is_on_font_path(default_destination()); }));
    EXPECT_TRUE(wait_until([&] { return desktop.has_font(AARDVARKS.xlfd()); }));
    EXPECT_TRUE(main_sample_of_line(0));
    desktop.picture("installed");

    open_dialog();
    dialog->click_line(1);
    ASSERT_TRUE(install()) << "a second one into the same directory";
    ASSERT_TRUE(arrives(ABYSSINIA));
    EXPECT_TRUE(wait_until([&] { return desktop.has_font(ABYSSINIA.xlfd()); }));
    desktop.click_middle(main->list_title);
    EXPECT_TRUE(follows([&] { return main->sample_is_drawn(); }, [&] { main->click_line(1); }));
}

// The tool that makes this file is not on the sandbox's PATH.
TEST_F(Install, AnOutlineFontIsInTheResourceFileOfItsDirectory) {
    using Files = std::map<std::string, std::string>;
    const OutlineFont font{"Aardwolf"};
    font.write_to(source.path());
    open_on_source();
    ASSERT_TRUE(sample_of_line(0));
    desktop.picture("install-preview-outline");
    const std::string preview = staged(STAGING).at(0);
    EXPECT_EQ(StrictUpr(TempDir::read_bytes(preview + "glyphwd.upr")).files("FontOutline"),
              (Files{{font.postscript_name(), preview + "link/" + font.file_name()}}));
    ASSERT_TRUE(install());
    const std::string outline = default_destination() + font.file_name();
    const std::string resources = default_destination() + "glyphwd.upr";
    ASSERT_TRUE(wait_until([&] { return std::filesystem::exists(outline); }));
    ASSERT_TRUE(hint_comes_and_goes());
    if (is_root()) {  // the superuser's directory must be added to the server's font path by hand
        EXPECT_EQ(leave(), 0);
        EXPECT_FALSE(std::filesystem::exists(resources));
    } else {
        ASSERT_TRUE(wait_until([&] { return std::filesystem::exists(resources); }));
        const StrictUpr written(TempDir::read_bytes(resources));
        EXPECT_EQ(written.files("FontOutline"), (Files{{font.postscript_name(), outline}}));
        EXPECT_EQ(leave(), 0);
    }
    EXPECT_EQ(program->errors(), "");
}

// The menu is used by its mnemonics. The dialog begins with the focus on the source's button, the chooser
// with the focus on the selection. The pointer is outside all windows.
class InstallByKeyboard : public Install {
  protected:
    InstallByKeyboard() { AARDVARKS.write_to(source.path()); }
    void start_without_mouse() {
        start();
        desktop.park_pointer();
    }
    void open_dialog_by_keys() {
        ASSERT_TRUE(opens(InstallDialog::TITLE, [&] { main->choose("f", "i"); }) != 0);
        dialog = std::make_unique<InstallDialog>(desktop);
        ASSERT_TRUE(dialog->is_there());
    }
    void list_source_by_keys() {
        desktop.key("space");
        ASSERT_TRUE(gets_keyboard(DirectoryChooser::SOURCE_TITLE));
        desktop.key("Tab");  // the buttons
        desktop.key("Tab");  // the filter
        desktop.key("Control_L", "slash");
        desktop.type(source.path() + '*');
        desktop.key("Return");
        desktop.key("Tab");  // the list, which begins with the directory itself
        desktop.key("space");
        desktop.key("Tab");  // the selection
        desktop.key("Return");
        ASSERT_TRUE(desktop.disappears(DirectoryChooser::SOURCE_TITLE));
        ASSERT_TRUE(wait_until([&] { return previews(STAGING); }));
        ASSERT_TRUE(wait_until([&] { return desktop.has_keyboard(dialog->window); }));
        desktop.key("Tab");  // the search, if there is one, and else the list of fonts
        if (!is_as_ever()) desktop.key("Down");
        ASSERT_TRUE(follows([&] { return dialog->sample_is_drawn(); }, [&] { desktop.key("space"); }));
        // The buttons become sensitive after the sample.
        static_cast<void>(desktop.settled_pixels(desktop.place_of(dialog->window)));
    }
    void escape_from(const char* title) {
        EXPECT_TRUE(gets_keyboard(title)) << title;
        desktop.key("Escape");
        EXPECT_TRUE(desktop.disappears(title)) << title;
    }
};

TEST_F(InstallByKeyboard, AFontIsInstalled) {
    start_without_mouse();
    open_dialog_by_keys();
    list_source_by_keys();
    desktop.key("Return");
    EXPECT_TRUE(desktop.disappears(InstallDialog::TITLE)) << "Return is Install";
    EXPECT_TRUE(arrives(AARDVARKS));
    EXPECT_TRUE(hint_comes_and_goes());
    EXPECT_EQ(leave(), 0);
}

TEST_F(InstallByKeyboard, AttributesAreShownFromTheMainWindowAndFromTheDialog) {
    start_without_mouse();
    ASSERT_TRUE(follows([&] { return main->sample_is_drawn(); }, [&] { desktop.key("space"); }));
    ASSERT_TRUE(follows([&] { return desktop.is_visible(ATTRIBUTES); }, [&] { main->choose("f", "a"); }));
    escape_from(ATTRIBUTES);
    ASSERT_TRUE(wait_until([&] { return desktop.has_keyboard(main->window); }));

    open_dialog_by_keys();
    list_source_by_keys();
    desktop.key("Tab");  // the sample
    desktop.key("Tab");  // the destination, or a choice of it, and then the directory
    if (!is_as_ever()) {
        desktop.key("Tab");
        desktop.key("Tab");  // whether it is put on the font path
    }
    desktop.key("Tab");  // the buttons, of which Install is first
    desktop.key("Right");
    desktop.key("Right");
    desktop.key("space");
    ASSERT_TRUE(desktop.appears(ATTRIBUTES));
    desktop.picture("attributes-by-keyboard");
    escape_from(ATTRIBUTES);
    escape_from(InstallDialog::TITLE);
    EXPECT_EQ(leave(), 0);
    EXPECT_FALSE(is_installed(AARDVARKS));
}

TEST_F(InstallByKeyboard, TheMainWindowHasKeysOfItsOwn) {
    start_without_mouse();
    ASSERT_TRUE(follows([&] { return main->sample_is_drawn(); }, [&] { desktop.key("space"); }));
    // While the program is busy with the selection the menu entry may be insensitive.
    ASSERT_NE(opens(ATTRIBUTES, [&] { desktop.key("Control_L", "t"); }), 0U);
    escape_from(ATTRIBUTES);
    ASSERT_TRUE(wait_until([&] { return desktop.has_keyboard(main->window); }));
    ASSERT_NE(opens(InstallDialog::TITLE, [&] { desktop.key("Control_L", "i"); }), 0U);
    escape_from(InstallDialog::TITLE);
    ASSERT_TRUE(wait_until([&] { return desktop.has_keyboard(main->window); }));
    ASSERT_NE(opens(HELP, [&] { desktop.key("F1"); }), 0U);
    ASSERT_TRUE(leave_window(HELP, Leaving::CLOSE_BOX, nullptr));
    ASSERT_TRUE(wait_until([&] { return desktop.has_keyboard(main->window); }));
    EXPECT_TRUE(follows([&] { return !program->is_running(); }, [&] { desktop.key("Control_L", "q"); }));
    EXPECT_EQ(program->wait_for_exit(1), 0);
}

class InstallWithConflict : public Install {
  protected:
    InstallWithConflict() {
        AARDVARKS.write_to(installed.path());
        index_fonts(installed.path());
        for (const BitmapFont& font : {ABYSSINIA, ACROPOLIS}) font.write_to(source.path());
        // Makes the file differ from the installed font.
        std::ofstream(AARDVARKS.write_to(source.path()), std::ios::app) << "new";
        list_fonts_of(installed.path());
    }
    void install_all_three() {
        open_on_source();
        select_lines(2);
        ASSERT_TRUE(install());
        ASSERT_TRUE(conflict_is_shown());
        EXPECT_TRUE(is_installed(ABYSSINIA) && is_installed(ACROPOLIS));
        EXPECT_FALSE(is_installed(AARDVARKS));
    }
    /// Where windows compare conflicts, the decision is asked for at once.
    bool conflict_is_shown() {
        return opens(is_as_ever() ? SUMMARY : RESOLVE, [] {}) != 0;
    }
    [[nodiscard]] bool old_font_is_as_it_was() const {
        return installed.read(AARDVARKS.file_name()) == AARDVARKS.bytes() &&
               index_of(installed.path()).starts_with("1\n");
    }
    void choose_for_the_conflict(const char* button) {
        const Window window = open_resolving();
        ASSERT_NE(window, 0U);
        // As ever Finish does nothing as long as nothing is decided.
        if (is_as_ever()) desktop.click_middle(desktop.part_named(window, "ok_button"));
        desktop.click(desktop.part_named(window, "_conflicts_list"), 60, 12);
        desktop.click_middle(desktop.part_named(window, button));
        desktop.picture(std::string("resolve-install-") + button);
        ASSERT_TRUE(finish_resolving());
        ASSERT_TRUE(hint_comes_and_goes());
    }
    TempDir installed;
};

TEST_F(InstallWithConflict, KeepsTheOldFont) {
    install_all_three();
    desktop.picture("summary-install");
    choose_for_the_conflict("keep_button");
    EXPECT_TRUE(old_font_is_as_it_was());
    EXPECT_FALSE(is_installed(AARDVARKS));
}

TEST_F(InstallWithConflict, PutsTheNewFontInTheOldOnesPlace) {
    install_all_three();
    choose_for_the_conflict("not_keep_button");
    EXPECT_TRUE(arrives(AARDVARKS));
    EXPECT_EQ(TempDir::read_bytes(default_destination() + AARDVARKS.file_name()), AARDVARKS.bytes() + "new");
    EXPECT_FALSE(installed.exists(AARDVARKS.file_name()));
    EXPECT_TRUE(index_of(installed.path()).starts_with("0\n"));
    EXPECT_TRUE(index_of(default_destination()).starts_with("3\n"));
}

TEST_F(InstallWithConflict, EveryWayOutOfTheSummaryLeavesTheOldFont) {
    install_all_three();
    for (const Leaving way : WAYS_OF_LEAVING) {
        SCOPED_TRACE(static_cast<int>(way));
        ASSERT_TRUE(comes_to_summary());
        ASSERT_TRUE(leave_window(SUMMARY, way, "ok_button"));
        ASSERT_TRUE(hint_comes_and_goes());
        EXPECT_TRUE(old_font_is_as_it_was());
        if (way == Leaving::CLOSE_BOX) break;
        open_dialog();
        ASSERT_TRUE(sample_of_line(0));
        ASSERT_TRUE(install());
        ASSERT_TRUE(conflict_is_shown()) << "it is a conflict still";
    }
    EXPECT_FALSE(is_installed(AARDVARKS));
}

TEST_F(InstallWithConflict, EveryWayOutOfResolvingLeadsBackToTheSummary) {
    install_all_three();
    for (const Leaving way : WAYS_OF_LEAVING) {
        SCOPED_TRACE(static_cast<int>(way));
        const Window window = open_resolving();
        ASSERT_NE(window, 0U);
        desktop.click(desktop.part_named(window, "_conflicts_list"), 60, 12);
        desktop.click_middle(desktop.part_named(window, "not_keep_button"));
        ASSERT_TRUE(leave_window(RESOLVE, way, "cancel_button"));
        ASSERT_NE(opens(SUMMARY, [] {}), 0U);
        EXPECT_TRUE(old_font_is_as_it_was());
    }
    EXPECT_FALSE(is_installed(AARDVARKS));
    ASSERT_TRUE(press(SUMMARY, "ok_button"));
    EXPECT_TRUE(hint_comes_and_goes());
}

TEST_F(Install, EveryWayOutOfTheChooserListsNothing) {
    AARDVARKS.write_to(source.path());
    start();
    open_dialog();
    for (const Leaving way : WAYS_OF_LEAVING) {
        SCOPED_TRACE(static_cast<int>(way));
        const DirectoryChooser chooser(desktop, DirectoryChooser::SOURCE_TITLE, dialog->source_button);
        ASSERT_TRUE(chooser.is_there());
        chooser.select(source.path());
        desktop.picture("directory-chooser");
        if (way == Leaving::BUTTON) {
            chooser.press_cancel();
            EXPECT_TRUE(desktop.disappears(DirectoryChooser::SOURCE_TITLE));
        } else {
            EXPECT_TRUE(leave_window(DirectoryChooser::SOURCE_TITLE, way, nullptr));
        }
        dialog->click_line(0);
    }
    EXPECT_FALSE(previews(STAGING));
    EXPECT_FALSE(dialog->sample_is_drawn());
    ASSERT_TRUE(dialog->list_fonts_of(source.path()));
    EXPECT_TRUE(sample_of_line(0)) << "the next choice is taken";
}

TEST_F(Install, EveryWayOutOfTheDialogInstallsNothing) {
    AARDVARKS.write_to(source.path());
    open_on_source();
    for (const Leaving way : WAYS_OF_LEAVING) {
        SCOPED_TRACE(static_cast<int>(way));
        ASSERT_TRUE(sample_of_line(0)) << "the source is kept for the next opening";
        ASSERT_TRUE(leave_window(InstallDialog::TITLE, way, "_cancel_button"));
        open_dialog();
    }
    EXPECT_FALSE(std::filesystem::exists(default_destination()));
}

TEST_F(Install, AddsSizesToAFaceThatIsThere) {
    const TempDir installed;
    BitmapFont{"Aardvarks", 10}.write_to(installed.path());
    index_fonts(installed.path());
    list_fonts_of(installed.path());
    const BitmapFont medium{"Aardvarks", 14};
    AARDVARKS.write_to(source.path());
    medium.write_to(source.path());
    open_on_source();
    select_lines(0);
    ASSERT_TRUE(install());
    ASSERT_TRUE(arrives(AARDVARKS) && arrives(medium));
    ASSERT_TRUE(hint_comes_and_goes());
    EXPECT_FALSE(desktop.is_visible(SUMMARY));
    EXPECT_TRUE(wait_until([&] { return index_of(default_destination()).starts_with("2\n"); }));
    EXPECT_TRUE(index_of(installed.path()).starts_with("1\n"));
    if (is_root()) return;
    // The new sizes belong to the same face: the line shows the largest, and the menu has the others above
    // it.
    ASSERT_TRUE(main_sample_of_line(0));
    const auto large = desktop.settled_pixels(main->sample());
    EXPECT_TRUE(follows([&] { return desktop.settled_pixels(main->sample()) != large; },
                        [&] { main->choose_above(main->size_menu, 1); }));
}

TEST_F(Install, ASourceThatVanishesLeavesTheDestinationEmpty) {
    AARDVARKS.write_to(source.file("gone"));
    ABYSSINIA.write_to(source.file("gone"));
    start();
    open_dialog();
    ASSERT_TRUE(dialog->list_fonts_of(source.file("gone")));
    select_lines(1);
    std::filesystem::remove_all(source.file("gone"));
    ASSERT_TRUE(install());
    ASSERT_TRUE(wait_until([&] { return std::filesystem::exists(default_destination()); }));
    ASSERT_TRUE(is_skipped());
    ASSERT_TRUE(reasons_come_and_go());
    ASSERT_TRUE(hint_comes_and_goes());
    // The menu entry is sensitive again when the work is done.
    open_dialog();
    EXPECT_FALSE(is_installed(AARDVARKS) || is_installed(ABYSSINIA));
    EXPECT_TRUE(lists_no_font(default_destination()));
    EXPECT_EQ(leave(), 0);
}

TEST_F(Install, AFullDiskGetsNoPartOfAFont) {
    AARDVARKS.write_to(source.path());
    const SmallDisk disk;
    ::chmod(disk.path().c_str(), 0755);
    open_on_source();
    select_lines(0);
    ASSERT_TRUE(dialog->install_to(disk.path()));
    disk.leave_blocks(1);
    ASSERT_TRUE(install());
    ASSERT_TRUE(reasons_come_and_go());
    ASSERT_TRUE(hint_comes_and_goes());
    open_dialog();
    desktop.picture("full-disk");
    EXPECT_EQ(disk.entries(), disk.exists("fonts.dir") ? 1 : 0);
    EXPECT_TRUE(lists_no_font(disk.path()));
    EXPECT_NE(program->errors(), "");
    EXPECT_EQ(leave(), 0);
}

// This also applies to the superuser, and write permission for the group makes no difference.
TEST_F(Install, SomeoneElsesDirectoryIsRefused) {
    AARDVARKS.write_to(source.path());
    const TempDir foreign;
    ::chmod(foreign.c_str(), 0775);
    ASSERT_TRUE(!is_root() || ::chown(foreign.c_str(), 1000, 1000) == 0);
    const std::string destination = is_root() ? foreign.path() : "/usr/vantor/lib/";
    open_on_source();
    select_lines(0);
    ASSERT_TRUE(dialog->install_to(destination));
    EXPECT_FALSE(dialog->has_message());
    EXPECT_TRUE(follows([&] { return dialog->has_message(); },
                        [&] { desktop.click_middle(dialog->install_button); }));
    desktop.picture("not-writeable");
    EXPECT_TRUE(desktop.is_visible(InstallDialog::TITLE));
    EXPECT_FALSE(std::filesystem::exists(destination + AARDVARKS.file_name()));
}

// A file lies where the directory would have to be made.
TEST_F(Install, ADestinationThatCannotBeMadeIsRefused) {
    AARDVARKS.write_to(source.path());
    open_on_source();
    select_lines(0);
    const std::string path = default_destination();
    std::ofstream(path.substr(0, path.size() - 1)) << "a file";
    EXPECT_TRUE(follows([&] { return dialog->has_message(); },
                        [&] { desktop.click_middle(dialog->install_button); }));
    EXPECT_TRUE(desktop.is_visible(InstallDialog::TITLE));
}

TEST_F(Install, ManyFontsLeaveTheWindowsAlive) {
    constexpr int MANY = 2000;
    for (int i = 0; i < MANY; ++i) BitmapFont{"Aards" + std::to_string(MANY + i), 8}.write_to(source.path());
    open_on_source();
    ASSERT_TRUE(wait_until([&] { return previews(STAGING); }));
    ASSERT_TRUE(sample_of_line(0));
    desktop.key("Control_L", "slash");
    ASSERT_TRUE(install());
    const Window progress = opens(PROGRESS, [] {});
    ASSERT_NE(progress, 0U);
    const auto shown = desktop.pixels(desktop.place_of(progress));
    EXPECT_TRUE(wait_until([&] { return desktop.pixels(desktop.place_of(progress)) != shown; }))
        << "it counts";
    desktop.picture("progress-install");
    // The progress dialog stands before the rest of it.
    Rectangle beginning = main->sample();
    beginning.width = desktop.place_of(progress).x - beginning.x - 20;
    EXPECT_LT(desktop.ink(beginning), 100);
    {
        const Hurry during_the_work(desktop);
        EXPECT_TRUE(follows([&] { return desktop.ink(beginning) > 100; }, [&] { main->click_line(0); }))
            << "the main window answers";
    }
    EXPECT_TRUE(desktop.is_visible(PROGRESS)) << "meanwhile";
    EXPECT_TRUE(wait_until([&] { return !desktop.is_visible(PROGRESS); }, 5 * PATIENCE));
    EXPECT_TRUE(hint_comes_and_goes());
    EXPECT_TRUE(index_of(default_destination()).starts_with(std::to_string(MANY) + '\n'));
}

// In a multi-byte locale the windows use other fonts.
TEST_F(InstallWithConflict, WorksInAUtf8Locale) {
    open_on_source({{"LC_ALL", "C.UTF-8"}});
    select_lines(0);
    desktop.picture("install-preview-utf8");
    dialog->click_line(2, "Shift_L");
    ASSERT_TRUE(install());
    ASSERT_TRUE(conflict_is_shown());
    desktop.picture("summary-install-utf8");
    EXPECT_TRUE(is_installed(ABYSSINIA) && is_installed(ACROPOLIS));
    choose_for_the_conflict("not_keep_button");
    EXPECT_TRUE(arrives(AARDVARKS));
}

}  // namespace
