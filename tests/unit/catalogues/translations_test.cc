// SPDX-License-Identifier: MIT
//
// Every language has every text in the form that the program needs, and the check for this finds mistakes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/shell_command.h"
#include "support/temp_dir.h"
#include "translations.h"

namespace {

using namespace gw::catalogue;
using gw::test::TempDir;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(TranslationsTest, EveryLanguageIsComplete) {
    ASSERT_EQ(languages().size(), 4U);
    EXPECT_GT(english().size(), 200U);
    for (const Language& language : languages())
        EXPECT_THAT(complaints(english(), language.texts), IsEmpty()) << language.name;
}

TEST(TranslationsTest, ACorrectionKeepsTheNumbersPlaces) {
    const Texts corrected = english();
    const Texts original = defaults();
    ASSERT_EQ(corrected.size(), original.size());
    for (std::size_t i = 0; i < corrected.size(); ++i)
        EXPECT_EQ(places_of(corrected[i].text), places_of(original[i].text)) << original[i].text;
}

/// The number of texts that differ from the English ones.
std::size_t translated(const Language& language) {
    const Texts original = english();
    std::size_t count = 0;
    for (std::size_t i = 0; i < original.size(); ++i)
        count += language.texts[i].text != original[i].text ? 1U : 0U;
    return count;
}

TEST(TranslationsTest, EveryLanguageIsAnother) {
    for (const Language& language : languages()) {
        ASSERT_EQ(language.texts.size(), english().size());
        EXPECT_GT(translated(language), english().size() * 8 / 10) << language.name;
    }
}

TEST(TranslationsTest, TheProductHasOneName) {
    const Texts original = english();
    for (const Language& language : languages()) {
        for (std::size_t i = 0; i < original.size(); ++i) {
            for (const char* name : {"Glyph Warden", "glyphward: ", "XLFD", "Vantor", "CD-ROM"}) {
                if (original[i].text.find(name) == std::string_view::npos) continue;
                EXPECT_THAT(std::string(language.texts[i].text), HasSubstr(name)) << language.name;
            }
        }
    }
}

const Texts REFERENCE = {{1, 1, "%d of %s"}, {1, 2, " a "}, {2, 1, "b\n"}, {2, 2, "c"}};

std::vector<std::string> complaints_with(int set, int number, std::string_view text) {
    Texts texts = REFERENCE;
    for (Entry& entry : texts) {
        if (entry.set == set && entry.number == number) entry.text = text;
    }
    return complaints(REFERENCE, texts);
}

TEST(ComplaintsTest, ThereIsNoneAboutAGoodTranslation) {
    EXPECT_THAT(complaints(REFERENCE, REFERENCE), IsEmpty());
    EXPECT_THAT(complaints_with(1, 1, "%d von %s"), IsEmpty());
    EXPECT_THAT(complaints_with(1, 2, " \xc3\xa4   "), IsEmpty()) << "blanks at the end are for the layout";
    EXPECT_THAT(complaints_with(2, 1, "zwei\nZeilen\n"), IsEmpty());
}

TEST(ComplaintsTest, WhatIsMissingOrTooMuchIsNamed) {
    Texts texts = REFERENCE;
    texts.erase(texts.begin() + 1);
    EXPECT_THAT(complaints(REFERENCE, texts), ElementsAre("set 1, number 2: is missing"));
    texts = REFERENCE;
    texts.push_back({2, 3, "d"});
    EXPECT_THAT(complaints(REFERENCE, texts), ElementsAre("set 2, number 3: is no text of the program"));
    texts = REFERENCE;
    texts.push_back({2, 2, "d"});
    EXPECT_THAT(complaints(REFERENCE, texts), ElementsAre("set 2, number 2: stands there twice"));
    EXPECT_EQ(complaints(REFERENCE, {}).size(), REFERENCE.size());
}

TEST(ComplaintsTest, PlacesForNumbersAndNamesKeepKindAndOrder) {
    for (const char* text : {"%s of %d", "%d of %d", "%d", "", "%d of %s %s", "%ld of %s", "%%d of %s"})
        EXPECT_THAT(complaints_with(1, 1, text), ElementsAre(HasSubstr("set 1, number 1: has other places")))
            << text;
    EXPECT_THAT(places_of("%d %5.2f %% %-3ld %"), ElementsAre("%d", "%5.2f", "%%", "%-3ld", "%"));
}

TEST(ComplaintsTest, BlanksAndNewlinesAtTheEdgesStay) {
    for (const char* text : {"a ", "  a ", "\na "})
        EXPECT_THAT(complaints_with(1, 2, text), ElementsAre(HasSubstr("set 1, number 2: begins with")))
            << text;
    for (const char* text : {" a", " a\n"})
        EXPECT_THAT(complaints_with(1, 2, text), ElementsAre(HasSubstr("set 1, number 2: ends with")))
            << text;
    for (const char* text : {"b", "b ", "b\n\n"})
        EXPECT_THAT(complaints_with(2, 1, text), ElementsAre(HasSubstr("set 2, number 1: ends with")))
            << text;
    EXPECT_THAT(complaints_with(2, 2, ""), ElementsAre("set 2, number 2: is empty"));
}

struct Made {
    int status;
    std::string source;
    std::string errors;
};

Made make(const std::string& language, const std::string& charset) {
    const TempDir dir;
    const int status = gw::run_shell(
        "%s %s %s > %s 2> %s", {MAKE_CATALOGUE, language, charset, dir.file("source"), dir.file("errors")});
    return {status, dir.read("source"), dir.read("errors")};
}

TEST(MakeCatalogueTest, WritesALanguageInACharacterSet) {
    const Made utf8 = make("german", "UTF-8");
    EXPECT_EQ(utf8.status, 0);
    EXPECT_EQ(utf8.errors, "");
    EXPECT_THAT(utf8.source, HasSubstr("$ codeset=UTF-8\n"));
    EXPECT_THAT(utf8.source, HasSubstr("$set 1\n2 \"Glyph Warden\"\n"));
    EXPECT_THAT(utf8.source, HasSubstr("\n7 \"L\xc3\xb6schen\"\n"));
    EXPECT_THAT(make("german", "ISO-8859-1").source, HasSubstr("\n7 \"L\xf6schen\"\n"));
    EXPECT_THAT(make("japanese", "EUC-JP").source, HasSubstr("\n7 \"\xba\xef\xbd\xfc(D)\"\n"));
}

TEST(MakeCatalogueTest, FailsRatherThanWriteLess) {
    const Made unwritable = make("japanese", "ISO-8859-1");
    EXPECT_NE(unwritable.status, 0);
    EXPECT_THAT(unwritable.errors, HasSubstr("make_catalogue: ISO-8859-1 cannot write: "));
    EXPECT_NE(make("german", "US-ASCII").status, 0);
    EXPECT_THAT(make("klingon", "UTF-8").errors, HasSubstr("no language is called klingon"));
    EXPECT_THAT(make("german", "UTF-88").errors, HasSubstr("no character set is called UTF-88"));
}

}  // namespace
