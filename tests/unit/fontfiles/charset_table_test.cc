// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "fontfiles/charset_table.h"

namespace gw {
namespace {

TEST(CharsetTable, CodesOfFontsAreTranslated) {
    struct {
        const char* charset;
        unsigned long code;
        char32_t unicode;
    } const cases[] = {
        {"iso8859-15", 0xA4, U'€'},
        {"iso8859-7", 0xE1, U'α'},
        {"koi8-r", 0xC1, U'а'},
        {"microsoft-cp1251", 0xC0, U'А'},
        {"ibm-cp437", 0xB0, U'░'},
        {"jisx0201.1976-0", 0x5C, U'¥'},
        {"jisx0208.1983-0", 0x3441, U'漢'},
        {"jisx0212.1990-0", 0x3021, U'丂'},
        {"gb2312.1980-0", 0x3021, U'啊'},
        {"ksc5601.1987-0", 0x3021, U'가'},
        {"ksc5601.1987-0", 0xB0A1, U'가'},
        {"big5-0", 0xA440, U'一'},
        {"tis620.2533-1", 0xA1, U'ก'},
    };
    for (const auto& one : cases) {
        const CharsetTable table(one.charset);
        EXPECT_TRUE(table.is_known()) << one.charset;
        EXPECT_EQ(table.unicode_of(one.code), one.unicode) << one.charset << ' ' << one.code;
    }
}

TEST(CharsetTable, CodesThatAreNoneHaveNoCharacter) {
    EXPECT_EQ(CharsetTable("iso8859-1").unicode_of(0x141), char32_t{0});
    EXPECT_EQ(CharsetTable("iso8859-7").unicode_of(0xFF), char32_t{0});
    EXPECT_EQ(CharsetTable("jisx0208.1983-0").unicode_of(0x41), char32_t{0});
    EXPECT_EQ(CharsetTable("jisx0208.1983-0").unicode_of(0x7E7E), char32_t{0});
    EXPECT_EQ(CharsetTable("big5-0").unicode_of(0x1A440), char32_t{0});
    const CharsetTable table("jisx0208.1983-0");
    EXPECT_EQ(table.unicode_of(0x7E7E), char32_t{0});
    EXPECT_EQ(table.unicode_of(0x3441), U'漢') << "after a code that is none";
}

TEST(CharsetTable, OtherCharsetsAreUnknown) {
    for (const char* charset :
         {"", "adobe-fontspecific", "iso8859-99", "iso8859-1//translit", "koi8-/../r", "dec-dectech"}) {
        EXPECT_FALSE(CharsetTable(charset).is_known()) << charset;
        EXPECT_EQ(CharsetTable(charset).unicode_of(65), char32_t{0}) << charset;
    }
}

}  // namespace
}  // namespace gw
