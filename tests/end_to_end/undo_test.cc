// SPDX-License-Identifier: MIT
//
// Deleted and replaced fonts come back, by mouse and keyboard, in two languages.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>

#include "end_to_end/bitmap_fonts.h"
#include "end_to_end/program_test.h"
#include "end_to_end/waiting.h"

#include "end_to_end/main_window.h"

namespace {

using namespace gw::e2e;
using gw::test::TempDir;

// Their lines come before those of all staged fonts, in this order.
const BitmapFont AARDVARKS{"Aardvarks"};
const BitmapFont ABYSSINIA{"Abyssinia"};

/// What a user of this locale sees.
struct Words {
    const char* locale;
    const char* warning;
    const char* problem;
    const char* not_brought_back;
    const char* deleted_fonts;
    const char* menu_keys[2];  ///< of that window
};

void PrintTo(const Words& words, std::ostream* out) {
    *out << words.locale;
}

constexpr Words ENGLISH = {"C",
                           "Glyph Warden - Deletion Confirmation",
                           "Glyph Warden - Font Not Done",
                           "Glyph Warden - Not Brought Back",
                           "Glyph Warden - Deleted Fonts",
                           {"t", "d"}};
constexpr Words GERMAN = {"de_DE.UTF-8",
                          "Glyph Warden - L\xc3\xb6schen best\xc3\xa4tigen",
                          "Glyph Warden - Schrift nicht bearbeitet",
                          "Glyph Warden - Nicht zur\xc3\xbc"
                          "ckgeholt",
                          "Glyph Warden - Gel\xc3\xb6schte Schriften",
                          {"w", "g"}};

class UndoTest : public ProgramTest, public testing::WithParamInterface<Words> {
  protected:
    void SetUp() override {
        if (is_as_ever()) GTEST_SKIP() << "there is no way back";
        for (const BitmapFont& font : {AARDVARKS, ABYSSINIA}) font.write_to(mine.path());
        index_fonts(mine.path());
        list_fonts_of(mine.path());
        start({{"LANG", GetParam().locale}});
        desktop.set_font_path({mine.path(), "built-ins"});
        desktop.scroll_to_start(main->list_scroll_bar);
    }
    /// Selects these lines of the list and presses Delete; 0 when the question does not come.
    Window ask(std::initializer_list<int> lines) {
        return opens(GetParam().warning, [&] {
            const char* modifier = nullptr;
            for (const int line : lines) {
                main->click_line(line, modifier);
                modifier = "Control_L";
            }
            desktop.click_middle(main->delete_button);
        });
    }
    void delete_lines(std::initializer_list<int> lines) {
        ASSERT_NE(ask(lines), 0U);
        desktop.picture(std::string("undo-question-") + GetParam().locale);
        desktop.key("Left");
        desktop.key("space");
        ASSERT_TRUE(desktop.disappears(GetParam().warning));
        ASSERT_TRUE(wait_until([&] { return undo_button() != 0; }));
        desktop.settle();
    }
    [[nodiscard]] Window undo_button() const { return desktop.part_named(main->window, "_undo_button"); }
    [[nodiscard]] bool has(const BitmapFont& font) const {
        return mine.exists(font.file_name()) &&
               mine.read("fonts.dir").find(font.file_name()) != std::string::npos;
    }
    TempDir mine;
};

TEST_P(UndoTest, TheButtonBringsFontsBackToDiskListAndServer) {
    const std::string bytes = mine.read(AARDVARKS.file_name());
    delete_lines({0, 1});
    EXPECT_FALSE(mine.exists(AARDVARKS.file_name()));
    EXPECT_FALSE(mine.exists(ABYSSINIA.file_name()));
    EXPECT_TRUE(wait_until([&] { return !desktop.has_font(AARDVARKS.xlfd()); }));
    desktop.picture(std::string("undo-offered-") + GetParam().locale);

    desktop.click_middle(undo_button());
    EXPECT_TRUE(wait_until([&] { return has(AARDVARKS) && has(ABYSSINIA); }));
    EXPECT_EQ(mine.read(AARDVARKS.file_name()), bytes);
    EXPECT_TRUE(wait_until([&] { return desktop.has_font(AARDVARKS.xlfd()); }));
    EXPECT_TRUE(wait_until([&] { return undo_button() == 0; })) << "there is nothing more to undo";
    desktop.picture(std::string("undo-done-") + GetParam().locale);
    EXPECT_TRUE(follows([&] { return main->sample_is_drawn(); }, [&] { main->click_line(0); }));
    desktop.ask_to_close(main->window);
    EXPECT_EQ(program->wait_for_exit(), 0);
    EXPECT_EQ(program->errors(), "");
}

TEST_P(UndoTest, TheKeyboardReachesTheButton) {
    delete_lines({0});
    // From the button that asked before, which is still there when the next question is not answered.
    ASSERT_NE(ask({0}), 0U);
    desktop.key("Escape");
    ASSERT_TRUE(desktop.disappears(GetParam().warning));
    desktop.key("Tab");
    desktop.key("space");
    EXPECT_TRUE(wait_until([&] { return has(AARDVARKS); }));
}

TEST_P(UndoTest, WhatIsInTheWayIsToldInAWindow) {
    delete_lines({0, 1});
    mine.write(AARDVARKS.file_name(), "somebody else's");
    ASSERT_NE(opens(GetParam().problem, [&] { desktop.click_middle(undo_button()); }), 0U);
    desktop.picture(std::string("undo-problem-") + GetParam().locale);
    // That is Skip.
    EXPECT_NE(opens(GetParam().not_brought_back, [&] { desktop.key("Return"); }), 0U);
    desktop.picture(std::string("undo-in-the-way-") + GetParam().locale);
    EXPECT_TRUE(has(ABYSSINIA));
    EXPECT_EQ(mine.read(AARDVARKS.file_name()), "somebody else's");
    EXPECT_TRUE(leave_window(GetParam().not_brought_back, Leaving::ESCAPE, nullptr));
}

// --- the window ----------------------------------------------------------------

class DeletedFontsTest : public UndoTest {
  protected:
    void open() {
        window = open_by_menu(GetParam().menu_keys[0], GetParam().menu_keys[1], GetParam().deleted_fonts);
        ASSERT_NE(window, 0U);
    }
    void picture(const std::string& of) { desktop.picture("deleted-fonts-" + of + '-' + GetParam().locale); }
    [[nodiscard]] Window part(const char* name) const { return desktop.part_named(window, name); }
    void click_line(int line, const char* modifier = nullptr) {
        constexpr int LINE_HEIGHT = 15;
        desktop.click(part("deleted_list"), 60, 10 + LINE_HEIGHT * line, modifier);
    }
    Window window = 0;
};

TEST_P(DeletedFontsTest, TheMouseBringsAFontBack) {
    delete_lines({0});
    // Times are kept in seconds.
    const std::time_t first = std::time(nullptr);
    ASSERT_TRUE(wait_until([&] { return std::time(nullptr) > first; }));
    delete_lines({0});
    open();
    picture("listed");
    // The newest comes first.
    click_line(0);
    picture("selected");
    desktop.click_middle(part("bring_back_button"));
    EXPECT_TRUE(wait_until([&] { return has(ABYSSINIA); }));
    EXPECT_TRUE(wait_until([&] { return desktop.has_font(ABYSSINIA.xlfd()); }));
    EXPECT_FALSE(mine.exists(AARDVARKS.file_name()));
    picture("brought-back");
    EXPECT_TRUE(leave_window(GetParam().deleted_fonts, Leaving::BUTTON, "close_button"));
}

TEST_P(DeletedFontsTest, TheKeyboardBringsAFontBack) {
    delete_lines({0});
    open();
    desktop.key("space");
    desktop.key("Return");
    EXPECT_TRUE(wait_until([&] { return has(AARDVARKS); }));
    EXPECT_TRUE(leave_window(GetParam().deleted_fonts, Leaving::ESCAPE, nullptr));
}

TEST_P(DeletedFontsTest, ItIsEmptiedAfterAQuestion) {
    delete_lines({0, 1});
    open();
    desktop.click_middle(part("empty_button"));
    const auto asked = [&] { return desktop.windows_titled(GetParam().deleted_fonts).size() == 2; };
    ASSERT_TRUE(wait_until(asked));
    picture("question");
    // Return would mean No.
    desktop.key("Return");
    ASSERT_TRUE(wait_until([&] { return !asked(); }));
    const std::string trash = mine.file(".glyphward/trash");
    EXPECT_FALSE(std::filesystem::is_empty(trash));
    desktop.click_middle(part("empty_button"));
    ASSERT_TRUE(wait_until(asked));
    desktop.key("Left");
    desktop.key("space");
    EXPECT_TRUE(wait_until([&] { return std::filesystem::is_empty(trash); }));
    picture("empty");
}

INSTANTIATE_TEST_SUITE_P(Languages, DeletedFontsTest, testing::Values(ENGLISH, GERMAN));
INSTANTIATE_TEST_SUITE_P(Languages, UndoTest, testing::Values(ENGLISH, GERMAN));

}  // namespace
