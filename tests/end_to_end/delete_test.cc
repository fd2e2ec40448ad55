// SPDX-License-Identifier: MIT
//
// Deleting fonts by mouse and keyboard.
#include "end_to_end/program_test.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <utility>

#include "end_to_end/bitmap_fonts.h"
#include "end_to_end/outline_font.h"
#include "end_to_end/waiting.h"
#include "store/directory_change.h"
#include "support/strict_upr.h"

#include "end_to_end/main_window.h"

namespace {

using namespace gw::e2e;
using gw::test::TempDir;

constexpr const char* WARNING = "Glyph Warden - Deletion Confirmation";
constexpr const char* ATTRIBUTES = "Glyph Warden - Font Attributes";
constexpr const char* PROGRESS = "Font Deletion Progress Dialog";
constexpr const char* SYSTEM_DIR = "/usr/vantor/lib/X11/fonts/own/";
// Their lines come before those of all staged fonts, in this order.
const BitmapFont AARDVARKS{"Aardvarks"};
const BitmapFont ABYSSINIA{"Abyssinia"};
const BitmapFont ACROPOLIS{"Acropolis"};

class Delete : public ProgramTest {
  protected:
    Delete() {
        AARDVARKS.write_to(mine.path());
        index_fonts(mine.path());
        list_fonts_of(mine.path());
    }
    /// Calls `select` and presses Delete until the question is on the screen.
    Window ask(const std::function<void()>& select) {
        return opens(WARNING, [&] {
            select();
            desktop.click_middle(main->delete_button);
        });
    }
    /// Return alone would mean No.
    bool confirm() {
        desktop.key("Left");
        desktop.key("space");
        return desktop.disappears(WARNING);
    }
    bool lists(const std::string& dir, const char* count) {
        return wait_until([&] { return TempDir::read_bytes(dir + "fonts.dir").starts_with(count); });
    }
    TempDir mine;
};

TEST_F(Delete, DeletesTheSelectedFont) {
    start();
    ASSERT_NE(ask([&] { main->click_line(0); }), 0U);
    desktop.picture("delete-warning");
    ASSERT_TRUE(confirm());
    EXPECT_TRUE(lists(mine.path(), "0\n"));
    // The file follows the index.
    EXPECT_TRUE(wait_until([&] { return !mine.exists(AARDVARKS.file_name()); }));
    // The next font is on that line now.
    EXPECT_TRUE(follows([&] { return main->sample_is_drawn(); }, [&] { main->click_line(0); }));
    desktop.picture("deleted");
    EXPECT_EQ(leave(), 0);
    EXPECT_EQ(program->errors(), "");
}

TEST_F(Delete, TheResourceFileNoLongerNamesADeletedFont) {
    const OutlineFont deleted{"Aabenraa"};
    const OutlineFont kept{"Aachen"};
    const TempDir outlines;
    for (const OutlineFont& font : {deleted, kept}) font.write_to(outlines.path());
    outlines.write("fonts.dir", "2\n" + deleted.index_line() + kept.index_line());
    outlines.write("glyphwd.upr", "PS-Resources-1.0\nFontOutline\n.\nFontOutline\n" +
                                      deleted.postscript_name() + '=' + deleted.file_name() + "\n.\n");
    list_fonts_of(outlines.path());
    start();
    ASSERT_NE(ask([&] { main->click_line(0); }), 0U);
    ASSERT_TRUE(confirm());
    EXPECT_TRUE(lists(outlines.path(), "1\n"));
    const auto files = [&](const char* section) {
        return gw::test::StrictUpr(outlines.read("glyphwd.upr")).files(section);
    };
    ASSERT_TRUE(wait_until([&] {
        return outlines.exists("glyphwd.upr") &&
               outlines.read("glyphwd.upr").find(deleted.postscript_name()) == std::string::npos;
    }));
    using Files = std::map<std::string, std::string>;
    EXPECT_EQ(files("FontOutline"), (Files{{kept.postscript_name(), outlines.file(kept.file_name())}}));
    EXPECT_EQ(files("FontAFM"), (Files{{kept.postscript_name(), outlines.file(kept.metrics_file_name())}}));
    EXPECT_EQ(leave(), 0);
    EXPECT_EQ(program->errors(), "");
}

TEST_F(Delete, ReturnAndEveryWayOutOfTheWarningDeleteNothing) {
    start();
    ASSERT_NE(ask([&] { main->click_line(0); }), 0U);
    desktop.key("Return");
    ASSERT_TRUE(desktop.disappears(WARNING));
    for (const Leaving way : {Leaving::ESCAPE, Leaving::CLOSE_BOX}) {
        SCOPED_TRACE(static_cast<int>(way));
        // The selection has stayed, so nothing needs to be selected again.
        ASSERT_NE(ask([] {}), 0U);
        ASSERT_TRUE(leave_window(WARNING, way, nullptr));
    }
    EXPECT_EQ(leave(), 0);
    EXPECT_TRUE(mine.exists(AARDVARKS.file_name()));
    EXPECT_TRUE(lists(mine.path(), "1\n"));
}

TEST_F(Delete, TheMenuAsksToo) {
    start();
    ASSERT_NE(opens(WARNING,
                    [&] {
                        main->click_line(0);
                        main->choose("f", "d");
                    }),
              0U);
    ASSERT_TRUE(confirm());
    EXPECT_TRUE(lists(mine.path(), "0\n"));
}

// Fonts before and behind many others, in directories that another program is changing: the program waits for
// each, and so its window is there to be looked at, however fast the many are deleted.
class DeleteMany : public Delete {
  protected:
    DeleteMany() {
        for (int i = 0; i < MANY; ++i)
            BitmapFont{"Aards" + std::to_string(1000 + i), 8}.write_to(mine.path());
        index_fonts(mine.path());
        FIRST.write_to(before.path());
        ABYSSINIA.write_to(behind.path());
        for (const TempDir* dir : {&before, &behind}) {
            index_fonts(dir->path());
            list_fonts_of(dir->path());
        }
    }
    /// Begins a change that lasts until it is reset. The windows of ever are blocked while they wait, but
    /// count slowly enough to be seen.
    static std::unique_ptr<gw::DirectoryChange> hold(const TempDir& dir) {
        return is_as_ever() ? nullptr : std::move(*gw::DirectoryChange::begin(dir.path()));
    }
    static constexpr int MANY = 600;
    const BitmapFont FIRST{"Aaardwolf"};
    TempDir before;
    TempDir behind;
};

TEST_F(DeleteMany, AreCounted) {
    start();
    // Selects everything from here to the last alias. Only the user's own fonts may be deleted.
    ASSERT_NE(ask([&] {
                  desktop.scroll_to_start(main->list_scroll_bar);
                  main->click_line(0);
                  desktop.scroll_to_start(main->list_scroll_bar);
                  main->click_last_line("Shift_L");
              }),
              0U);
    auto first = hold(before);
    auto last = hold(behind);
    ASSERT_TRUE(confirm());
    const Window progress = opens(PROGRESS, [] {});
    ASSERT_NE(progress, 0U);
    const Rectangle place = desktop.place_of(progress);
    const auto shown = desktop.pixels(place);
    first.reset();
    EXPECT_TRUE(wait_until([&] { return desktop.pixels(place) != shown; })) << "it counts";
    desktop.picture("progress-delete");
    last.reset();
    EXPECT_TRUE(wait_until([&] { return !desktop.is_visible(PROGRESS); }));
    ASSERT_TRUE(comes_to_summary());
    desktop.picture("summary-delete-many");
    for (const TempDir* dir : {&before, &mine, &behind}) EXPECT_TRUE(lists(dir->path(), "0\n"));
    ASSERT_TRUE(press(SUMMARY, "ok_button"));
    EXPECT_TRUE(hint_comes_and_goes());
}

// A font whose file is read-only, a system font, an alias, and a font that can be deleted. For an ordinary
// user, system fonts are read-only.
class DeleteWithConflicts : public Delete {
  protected:
    DeleteWithConflicts() {
        ::chmod(ABYSSINIA.write_to(closed.path()).c_str(), 0444);
        index_fonts(closed.path());
        list_fonts_of(closed.path());
        if (!is_root()) return;
        ACROPOLIS.write_to(SYSTEM_DIR);
        index_fonts(SYSTEM_DIR);
        list_fonts_of(SYSTEM_DIR);
    }
    ~DeleteWithConflicts() override {
        if (is_root()) std::filesystem::remove_all(SYSTEM_DIR);
    }
    void delete_the_four() {
        start();
        ASSERT_NE(ask([&] {
                      desktop.scroll_to_start(main->list_scroll_bar);
                      main->click_line(0);
                      main->click_line(1, "Control_L");
                      main->click_line(2, "Control_L");
                      main->click_last_line("Control_L");
                  }),
                  0U);
        ASSERT_TRUE(confirm());
        ASSERT_TRUE(wait_until([&] { return desktop.is_visible(RESOLVE) || desktop.is_visible(SUMMARY); }));
        EXPECT_TRUE(lists(mine.path(), "0\n"));
        EXPECT_TRUE(others_are_there());
    }
    [[nodiscard]] bool others_are_there() const {
        return closed.exists(ABYSSINIA.file_name()) && (!is_root() || system_font_is_there());
    }
    [[nodiscard]] static bool system_font_is_there() {
        return std::filesystem::exists(SYSTEM_DIR + ACROPOLIS.file_name());
    }
    /// Tries to choose Delete for the conflict on that line.
    void choose_delete(Window resolve, int line) {
        desktop.click(desktop.part_named(resolve, "_conflicts_list"), 60, 12 + list_line_height() * line);
        desktop.click_middle(desktop.part_named(resolve, "not_keep_button"));
    }
    TempDir closed;
};

TEST_F(DeleteWithConflicts, ReadOnlyFontsAndAliasesAreNotToBeForced) {
    delete_the_four();
    desktop.picture("summary-delete");
    const Window resolve = open_resolving();
    ASSERT_NE(resolve, 0U);
    choose_delete(resolve, is_as_ever() || !is_root() ? 0 : 2);
    desktop.picture("resolve-delete-read-only");
    choose_delete(resolve, is_as_ever() ? 2 : 3);
    desktop.picture("resolve-delete-alias");
    if (is_root()) {
        // Where windows compare conflicts, what can be decided comes first, and Finish works at once.
        if (is_as_ever()) desktop.click_middle(desktop.part_named(resolve, "ok_button"));
        choose_delete(resolve, is_as_ever() ? 1 : 0);
        desktop.picture("resolve-delete-system");
    }
    ASSERT_TRUE(finish_resolving());
    EXPECT_TRUE(hint_comes_and_goes());
    EXPECT_TRUE(closed.exists(ABYSSINIA.file_name()));
    EXPECT_FALSE(is_root() && system_font_is_there());
    EXPECT_EQ(leave(), 0);
    EXPECT_EQ(program->errors(), "");
}

TEST_F(DeleteWithConflicts, EveryWayOutOfResolvingLeadsBackToTheSummary) {
    delete_the_four();
    for (const Leaving way : WAYS_OF_LEAVING) {
        SCOPED_TRACE(static_cast<int>(way));
        const Window resolve = open_resolving();
        ASSERT_NE(resolve, 0U);
        choose_delete(resolve, is_as_ever() ? 1 : 0);
        ASSERT_TRUE(leave_window(RESOLVE, way, "cancel_button"));
        ASSERT_NE(opens(SUMMARY, [] {}), 0U);
    }
    EXPECT_TRUE(others_are_there());
    ASSERT_TRUE(press(SUMMARY, "ok_button"));
    EXPECT_TRUE(hint_comes_and_goes());
}

// A stand-in for dpkg-query says that the font belongs to a package.
TEST_F(Delete, AFontOfAPackageIsKeptUntilTheSuperuserInsists) {
    if (!is_root()) GTEST_SKIP() << "to an ordinary user the fonts of packages are read-only";
    const std::string command =
        home.write("bin/dpkg-query", "#!/bin/sh\nshift 2\nfor f; do echo \"xfonts-e2e: $f\"; done\n");
    std::filesystem::permissions(command, std::filesystem::perms(0755));
    start({{"PATH", home.file("bin:") + std::getenv("PATH")}});
    desktop.scroll_to_start(main->list_scroll_bar);
    main->click_line(0);
    ASSERT_NE(open_by_menu("f", "a", ATTRIBUTES), 0U);
    desktop.picture("attributes-package");
    ASSERT_TRUE(press(ATTRIBUTES, "close_button"));
    ASSERT_NE(ask([&] { main->click_line(0); }), 0U);
    ASSERT_TRUE(confirm());
    const Window resolve = open_resolving();
    ASSERT_NE(resolve, 0U);
    EXPECT_TRUE(mine.exists(AARDVARKS.file_name()));
    desktop.click(desktop.part_named(resolve, "_conflicts_list"), 60, 12);
    desktop.click_middle(desktop.part_named(resolve, "not_keep_button"));
    desktop.picture("resolve-delete-package");
    ASSERT_TRUE(finish_resolving());
    EXPECT_TRUE(hint_comes_and_goes());
    EXPECT_EQ(leave(), 0);
    EXPECT_TRUE(lists(mine.path(), "0\n"));
}

class DeleteLeavingTheSummary : public DeleteWithConflicts, public testing::WithParamInterface<Leaving> {};

TEST_P(DeleteLeavingTheSummary, LeavesTheFontsAsTheyAre) {
    delete_the_four();
    ASSERT_TRUE(comes_to_summary());
    ASSERT_TRUE(leave_window(SUMMARY, GetParam(), "ok_button"));
    EXPECT_TRUE(hint_comes_and_goes());
    EXPECT_EQ(leave(), 0);
    EXPECT_TRUE(others_are_there());
}

INSTANTIATE_TEST_SUITE_P(Ways, DeleteLeavingTheSummary, testing::ValuesIn(WAYS_OF_LEAVING));

}  // namespace
