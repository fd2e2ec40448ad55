// SPDX-License-Identifier: MIT
#include "app/program/shown_list.h"

#include <gtest/gtest.h>

#include "app/program/program_objects.h"
#include "widget/widget_test_support.h"

namespace {

/// The lists of the running program: a list of its own would need font files.
class ShownListTest : public testing::Test {
  protected:
    void SetUp() override {
        gw::test::start_program();
        ASSERT_GT(fonts(), 1);
        ASSERT_GT(aliases(), 1);
    }
    static int fonts() { return the_installed_hrn_list.get_count(); }
    static int aliases() { return the_alias_list.get_count(); }
};

TEST_F(ShownListTest, HasTheFontsAndBehindThemTheAliases) {
    const gw::ShownList list(the_installed_hrn_list, the_alias_list);
    EXPECT_EQ(list.count(), fonts() + aliases());
    for (const int position : {1, 2, fonts()}) {
        EXPECT_EQ(list.font_at(position), the_installed_hrn_list.get_elem_at_pos(position)) << position;
        EXPECT_NE(list.font_at(position), nullptr) << position;
        EXPECT_EQ(list.alias_at(position), nullptr) << position;
    }
    for (const int alias : {1, 2, aliases()}) {
        EXPECT_EQ(list.alias_at(fonts() + alias), the_alias_list.get_elem_at_pos(alias)) << alias;
        EXPECT_NE(list.alias_at(fonts() + alias), nullptr) << alias;
        EXPECT_EQ(list.font_at(fonts() + alias), nullptr) << alias;
    }
}

TEST_F(ShownListTest, HasNothingOutsideItsPositions) {
    const gw::ShownList list(the_installed_hrn_list, the_alias_list);
    for (const int position : {-1, 0, list.count() + 1}) {
        EXPECT_EQ(list.font_at(position), nullptr) << position;
        EXPECT_EQ(list.alias_at(position), nullptr) << position;
    }
}

TEST_F(ShownListTest, OnlySoManyPositionsAreForFonts) {
    const gw::ShownList list(the_installed_hrn_list, 1, the_alias_list);
    EXPECT_EQ(list.count(), 1 + aliases());
    EXPECT_EQ(list.font_at(2), nullptr);
    EXPECT_EQ(list.alias_at(2), the_alias_list.get_elem_at_pos(1));
}

TEST_F(ShownListTest, TheLastFontIsNotBeforeTheLastFont) {
    const gw::ShownList list(the_installed_hrn_list, the_alias_list);
    EXPECT_TRUE(list.is_before_last_font(1));
    EXPECT_TRUE(list.is_before_last_font(fonts() - 1));
    EXPECT_FALSE(list.is_before_last_font(fonts()));
    EXPECT_FALSE(list.is_before_last_font(fonts() + 1));
}

TEST_F(ShownListTest, AListWithoutAliasesEndsWithItsFonts) {
    const GW_SORTED_LIST<GWAlias> none(0);
    const gw::ShownList list(the_installed_hrn_list, none);
    EXPECT_EQ(list.count(), fonts());
    EXPECT_EQ(list.alias_at(fonts() + 1), nullptr);
}

// Whoever changes the list says so afterwards.
TEST_F(ShownListTest, TheMainWindowsListGoesByTheCountOfFonts) {
    EXPECT_EQ(gw::installed_entries().count(), fonts() + aliases());
    the_installed_hrn_count = 1;
    EXPECT_EQ(gw::installed_entries().count(), 1 + aliases());
    EXPECT_FALSE(gw::installed_entries().is_before_last_font(1));
    count_installed_fonts();
    EXPECT_EQ(the_installed_hrn_count, fonts());
    EXPECT_EQ(gw::installed_entries().count(), fonts() + aliases());
}

}  // namespace
