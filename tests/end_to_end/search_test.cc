// SPDX-License-Identifier: MIT
//
// Searching the list of fonts by the keyboard, and deleting what was found.
#include "end_to_end/program_test.h"

#include <string>

#include "end_to_end/bitmap_fonts.h"
#include "end_to_end/waiting.h"

#include "end_to_end/main_window.h"

namespace {

using namespace gw::e2e;
using gw::test::TempDir;

constexpr const char* WARNING = "Glyph Warden - Deletion Confirmation";
const BitmapFont AARDVARKS{"Aardvarks"};
const BitmapFont ABYSSINIA{"Abyssinia"};
const BitmapFont ACROPOLIS{"Acropolis"};

class Search : public ProgramTest {
  protected:
    Search() {
        for (const BitmapFont& font : {AARDVARKS, ABYSSINIA, ACROPOLIS}) font.write_to(mine.path());
        index_fonts(mine.path());
        list_fonts_of(mine.path());
    }
    void SetUp() override {
        ProgramTest::SetUp();
        if (is_as_ever()) GTEST_SKIP() << "there is no search";
    }
    /// What is on the list, as far as it is seen.
    int ink_of_list() {
        constexpr int BORDER = 5;
        const Rectangle list = desktop.place_of(main->list);
        return desktop.ink(
            {list.x + BORDER, list.y + BORDER, list.width - 2 * BORDER, list.height - 2 * BORDER});
    }

    TempDir mine;
};

TEST_F(Search, WhatIsFoundIsWhatIsDeleted) {
    start();
    desktop.park_pointer();
    const int ink_of_all = ink_of_list();
    desktop.type("acropolis 24");
    ASSERT_TRUE(wait_until([&] { return ink_of_list() < ink_of_all / 4; })) << "one row of twelve is left";
    desktop.picture("search-found");
    ASSERT_NE(opens(WARNING,
                    [&] {
                        main->click_line(0);
                        desktop.click_middle(main->delete_button);
                    }),
              0U);
    desktop.key("Left");
    desktop.key("space");
    ASSERT_TRUE(desktop.disappears(WARNING));
    EXPECT_TRUE(wait_until([&] { return !mine.exists(ACROPOLIS.file_name()); }));
    EXPECT_TRUE(mine.exists(AARDVARKS.file_name()));
    EXPECT_TRUE(mine.exists(ABYSSINIA.file_name()));
    EXPECT_EQ(leave(), 0);
}

TEST_F(Search, EscapeShowsAllAgain) {
    start();
    desktop.park_pointer();
    const int ink_of_all = ink_of_list();
    desktop.type("no font has this");
    ASSERT_TRUE(wait_until([&] { return ink_of_list() < ink_of_all / 4; }));
    desktop.picture("search-nothing");
    desktop.key("Escape");
    EXPECT_TRUE(wait_until([&] { return ink_of_list() >= ink_of_all / 2; }));
    EXPECT_EQ(leave(), 0);
}

}  // namespace
