// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <vector>

#include "fontfiles/unicode_text.h"

namespace gw {
namespace {

using namespace std::string_literals;

struct Utf8Case {
    std::u32string characters;
    std::string bytes;
};

TEST(UnicodeText, CharactersOfEveryLengthGoThereAndBack) {
    const Utf8Case cases[] = {{U"A~", "A~"},
                              {U"\u0080\u07FF", "\xC2\x80\xDF\xBF"},
                              {U"\u0800\uFFFD", "\xE0\xA0\x80\xEF\xBF\xBD"},
                              {U"\U00010000\U0010FFFF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"}};
    for (const Utf8Case& one : cases) {
        std::string text;
        for (const char32_t character : one.characters) append_utf8(text, character);
        EXPECT_EQ(text, one.bytes);
        EXPECT_EQ(characters_of(one.bytes), one.characters) << one.bytes;
        EXPECT_TRUE(is_utf8(one.bytes)) << one.bytes;
    }
}

TEST(UnicodeText, BytesThatAreNoUtf8AreReplacedOneByOne) {
    for (const std::string& bad : std::vector{"\x80"s, "\xC0\x80"s, "\xE0\x80\x80"s, "\xED\xA0\x80"s,
                                              "\xF4\x90\x80\x80"s, "\xFF"s, "\xE2\x82"s, "\xF0\x90\x80"s}) {
        EXPECT_FALSE(is_utf8(bad));
        EXPECT_EQ(characters_of(bad), std::u32string(bad.size(), 0xFFFD));
    }
    EXPECT_EQ(characters_of("a\xE2z"), U"a\uFFFDz");
    std::string text;
    append_utf8(text, 0xD800);
    append_utf8(text, 0x110000);
    EXPECT_EQ(text, "\uFFFD\uFFFD");
}

TEST(UnicodeText, Utf16IsReadWithItsPairs) {
    EXPECT_EQ(utf8_from_utf16("\0A\x20\xAC"s), "A\u20AC");
    EXPECT_EQ(utf8_from_utf16("\xD8\x3D\xDE\x00"s), "\U0001F600");
    EXPECT_EQ(utf8_from_utf16("\xD8\x3D\0A"s), "\uFFFDA");
    EXPECT_EQ(utf8_from_utf16("\xDE\x00\0A"s), "\uFFFDA");
    EXPECT_EQ(utf8_from_utf16("\xD8\x3D"s), "\uFFFD");
    EXPECT_EQ(utf8_from_utf16("\0A\0"s), "A") << "half a unit at the end";
}

TEST(UnicodeText, OlderEncodingsAreRead) {
    EXPECT_EQ(utf8_from_latin1("M\xFCller"), "Müller");
    EXPECT_EQ(utf8_from_mac_roman("M\x9Fller"), "Müller");
    EXPECT_EQ(utf8_from_mac_roman(""), "");
}

TEST(UnicodeText, OneLineHasNoControlCharactersAndNoBlanksAtItsEnds) {
    EXPECT_EQ(as_one_line("  Open  Sans\n\t ", 100), "Open  Sans");
    EXPECT_EQ(as_one_line("a\x1B[31m\x7F\u0085\u2028\u202E\u2066z", 100), "a[31mz");
    EXPECT_EQ(as_one_line("\u00A0x\u00A0y", 100), "x y");
    EXPECT_EQ(as_one_line(" \n ", 100), "");
    EXPECT_EQ(as_one_line("äöü", 2), "äö");
    EXPECT_EQ(as_one_line("a   b", 3), "a");
}

}  // namespace
}  // namespace gw
