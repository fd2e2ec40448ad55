// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "fontfiles/script_sample.h"
#include "support/bitmap_maker.h"
#include "support/sfnt_maker.h"
#include "support/temp_dir.h"

namespace gw {
namespace {

class ScriptSampleTest : public testing::Test {
  protected:
    std::string sample_of(std::string_view file, std::string_view wanted) {
        const Result<FontFace> font = FontFace::open(dir_.write("font", file));
        if (!font) ADD_FAILURE() << font.failure().text();
        return font ? sample_letters(*font, wanted) : "";
    }
    /// The sample of a font with these characters, which are in ascending order.
    std::string sample_with(const std::u32string& characters, std::string_view wanted = "Hello, world!") {
        test::SfntMaker maker;
        maker.characters = characters;
        return sample_of(maker.make(), wanted);
    }
    test::TempDir dir_;
};

TEST_F(ScriptSampleTest, TheTextIsShownIfTheFontHasItsLetters) {
    EXPECT_EQ(sample_with(U"Hdelorw"), "Hello, world!") << "signs may be missing";
    EXPECT_EQ(sample_with(U"ab", "b a"), "b a");
    EXPECT_EQ(sample_with(U"-123", "3 - 2 - 1"), "3 - 2 - 1");
}

TEST_F(ScriptSampleTest, LatinGoesBeforeOtherScripts) {
    EXPECT_EQ(sample_with(U"ABCαβγδε"), "ABC");
    EXPECT_EQ(sample_with(U"ABCDEFGHIJKLMNOP"), "ABCDEFGHIJKL");
}

TEST_F(ScriptSampleTest, AFontWithoutLatinShowsItsOwnScript) {
    EXPECT_EQ(sample_with(U"12\u060C\u0621\u0622\u0623\u064B"), "ءآأ") << "Arabic";
    EXPECT_EQ(sample_with(U"\u0901\u0905\u0906\u0907\u093E"), "अआइ") << "Devanagari";
    EXPECT_EQ(sample_with(U"\u3001\u3042\u30A2一丁七万"), "一丁七万") << "Han";
    EXPECT_EQ(sample_with(U"一丁七가각간"), "가각간") << "Korean, with more Chinese characters";
    EXPECT_EQ(sample_with(U"\U00010400\U00010401"), "\U00010400\U00010401") << "Deseret";
}

TEST_F(ScriptSampleTest, AFontWithoutLettersShowsItsSigns) {
    EXPECT_EQ(sample_with(U"\u200B\u25CC\u2600\u2601"), "\u2600\u2601");
    EXPECT_EQ(sample_with(U"\uE000\uE001"), "\uE000\uE001") << "of its own making";
    EXPECT_EQ(sample_with(U"\u0300"), "") << "nothing that stands by itself";
}

TEST_F(ScriptSampleTest, ABitmapFontIsKnownByItsCharset) {
    test::BitmapMaker maker;
    maker.registry = "JISX0208.1983";
    maker.encoding = "0";
    maker.codes = {0x2121, 0x306C, 0x3441};
    EXPECT_EQ(sample_of(maker.make_bdf(), "Hello"), "一漢");
}

}  // namespace
}  // namespace gw
