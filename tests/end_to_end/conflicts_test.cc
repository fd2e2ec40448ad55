// SPDX-License-Identifier: MIT
//
// Two fonts of one name: decided by mouse and keyboard, in two languages; and a replacement is undone.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>

#include "end_to_end/bitmap_fonts.h"
#include "end_to_end/program_test.h"
#include "end_to_end/waiting.h"

#include "end_to_end/install_dialog.h"
#include "end_to_end/main_window.h"

namespace {

using namespace gw::e2e;
using gw::test::TempDir;

// Their lines come before those of all staged fonts, in this order.
const BitmapFont AARDVARKS{"Aardvarks"};
const BitmapFont ABYSSINIA{"Abyssinia"};
const BitmapFont ACROPOLIS{"Acropolis"};

/// What a user of this locale sees.
struct Words {
    const char* locale;
    const char* install_keys[2];
    InstallDialog::Titles titles;
    const char* resolve;
    const char* summary;
};

void PrintTo(const Words& words, std::ostream* out) {
    *out << words.locale;
}

constexpr Words ENGLISH = {"C", {"f", "i"}, {}, "Glyph Warden - Resolve Conflicts", "Glyph Warden - Summary"};
constexpr Words GERMAN = {"de_DE.UTF-8",
                          {"s", "i"},
                          {"Glyph Warden - Installieren", "Glyph Warden: Schriften auflisten aus"},
                          "Glyph Warden - Konflikte l\xc3\xb6sen",
                          "Glyph Warden - Zusammenfassung"};

class ConflictsTest : public ProgramTest, public testing::WithParamInterface<Words> {
  protected:
    void SetUp() override {
        if (is_as_ever()) GTEST_SKIP() << "the conflicts are decided one by one";
        for (const BitmapFont& font : {AARDVARKS, ABYSSINIA}) {
            font.write_to(mine.path());
            // Makes the file differ from the installed font.
            std::ofstream(font.write_to(source.path()), std::ios::app) << "new";
        }
        ACROPOLIS.write_to(source.path());
        index_fonts(mine.path());
        list_fonts_of(mine.path());
        start({{"LANG", GetParam().locale}});
        desktop.set_font_path({mine.path(), "built-ins"});
    }
    /// Installs all fonts of the source; the window for the decision.
    Window install() {
        const Words& words = GetParam();
        if (open_by_menu(words.install_keys[0], words.install_keys[1], words.titles.window) == 0) return 0;
        const InstallDialog dialog(desktop, words.titles);
        if (!dialog.is_there() || !dialog.list_fonts_of(source.path())) return 0;
        if (!follows([&] { return dialog.sample_is_drawn(); }, [&] { dialog.click_line(0); })) return 0;
        dialog.click_line(2, "Shift_L");
        if (!press(words.titles.window, "_install_button")) return 0;
        const Window window = opens(words.resolve, [] {});
        shows_both_samples(window);
        return window;
    }
    void shows_both_samples(Window window) {
        for (const char* picture : {"old_picture", "new_picture"}) {
            EXPECT_TRUE(wait_until([&] {
                const Window part = desktop.part_named(window, picture);
                return part != 0 && desktop.ink(desktop.place_of(part)) > 100;
            })) << picture;
        }
    }
    void picture(const std::string& of) { desktop.picture("conflicts-" + of + '-' + GetParam().locale); }
    bool close_summary() {
        if (opens(GetParam().summary, [] {}) == 0) return false;
        picture("summary");
        desktop.key("Return");
        return desktop.disappears(GetParam().summary);
    }
    [[nodiscard]] Window undo_button() const { return desktop.part_named(main->window, "_undo_button"); }
    [[nodiscard]] bool is_new(const BitmapFont& font) const {
        return !mine.exists(font.file_name()) &&
               TempDir::read_bytes(default_destination() + font.file_name()) == font.bytes() + "new";
    }
    [[nodiscard]] bool is_old(const BitmapFont& font) const {
        return mine.exists(font.file_name()) && mine.read(font.file_name()) == font.bytes() &&
               mine.read("fonts.dir").find(font.file_name()) != std::string::npos &&
               !std::filesystem::exists(default_destination() + font.file_name());
    }
    TempDir mine;
    TempDir source;
};

TEST_P(ConflictsTest, TheMouseReplacesAllAndTheButtonUndoesIt) {
    const Window window = install();
    ASSERT_NE(window, 0U);
    picture("undecided");
    desktop.click_middle(desktop.part_named(window, "not_keep_all_button"));
    desktop.settle();
    picture("decided");
    ASSERT_TRUE(press(GetParam().resolve, "ok_button"));
    ASSERT_TRUE(close_summary());
    ASSERT_TRUE(GetParam().locale != std::string("C") || hint_comes_and_goes());
    EXPECT_TRUE(is_new(AARDVARKS) && is_new(ABYSSINIA));

    ASSERT_TRUE(wait_until([&] { return undo_button() != 0; }));
    desktop.settle();
    picture("undo-offered");
    desktop.click_middle(undo_button());
    EXPECT_TRUE(wait_until([&] { return is_old(AARDVARKS) && is_old(ABYSSINIA); }));
    EXPECT_TRUE(std::filesystem::exists(default_destination() + ACROPOLIS.file_name()))
        << "nothing was in its place";
    EXPECT_TRUE(wait_until([&] { return undo_button() == 0; }));
    EXPECT_TRUE(wait_until([&] { return desktop.has_font(AARDVARKS.xlfd()); }));
    picture("undone");
    desktop.scroll_to_start(main->list_scroll_bar);
    EXPECT_TRUE(follows([&] { return main->sample_is_drawn(); }, [&] { main->click_line(0); }));
    desktop.ask_to_close(main->window);
    EXPECT_EQ(program->wait_for_exit(), 0);
    EXPECT_EQ(program->errors(), "");
}

TEST_P(ConflictsTest, TheKeyboardDecidesAboutOneAndFinishes) {
    ASSERT_NE(install(), 0U);
    // The first one is selected already. From the list to "Keep Old", and to the next button.
    desktop.key("Tab");
    desktop.key("Right");
    desktop.key("space");
    desktop.settle();
    picture("by-keyboard");
    // On a button Return would press that one.
    desktop.key("Shift_L", "Tab");
    desktop.key("Return");
    ASSERT_TRUE(desktop.disappears(GetParam().resolve));
    ASSERT_TRUE(close_summary());
    EXPECT_TRUE(is_new(AARDVARKS));
    EXPECT_TRUE(is_old(ABYSSINIA)) << "undecided means keep";
}

TEST_P(ConflictsTest, EscapeKeepsAllAndTheSummaryOffersThemAgain) {
    ASSERT_NE(install(), 0U);
    desktop.key("Escape");
    ASSERT_TRUE(desktop.disappears(GetParam().resolve));
    ASSERT_NE(opens(GetParam().summary, [] {}), 0U);
    EXPECT_TRUE(is_old(AARDVARKS) && is_old(ABYSSINIA));
    ASSERT_TRUE(press(GetParam().summary, "resolve_button"));
    const Window window = opens(GetParam().resolve, [] {});
    ASSERT_NE(window, 0U);
    desktop.click_middle(desktop.part_named(window, "not_keep_button"));
    ASSERT_TRUE(press(GetParam().resolve, "ok_button"));
    ASSERT_TRUE(close_summary());
    EXPECT_TRUE(is_new(AARDVARKS));
}

INSTANTIATE_TEST_SUITE_P(Languages, ConflictsTest, testing::Values(ENGLISH, GERMAN));

}  // namespace
