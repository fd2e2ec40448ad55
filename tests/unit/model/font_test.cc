// SPDX-License-Identifier: MIT
#include "model/gw_font.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "core/gw_list.h"
#include "support/under_policy.h"
#include "unit/model/model_test_support.h"

namespace {

using gw::Ref;
using gw::test::make_font;
using gw::test::make_read_only_font;
using gw::test::Xlfd;
using testing::ElementsAre;

constexpr const char* COURIER = "-adobe-courier-bold-o-normal--12-120-75-75-m-70-iso8859-1";
constexpr const char* WRONG_FIELD = "GWFont::set_field : Incorrect field specified\n";
constexpr std::array<GWFont::GW_FONT_TYPE, 4> ALL_TYPES = {GWFont::BITMAP_FONT, GWFont::TYPE1_FONT,
                                                           GWFont::TYPE0_FONT, GWFont::TYPE3_FONT};

std::vector<std::string> fields_of(const GWFont& font) {
    std::vector<std::string> fields;
    for (int f = 0; f < GWFont::FIELD_COUNT; ++f) {
        fields.emplace_back(font.get_field(static_cast<GWFont::FIELD>(f)));
    }
    return fields;
}

/// A font that has only these fields, and no stored XLFD name.
Ref<GWFont> font_of_fields(const std::vector<std::pair<GWFont::FIELD, const char*>>& fields,
                           GWFont::GW_FONT_TYPE type = GWFont::TYPE1_FONT) {
    Ref<GWFont> font(new GWFont(type));
    for (const auto& [f, value] : fields) font->set_field(f, value);
    return font;
}

TEST(Font, IsEmptyWhenNew) {
    for (const GWFont::GW_FONT_TYPE type : ALL_TYPES) {
        const GWFont font(type);
        EXPECT_EQ(font.get_type(), type);
        EXPECT_EQ(fields_of(font), std::vector<std::string>(14));
        EXPECT_STREQ(font.get_ps_name(), "");
        EXPECT_EQ(font.get_font_file_list(), nullptr);
        EXPECT_EQ(font.get_dir_name(), nullptr);
        EXPECT_FALSE(font.is_read_only());
    }
}

TEST(Font, NumbersTypesAndFieldsAsDocumented) {
    EXPECT_EQ(GWFont::BITMAP_FONT, 0);
    EXPECT_EQ(GWFont::TYPE1_FONT, 1);
    EXPECT_EQ(GWFont::TYPE0_FONT, 2);
    EXPECT_EQ(GWFont::TYPE3_FONT, 3);
    EXPECT_EQ(GWFont::FOUNDRY, 0);
    EXPECT_EQ(GWFont::POINT_SIZE, 7);
    EXPECT_EQ(GWFont::CHARSET_ENCODING, 13);
}

TEST(Font, IsABitmapOrAnOutlineAndNamedByItsType) {
    for (const GWFont::GW_FONT_TYPE type : ALL_TYPES) {
        EXPECT_EQ(GWFont(type).is_bitmap(), type == GWFont::BITMAP_FONT) << type;
        EXPECT_EQ(GWFont(type).is_postscript_named(),
                  type == GWFont::TYPE0_FONT || type == GWFont::TYPE3_FONT)
            << type;
    }
}

TEST(FontField, HoldsNoDashes) {
    Ref<GWFont> font =
        font_of_fields({{GWFont::SETWIDTH_NAME, "semi-condensed"}, {GWFont::FOUNDRY, "-a--b-"}});
    EXPECT_STREQ(font->get_field(GWFont::SETWIDTH_NAME), "semi condensed");
    EXPECT_STREQ(font->get_field(GWFont::FOUNDRY), " a  b ");
    const std::string name = font->get_xlfd_name();
    EXPECT_EQ(std::count(name.begin(), name.end(), '-'), 14) << name;
}

TEST(FontField, HoldsAtMost127Characters) {
    for (const std::size_t length : {126U, 127U, 128U, 5000U}) {
        GWFont font(GWFont::BITMAP_FONT);
        font.set_field(GWFont::WEIGHT_NAME, std::string(length, 'w').c_str());
        EXPECT_EQ(std::string(font.get_field(GWFont::WEIGHT_NAME)),
                  std::string(std::min<std::size_t>(length, 127), 'w'))
            << length;
    }
}

TEST(FontField, OutOfRangeIsReportedAndChangesNothing) {
    for (const int wrong : {-1, 14, 15}) {
        GWFont font(GWFont::BITMAP_FONT);
        font.set_xlfd_name(COURIER);
        const std::vector<std::string> before = fields_of(font);
        testing::internal::CaptureStdout();
        font.set_field(static_cast<GWFont::FIELD>(wrong), "x");
        EXPECT_EQ(testing::internal::GetCapturedStdout(), WRONG_FIELD) << wrong;
        EXPECT_EQ(fields_of(font), before) << wrong;
    }
}

TEST(FontField, TheGetterReportsInTheSettersWords) {
    for (const int wrong : {-1, 14, 15}) {
        const GWFont font(GWFont::BITMAP_FONT);
        testing::internal::CaptureStdout();
        const char* value = font.get_field(static_cast<GWFont::FIELD>(wrong));
        EXPECT_EQ(testing::internal::GetCapturedStdout(), WRONG_FIELD) << wrong;
        EXPECT_EQ(value, nullptr) << wrong;
    }
}

TEST(FontXlfdName, SetsTheFields) {
    const Ref<GWFont> font = make_font(COURIER);
    EXPECT_STREQ(font->get_xlfd_name(), COURIER);
    EXPECT_THAT(fields_of(*font), ElementsAre("adobe", "courier", "bold", "o", "normal", "", "12", "120",
                                              "75", "75", "m", "70", "iso8859", "1"));
}

TEST(FontXlfdName, OfThirteenOrFifteenDashesLeavesTheFields) {
    for (const std::string& other :
         {std::string("-a-b-c-d-e-f-g-h-i-j-k-l-m"), std::string("-a-b-c-d-e-f-g-h-i-j-k-l-m-n-o"),
          std::string("fixed"), std::string()}) {
        const Ref<GWFont> font = make_font(COURIER);
        const std::vector<std::string> before = fields_of(*font);
        font->set_xlfd_name(other.c_str());
        EXPECT_EQ(fields_of(*font), before) << other;
        EXPECT_STREQ(font->get_xlfd_name(), other.empty() ? COURIER : other.c_str());
    }
}

TEST(FontXlfdName, IsComposedOnceFromTheFields) {
    Ref<GWFont> font = font_of_fields({{GWFont::FOUNDRY, "adobe"}, {GWFont::CHARSET_ENCODING, "1"}});
    EXPECT_STREQ(font->get_xlfd_name(), "-adobe-------------1");
    font->set_field(GWFont::FOUNDRY, "bitstream");
    EXPECT_STREQ(font->get_xlfd_name(), "-adobe-------------1");
}

TEST(FontXlfdName, HoldsAtMost1792Characters) {
    for (const std::size_t length : {1791U, 1792U, 1793U, 20000U}) {
        const Ref<GWFont> font = make_font(std::string(length, 'n'));
        EXPECT_EQ(std::string(font->get_xlfd_name()).size(), std::min<std::size_t>(length, 1792)) << length;
        font->set_ps_name(std::string(length, 'p').c_str());
        EXPECT_EQ(std::string(font->get_ps_name()).size(), std::min<std::size_t>(length, 1792)) << length;
    }
}

TEST(FontXlfdName, ComposedOfFullFieldsIsCutAt1792Characters) {
    GWFont font(GWFont::TYPE1_FONT);
    for (int f = 0; f < GWFont::FIELD_COUNT; ++f) {
        font.set_field(static_cast<GWFont::FIELD>(f), std::string(127, 'a').c_str());
    }
    EXPECT_EQ(std::string(font.get_xlfd_name()).size(), 1792U);  // exactly 14 * 128 characters
}

TEST(FontXlfdName, MaySetItselfAgain) {
    const Ref<GWFont> font = make_font(COURIER);
    font->set_xlfd_name(font->get_xlfd_name());
    EXPECT_STREQ(font->get_xlfd_name(), COURIER);
    EXPECT_STREQ(font->get_field(GWFont::CHARSET_ENCODING), "1");
}

TEST(FontConstructXlfdName, ComposesAnewWhateverIsStored) {
    Ref<GWFont> font = make_font(COURIER);
    font->set_field(GWFont::POINT_SIZE, "240");
    std::array<char, 200> name{};
    font->construct_xlfd_name("ignored", name.data(), 199);
    EXPECT_STREQ(name.data(), "-adobe-courier-bold-o-normal--12-240-75-75-m-70-iso8859-1");
    EXPECT_STREQ(font->get_xlfd_name(), COURIER);
}

TEST(FontConstructXlfdName, CopiesABitmapAliasBack) {
    const Ref<GWFont> font = make_font("fixed");
    std::array<char, 20> name{};
    font->construct_xlfd_name("", name.data(), 19);
    EXPECT_STREQ(name.data(), "fixed");
    name.fill('?');
    font->construct_xlfd_name("", name.data(), 3);
    EXPECT_EQ(std::string(name.data(), 5), std::string("fix\0?", 5));
}

TEST(FontConstructXlfdName, ComposesForAnOutlineFontOfAnotherName) {
    const Ref<GWFont> font = make_font("fixed", GWFont::TYPE1_FONT);
    std::array<char, 20> name{};
    font->construct_xlfd_name("", name.data(), 19);
    EXPECT_STREQ(name.data(), "--------------");
}

TEST(FontConstructXlfdName, LeavesABufferThatIsTooShort) {
    const Ref<GWFont> font = make_font(COURIER);
    const auto length = static_cast<unsigned>(std::string(COURIER).size());
    std::array<char, 100> name{'k', 'e', 'p', 't'};
    testing::internal::CaptureStdout();
    font->construct_xlfd_name("", name.data(), length - 1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Not enough space in the xlfd_name string\n");
    EXPECT_STREQ(name.data(), "kept");
    font->construct_xlfd_name("", name.data(), length);
    EXPECT_STREQ(name.data(), COURIER);
}

struct NameCase {
    std::string xlfd;
    std::string shown;
};

class FontName : public testing::Test {
  protected:
    static std::string xlfd(const std::string& family, const std::string& weight, const std::string& slant,
                            const std::string& add_style = "", const std::string& set_width = "normal") {
        return "-adobe-" + family + '-' + weight + '-' + slant + '-' + set_width + '-' + add_style +
               "-12-120-75-75-m-70-iso8859-1";
    }
};

TEST_F(FontName, IsMadeOfTheWordsOfTheFields) {
    const NameCase cases[] = {
        {xlfd("helvetica", "bold", "o"), "Helvetica Bold Oblique [Type-1]"},
        {xlfd("helvetica", "bold", "i"), "Helvetica Bold Italic [Type-1]"},
        {xlfd("helvetica", "bold", "r"), "Helvetica Bold [Type-1]"},
        {xlfd("helvetica", "bold", "R"), "Helvetica Bold [Type-1]"},
        {xlfd("helvetica", "bold", "ro"), "Helvetica Bold Reverse Oblique [Type-1]"},
        {xlfd("helvetica", "bold", "RI"), "Helvetica Bold Reverse Italic [Type-1]"},
        {xlfd("helvetica", "bold", "ot"), "Helvetica Bold ot [Type-1]"},
        {xlfd("helvetica", "bold", ""), "Helvetica Bold  [Type-1]"},
        {xlfd("helvetica", "", "r"), "Helvetica  [Type-1]"},
        {xlfd("", "bold", "r"), " Bold [Type-1]"},
        {xlfd("", "", "r"), "  [Type-1]"},
        {xlfd("helvetica", "bold", "r", "sans"), "Helvetica Bold Sans [Type-1]"},
        {xlfd("helvetica", "bold", "r", " sans"), "Helvetica Bold [Type-1]"},
        {xlfd("new century", "demi bold", "r"), "New century Demi bold [Type-1]"},
    };
    for (const NameCase& c : cases) {
        EXPECT_EQ(make_font(c.xlfd, GWFont::TYPE1_FONT)->get_hrn_name(), c.shown) << c.xlfd;
    }
}

TEST(ListedName, HasTheCharsetWhereThePolicyNamesIt) {
    const struct {
        const char* charset;
        const char* modern;
    } cases[] = {{"iso8859-1", "Fixed Medium [Bitmap]"},
                 {"ISO8859-1", "Fixed Medium [Bitmap]"},
                 {"iso8859-5", "Fixed Medium ISO-Latin/Cyrillic [Bitmap]"},
                 {"koi8-r", "Fixed Medium koi8-r [Bitmap]"},
                 {"iso10646-1", "Fixed Medium iso10646-1 [Bitmap]"}};
    for (const auto& c : cases) {
        const std::string xlfd = std::string("-misc-fixed-medium-r-normal--13-120-75-75-c-80-") + c.charset;
        for (const bool modern : {false, true}) {
            const gw::test::UnderPolicy policy(modern);
            EXPECT_EQ(make_font(xlfd, GWFont::BITMAP_FONT)->get_hrn_name(),
                      modern ? c.modern : "Fixed Medium [Bitmap]")
                << c.charset;
            EXPECT_EQ(make_font(xlfd, GWFont::TYPE1_FONT)->get_hrn_name(), "Fixed Medium [Type-1]")
                << "an outline has one entry";
        }
    }
}

TEST_F(FontName, NeverHasTheSetWidth) {
    for (const char* width : {"normal", "semicondensed", "", "wide"}) {
        const Ref<GWFont> font = make_font(xlfd("courier", "bold", "r", "", width));
        EXPECT_EQ(font->get_hrn_name(), "Courier Bold [Bitmap]") << width;
        EXPECT_EQ(font->get_cli_hrn_name(), "[Adobe Courier Bold ISO-Latin-1 Bitmap]") << width;
    }
}

TEST_F(FontName, EndsInTheTypesTag) {
    EXPECT_EQ(make_font(COURIER)->get_hrn_name(), "Courier Bold Oblique [Bitmap]");
    EXPECT_EQ(make_font(COURIER, GWFont::TYPE1_FONT)->get_hrn_name(), "Courier Bold Oblique [Type-1]");
    EXPECT_EQ(make_font("ryumin-Light", GWFont::TYPE0_FONT)->get_hrn_name(), "Ryumin-Light [Type-0]");
    EXPECT_EQ(make_font("script", GWFont::TYPE3_FONT)->get_hrn_name(), "Script [Type-3]");
    EXPECT_EQ(make_font("", GWFont::TYPE3_FONT)->get_hrn_name(), " [Type-3]");
}

TEST_F(FontName, OfABareAliasHasTwoBlanksBeforeTheTag) {
    EXPECT_EQ(make_font("fixed")->get_hrn_name(), "fixed  [Bitmap]");
    EXPECT_EQ(make_font("fixed")->get_cli_hrn_name(), "[fixed  Bitmap]");
    EXPECT_EQ(make_font("9x15", GWFont::TYPE1_FONT)->get_hrn_name(), "9x15  [Type-1]");
}

TEST_F(FontName, OfFieldsAloneComposesTheXlfdNameFirst) {
    Ref<GWFont> font = font_of_fields(
        {{GWFont::TYPEFACE_NAME, "times"}, {GWFont::WEIGHT_NAME, "bold"}, {GWFont::SLANT, "i"}});
    EXPECT_EQ(font->get_hrn_name(), "Times Bold Italic [Type-1]");
    EXPECT_STREQ(font->get_xlfd_name(), "--times-bold-i----------");
}

TEST_F(FontName, OfAReadOnlyFontIsMarkedAtColumn46OrBehindThreeBlanks) {
    const struct {
        std::size_t length;  // of the whole name with its tag
        std::string gap;
    } cases[] = {{20, std::string(26, ' ')}, {45, " "}, {46, "   "}, {50, "   "}};
    for (const auto& c : cases) {
        // The parts are NAME, a blank, and " [Bitmap]".
        const std::string alias(c.length - 10, 'n');
        EXPECT_EQ(make_read_only_font(alias)->get_hrn_name(), alias + "  [Bitmap]" + c.gap + "[Read Only]")
            << c.length;
    }
    EXPECT_EQ(make_read_only_font("", GWFont::TYPE0_FONT)->get_hrn_name().find("[Read Only]"), 46U);
    EXPECT_EQ(make_read_only_font(COURIER)->get_cli_hrn_name(),
              "[Adobe Courier Bold Oblique ISO-Latin-1 Bitmap]");
}

TEST_F(FontName, InBracketsHasFoundryAndCharset) {
    const NameCase cases[] = {
        {"-adobe-times-bold-i-normal--0-0-0-0-p-0-ISO8859-1", "[Adobe Times Bold Italic ISO-Latin-1 Type-1]"},
        {"-adobe-times-bold-r-normal--0-0-0-0-p-0-koi8-r", "[Adobe Times Bold koi8-r Type-1]"},
        {"--times-bold-r-normal--0-0-0-0-p-0-iso8859-2", "[ Times Bold ISO-Latin-2 Type-1]"},
        {"-adobe-times-bold-r-normal-swash-0-0-0-0-p-0-iso8859-1",
         "[Adobe Times Bold Swash ISO-Latin-1 Type-1]"},
    };
    for (const NameCase& c : cases) {
        EXPECT_EQ(make_font(c.xlfd, GWFont::TYPE1_FONT)->get_cli_hrn_name(), c.shown) << c.xlfd;
    }
    EXPECT_EQ(make_font("ryumin-Light", GWFont::TYPE0_FONT)->get_cli_hrn_name(), "[Ryumin-Light Type-0]");
    EXPECT_EQ(make_font("script", GWFont::TYPE3_FONT)->get_cli_hrn_name(), "[Script Type-3]");
}

TEST_F(FontName, ThatIsPresetStandsForBothNamesUnlessEmpty) {
    const Ref<GWFont> font = make_read_only_font(COURIER);
    font->set_preset_hrn_name("as it stands");
    EXPECT_EQ(font->get_hrn_name(), "as it stands");
    EXPECT_EQ(font->get_cli_hrn_name(), "as it stands");
    font->set_preset_hrn_name("");
    EXPECT_EQ(font->get_cli_hrn_name(), "[Adobe Courier Bold Oblique ISO-Latin-1 Bitmap]");
}

using FontNameDeathTest = FontName;

TEST_F(FontNameDeathTest, OfAWrongTypeEndsTheProgram) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto wrong = static_cast<GWFont::GW_FONT_TYPE>(3 + 1);
    // The message goes to standard output, but a death test reads standard error.
    EXPECT_EXIT((dup2(2, 1), GWFont(wrong).get_hrn_name()), testing::ExitedWithCode(255),
                "construct_hrn: wrong font type\n$");
    EXPECT_EXIT((dup2(2, 1), GWFont(wrong).get_cli_hrn_name()), testing::ExitedWithCode(255),
                "construct_hrn: wrong font type\n$");
}

TEST(FontCharset, HasAReadableNameForEveryRow) {
    const NameCase cases[] = {
        {"DEC.CNS11643.1986-2", "Chinese-11643"},
        {"DEC.DTSCS.1990-2", "DEC-Taiwan-Supplemental"},
        {"GB2312.1980-0", "PRC-Hanzi-GL"},
        {"GB2312.1980-1", "PRC-Hanzi-GR"},
        {"ISO646.1991-IRV", "ISO-646"},
        {"ISO8859-1", "ISO-Latin-1"},
        {"iso8859-1", "ISO-Latin-1"},
        {"ISO8859-2", "ISO-Latin-2"},
        {"ISO8859-3", "ISO-Latin-3"},
        {"ISO8859-4", "ISO-Latin-4"},
        {"ISO8859-5", "ISO-Latin/Cyrillic"},
        {"ISO8859-6", "ISO-Latin/Arabic"},
        {"ISO8859-7", "ISO-Latin/Greek"},
        {"ISO8859-8", "ISO-Latin/Hebrew"},
        {"ISO8859-9", "ISO-Latin-5"},
        {"JISX0201.1976-0", "Roman-Katakana"},
        {"JISX0208.1983-0", "Kanji-1983"},
        {"jisx0208.1983-1", "Kanji-1983-1"},
        {"JISX0208.1990-0", "Kanji-1990"},
        {"JISX0212.1990-0", "Kanji-Supplement-1990"},
        {"KSC5601.1987-0", "Korean-1987"},
        {"KSC5601.1987-1", "Korean-1987-1"},
        {"koi8-r", "koi8-r"},
        {"ISO8859-15", "ISO8859-15"},
        {"-", "-"},
    };
    for (const NameCase& c : cases) {
        GWFont font(GWFont::TYPE1_FONT);
        const std::size_t dash = c.xlfd.find('-');
        font.set_field(GWFont::CHARSET_REGISTRY, c.xlfd.substr(0, dash).c_str());
        font.set_field(GWFont::CHARSET_ENCODING, c.xlfd.substr(dash + 1).c_str());
        EXPECT_EQ(font.get_charset_hrn_name(), ' ' + c.shown) << c.xlfd;
    }
}

TEST(FontCharset, IsNamedOnceAndNotAgain) {
    Ref<GWFont> font = make_font(COURIER);
    EXPECT_STREQ(font->get_charset_hrn_name(), " ISO-Latin-1");
    font->set_field(GWFont::CHARSET_ENCODING, "2");
    EXPECT_STREQ(font->get_charset_hrn_name(), " ISO-Latin-1");
    GWFont copy(*font, "/");
    EXPECT_STREQ(copy.get_charset_hrn_name(), " ISO-Latin-2");  // a copy does not take the cached name over
}

/// A font whose field `f` differs from COURIER's.
Ref<GWFont> varied(GWFont::FIELD f) {
    Ref<GWFont> font = make_font(COURIER);
    font->set_field(f, "other");
    return font;
}

TEST(FontCompareHrn, IgnoresSizesResolutionsAndAverageWidth) {
    const std::vector<GWFont::FIELD> ignored = {GWFont::PIXEL_SIZE, GWFont::POINT_SIZE, GWFont::RESOLUTION_X,
                                                GWFont::RESOLUTION_Y, GWFont::AVERAGE_WIDTH};
    const Ref<GWFont> font = make_font(COURIER);
    for (int i = 0; i < GWFont::FIELD_COUNT; ++i) {
        const auto f = static_cast<GWFont::FIELD>(i);
        const Ref<GWFont> other = varied(f);
        const int expected = std::find(ignored.begin(), ignored.end(), f) != ignored.end() ? 1 : 0;
        EXPECT_EQ(font->compare_hrn(other.get()), expected) << f;
        EXPECT_EQ(other->compare_hrn(font.get()), expected) << f;
        EXPECT_EQ(font->hrn_key() == other->hrn_key(), expected == 1) << f;
    }
}

TEST(FontCompareHrn, IgnoresCaseButNotTheType) {
    const Ref<GWFont> lower = make_font(COURIER);
    const Ref<GWFont> upper = make_font("-Adobe-COURIER-Bold-O-Normal--24-240-75-75-M-70-ISO8859-1");
    const Ref<GWFont> outline = make_font(COURIER, GWFont::TYPE1_FONT);
    EXPECT_EQ(lower->compare_hrn(upper.get()), 1);
    EXPECT_EQ(lower->hrn_key(), upper->hrn_key());
    EXPECT_EQ(lower->compare_hrn(outline.get()), 0);
    EXPECT_NE(lower->hrn_key(), outline->hrn_key());
}

TEST(FontCompareHrn, TellsFieldsApartThatReadTheSameInARow) {
    const Ref<GWFont> a = font_of_fields({{GWFont::FOUNDRY, "ab"}, {GWFont::TYPEFACE_NAME, "c"}});
    const Ref<GWFont> b = font_of_fields({{GWFont::FOUNDRY, "a"}, {GWFont::TYPEFACE_NAME, "bc"}});
    EXPECT_EQ(a->compare_hrn(b.get()), 0);
    EXPECT_NE(a->hrn_key(), b->hrn_key());
}

TEST(FontCompareHrn, AgreesWithTheKeyForEveryByte) {
    for (int byte = 1; byte < 256; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        const Ref<GWFont> font = font_of_fields({{GWFont::FOUNDRY, text.c_str()}});
        for (int other_byte = 1; other_byte < 256; ++other_byte) {
            const std::string other_text(1, static_cast<char>(other_byte));
            const Ref<GWFont> other = font_of_fields({{GWFont::FOUNDRY, other_text.c_str()}});
            ASSERT_EQ(font->compare_hrn(other.get()) == 1, font->hrn_key() == other->hrn_key())
                << byte << ' ' << other_byte;
        }
    }
}

TEST(FontCmp, ComparesNamesWithoutRegardToCase) {
    const struct {
        Ref<GWFont> a;
        Ref<GWFont> b;
        int expected;
    } cases[] = {
        {make_font(COURIER), make_font(COURIER), 1},
        {make_font("Fixed"), make_font("fixed"), 1},
        {make_font(COURIER), make_font(COURIER, GWFont::TYPE1_FONT), 0},
        {make_font(Xlfd{}), make_font(Xlfd{.decipoints = "140"}), 0},
        {make_font("A", GWFont::TYPE0_FONT), make_font("a", GWFont::TYPE0_FONT), 1},
        {make_font("A", GWFont::TYPE0_FONT), make_font("a", GWFont::TYPE3_FONT), 0},
        {make_font("A", GWFont::TYPE3_FONT), make_font("b", GWFont::TYPE3_FONT), 0},
        {font_of_fields({{GWFont::FOUNDRY, "x"}}), make_font("-X-------------", GWFont::TYPE1_FONT), 1},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.a->fontcmp(c.b.get()), c.expected)
            << c.a->get_xlfd_name() << c.a->get_ps_name() << " and " << c.b->get_xlfd_name();
        EXPECT_EQ(c.b->fontcmp(c.a.get()), c.expected);
    }
}

TEST(FontCmp, TellsPointSizesApartThatOneNameHolds) {
    const Ref<GWFont> small = make_font(Xlfd{.decipoints = "80"});
    const Ref<GWFont> large = make_font(Xlfd{.decipoints = "120"});
    EXPECT_EQ(small->compare_hrn(large.get()), 1);
    EXPECT_EQ(small->fontcmp(large.get()), 0);
}

TEST(FontList, SortsByTheBracketedNameWithoutRegardToCase) {
    const Ref<GWFont> fonts[] = {make_font("zebra"), make_font("Apple"), make_font("apple"), make_font("b")};
    GW_SORTED_LIST<GWFont> list(0);
    for (const Ref<GWFont>& font : fonts) list.insert(font.get());
    std::vector<std::string> names;
    for (GWFont* font : list) names.emplace_back(font->get_xlfd_name());
    EXPECT_THAT(names, ElementsAre("apple", "Apple", "b", "zebra"));
}

TEST(FontStorage, IsObtainedAndReleased) {
    auto* text = static_cast<char*>(gw_alloc(6));
    ASSERT_NE(text, nullptr);
    std::copy_n("hello", 6, text);
    EXPECT_STREQ(text, "hello");
    gw_free(text);
    gw_free(nullptr);
}

}  // namespace
