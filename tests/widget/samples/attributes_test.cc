// SPDX-License-Identifier: MIT
//
// The attributes dialog with the details of a font: its file, all its names, and its characters.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/program/program_objects.h"
#include "app/samples/attrdlg.h"
#include "app/samples/font_details.h"
#include "app/samples/grid_geometry.h"
#include "app/samples/typed_character.h"
#include "support/bitmap_maker.h"
#include "support/compressed.h"
#include "support/fake_packages.h"
#include "support/font_maker.h"
#include "support/sfnt_maker.h"

#include "widget/dialogs_test_support.h"
#include "widget/selections.h"

#include <Xm/List.h>
#include <Xm/TextF.h>

namespace {

using namespace gw::test;

TEST(GridGeometry, PlacesCellsRowByRow) {
    const gw::GridGeometry grid = {
        .cells = 10, .cell_width = 20, .cell_height = 30, .width = 70, .height = 65};
    EXPECT_EQ(grid.columns(), 3);
    EXPECT_EQ(grid.rows(), 4);
    EXPECT_EQ(grid.whole_rows(), 2);
    EXPECT_EQ(grid.last_top(), 2);
    EXPECT_EQ(grid.corner_of(4, 0).x, 20);
    EXPECT_EQ(grid.corner_of(4, 0).y, 30);
    EXPECT_EQ(grid.corner_of(4, 1).y, 0);
    EXPECT_EQ(grid.cell_at(59, 59, 0), 5);
    EXPECT_EQ(grid.cell_at(60, 59, 0), std::nullopt) << "beside the columns";
    EXPECT_EQ(grid.cell_at(0, 31, 2), 9);
    EXPECT_EQ(grid.cell_at(20, 31, 2), std::nullopt) << "behind the last cell";
    EXPECT_EQ(grid.cell_at(-1, 0, 0), std::nullopt);
    EXPECT_EQ(grid.shown(0).last, 9) << "the third row is seen in part";
    EXPECT_EQ(grid.shown(2).first, 6);
    EXPECT_EQ(grid.shown(2).last, 10);
}

TEST(GridGeometry, ScrollsAsLittleAsItCan) {
    const gw::GridGeometry grid = {
        .cells = 100, .cell_width = 10, .cell_height = 10, .width = 50, .height = 30};
    const struct {
        int cell, top, expected;
    } cases[] = {{0, 0, 0}, {14, 0, 0}, {15, 0, 1}, {99, 0, 17}, {99, 17, 17}, {50, 17, 10}, {0, 17, 0}};
    for (const auto& c : cases)
        EXPECT_EQ(grid.top_showing(c.cell, c.top), c.expected) << c.cell << " from " << c.top;
}

TEST(GridGeometry, OfNoCellsOrATinyWindowIsHarmless) {
    for (const int size : {1, 5, 1000}) {
        const gw::GridGeometry empty = {
            .cells = 0, .cell_width = 10, .cell_height = 10, .width = size, .height = size};
        EXPECT_EQ(empty.rows(), 0);
        EXPECT_EQ(empty.clamped_top(5), 0);
        EXPECT_EQ(empty.shown(0).last, 0);
        EXPECT_EQ(empty.cell_at(0, 0, 0), std::nullopt);
    }
}

TEST(TypedCharacter, IsTheCharacterOrItsCode) {
    const struct {
        const char* typed;
        std::optional<char32_t> code;
    } cases[] = {{"A", U'A'},
                 {"5", U'5'},
                 {"20AC", 0x20AC},
                 {"20ac", 0x20AC},
                 {"U+20AC", 0x20AC},
                 {"u+9", 0x9},
                 {"0x2121", 0x2121},
                 {"10FFFF", 0x10FFFF},
                 {"110000", std::nullopt},
                 {"1000000", std::nullopt},
                 {"Euro", std::nullopt},
                 {"U+", std::nullopt},
                 {"20AC ", std::nullopt},
                 {"-5", std::nullopt},
                 {"", std::nullopt}};
    for (const auto& c : cases) EXPECT_EQ(gw::typed_character(c.typed), c.code) << c.typed;
    EXPECT_EQ(gw::code_text(0x20AC, true), "U+20AC");
    EXPECT_EQ(gw::code_text(0x1F600, true), "U+1F600");
    EXPECT_EQ(gw::code_text(0x41, false), "0x0041");
}

constexpr const char* XLFD = "-misc-square-medium-r-normal--0-0-0-0-p-0-iso10646-1";
constexpr const char* LATIN = "-misc-square-medium-r-normal--0-0-0-0-p-0-iso8859-1";

/// The characters from the first to the last code.
std::u32string characters(char32_t first, char32_t last) {
    std::u32string all;
    for (char32_t code = first; code <= last; ++code) all += code;
    return all;
}

class Details : public testing::Test {
  protected:
    void SetUp() override {
        home();
        start_program(
            {"-xrm", "Glyphward*gw_modern_windows: True", "-xrm", "Glyphward*gw_modern_fonts: True"});
        ASSERT_NE(gw::font_details(), nullptr);
        type_into(part("find_text"), "");
    }
    void TearDown() override {
        if (attr_dlg_managed != 0) press(find(wi_attr_dlg, "close_button"));
        pump();
    }
    /// Shows a font whose file has these bytes, and waits until nothing more is read.
    gw::Ref<GWFont> show(const std::string& file, const std::string& bytes, GWFont::GW_FONT_TYPE type,
                         const std::vector<gw::IndexName>& names = {{.xlfd = XLFD}, {.xlfd = LATIN}}) {
        dir_.write(file, bytes);
        gw::Ref<GWFont> font(make_font(type, names.front().xlfd));
        font->set_index_names(names);
        give_file(*font, file.c_str(), dir_.c_str());
        show(*font);
        return font;
    }
    static void show(GWFont& font, const GWHRNElement* entry = nullptr) {
        show_font_attributes(&font, nullptr, entry);
        ASSERT_TRUE(pump_until([] { return is_viewable(wi_attr_dlg); }));
        ASSERT_TRUE(pump_until([] { return !gw::font_details()->is_looking() && !grid().is_drawing(); }));
    }
    gw::Ref<GWFont> show_square(const std::u32string& all = U"ABC") {
        SfntMaker maker;
        maker.characters = all;
        return show("square.ttf", maker.make(), GWFont::TRUETYPE_FONT);
    }
    static std::string value(const char* name) { return gw::field_text(part(name)); }
    static Widget part(const char* name) { return find(wi_attr_dlg, name); }
    static gw::CharacterGrid& grid() { return gw::font_details()->grid(); }
    /// Presses the space bar where the list has its cursor.
    static void select_by_key(int row) {
        Widget list = part("names_list");
        XmProcessTraversal(list, XmTRAVERSE_CURRENT);
        XmListSetKbdItemPos(list, row);
        press_key(list, "space");
    }
    /// Selects all of a field, by keys.
    static void select_all(const char* name) {
        XmProcessTraversal(part(name), XmTRAVERSE_CURRENT);
        press_key(part(name), "slash", ControlMask);
    }
    /// What the user types into the field for a character; then what is said about it.
    static std::string look_up(const std::string& typed) {
        type_into(part("find_text"), typed);
        pump();
        return value("char_value");
    }

    TempDir dir_;
};

TEST_F(Details, OfATrueTypeFont) {
    const auto font = show_square();
    EXPECT_EQ(value("file_value"), "square.ttf");
    EXPECT_EQ(value("directory_value"), dir_.path());
    EXPECT_EQ(value("format_value"), "TrueType");
    EXPECT_EQ(value("size_value"), std::to_string(dir_.read("square.ttf").size()) + " bytes");
    EXPECT_EQ(value("glyphs_value"), "4");
    EXPECT_EQ(value("package_value"), "");
    EXPECT_EQ(items(part("names_list")), (std::vector<std::string>{XLFD, LATIN}));
    EXPECT_EQ(grid().geometry().cells, 3);
    EXPECT_EQ(grid().drawn(), 3U);
    EXPECT_GT(ink(grid().area()), 100);
    EXPECT_EQ(gw::label_of(wi_font_loc_name), dir_.path()) << "what the dialog always had";
}

TEST_F(Details, NameThePackage) {
    if (::geteuid() != 0) GTEST_SKIP() << "files of a package belong to the superuser";
    const FakePackages packages(dir_.path(), "fonts-square");
    const auto font = show_square();
    EXPECT_EQ(value("package_value"), "fonts-square");
}

TEST_F(Details, NameTheFormat) {
    const std::string bdf = BitmapMaker().make_bdf();
    const struct {
        const char* file;
        std::string bytes;
        GWFont::GW_FONT_TYPE type;
        const char* format;
    } cases[] = {
        {"boxes.bdf", bdf, GWFont::BITMAP_FONT, "BDF"},
        {"boxes.bdf.gz", gzipped(bdf), GWFont::BITMAP_FONT, "BDF, compressed"},
        {"two.ttc", SfntMaker().make_collection(2, 2), GWFont::TRUETYPE_FONT,
         "TrueType, one of several in the file"},
    };
    for (const auto& c : cases) {
        const auto font = show(c.file, c.bytes, c.type);
        EXPECT_EQ(value("format_value"), c.format) << c.file;
        EXPECT_EQ(grid().geometry().cells, 3) << c.file;
    }
}

TEST_F(Details, SayWhatInstallingMakesOfTheFont) {
    dir_.write("square.ttf", SfntMaker().make());
    const gw::Ref<GWFont> font(make_font(GWFont::OPENTYPE_FONT, XLFD));
    give_file(*font, "square.ttf", dir_.c_str());
    font->set_conversion({GWFont::TYPE1_FONT, ".pfb"});
    show(*font);
    EXPECT_EQ(value("format_value"), "TrueType; installed as Type 1");
    font->set_obstacle({"square.ttf", gw::Reason::NO_NAMES});
    show(*font);
    EXPECT_EQ(value("format_value"), "TrueType; this font has no name that a program could ask for");
}

TEST_F(Details, OfABitmapEntryHaveTheNamesOfAllItsSizes) {
    const gw::Ref<GWFont> small(make_bitmap("courier", "100"));
    const gw::Ref<GWFont> large(make_bitmap("courier", "240"));
    const gw::Ref<GWHRNElement> entry(new GWHRNElement(large.get()));
    ASSERT_EQ(entry->add_font(small.get(), 0), 1);
    show(*large, entry.get());
    EXPECT_EQ(items(part("names_list")), (std::vector<std::string>{bitmap_xlfd("courier", "100", "75"),
                                                                   bitmap_xlfd("courier", "240", "75")}));
    show(*large);
    EXPECT_EQ(items(part("names_list")), (std::vector<std::string>{bitmap_xlfd("courier", "240", "75")}));
}

TEST_F(Details, SayWhatIsWrongWithTheFile) {
    const gw::Ref<GWFont> gone(make_font(GWFont::TRUETYPE_FONT, XLFD));
    give_file(*gone, "gone.ttf", dir_.c_str());
    show(*gone);
    EXPECT_EQ(value("file_value"), "gone.ttf");
    for (const char* fact : {"size_value", "format_value", "glyphs_value"})
        EXPECT_EQ(value(fact), "No such file or directory") << fact;
    const auto cut = show("cut.ttf", SfntMaker().make().substr(0, 300), GWFont::TRUETYPE_FONT);
    EXPECT_EQ(value("size_value"), "300 bytes");
    EXPECT_EQ(value("format_value"), "this font is damaged");
    const auto text = show("text.ttf", "no font at all", GWFont::TRUETYPE_FONT);
    EXPECT_EQ(value("format_value"), "this is no font");
    EXPECT_EQ(grid().geometry().cells, 0);
    EXPECT_EQ(look_up("A"), "this is no font") << "nothing is said about its characters";
}

TEST_F(Details, OfAFileThatOnlyOthersMayRead) {
    if (::geteuid() == 0) GTEST_SKIP() << "the superuser may read every file";
    const auto font = show_square();
    ASSERT_EQ(::chmod(dir_.file("square.ttf").c_str(), 0), 0);
    show(*font);
    EXPECT_EQ(value("format_value"), "Permission denied");
    EXPECT_NE(value("size_value"), "Permission denied") << "its directory can be read";
}

TEST_F(Details, EachNameGoesToBothSelections) {
    const auto font = show_square();
    const PastingClient other;
    const char* names[] = {XLFD, LATIN};
    for (int row = 0; row < 2; ++row) {
        select_by_key(row + 1);
        EXPECT_EQ(other.paste("PRIMARY"), names[row]);
        EXPECT_EQ(other.paste("PRIMARY", "UTF8_STRING"), names[row]);
        ASSERT_TRUE(press(part("copy_button")));
        EXPECT_EQ(other.paste("CLIPBOARD"), names[row]);
    }
}

TEST_F(Details, EachFieldGoesToBothSelections) {
    const auto font = show_square();
    EXPECT_EQ(look_up("B"), "U+0042");
    const PastingClient other;
    for (const char* name :
         {"file_value", "directory_value", "format_value", "size_value", "glyphs_value", "char_value"}) {
        Widget field = part(name);
        Boolean editable = True;
        XtVaGetValues(field, XmNeditable, &editable, nullptr);
        EXPECT_EQ(editable, False) << name;
        select_all(name);
        EXPECT_EQ(other.paste("PRIMARY"), value(name)) << name;
        ASSERT_TRUE(press(part("copy_button")));
        EXPECT_EQ(other.paste("CLIPBOARD"), value(name)) << name;
    }
}

TEST_F(Details, TheKeysForCopyingAreCtrlCAndCtrlInsert) {
    const auto font = show_square();
    const PastingClient other;
    for (const char* key : {"c", "Insert"}) {
        for (const char* name : {"file_value", "format_value"}) {
            select_all(name);
            press_key(part(name), key, ControlMask);
            EXPECT_EQ(other.paste("CLIPBOARD"), value(name)) << key;
        }
        select_by_key(1);
        press_key(part("names_list"), key, ControlMask);
        EXPECT_EQ(other.paste("CLIPBOARD"), XLFD) << key;
    }
}

TEST_F(Details, CopyTakesWhatWasSelectedLast) {
    const auto font = show_square();
    const PastingClient other;
    select_all("file_value");
    select_by_key(2);
    ASSERT_TRUE(pump_until([] { return XmTextFieldGetSelection(part("file_value")) == nullptr; }));
    ASSERT_TRUE(press(part("copy_button")));
    EXPECT_EQ(other.paste("CLIPBOARD"), LATIN);
    select_all("format_value");
    ASSERT_TRUE(press(part("copy_button")));
    EXPECT_EQ(other.paste("CLIPBOARD"), "TrueType");
}

TEST_F(Details, FindACharacterByItselfItsCodeAndItsName) {
    std::u32string with_euro = characters(0x20, 0x7E);
    with_euro += U'\u20AC';
    const auto font = show_square(with_euro);
    EXPECT_EQ(look_up("20AC"), "U+20AC");
    ASSERT_TRUE(grid().selected());
    EXPECT_EQ(grid().selected()->code, U'\u20AC');
    EXPECT_EQ(look_up("A"), "U+0041");
    EXPECT_EQ(look_up("U+20AD"), "U+20AD is not in this font");
    EXPECT_FALSE(grid().selected());
    EXPECT_EQ(look_up("nonsense"), "nonsense is not in this font");
}

TEST_F(Details, KeepLookingForTheCharacterFromFontToFont) {
    const auto font = show_square();
    EXPECT_EQ(look_up("B"), "U+0042");
    const auto other = show_square(U"XYZ");
    EXPECT_EQ(value("char_value"), "U+0042 is not in this font");
    const auto third = show_square(U"ABC");
    EXPECT_EQ(value("char_value"), "U+0042");
}

TEST_F(Details, ReturnInTheFieldDoesNotCloseTheDialog) {
    const auto font = show_square();
    type_into(part("find_text"), "C");
    XmProcessTraversal(part("find_text"), XmTRAVERSE_CURRENT);
    press_key(part("find_text"), "Return");
    EXPECT_EQ(is_attr_dlg_displayed(), 1);
    ASSERT_TRUE(grid().selected());
    EXPECT_EQ(grid().selected()->code, U'C');
}

TEST_F(Details, TheGridIsMovedThroughByKeys) {
    const auto font = show_square(characters(0x100, 0x500));
    Widget area = grid().area();
    const int columns = grid().geometry().columns();
    const int rows = grid().geometry().whole_rows();
    ASSERT_GT(columns, 1);
    const struct {
        const char* key;
        int cell;
    } steps[] = {{"Home", 0},   {"Right", 1}, {"Down", 1 + columns},    {"Left", columns},
                 {"Up", 0},     {"Left", 0},  {"Next", rows * columns}, {"Prior", 0},
                 {"End", 0x400}};
    XmProcessTraversal(area, XmTRAVERSE_CURRENT);
    for (const auto& step : steps) {
        press_key(area, step.key);
        ASSERT_TRUE(grid().selected()) << step.key;
        EXPECT_EQ(grid().selected()->code, 0x100U + static_cast<unsigned>(step.cell)) << step.key;
    }
    EXPECT_EQ(grid().top(), grid().geometry().last_top());
    EXPECT_EQ(value("char_value"), "U+0500");
}

TEST_F(Details, OfAFontWithVeryManyCharactersDrawOnlyWhatIsSeen) {
    constexpr std::size_t MANY = 65000;
    const auto font = show_square(characters(0x10000, 0x10000 + MANY - 1));
    const gw::GridGeometry all = grid().geometry();
    EXPECT_EQ(all.cells, static_cast<int>(MANY));
    const auto seen = static_cast<std::size_t>(all.shown(0).last);
    EXPECT_LT(seen, 500U);
    EXPECT_TRUE(pump_until([=] { return grid().drawn() == seen; })) << grid().drawn() << " of " << seen;
    EXPECT_EQ(look_up("1FDE7"), "U+1FDE7");
    ASSERT_TRUE(pump_until([] { return !grid().is_drawing(); }));
    EXPECT_EQ(grid().top(), all.last_top());
    EXPECT_LE(grid().drawn(), 2 * seen);
}

TEST_F(Details, ADamagedGlyphDoesNotStopTheOthers) {
    SfntMaker maker;
    maker.characters = characters('A', 'Z');
    std::string bytes = maker.make();
    // The first two glyphs have 16,000 contours.
    const std::size_t glyph = bytes.find(std::string("\x00\x01\x00\x64\x00\x00\x02\x58", 8));
    ASSERT_NE(glyph, std::string::npos);
    bytes[glyph] = '\x3E';
    bytes[bytes.find(std::string("\x00\x01\x00\x64\x00\x00\x02\x58", 8))] = '\x3E';
    const auto font = show("bad.ttf", bytes, GWFont::TRUETYPE_FONT);
    const auto seen = static_cast<std::size_t>(grid().geometry().shown(0).last);
    EXPECT_GT(seen, 3U);
    EXPECT_TRUE(pump_until([=] { return grid().drawn() == seen; })) << grid().drawn() << " of " << seen;
    EXPECT_EQ(look_up("B"), "U+0042");
}

TEST_F(Details, GoWithTheFontAndWithTheDialog) {
    const auto font = show_square();
    const GWAlias alias("fixed", LATIN, "/fonts/");
    show_alias_attributes(&alias);
    for (const char* name : {"file_value", "format_value", "glyphs_value", "char_value"})
        EXPECT_EQ(value(name), "") << name;
    EXPECT_TRUE(items(part("names_list")).empty());
    EXPECT_EQ(grid().face(), nullptr);
    show(*font);
    EXPECT_NE(grid().face(), nullptr);
    press(find(wi_attr_dlg, "close_button"));
    EXPECT_EQ(grid().face(), nullptr) << "the file is closed with the dialog";
    show(*font);
    gw::release_shown_font();
    EXPECT_EQ(grid().face(), nullptr) << "its medium can be ejected";
}

TEST_F(Details, OnlyTheLastOfManyFontsIsLookedInto) {
    dir_.write("square.ttf", SfntMaker().make());
    std::vector<gw::Ref<GWFont>> fonts;
    for (int i = 0; i < 20; ++i) {
        fonts.emplace_back(make_font(GWFont::TRUETYPE_FONT, XLFD));
        give_file(*fonts.back(), i == 19 ? "square.ttf" : "gone.ttf", dir_.c_str());
        show_font_attributes(fonts.back().get(), nullptr);
    }
    ASSERT_TRUE(pump_until([] { return !gw::font_details()->is_looking(); }));
    EXPECT_EQ(value("format_value"), "TrueType");
    EXPECT_EQ(value("glyphs_value"), "4");
}

}  // namespace
