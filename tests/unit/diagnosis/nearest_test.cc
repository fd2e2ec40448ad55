// SPDX-License-Identifier: MIT
#include "diagnosis/nearest.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "diagnosis/name_difference.h"
#include "diagnosis/xlfd_fields.h"
#include "platform/host_paths.h"

namespace {

using gw::diagnosis::Candidate;
using gw::diagnosis::Field;
using gw::diagnosis::fields_of;
using gw::diagnosis::fields_of_pattern;
using gw::diagnosis::find_nearest;
using gw::diagnosis::in_english;
using gw::diagnosis::Likeness;
using gw::diagnosis::likeness;
using gw::diagnosis::matches;
using gw::diagnosis::meant_by_alias;
using gw::diagnosis::MOST_NEAR;
using gw::diagnosis::NearFont;
using gw::diagnosis::Sentence;
using gw::diagnosis::spelling_difference;
using gw::diagnosis::XlfdFields;

using Texts = std::vector<std::string>;

std::vector<Candidate> served(const Texts& names) {
    std::vector<Candidate> candidates;
    for (const std::string& name : names) candidates.push_back({name, "/fonts/a.pcf", "/fonts/", true});
    return candidates;
}

/// The names of the nearest fonts.
Texts nearest(const std::string& wanted, const Texts& names) {
    Texts result;
    for (const NearFont& font : find_nearest(wanted, served(names))) result.push_back(font.name);
    return result;
}

/// The directories of the private installation that have an index.
Texts installed_directories() {
    Texts directories;
    for (const auto& entry : std::filesystem::directory_iterator(gw::SYSTEM_FONT_DIR))
        if (std::filesystem::exists(entry.path() / "fonts.dir"))
            directories.push_back(entry.path().string() + '/');
    return directories;
}

/// What keeps a font from being the wanted one.
Texts differences(const std::string& wanted, const std::string& name) {
    Texts texts;
    for (const NearFont& font : find_nearest(wanted, served({name})))
        for (const Sentence& sentence : font.differences) texts.push_back(in_english(sentence));
    return texts;
}

constexpr const char* BOLD_12 = "-adobe-helvetica-bold-r-normal--12-120-75-75-p-70-iso8859-1";
constexpr const char* BOLD_14 = "-adobe-helvetica-bold-r-normal--14-140-75-75-p-82-iso8859-1";
constexpr const char* BOLD_100 = "-adobe-helvetica-bold-r-normal--17-120-100-100-p-92-iso8859-1";
constexpr const char* MEDIUM_12 = "-adobe-helvetica-medium-r-normal--12-120-75-75-p-67-iso8859-1";
constexpr const char* OBLIQUE_12 = "-adobe-helvetica-bold-o-normal--12-120-75-75-p-69-iso8859-1";
constexpr const char* UNICODE_12 = "-adobe-helvetica-bold-r-normal--12-120-75-75-p-70-iso10646-1";
constexpr const char* COURIER_12 = "-adobe-courier-bold-r-normal--12-120-75-75-m-70-iso8859-1";
constexpr const char* NIMBUS = "-urw-nimbus sans l-bold-r-normal--0-0-0-0-p-0-iso8859-1";

// --- fields and patterns -------------------------------------------------------

TEST(XlfdFieldsTest, AFullNameHasFourteen) {
    const std::optional<XlfdFields> fields = fields_of(BOLD_12);
    ASSERT_TRUE(fields);
    EXPECT_EQ((*fields)[Field::FOUNDRY], "adobe");
    EXPECT_EQ((*fields)[Field::STYLE], "");
    EXPECT_EQ((*fields)[Field::ENCODING], "1");
    EXPECT_FALSE(fields->is_scalable());
    EXPECT_TRUE(fields_of(NIMBUS)->is_scalable());
    for (const char* name : {"", "-", "9x15", "adobe-helvetica-bold-r-normal--12-120-75-75-p-70-iso8859-1",
                             "-adobe-helvetica-bold-r-normal--12-120-75-75-p-70-iso8859",
                             "-adobe-helvetica-bold-r-normal--12-120-75-75-p-70-iso8859-1-x"})
        EXPECT_FALSE(fields_of(name)) << name;
}

TEST(XlfdFieldsTest, AnAsteriskOfAPatternStandsForTheFieldsThatAreLeft) {
    const auto full = [](const std::string& pattern) {
        std::string name;
        for (const std::string_view field : fields_of_pattern(pattern).value_or(XlfdFields()))
            name.append("-").append(field);
        return name;
    };
    EXPECT_EQ(full("-adobe-helvetica-bold-r-normal--*-120-*"),
              "-adobe-helvetica-bold-r-normal--*-120-*-*-*-*-*-*");
    EXPECT_EQ(full("-*-helvetica-*-14-*-iso8859-1"), "-*-helvetica-*-*-*-*-14-*-*-*-*-*-iso8859-1");
    EXPECT_EQ(full("-*-helvetica-bold-*-120-*"), "-*-helvetica-bold-*-*-*-*-120-*-*-*-*-*-*");
    EXPECT_EQ(full("*-courier-*-koi8-r"), "-*-courier-*-*-*-*-*-*-*-*-*-*-koi8-r");
    EXPECT_EQ(full("-adobe-times*-140-*"), "-adobe-times*-*-*-*-*-*-140-*-*-*-*-*-*");
    EXPECT_EQ(full("-adobe-times"), "-adobe-times-*-*-*-*-*-*-*-*-*-*-*-*");
    EXPECT_EQ(full("-*-*-*-*-*-*-*-*-*-*-*-*-*-*-*-*"), "-*-*-*-*-*-*-*-*-*-*-*-*-*-*");
    EXPECT_EQ(full(BOLD_12), BOLD_12);
    EXPECT_FALSE(fields_of_pattern("9x15"));
    EXPECT_FALSE(fields_of_pattern("lucidasans-12"));
}

TEST(XlfdFieldsTest, MatchingFollowsAsterisksAndQuestionMarks) {
    for (const char* pattern :
         {"helvetica", "HELVETICA", "*", "h*a", "helv*", "*ica", "h?lvetica", "*e*e*", "**"})
        EXPECT_TRUE(matches("helvetica", pattern)) << pattern;
    for (const char* pattern : {"", "helvetic", "helveticas", "?", "h*b", "*z*", "helvetica?"})
        EXPECT_FALSE(matches("helvetica", pattern)) << pattern;
    EXPECT_TRUE(matches("", ""));
    EXPECT_TRUE(matches("", "*"));
    EXPECT_FALSE(matches("", "?"));
    EXPECT_FALSE(matches(std::string(1000, 'a'), "*a*a*a*a*a*a*a*a*a*a*a*a*a*a*b"));
}

// --- spelling ------------------------------------------------------------------

TEST(NameDifferenceTest, SpellingIsCountedInLetters) {
    EXPECT_EQ(spelling_difference("helvetica", "Helvetica"), 0);
    EXPECT_EQ(spelling_difference("helvetica", "helvetia"), 1);
    EXPECT_EQ(spelling_difference("helvetica", "helevtica"), 1);
    EXPECT_EQ(spelling_difference("helvetica", "helvettika"), 2);
    EXPECT_EQ(spelling_difference("", "abc"), 3);
    EXPECT_EQ(spelling_difference("kitten", "sitting"), 3);
    EXPECT_EQ(spelling_difference(std::string(100, 'a'), "a"), 100);
}

TEST(NameDifferenceTest, FamiliesAreAlikeInSpellingOrDesign) {
    EXPECT_EQ(likeness("helvetica", "helvetia"), Likeness::SPELLING);
    EXPECT_EQ(likeness("dejavu sans", "dejavusans"), Likeness::SPELLING);
    EXPECT_EQ(likeness("nimbus sans l", "helvetica"), Likeness::DESIGN);
    EXPECT_EQ(likeness("Nimbus Mono L", "Courier"), Likeness::DESIGN);
    EXPECT_EQ(likeness("lucidabright", "lucida"), Likeness::PART);
    EXPECT_EQ(likeness("times", "courier"), Likeness::NONE);
    EXPECT_EQ(likeness("times", "*"), Likeness::NONE);
    EXPECT_EQ(likeness("", ""), Likeness::NONE);
}

TEST(NameDifferenceTest, AnAliasSaysWhatItMeans) {
    EXPECT_EQ(meant_by_alias("9x15"), "-misc-fixed-medium-r-*-*-15-*-*-*-c-90-*-*");
    EXPECT_EQ(meant_by_alias("9x15bold"), "-misc-fixed-bold-r-*-*-15-*-*-*-c-90-*-*");
    EXPECT_EQ(meant_by_alias("lucidasans-bold-12"), "-*-lucidasans-bold-r-*-*-*-120-*-*-*-*-*-*");
    EXPECT_EQ(meant_by_alias("utopia-bolditalic-14"), "-*-utopia-bold-i-*-*-*-140-*-*-*-*-*-*");
    EXPECT_EQ(meant_by_alias("12"), "");
    EXPECT_EQ(meant_by_alias(""), "");
}

// --- the nearest fonts ---------------------------------------------------------

TEST(NearestTest, TheFontItselfComesFirstWithoutADifference) {
    const std::vector<NearFont> fonts =
        find_nearest("-adobe-helvetica-bold-r-normal--*-120-*", served({MEDIUM_12, OBLIQUE_12, BOLD_12}));
    ASSERT_EQ(fonts.size(), 3U);
    EXPECT_EQ(fonts[0].name, BOLD_12);
    EXPECT_EQ(fonts[0].file, "/fonts/a.pcf");
    EXPECT_EQ(fonts[0].element, "/fonts/");
    EXPECT_TRUE(fonts[0].is_served);
    EXPECT_TRUE(fonts[0].differences.empty());
}

TEST(NearestTest, TheOrderIsThatOfPeople) {
    EXPECT_EQ(nearest(BOLD_12, {COURIER_12, OBLIQUE_12, MEDIUM_12, NIMBUS, BOLD_14, UNICODE_12}),
              (Texts{UNICODE_12, BOLD_14, MEDIUM_12, OBLIQUE_12,
                     "-urw-nimbus sans l-bold-r-normal--12-120-75-75-p-0-iso8859-1"}));
}

TEST(NearestTest, AFaceIsThereOnceWithItsNearestSize) {
    EXPECT_EQ(nearest("-adobe-helvetica-bold-r-normal--*-130-75-75-*", {BOLD_14, BOLD_12}), Texts{BOLD_14});
    EXPECT_EQ(nearest("-adobe-helvetica-bold-r-normal--12-*", {BOLD_100, BOLD_12, BOLD_14}), Texts{BOLD_12});
    // With an open charset it counts as one, too.
    EXPECT_EQ(nearest("-adobe-helvetica-bold-r-normal--12-*", {UNICODE_12, BOLD_12}).size(), 1U);
}

/// A TrueType file filled the list with one line for each of its encodings.
TEST(NearestTest, AnOutlineIsThereOnceWithTheCharsetThatFitsBest) {
    const std::string face = "-misc-dejavu sans-medium-r-normal--0-0-0-0-p-0-";
    std::vector<Candidate> candidates;
    for (const char* charset : {"adobe-standard", "iso8859-1", "iso10646-1", "koi8-r"})
        candidates.push_back({face + charset, "/fonts/DejaVuSans.ttf", "/fonts/", false});
    candidates.push_back({face + "koi8-r", "/other/DejaVuSans.ttf", "/other/", false});
    candidates.push_back(
        {"-misc-dejavu sans-bold-r-normal--0-0-0-0-p-0-koi8-r", "/fonts/Bold.ttf", "/fonts/"});
    const std::string pattern = "-misc-dejavu sans-medium-r-normal--0-0-0-0-p-0-";
    for (const char* charset : {"iso8859-1", "koi8-r", "iso10646-1"}) {
        const std::vector<NearFont> fonts = find_nearest(pattern + charset, candidates);
        ASSERT_GE(fonts.size(), 2U) << charset;
        EXPECT_EQ(fonts[0].name, face + charset);
        EXPECT_EQ(fonts[0].other_charsets, 3U);
        for (std::size_t i = 1; i < fonts.size(); ++i) EXPECT_NE(fonts[i].file, fonts[0].file) << charset;
    }
    const std::vector<NearFont> fonts = find_nearest(pattern + "jisx0208.1983-0", candidates);
    ASSERT_FALSE(fonts.empty());
    EXPECT_EQ(fonts[0].name, face + "iso10646-1");
    EXPECT_EQ(fonts[0].other_charsets, 3U);
}

TEST(NearestTest, BitmapsOfEachCharsetHaveTheirOwnFile) {
    const std::vector<Candidate> candidates = {{BOLD_12, "/fonts/a.pcf", "/fonts/"},
                                               {UNICODE_12, "/fonts/b.pcf", "/fonts/"}};
    const std::vector<NearFont> fonts = find_nearest(BOLD_12, candidates);
    ASSERT_EQ(fonts.size(), 2U);
    EXPECT_EQ(fonts[0].other_charsets, 0U);
}

TEST(NearestTest, AServedFontComesBeforeAnEqualOneThatIsNot) {
    const std::vector<Candidate> candidates = {{BOLD_12, "/not/a.pcf", "/not/", false},
                                               {BOLD_12, "/served/a.pcf", "/served/", true}};
    const std::vector<NearFont> fonts = find_nearest(BOLD_12, candidates);
    ASSERT_EQ(fonts.size(), 1U);
    EXPECT_EQ(fonts[0].element, "/served/");
    EXPECT_TRUE(fonts[0].is_served);
}

TEST(NearestTest, NoMoreThanAskedFor) {
    Texts names;
    for (int i = 0; i < 20; ++i)
        names.push_back("-adobe-family" + std::to_string(i) + "-bold-r-normal--12-120-75-75-p-70-iso8859-1");
    EXPECT_EQ(nearest(BOLD_12, names).size(), MOST_NEAR);
    EXPECT_EQ(find_nearest(BOLD_12, served(names), 2).size(), 2U);
    EXPECT_TRUE(find_nearest(BOLD_12, {}).empty());
    EXPECT_TRUE(find_nearest("", served(names)).empty());
}

TEST(NearestTest, AnOutlineHasTheSizesThatWereAskedFor) {
    EXPECT_EQ(nearest("-urw-nimbus sans l-bold-r-normal--*-240-100-100-*", {NIMBUS}),
              Texts{"-urw-nimbus sans l-bold-r-normal--0-240-100-100-p-0-iso8859-1"});
    EXPECT_EQ(nearest("-urw-nimbus sans l-bold-r-normal--*", {NIMBUS}), Texts{NIMBUS});
    // No X server makes 20 pixels that are also 12 points at 100 dpi.
    EXPECT_EQ(nearest("-urw-nimbus sans l-bold-r-normal--20-120-100-100-*", {NIMBUS}),
              Texts{"-urw-nimbus sans l-bold-r-normal--20-0-100-100-p-0-iso8859-1"});
    EXPECT_EQ(differences("-urw-nimbus sans l-bold-r-normal--33-*", NIMBUS), Texts());
}

TEST(NearestTest, EachFieldIsSaidInWords) {
    struct Said {
        const char* wanted;
        const char* font;
        Texts texts;
    };
    const std::vector<Said> CASES = {
        {BOLD_12,
         MEDIUM_12,
         {
             "It is not bold, but medium.",
         }},
        {MEDIUM_12, BOLD_12, {"Its weight is bold, not medium."}},
        {BOLD_12, OBLIQUE_12, {"It is slanted, not upright."}},
        {OBLIQUE_12, BOLD_12, {"It is upright, not slanted."}},
        {"-*-*-*-i-*", OBLIQUE_12, {"Its slant is o, not i."}},
        {BOLD_12, UNICODE_12, {"It is in iso10646-1, not in iso8859-1."}},
        {"-adobe-helvetia-bold-r-normal--12-*", BOLD_12, {"Its family is spelled helvetica, not helvetia."}},
        {"-*-helvetica-bold-r-normal--12-*",
         NIMBUS,
         {"Its family is nimbus sans l, which looks much like helvetica."}},
        {"-*-times-bold-r-normal--12-*", BOLD_12, {"Its family is helvetica, not times."}},
        {"-b&h-helvetica-bold-r-normal--12-*", BOLD_12, {"Its foundry is adobe, not b&h."}},
        {"-*-*-*-*-condensed-*", BOLD_12, {"Its width is normal, not condensed."}},
        {"-adobe-helvetica-bold-r-normal-sans-12-*",
         BOLD_12,
         {"It does not have the additional style sans."}},
        {"-adobe-helvetica-bold-r-normal--13-*", BOLD_12, {"It is 12 pixels high, not 13."}},
        {"-adobe-helvetica-bold-r-normal--*-125-*", BOLD_12, {"It has 12 pt, not 12.5."}},
        {"-adobe-helvetica-bold-r-normal--*-120-100-100-*",
         BOLD_12,
         {"12 pt at 100 dpi was asked for. It has 12 pt at 75 dpi."}},
        {"-adobe-helvetica-bold-r-normal--*-*-100-100-*", BOLD_12, {"It is made for 75 dpi, not 100."}},
        {"-adobe-helvetica-bold-r-normal--*-*-*-*-m-*-*-*",
         BOLD_12,
         {"Its characters have different widths."}},
        {"-adobe-courier-bold-r-normal--*-*-*-*-p-*-*-*",
         COURIER_12,
         {"Its characters all have the same width."}},
        {"-adobe-courier-bold-r-normal--*-*-*-*-c-*-*-*", COURIER_12, {"Its spacing is m, not c."}},
        {"-adobe-helvetica-bold-r-normal--12-120-75-75-p-71-iso8859-1",
         BOLD_12,
         {"Its average width is 70 tenths of a pixel, not 71."}},
    };
    for (const Said& said : CASES) EXPECT_EQ(differences(said.wanted, said.font), said.texts) << said.wanted;
}

TEST(NearestTest, WildcardsAndZerosCostNothing) {
    EXPECT_EQ(differences("-*-*-*-*-*-*-*-*-*-*-*-*-*-*", BOLD_12), Texts());
    EXPECT_EQ(differences("-adobe-helvetica-bold-r-normal--0-0-0-0-p-0-iso8859-1", BOLD_12), Texts());
    EXPECT_EQ(differences("-ADOBE-Helv?tica-b*-R-*", BOLD_12), Texts());
}

/// Of the real fonts each is nearest to its own name, and the others all differ from it.
TEST(NearestTest, NamesOfRealFontsAreNearestToThemselves) {
    std::vector<Candidate> candidates;
    for (const std::string& directory : installed_directories()) {
        std::ifstream index(directory + "fonts.dir");
        std::string line;
        std::getline(index, line);
        while (std::getline(index, line))
            candidates.push_back({line.substr(line.find(' ') + 1), directory, directory, true});
    }
    ASSERT_GT(candidates.size(), 1000U);
    for (std::size_t i = 0; i < candidates.size(); i += 29) {
        const std::string& name = candidates[i].name;
        const std::optional<XlfdFields> fields = fields_of(name);
        if (!fields) continue;
        const std::vector<NearFont> fonts = find_nearest(name, candidates);
        ASSERT_EQ(fonts.size(), MOST_NEAR) << name;
        EXPECT_TRUE(fonts[0].differences.empty()) << name;
        for (std::size_t near = 1; near < fonts.size(); ++near)
            EXPECT_FALSE(fonts[near].differences.empty()) << name;
    }
}

TEST(NearestTest, ForAnAliasTheNearestAliasesComeFirst) {
    const std::vector<NearFont> fonts = find_nearest(
        "lucidasans-13", served({BOLD_12, "lucidasans-12", "9x15", "lucidasanstypewriter-bold-24",
                                 "-b&h-lucida-medium-r-normal-sans-12-120-75-75-p-71-iso8859-1"}));
    ASSERT_GE(fonts.size(), 2U);
    EXPECT_EQ(fonts[0].name, "lucidasans-12");
    ASSERT_EQ(fonts[0].differences.size(), 1U);
    EXPECT_EQ(in_english(fonts[0].differences[0]), "Its name is lucidasans-12, not lucidasans-13.");
    EXPECT_EQ(fonts[1].name, "-b&h-lucida-medium-r-normal-sans-12-120-75-75-p-71-iso8859-1");
}

TEST(NearestTest, WhatHasNothingInCommonWithANameIsLeftOut) {
    EXPECT_EQ(nearest("xyzzy", {BOLD_12, COURIER_12, "9x15"}), Texts());
    EXPECT_EQ(nearest("9x15bold", {"9x15", COURIER_12}), Texts());
}

}  // namespace
