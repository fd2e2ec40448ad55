// SPDX-License-Identifier: MIT
#include "core/text.h"

#include <gtest/gtest.h>

namespace {

TEST(CopyText, TruncatesAndTerminates) {
    char dst[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(gw::copy_text(dst, "courier"), 3U);
    EXPECT_STREQ(dst, "cou");
}

TEST(CopyText, WritesNothingIntoNothing) {
    char guard = 'g';
    EXPECT_EQ(gw::copy_text(&guard, 0, "courier"), 0U);
    EXPECT_EQ(guard, 'g');
}

TEST(WithTrailingSlash, AppendsOnlyWhenMissing) {
    EXPECT_EQ(gw::with_trailing_slash("/fonts"), "/fonts/");
    EXPECT_EQ(gw::with_trailing_slash("/fonts/"), "/fonts/");
    EXPECT_EQ(gw::with_trailing_slash(""), "/");
}

TEST(WithoutTrailingSlashes, LeavesTheRoot) {
    EXPECT_EQ(gw::without_trailing_slashes("/fonts"), "/fonts");
    EXPECT_EQ(gw::without_trailing_slashes("/fonts///"), "/fonts");
    EXPECT_EQ(gw::without_trailing_slashes("//"), "/");
    EXPECT_EQ(gw::without_trailing_slashes("/"), "/");
    EXPECT_EQ(gw::without_trailing_slashes(""), "");
}

TEST(Capitalized, ChangesTheFirstLetterOnly) {
    EXPECT_EQ(gw::capitalized("new century"), "New century");
    EXPECT_EQ(gw::capitalized("1942"), "1942");
    EXPECT_EQ(gw::capitalized(""), "");
    EXPECT_EQ(gw::capitalized("\xe4hnlich"), "\xe4hnlich");
}

TEST(LowerCase, LeavesBytesOutsideAsciiAlone) {
    EXPECT_EQ(gw::lower_case("ISO8859-1 \xc4"), "iso8859-1 \xc4");
}

TEST(LinesOf, ALastLineWithoutANewlineCounts) {
    using Lines = std::vector<std::string_view>;
    EXPECT_EQ(gw::lines_of(""), Lines{});
    EXPECT_EQ(gw::lines_of("\n"), Lines{""});
    EXPECT_EQ(gw::lines_of("a\n\nb"), (Lines{"a", "", "b"}));
    EXPECT_EQ(gw::lines_of("a\nb\n"), (Lines{"a", "b"}));
}

TEST(Filled, PutsTheWordsInTheirPlaces) {
    EXPECT_EQ(gw::filled("Cannot convert string \"%s\" to type %s", {"-x-", "FontStruct"}),
              "Cannot convert string \"-x-\" to type FontStruct");
    EXPECT_EQ(gw::filled("100% of %s and %s", {"%s"}), "100% of %s and %s");
    EXPECT_EQ(gw::filled("no place", {"word"}), "no place");
}

TEST(Escaped, ShowsControlCharactersAsNumbers) {
    EXPECT_EQ(gw::escaped("a b\xc3\xa9"), "a b\xc3\xa9");
    EXPECT_EQ(gw::escaped("a\nb\x7f"), "a\\x0Ab\\x7F");
    EXPECT_EQ(gw::escaped(std::string("\0\x1b", 2)), "\\x00\\x1B");
}

}  // namespace
