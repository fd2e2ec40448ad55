// SPDX-License-Identifier: MIT
#include "fontfiles/gw_fontset.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/gw_font.h"

namespace {

constexpr const char* LATIN1 = "-sony-fixed-medium-r-normal--16-120-100-100-c-80-iso8859-1";
constexpr const char* LATIN9 = "-misc-fixed-medium-r-normal--16-120-100-100-c-80-iso8859-15";
constexpr const char* KANA = "-sony-fixed-medium-r-normal--16-120-100-100-c-80-jisx0201.1976-0";
constexpr const char* KANJI = "-jis-fixed-medium-r-normal--16-150-75-75-c-160-jisx0208.1983-0";
constexpr const char* OTHER_KANJI = "-jis-fixed-medium-r-normal--24-230-75-75-c-240-jisx0208.1983-0";

std::vector<std::string> fonts_of(const GWFontSet& fontset) {
    std::vector<std::string> names;
    for (GWFont* font : fontset.get_fonts()) names.emplace_back(font->get_xlfd_name());
    return names;
}

TEST(Fontset, BeginsWithoutBaseFonts) {
    const GWFontSet fontset("-new");
    EXPECT_STREQ(fontset.get_name(), "-new");
    EXPECT_EQ(fontset.get_base_names(), nullptr);
    EXPECT_EQ(fontset.get_fonts().get_count(), 0);
    EXPECT_EQ(fontset.definition(), "-new:definition\n");
}

TEST(Fontset, AppendsBitmapFontsInOrder) {
    GWFontSet fontset("-set");
    fontset.append_base_font(LATIN1);
    EXPECT_STREQ(fontset.get_base_names(), LATIN1);
    fontset.append_base_font(KANJI);
    EXPECT_EQ(fontset.get_base_names(), std::string(LATIN1) + ',' + KANJI);
    EXPECT_EQ(fonts_of(fontset), (std::vector<std::string>{LATIN1, KANJI}));
    const GWFont* kanji = fontset.get_fonts().get_elem_at_pos(2);
    EXPECT_EQ(kanji->get_type(), GWFont::BITMAP_FONT);
    EXPECT_STREQ(kanji->get_field(GWFont::CHARSET_REGISTRY), "jisx0208.1983");
}

TEST(Fontset, IsWrittenWithOneLineForItsNameAndForEachFont) {
    GWFontSet fontset("-set");
    fontset.append_base_font(LATIN1);
    EXPECT_EQ(fontset.definition(), std::string("-set:definition,\\\n\t") + LATIN1 + "\n");
    fontset.append_base_font(KANJI);
    EXPECT_EQ(fontset.definition(),
              std::string("-set:definition,\\\n\t") + LATIN1 + ",\\\n\t" + KANJI + "\n");
}

TEST(Fontset, ReplacesTheFontOfTheSameCharacterSetInItsPlace) {
    GWFontSet fontset("-set");
    for (const char* xlfd : {LATIN1, KANJI, KANA}) fontset.append_base_font(xlfd);
    fontset.update_base_font(OTHER_KANJI);
    EXPECT_EQ(fonts_of(fontset), (std::vector<std::string>{LATIN1, OTHER_KANJI, KANA}));
    EXPECT_EQ(fontset.get_base_names(), std::string(LATIN1) + ',' + OTHER_KANJI + ',' + KANA);
}

TEST(Fontset, AppendsAFontOfACharacterSetThatItLacks) {
    GWFontSet fontset("-set");
    fontset.update_base_font(LATIN1);
    fontset.update_base_font(KANJI);
    EXPECT_EQ(fonts_of(fontset), (std::vector<std::string>{LATIN1, KANJI}));
}

TEST(Fontset, ReplacesTheFirstOfTwoFontsOfOneCharacterSet) {
    GWFontSet fontset("-set");
    fontset.append_base_font(KANJI);
    fontset.append_base_font(KANJI);
    fontset.update_base_font(OTHER_KANJI);
    EXPECT_EQ(fonts_of(fontset), (std::vector<std::string>{OTHER_KANJI, KANJI}));
}

// The character set is searched for anywhere in the new name, so iso8859-1 is found in iso8859-15.
TEST(Fontset, FindsACharacterSetAsPartOfTheName) {
    GWFontSet fontset("-set");
    fontset.append_base_font(LATIN1);
    fontset.update_base_font(LATIN9);
    EXPECT_EQ(fonts_of(fontset), (std::vector<std::string>{LATIN9}));
    fontset.update_base_font(LATIN1);
    EXPECT_EQ(fonts_of(fontset), (std::vector<std::string>{LATIN9, LATIN1}));
}

TEST(Fontset, TellsCharacterSetsApartByCase) {
    GWFontSet fontset("-set");
    fontset.append_base_font("-a-b-c-d-e--1-2-3-4-c-5-ISO8859-1");
    fontset.update_base_font(LATIN1);
    EXPECT_EQ(fontset.get_fonts().get_count(), 2);
}

// A name that is no XLFD name has empty fields, and their key "-" is in every XLFD name.
TEST(Fontset, AnyFontReplacesOneWithoutFields) {
    GWFontSet fontset("-set");
    fontset.append_base_font("-misc-fixed-*");
    fontset.update_base_font(KANJI);
    EXPECT_EQ(fonts_of(fontset), (std::vector<std::string>{KANJI}));
}

TEST(Fontset, MakesTheJoinedNamesAnew) {
    GWFontSet fontset("-set");
    fontset.append_base_font(LATIN1);
    fontset.append_base_font(KANJI);
    fontset.get_fonts().get_elem_at_pos(1)->set_xlfd_name(KANA);
    EXPECT_EQ(fontset.get_base_names(), std::string(LATIN1) + ',' + KANJI);
    fontset.update_base_names();
    EXPECT_EQ(fontset.get_base_names(), std::string(KANA) + ',' + KANJI);
}

TEST(Fontset, IsEqualByNameAlone) {
    GWFontSet one("-set");
    one.append_base_font(LATIN1);
    GWFontSet two("-set");
    EXPECT_EQ(one.equal(&two), 1);
    two.update_fontset_name("-Set");
    EXPECT_STREQ(two.get_name(), "-Set");
    EXPECT_EQ(one.equal(&two), 0);
    EXPECT_EQ(one.equal(nullptr), 0);
}

TEST(Fontset, TakesItsOwnNameAndItsOwnFont) {
    GWFontSet fontset("-a-long-enough-name-to-live-on-the-heap");
    fontset.update_fontset_name(fontset.get_name() + 2);
    EXPECT_STREQ(fontset.get_name(), "-long-enough-name-to-live-on-the-heap");
    fontset.append_base_font(LATIN1);
    fontset.update_base_font(fontset.get_base_names());
    EXPECT_STREQ(fontset.get_base_names(), LATIN1);
}

TEST(Fontset, SharesItsFonts) {
    gw::Ref<GWFont> font;
    {
        GWFontSet fontset("-set");
        fontset.append_base_font(KANJI);
        font = gw::Ref<GWFont>(fontset.get_fonts().get_elem_at_pos(1));
    }
    EXPECT_STREQ(font->get_xlfd_name(), KANJI);
}

}  // namespace
