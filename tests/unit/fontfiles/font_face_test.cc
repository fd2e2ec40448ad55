// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>

#include "fontfiles/font_face.h"
#include "support/bitmap_maker.h"
#include "support/compressed.h"
#include "support/sfnt_maker.h"
#include "support/temp_dir.h"

namespace gw {
namespace {

const std::string DEJAVU = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
const std::string TYPE1 = "/usr/share/fonts/X11/Type1/c0419bt_.pfb";

class FontFaceTest : public testing::Test {
  protected:
    Result<FontFace> opened(std::string_view bytes, long face = 0) {
        return FontFace::open(dir_.write("font", bytes), face);
    }
    FaceFacts facts_of(std::string_view bytes) {
        const Result<FontFace> font = opened(bytes);
        if (!font) ADD_FAILURE() << font.failure().text();
        return font ? font->facts() : FaceFacts{};
    }
    FaceFacts facts_with(std::vector<test::SfntName> names) {
        test::SfntMaker maker;
        maker.names = std::move(names);
        return facts_of(maker.make());
    }
    Failure failure_of(std::string_view bytes, long face = 0) {
        const Result<FontFace> font = opened(bytes, face);
        return font ? Failure{} : font.failure();
    }
    test::TempDir dir_;
};

TEST_F(FontFaceTest, ATrueTypeFontIsKnownByItsContent) {
    const FaceFacts facts = facts_of(test::SfntMaker().make());
    EXPECT_EQ(facts.format, FontFormat::TRUETYPE);
    EXPECT_EQ(facts.family, "Square");
    EXPECT_EQ(facts.style, "Regular");
    EXPECT_EQ(facts.faces, 1);
    EXPECT_EQ(facts.glyphs, 4);
    EXPECT_TRUE(facts.scalable);
    EXPECT_FALSE(facts.is_cid_keyed);
    EXPECT_TRUE(facts.pixel_sizes.empty());
    EXPECT_EQ(facts.charset, "");
}

TEST_F(FontFaceTest, FontsOfTheSystemAreKnownByTheirContent) {
    struct {
        std::string path;
        FontFormat format;
        std::string family;
        bool is_cid_keyed;
        bool fixed_pitch;
    } const cases[] = {
        {DEJAVU, FontFormat::TRUETYPE, "DejaVu Sans", false, false},
        {"/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf", FontFormat::TRUETYPE, "DejaVu Sans Mono",
         false, true},
        {TYPE1, FontFormat::TYPE1, "Courier 10 Pitch", false, true},
        {"/usr/share/fonts/opentype/urw-base35/NimbusSans-Regular.otf", FontFormat::OPENTYPE_CFF,
         "Nimbus Sans", false, false},
        {"/usr/share/fonts/X11/misc/10x20.pcf.gz", FontFormat::PCF, "Fixed", false, true},
    };
    for (const auto& one : cases) {
        const Result<FontFace> font = FontFace::open(one.path);
        ASSERT_TRUE(font) << font.failure().text();
        EXPECT_EQ(font->facts().format, one.format) << one.path;
        EXPECT_EQ(font->facts().family, one.family);
        EXPECT_EQ(font->facts().is_cid_keyed, one.is_cid_keyed) << one.path;
        EXPECT_EQ(font->facts().fixed_pitch, one.fixed_pitch) << one.path;
        EXPECT_EQ(font->facts().scalable, one.format != FontFormat::PCF) << one.path;
    }
}

TEST_F(FontFaceTest, ABitmapFontHasSizesAndACharset) {
    test::BitmapMaker maker;
    maker.registry = "JISX0201.1976";
    maker.encoding = "0";
    for (const std::string& file : {maker.make_bdf(), test::gzipped(maker.make_bdf())}) {
        const FaceFacts facts = facts_of(file);
        EXPECT_EQ(facts.format, FontFormat::BDF);
        EXPECT_EQ(facts.family, "Boxes");
        EXPECT_EQ(facts.charset, "jisx0201.1976-0");
        EXPECT_EQ(facts.pixel_sizes, std::vector<int>{8});
        EXPECT_EQ(facts.glyphs, 3);
        EXPECT_FALSE(facts.scalable);
        EXPECT_TRUE(facts.fixed_pitch);
    }
}

TEST_F(FontFaceTest, NamesAreInEnglishWhereTheFontHasThem) {
    EXPECT_EQ(facts_with({{3, 1, 0x407, 1, test::utf16("Quadrat")}, {3, 1, 0x809, 1, test::utf16("Square")}})
                  .family,
              "Square");
    EXPECT_EQ(facts_with({{3, 1, 0x407, 1, test::utf16("Quadrat")}}).family, "Quadrat");
    EXPECT_EQ(facts_with({{1, 0, 0, 1, "Mac"}, {0, 3, 0, 1, test::utf16("Unicode")}}).family, "Unicode");
    EXPECT_EQ(facts_with({{1, 0, 0, 1, "Mac\x8E"}}).family, "Macé");
    EXPECT_EQ(
        facts_with({{3, 1, 0x409, 1, test::utf16("Sq Bold")}, {3, 1, 0x409, 16, test::utf16("Sq")}}).family,
        "Sq");
}

TEST_F(FontFaceTest, NamesCanBeStrange) {
    EXPECT_EQ(facts_with({}).family, "");
    EXPECT_EQ(facts_with({{3, 1, 0x409, 1, ""}}).family, "");
    EXPECT_EQ(facts_with({{0, 3, 0, 1, std::string("\x65\xE5\x67\x2C", 4)}}).family, "日本") << "UTF-16 only";
    EXPECT_EQ(facts_with(test::windows_names("a-b, \"c\" 'd'")).family, "a-b, \"c\" 'd'");
    EXPECT_EQ(facts_with(test::windows_names("a\nb\x1B[2J\x7F")).family, "ab[2J");
    EXPECT_EQ(facts_with({{3, 1, 0x409, 1, test::utf16("odd") + "!"}}).family, "odd");
    EXPECT_EQ(facts_with(test::windows_names(std::string(30000, 'x'))).family, std::string(200, 'x'));
    EXPECT_EQ(facts_with(std::vector<test::SfntName>(5000, {3, 1, 0x409, 1, test::utf16("Same")})).family,
              "Same");
}

TEST_F(FontFaceTest, ACollectionHasSeveralFaces) {
    const std::string file = test::SfntMaker().make_collection(3, 3);
    EXPECT_EQ(facts_of(file).faces, 3);
    const Result<FontFace> third = opened(file, 2);
    ASSERT_TRUE(third) << third.failure().text();
    EXPECT_EQ(third->facts().family, "Square");
    EXPECT_EQ(failure_of(file, 3).text(), dir_.file("font") + ": this file has no font number 4");
    EXPECT_EQ(failure_of(file, 0x10000).reason, Reason::NO_SUCH_FACE);
}

TEST_F(FontFaceTest, WhatIsNoFontSaysSo) {
    EXPECT_EQ(failure_of("").reason, Reason::EMPTY_FILE);
    EXPECT_EQ(failure_of(test::gzipped("")).reason, Reason::NOT_UNPACKED);
    EXPECT_EQ(failure_of("A letter to somebody.\n").reason, Reason::NOT_A_FONT);
    EXPECT_EQ(failure_of(test::gzipped(test::gzipped(test::BitmapMaker().make_bdf()))).reason,
              Reason::NOT_A_FONT);
    EXPECT_EQ(failure_of(test::SfntMaker().make().substr(0, 100)).reason, Reason::DAMAGED_FONT);
    EXPECT_EQ(failure_of(test::SfntMaker().make_collection(1, 0xFFFFFFFF)).reason, Reason::DAMAGED_FONT);
}

TEST_F(FontFaceTest, CharactersAreInOrderWithTheirGlyphs) {
    test::SfntMaker maker;
    maker.characters = U"A\u20AC\U0001F600";
    const Result<FontFace> font = opened(maker.make());
    ASSERT_TRUE(font);
    const std::vector<FontFace::Character> characters = font->characters();
    ASSERT_EQ(characters.size(), 3U);
    EXPECT_EQ(characters[1].code, U'\u20AC');
    EXPECT_EQ(characters[1].glyph, 2U);
    EXPECT_EQ(characters[2].code, U'\U0001F600');
    EXPECT_TRUE(font->has_unicode());
    EXPECT_TRUE(font->has(U'\u20AC'));
    EXPECT_FALSE(font->has(U'B'));
    EXPECT_EQ(font->glyph_of(U'\u20AC'), 2U);
}

TEST_F(FontFaceTest, AFontWithoutUnicodeHasItsOwnCodes) {
    test::BitmapMaker maker;
    maker.registry = "ADOBE";
    maker.encoding = "FONTSPECIFIC";
    maker.codes = {33, 200};
    const Result<FontFace> font = opened(maker.make_bdf());
    ASSERT_TRUE(font);
    EXPECT_FALSE(font->has_unicode());
    ASSERT_EQ(font->characters().size(), 2U);
    EXPECT_EQ(font->characters()[1].code, char32_t{200});
    EXPECT_TRUE(font->has(33));
}

TEST_F(FontFaceTest, CodesOfAnOlderCharsetAreTranslated) {
    test::BitmapMaker maker;
    maker.registry = "ISO8859";
    maker.encoding = "15";
    maker.codes = {65, 0xA4, 0xE4};
    const Result<FontFace> font = opened(maker.make_bdf());
    ASSERT_TRUE(font);
    EXPECT_TRUE(font->has_unicode());
    ASSERT_EQ(font->characters().size(), 3U);
    EXPECT_EQ(font->characters()[2].code, U'€');
    EXPECT_TRUE(font->has(U'€'));
    EXPECT_FALSE(font->has(U'¤'));
    EXPECT_TRUE(font->draw(font->glyph_of(U'€'), 8));
}

TEST_F(FontFaceTest, GlyphsHaveNamesWhereTheFontGivesThem) {
    const Result<FontFace> type1 = FontFace::open(TYPE1);
    ASSERT_TRUE(type1);
    EXPECT_EQ(type1->glyph_name(type1->glyph_of(U'A')), "A");
    EXPECT_EQ(type1->glyph_name(1UL << 40), "");
    const Result<FontFace> nameless = opened(test::SfntMaker().make());
    ASSERT_TRUE(nameless);
    EXPECT_EQ(nameless->glyph_name(1), "");
}

TEST_F(FontFaceTest, AnOutlineIsDrawnAtTheSizeAskedFor) {
    const Result<FontFace> font = opened(test::SfntMaker().make());
    ASSERT_TRUE(font);
    const Result<GlyphImage> image = font->draw(1, 100);
    ASSERT_TRUE(image) << image.failure().text();
    EXPECT_EQ(image->width, 50);
    EXPECT_EQ(image->height, 50);
    EXPECT_EQ(image->left, 10);
    EXPECT_EQ(image->top, 50);
    ASSERT_EQ(image->rows.size(), 2500U);
    EXPECT_TRUE(std::all_of(image->rows.begin(), image->rows.end(), [](int grey) { return grey == 255; }));
    EXPECT_EQ(font->draw(4, 100).failure().reason, Reason::DAMAGED_GLYPH);
}

TEST_F(FontFaceTest, ABitmapIsDrawnInItsOwnSize) {
    const Result<FontFace> font = opened(test::BitmapMaker().make_bdf());
    ASSERT_TRUE(font);
    const Result<GlyphImage> image = font->draw(font->glyph_of(U'A'), 100);
    ASSERT_TRUE(image) << image.failure().text();
    EXPECT_EQ(image->width, 8);
    EXPECT_EQ(image->height, 8);
    EXPECT_EQ(image->top, 8);
    EXPECT_EQ(image->rows, std::vector<std::uint8_t>(64, 255));
}

TEST_F(FontFaceTest, ACharacterWithoutABitmapIsNotDrawn) {
    std::string bdf = test::BitmapMaker().make_bdf();
    const std::size_t bitmap = bdf.rfind("BITMAP");
    bdf.erase(bitmap, bdf.rfind("ENDCHAR") - bitmap);
    const Result<FontFace> font = opened(bdf);
    ASSERT_TRUE(font);
    EXPECT_EQ(font->draw(font->glyph_of(U'C'), 8).failure().reason, Reason::DAMAGED_GLYPH);
    EXPECT_TRUE(font->draw(font->glyph_of(U'A'), 8));
}

TEST_F(FontFaceTest, AFaceCanBeMoved) {
    Result<FontFace> first = FontFace::open(DEJAVU);
    ASSERT_TRUE(first);
    FontFace font = std::move(*first);
    Result<FontFace> second = opened(test::SfntMaker().make());
    ASSERT_TRUE(second);
    font = std::move(*second);
    EXPECT_EQ(font.facts().family, "Square");
    EXPECT_TRUE(font.load(1));
}

}  // namespace
}  // namespace gw
