// SPDX-License-Identifier: MIT
//
// Names of fonts in windows: where the marks stand.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "app/program/shown_names.h"
#include "app/program/window_policy.h"
#include "fontfiles/font_verdict.h"
#include "modules/source_fonts.h"

namespace {

using testing::ElementsAre;

class ShownNames : public testing::Test {
  protected:
    void SetUp() override { gw::set_window_policy(gw::WindowPolicy(true)); }
    void TearDown() override { gw::set_window_policy(before_); }

  private:
    gw::WindowPolicy before_ = gw::window_policy();
};

TEST_F(ShownNames, LoseTheMarkWithTheBlanksInFrontOfIt) {
    EXPECT_EQ(gw::without_read_only_mark("Alpha [Bitmap]      [Read Only]"), "Alpha [Bitmap]");
    EXPECT_EQ(gw::without_read_only_mark("Alpha [Bitmap]"), "Alpha [Bitmap]");
    EXPECT_EQ(gw::without_read_only_mark("[Read Only]"), "");
    EXPECT_EQ(gw::without_read_only_mark("[Read Only] Alpha"), "[Read Only] Alpha");
}

TEST_F(ShownNames, HaveTheMarksInColumns) {
    const std::string longest = "A Name of Thirty Characters...";
    EXPECT_THAT(gw::names_in_columns({"Alpha      [Read Only]", longest, "Beta [Read Only]", "Gamma"},
                                     {"[Not Served]", "", "", "[Not Served]"}),
                ElementsAre("Alpha                           [Read Only]  [Not Served]", longest,
                            "Beta                            [Read Only]",
                            "Gamma                                        [Not Served]"));
}

TEST_F(ShownNames, OfOneVeryLongNameDoNotMoveTheColumn) {
    const std::string longest(80, 'x');
    EXPECT_THAT(gw::names_in_columns({longest + "   [Read Only]", "Beta [Read Only]"}, {}),
                ElementsAre(longest + "  [Read Only]", "Beta  [Read Only]"));
}

TEST_F(ShownNames, OfASourceHaveTheirMarksInOneColumn) {
    const std::vector<std::string> names = {"Alpha [Bitmap]      [Damaged]",
                                            "Gamma Bold [Bitmap]      [Read Only]",
                                            "a.ttf [TrueType]     [Name Taken]"};
    const std::size_t column = gw::mark_column_for_source(names);
    std::vector<std::string> rows;
    for (const std::string& name : names) rows.push_back(gw::name_for_source(name, column));
    EXPECT_THAT(rows, ElementsAre("Alpha [Bitmap]       [Damaged]", "Gamma Bold [Bitmap]",
                                  "a.ttf [TrueType]     [Name Taken]"));
    EXPECT_EQ(gw::name_for_window(names[0]), "Alpha [Bitmap] [Damaged]");
}

// The windows know the marks by the text that the engine gives them.
TEST_F(ShownNames, AllMarksOfASourceAreTranslated) {
    using Kind = gw::Verdict::Kind;
    std::vector<std::string> marks = {"[No Name]", "[Installed]", "[Name Taken]"};
    for (const Kind kind :
         {Kind::DAMAGED, Kind::NOT_A_FONT, Kind::EMPTY, Kind::NOT_FOR_SERVERS, Kind::UNREADABLE})
        marks.push_back(gw::mark_of({.kind = kind}));
    for (const std::string& mark : marks)
        EXPECT_EQ(gw::name_for_source("A [Bitmap] " + mark, 20).find(mark), 20U) << mark;
}

TEST_F(ShownNames, AreAsTheyAreWithoutThePolicy) {
    const std::string name = "Alpha [Bitmap]      [Read Only]";
    EXPECT_EQ(gw::name_for_source(name, 20), "Alpha [Bitmap]");
    EXPECT_EQ(gw::name_for_window(name), "Alpha [Bitmap] [Read Only]");
    gw::set_window_policy(gw::WindowPolicy(false));
    EXPECT_EQ(gw::name_for_source(name, 20), name);
    EXPECT_EQ(gw::name_for_window(name), name);
}

}  // namespace
