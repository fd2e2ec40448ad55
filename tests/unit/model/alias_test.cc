// SPDX-License-Identifier: MIT
#include "model/gw_alias.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/gw_list.h"
#include "model/hrn_words.h"

namespace {

constexpr const char* FONT = "-adobe-courier-bold-o-normal--12-120-75-75-m-70-iso8859-1";
constexpr const char* READ_ONLY = "[Read Only]";

/// `name` with "[Read Only]" at column 46.
std::string marked(const std::string& name) {
    return name + std::string(46 - name.size(), ' ') + READ_ONLY;
}

/// An XLFD name with these fields for family, weight, slant, set-width and additional style.
std::string xlfd(const std::string& family, const std::string& weight, const std::string& slant,
                 const std::string& add_style = "", const std::string& set_width = "normal") {
    return "-adobe-" + family + '-' + weight + '-' + slant + '-' + set_width + '-' + add_style +
           "-12-120-75-75-m-70-iso8859-1";
}

TEST(Alias, KeepsWhatTheAliasFileSays) {
    const GWAlias alias("fixed", FONT, "/fonts/misc/");
    EXPECT_STREQ(alias.get_alias_name(), "fixed");
    EXPECT_STREQ(alias.get_font_name(), FONT);
    EXPECT_STREQ(alias.get_dir_name(), "/fonts/misc/");
}

TEST(Alias, OwnsItsTexts) {
    std::string name = "fixed";
    std::string font = FONT;
    std::string dir = "/fonts/";
    const GWAlias alias(name.c_str(), font.c_str(), dir.c_str());
    for (std::string* text : {&name, &font, &dir}) text->assign(text->size(), 'x');
    EXPECT_STREQ(alias.get_alias_name(), "fixed");
    EXPECT_STREQ(alias.get_font_name(), FONT);
    EXPECT_STREQ(alias.get_dir_name(), "/fonts/");
}

TEST(Alias, OfAnotherNameIsShownWithTagAndMarkerAtColumn46) {
    EXPECT_EQ(GWAlias("fixed", FONT, "/").get_hrn_name(), marked("fixed [Alias]"));
    const std::string of_37(37, 'a');
    EXPECT_EQ(GWAlias(of_37.c_str(), FONT, "/").get_hrn_name(), of_37 + " [Alias] " + READ_ONLY);
    // With the tag this makes 46 characters, so nothing is padded.
    const std::string of_38(38, 'a');
    EXPECT_EQ(GWAlias(of_38.c_str(), FONT, "/").get_hrn_name(), of_38 + " [Alias]   " + READ_ONLY);
}

TEST(Alias, OfFiftyCharactersGetsThreeBlanksAndTheMarker) {
    const std::string name(50, 'n');
    EXPECT_EQ(GWAlias(name.c_str(), FONT, "/").get_hrn_name(), name + " [Alias]   " + READ_ONLY);
}

TEST(Alias, OfAnXlfdNameIsShownByItsWords) {
    const struct {
        std::string name;
        std::string shown;
    } cases[] = {
        {xlfd("courier", "bold", "o"), "Courier Bold Oblique [Alias]"},
        {xlfd("courier", "bold", "i"), "Courier Bold Italic [Alias]"},
        {xlfd("courier", "bold", "I"), "Courier Bold Italic [Alias]"},
        {xlfd("courier", "bold", "r"), "Courier Bold [Alias]"},
        {xlfd("courier", "bold", "R"), "Courier Bold [Alias]"},
        {xlfd("courier", "bold", "ro"), "Courier Bold Reverse Oblique [Alias]"},
        {xlfd("courier", "bold", "Ri"), "Courier Bold Reverse Italic [Alias]"},
        {xlfd("courier", "bold", "ot"), "Courier Bold ot [Alias]"},
        {xlfd("courier", "bold", ""), "Courier Bold  [Alias]"},
        {xlfd("courier", "", "r"), "Courier  [Alias]"},
        {xlfd("", "", "r"), "  [Alias]"},
        {xlfd("courier", "bold", "r", "sans"), "Courier Bold Sans [Alias]"},
        {xlfd("courier", "bold", "r", " sans"), "Courier Bold [Alias]"},
        {xlfd("new century", "bold", "r"), "New century Bold [Alias]"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(GWAlias(c.name.c_str(), FONT, "/").get_hrn_name(), marked(c.shown)) << c.name;
    }
}

TEST(Alias, NeverShowsTheSetWidth) {
    for (const char* width : {"normal", "semicondensed", "", "wide"}) {
        const std::string name = xlfd("courier", "bold", "r", "", width);
        EXPECT_EQ(GWAlias(name.c_str(), FONT, "/").get_hrn_name(), marked("Courier Bold [Alias]")) << width;
    }
}

TEST(Alias, ShowsTheFontByItsWordsOrPlainly) {
    EXPECT_EQ(GWAlias("fixed", FONT, "/").get_font_hrn_name(), marked("Courier Bold Oblique"));
    EXPECT_STREQ(GWAlias("fixed", "6x13", "/").get_font_hrn_name(), "6x13");
    EXPECT_STREQ(GWAlias("fixed", "", "/").get_font_hrn_name(), "");
}

TEST(Alias, NamesThatDifferOnlyInCaseCompareEqual) {
    const GWAlias lower("fixed", FONT, "/a/");
    const GWAlias upper("FIXED", FONT, "/b/");
    const GWAlias other("variable", FONT, "/a/");
    EXPECT_EQ(lower.compare(&upper), 0);
    EXPECT_LT(lower.compare(&other), 0);
    EXPECT_GT(other.compare(&upper), 0);
}

TEST(Alias, ListsSortByTheDisplayedName) {
    GW_SORTED_LIST<GWAlias> list(0);
    const gw::ElementsOwner owner(list);
    const std::string courier = xlfd("courier", "bold", "r");
    for (const char* name : {"variable", "Fixed", courier.c_str(), "6x13"}) {
        list.insert(new GWAlias(name, FONT, "/"));
    }
    std::vector<std::string> names;
    for (const GWAlias* alias : list) names.emplace_back(alias->get_alias_name());
    EXPECT_EQ(names, (std::vector<std::string>{"6x13", courier, "Fixed", "variable"}));
}

TEST(Alias, SurvivesNamesOfAnyLength) {
    for (const std::size_t length : {0U, 32U, 33U, 45U, 46U, 1792U, 10000U}) {
        const std::string name(length, 'q');
        const std::string shown = GWAlias(name.c_str(), name.c_str(), "/").get_hrn_name();
        EXPECT_TRUE(shown.starts_with(name + " [Alias]")) << length;
        EXPECT_TRUE(shown.ends_with(READ_ONLY)) << length;
        EXPECT_EQ(shown.size(), length + 8 < 46 ? 46 + 11 : length + 8 + 3 + 11) << length;
    }
}

TEST(ReadOnlyMarker, StandsAtColumn46OrBehindThreeBlanks) {
    for (const std::size_t length : {0U, 10U, 45U, 46U, 47U, 50U}) {
        std::string text(length, 'x');
        set_read_only_str(text);
        const std::string gap = length < 46 ? std::string(46 - length, ' ') : "   ";
        EXPECT_EQ(text, std::string(length, 'x') + gap + READ_ONLY) << length;
    }
}

}  // namespace
