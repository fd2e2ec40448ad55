// SPDX-License-Identifier: MIT
#include "diagnosis/alias_name.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using gw::diagnosis::alias_name;
using gw::diagnosis::server_matches;

constexpr const char* LUCIDA = "-b&h-lucida-bold-r-normal-sans-17-120-100-100-p-108-iso8859-1";
constexpr const char* OUTLINE = "-adobe-utopia-bold-r-normal--0-0-0-0-p-0-iso8859-1";

struct Case {
    const char* wanted;
    const char* font;
    const char* name;
    const char* target;  // null: the font itself
    friend std::ostream& operator<<(std::ostream& out, const Case& c) { return out << c.wanted; }
};

const std::vector<Case> CASES = {
    {"fancy", LUCIDA, "fancy", nullptr},
    {"two words", LUCIDA, "two words", nullptr},
    {"-a-b-bold-r-normal--12-120-75-75-p-70-iso8859-1", LUCIDA,
     "-a-b-bold-r-normal--12-120-75-75-p-70-iso8859-1", nullptr},
    // The pattern's fields stay, and those that it leaves open are the font's.
    {"-adobe-helvetica-bold-r-normal--*-120-*", LUCIDA,
     "-adobe-helvetica-bold-r-normal--17-120-100-100-p-108-iso8859-1", nullptr},
    {"-adobe-helvetica-bold-r-*-*-*-120-*-*-*-*-*-*", LUCIDA,
     "-adobe-helvetica-bold-r-normal-sans-17-120-100-100-p-108-iso8859-1", nullptr},
    {"-adobe-helvetica-bold-r-normal-*-14-*", LUCIDA,
     "-adobe-helvetica-bold-r-normal-sans-14-120-100-100-p-108-iso8859-1", nullptr},
    // A number is a size in decipoints, or in pixels, by what it can be.
    {"*-helvetica-*-140-*", LUCIDA, "-b&h-helvetica-bold-r-normal-sans-17-140-100-100-p-108-iso8859-1",
     nullptr},
    {"*-helvetica-*-14-*", LUCIDA, "-b&h-helvetica-bold-r-normal-sans-14-120-100-100-p-108-iso8859-1",
     nullptr},
    {"-*-helvetica-medium-o-*--*-iso8859-2", LUCIDA,
     "-b&h-helvetica-medium-o-normal--17-120-100-100-p-108-iso8859-2", nullptr},
    {"-adobe-helv*-b?ld-r-normal--*-120-*", LUCIDA,
     "-adobe-helv-bold-r-normal--17-120-100-100-p-108-iso8859-1", nullptr},
    // An outline has the size that was asked for.
    {"-adobe-helvetica-bold-r-normal--*-140-75-75-*", OUTLINE,
     "-adobe-helvetica-bold-r-normal--0-140-75-75-p-0-iso8859-1",
     "-adobe-utopia-bold-r-normal--0-140-75-75-p-0-iso8859-1"},
    {"fancy", OUTLINE, "fancy", "-adobe-utopia-bold-r-normal--0-120-0-0-p-0-iso8859-1"},
    // No fields: the server compares letters only.
    {"*helvetica*120*", LUCIDA, "helvetica120", nullptr},
    {"9x1?", LUCIDA, "9x1x", nullptr},
};

class AliasName : public testing::TestWithParam<Case> {};

TEST_P(AliasName, IsOneThatThePatternMatches) {
    const Case& c = GetParam();
    const auto alias = alias_name(c.wanted, c.font);
    ASSERT_TRUE(alias);
    EXPECT_EQ(alias->name, c.name);
    EXPECT_EQ(alias->font, c.target != nullptr ? c.target : c.font);
    EXPECT_TRUE(server_matches(c.wanted, alias->name));
}

INSTANTIATE_TEST_SUITE_P(All, AliasName, testing::ValuesIn(CASES));

TEST(NoAliasName, ForWhatNoAliasCanHelp) {
    const std::string bad[] = {
        "",
        "   ",
        "a\nb",
        "tab\there",
        "file_names_aliases",
        LUCIDA,
        "-B&H-Lucida-Bold-R-Normal-Sans-17-120-100-100-P-108-ISO8859-1",
        "-b&h-lucida-bold-*",
        "-a-b-bold-r-normal--12-120-75-75-p-70-iso10646-1[65_90]",
        std::string(256, 'x'),
    };
    for (const std::string& wanted : bad) EXPECT_FALSE(alias_name(wanted, LUCIDA)) << wanted;
    EXPECT_FALSE(alias_name("fancy", "-*-lucida-*"));
    EXPECT_FALSE(alias_name("fancy", ""));
}

TEST(NoAliasName, ManyAsterisksTakeNoTime) {
    std::string stars;
    for (int i = 0; i < 14; ++i) stars += "-*";
    EXPECT_FALSE(alias_name(stars, LUCIDA));  // it matches the font itself
    EXPECT_TRUE(alias_name("-*-helvetica" + stars.substr(4), LUCIDA));
    EXPECT_TRUE(alias_name(std::string(255, '-'), LUCIDA));
    EXPECT_FALSE(alias_name(std::string(255, '*'), LUCIDA));
}

}  // namespace
