// SPDX-License-Identifier: MIT
#include "fontfiles/gw_alias_file.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/temp_dir.h"
#include "support/under_policy.h"

namespace {

using gw::test::TempDir;

constexpr const char* FIXED = "-misc-fixed-medium-r-semicondensed--13-120-75-75-c-60-iso8859-1";

TEST(AliasLine, SplitsIntoAliasAndFontName) {
    const struct {
        std::string line;
        std::string alias;
        std::string font;
    } cases[] = {
        {std::string("fixed  ") + FIXED + "\n", "fixed", std::string(" ") + FIXED},
        {std::string("\"my font\"\t") + FIXED + "\n", "my font", FIXED},
        {std::string("fixed ") + FIXED, "fixed", FIXED},
        {"a\\ b -x\n", "a", "b -x"},
        {"fixed back\\ slash\\\\es\n", "fixed", "back slashes"},
        {"fixed \"quoted name\"\n", "fixed", "quoted name"},
        {"fixed  \"kept\"\n", "fixed", " \"kept\""},
        {"\"unclosed alias -x\n", "unclosed alias -x", ""},
        {"! a comment\n", "!", "a comment"},
        {"FILE_NAMES_ALIASES\n", "FILE_NAMES_ALIASES", ""},
        {"\n", "", ""},
        {"\"\"\n", "", ""},
        {"caf\xe9 -\xe9\n", "caf\xe9", "-\xe9"},
    };
    for (const auto& c : cases) {
        std::string alias;
        std::string font;
        GW_ALIAS_FILE::split_line(c.line.c_str(), alias, font);
        EXPECT_EQ(alias, c.alias) << c.line;
        EXPECT_EQ(font, c.font) << c.line;
    }
}

class AliasFile : public testing::Test {
  protected:
    GW_ALIAS_FILE aliases() const { return {dir.c_str(), 0}; }
    TempDir dir;
};

TEST_F(AliasFile, ACommentIsAnAliasUnlessThePolicyKnowsComments) {
    const std::string long_comment = "! " + std::string(600, 'x') + " -y\n";
    dir.write("fonts.alias", "!! made by hand\n" + long_comment + " \t! so -x\n!fixed -y\nfixed -misc\n");
    for (const bool modern : {false, true}) {
        const gw::test::UnderPolicy policy(modern);
        GW_STRING_LIST names;
        const gw::ElementsOwner names_owner(names);
        GW_STRING_LIST fonts;
        const gw::ElementsOwner fonts_owner(fonts);
        EXPECT_EQ(aliases().get_alias_font_name_list(names, fonts), 1);
        GW_STRING_LIST aliases_alone;
        const gw::ElementsOwner aliases_owner(aliases_alone);
        EXPECT_EQ(aliases().get_alias_list(aliases_alone), 1);
        EXPECT_EQ(aliases_alone.get_count(), names.get_count());
        const auto by_alias = aliases().get_font_name("!fixed");
        const auto by_font = aliases().get_alias_name("-y");
        if (modern) {
            ASSERT_EQ(names.get_count(), 1);
            EXPECT_STREQ(names.get_elem_at_pos(1)->get_str(), "fixed");
            EXPECT_STREQ(fonts.get_elem_at_pos(1)->get_str(), "-misc");
            EXPECT_EQ(by_alias, nullptr);
            EXPECT_EQ(by_font, nullptr);
        } else {
            ASSERT_EQ(names.get_count(), 6) << "the long line comes in two pieces";
            EXPECT_STREQ(names.get_elem_at_pos(1)->get_str(), "!!");
            EXPECT_STREQ(fonts.get_elem_at_pos(1)->get_str(), "made by hand");
            ASSERT_NE(by_alias, nullptr);
            EXPECT_STREQ(by_alias->get_str(), "-y");
            EXPECT_NE(by_font, nullptr);
        }
    }
}

TEST_F(AliasFile, ListsAliasesAndFontNamesAtEqualPositions) {
    dir.write("fonts.alias", std::string("fixed ") + FIXED + "\nx\n\n6x13 -six\n");
    GW_STRING_LIST names;
    const gw::ElementsOwner names_owner(names);
    GW_STRING_LIST fonts;
    const gw::ElementsOwner fonts_owner(fonts);
    EXPECT_EQ(aliases().get_alias_font_name_list(names, fonts), 1);
    ASSERT_EQ(names.get_count(), 2);
    ASSERT_EQ(fonts.get_count(), 2);
    EXPECT_STREQ(names.get_elem_at_pos(2)->get_str(), "6x13");
    EXPECT_STREQ(fonts.get_elem_at_pos(2)->get_str(), "-six");
    GW_STRING_LIST alone;
    const gw::ElementsOwner alone_owner(alone);
    EXPECT_EQ(aliases().get_alias_list(alone), 1);
    EXPECT_EQ(alone.get_count(), 2);
}

TEST_F(AliasFile, ALineOfThreeCharactersIsNoAliasButIsFoundByName) {
    dir.write("fonts.alias", "ab\n");
    GW_STRING_LIST names;
    EXPECT_EQ(aliases().get_alias_list(names), 1);
    EXPECT_EQ(names.get_count(), 0);
    const auto font = aliases().get_font_name("ab");
    ASSERT_NE(font, nullptr);
    EXPECT_STREQ(font->get_str(), "");
}

TEST_F(AliasFile, FindsInBothDirectionsTheFirst) {
    dir.write("fonts.alias", "one -a\ntwo -a\none -b\n");
    EXPECT_STREQ(aliases().get_font_name("one")->get_str(), "-a");
    EXPECT_STREQ(aliases().get_alias_name("-a")->get_str(), "one");
    EXPECT_EQ(aliases().get_font_name("One"), nullptr);
    EXPECT_EQ(aliases().get_alias_name("-c"), nullptr);
}

TEST_F(AliasFile, ALongLineIsFoundByAliasOnly) {
    const std::string font = "-" + std::string(150, 'x');
    dir.write("fonts.alias", "long " + font + "\n");
    EXPECT_STREQ(aliases().get_font_name("long")->get_str(), font.c_str());
    EXPECT_EQ(aliases().get_alias_name(font.c_str()), nullptr);
}

TEST_F(AliasFile, AMissingFileAnswersForItself) {
    GW_STRING_LIST names;
    GW_STRING_LIST fonts;
    EXPECT_EQ(aliases().get_alias_list(names), -1);
    EXPECT_EQ(aliases().get_alias_font_name_list(names, fonts), -1);
    EXPECT_EQ(aliases().get_font_name("x"), nullptr);
    EXPECT_EQ(aliases().get_alias_name("x"), nullptr);
}

TEST_F(AliasFile, ALineOfAnyLengthIsReadInBoundedPieces) {
    dir.write("fonts.alias", "long " + std::string(5000, 'x') + "\nfixed -f\n");
    EXPECT_STREQ(aliases().get_font_name("fixed")->get_str(), "-f");
}

}  // namespace
