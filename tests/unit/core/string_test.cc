// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "core/gw_file.h"
#include "core/gw_int.h"
#include "core/gw_misc.h"
#include "core/gw_reg_exp.h"
#include "core/gw_string.h"
#include "core/gw_token_string.h"
#include "core/gw_token_table.h"
#include "support/temp_dir.h"

namespace {

TEST(String, AShorterTextReusesTheBuffer) {
    GW_STRING s("courier");
    const char* buffer = s.get_str();
    EXPECT_EQ(s.reset_str("times"), buffer);
    EXPECT_STREQ(s.get_str(), "times");
}

TEST(String, ATextOfTheSameLengthGetsANewBuffer) {
    GW_STRING s("courier");
    const char* buffer = s.get_str();
    EXPECT_NE(s.reset_str("Courier"), buffer);
    EXPECT_STREQ(s.get_str(), "Courier");
}

TEST(String, MayBeResetFromItsOwnText) {
    GW_STRING s("courier");
    s.reset_str(s.get_str() + 4);
    EXPECT_STREQ(s.get_str(), "ier");
}

TEST(String, EmptyTextsAreEqualAndHaveNoLength) {
    const GW_STRING one("");
    const GW_STRING other("");
    EXPECT_EQ(one.get_len(), 0);
    EXPECT_EQ(one.equal(&other), 1);
}

TEST(String, OrdersByByteAndNotByLetter) {
    const GW_STRING upper("Z");
    const GW_STRING lower("a");
    EXPECT_LT(upper.compare(&lower), 0);
    EXPECT_EQ(upper.equal(&lower), 0);
}

TEST(String, ACopyIsDeep) {
    GW_STRING original("courier");
    const GW_STRING copy(&original);
    original.reset_str("times");
    EXPECT_STREQ(copy.get_str(), "courier");
}

TEST(String, PrintsOneLine) {
    const gw::test::TempDir dir;
    GW_FILE out("out", dir.c_str(), 0);
    ASSERT_EQ(out.open("w"), 1);
    const GW_STRING s("abc");
    s.print("name", &out);
    s.print(nullptr, &out);
    s.print("nowhere", nullptr);
    out.close();
    EXPECT_EQ(dir.read("out"), "name len = 3, str = abc\nlen = 3, str = abc\n");
}

TEST(Int, KeepsItsValue) {
    EXPECT_EQ(GW_INT(-7).get_value(), -7);
}

TEST(RegExp, SplitsTheSubjectAtTheMatch) {
    GW_REG_EXP pfa(".pfa$");
    ASSERT_EQ(pfa.string_match("Times.pfa"), 1);
    char part[32];
    EXPECT_EQ(pfa.get_match_part(part, GW_REG_EXP::PREFIX), 5);
    EXPECT_STREQ(part, "Times");
    EXPECT_EQ(pfa.get_match_part(part, GW_REG_EXP::MATCH), 4);
    EXPECT_STREQ(part, ".pfa");
    EXPECT_EQ(pfa.get_match_part(part, GW_REG_EXP::SUFFIX), 0);
    EXPECT_STREQ(part, "");
}

TEST(RegExp, AFailedMatchForgetsTheOneBefore) {
    GW_REG_EXP pfa(".pfa$");
    ASSERT_EQ(pfa.string_match("Times.pfa"), 1);
    EXPECT_EQ(pfa.string_match("Times.pfa.bak"), 0);
    char part[32] = "x";
    EXPECT_EQ(pfa.get_match_part(part, GW_REG_EXP::PREFIX), 0);
    EXPECT_STREQ(part, "");
}

TEST(RegExp, TheDotOfASuffixMatchesAnyCharacter) {
    GW_REG_EXP ps(".ps$");
    EXPECT_EQ(ps.string_match("maxps"), 1);
    EXPECT_EQ(ps.string_match("ps"), 0);
}

TEST(RegExp, APartLargerThanTheBufferIsCut) {
    GW_REG_EXP pfa(".pfa$");
    ASSERT_EQ(pfa.string_match("ALongFamilyName.pfa"), 1);
    char part[5];
    EXPECT_EQ(pfa.get_match_part(part, GW_REG_EXP::PREFIX), 4);
    EXPECT_STREQ(part, "ALon");
}

TEST(TokenTable, WantsTheWholeToken) {
    GW_TOKEN_TABLE table(4, 32, 7);
    EXPECT_EQ(table.add_token(4, ".ps.Z"), 1);
    EXPECT_EQ(table.add_token(3, ".ps"), 2);
    EXPECT_EQ(table.get_id(".ps"), 3);
    EXPECT_EQ(table.get_id(".ps.Z"), 4);
    EXPECT_EQ(table.get_id(".PS"), 7);
    EXPECT_EQ(table.get_id(".p"), 7);
}

TEST(TokenTable, RefusesOneTokenTooMany) {
    GW_TOKEN_TABLE table(1, 32, 7);
    EXPECT_EQ(table.add_token(3, ".ps"), 1);
    EXPECT_EQ(table.add_token(4, ".ps.Z"), -1);
    EXPECT_EQ(table.get_id(".ps.Z"), 7);
}

TEST(TokenTable, GivesTheFirstTokenOfAnId) {
    GW_TOKEN_TABLE table(4, 32, 7);
    table.add_token(3, ".ps");
    table.add_token(3, ".eps");
    char text[8];
    EXPECT_EQ(table.get_len(3), 3);
    EXPECT_EQ(table.get_str(3, text), 3);
    EXPECT_STREQ(text, ".ps");
    EXPECT_EQ(table.get_len(5), 0);
    EXPECT_EQ(table.get_str(5, text), 0);
}

TEST(TokenString, ASecondStartSeesTheCutCopy) {
    GW_TOKEN_STRING s("one two three");
    EXPECT_STREQ(s.get_first_token(" "), "one");
    EXPECT_STREQ(s.get_first_token(" "), "one");
    EXPECT_EQ(s.get_next_token(" "), nullptr);
    s.reset_str(nullptr);
    EXPECT_STREQ(s.get_first_token(" "), "one");
    EXPECT_STREQ(s.get_next_token(" "), "two");
}

TEST(TokenString, RunsOfDelimitersSeparateOnce) {
    GW_TOKEN_STRING s("  one,, two");
    EXPECT_STREQ(s.get_first_token(" ,"), "one");
    EXPECT_STREQ(s.get_next_token(" ,"), "two");
    EXPECT_EQ(s.get_next_token(" ,"), nullptr);
}

TEST(TokenString, ResetToALongerTextTokenisesThat) {
    GW_TOKEN_STRING s("a b");
    s.get_first_token(" ");
    s.reset_str("first second third");
    EXPECT_STREQ(s.get_first_token(" "), "first");
    EXPECT_STREQ(s.get_next_token(" "), "second");
}

TEST(TokenString, GivesIdsAndTheDefaultAtTheEnd) {
    GW_TOKEN_TABLE table(4, 32, -1);
    table.add_token(5, "Notice");
    GW_TOKEN_STRING s("Notice other");
    int id = 0;
    s.get_first_token_id(id, &table, " ");
    EXPECT_EQ(id, 5);
    s.get_next_token_id(id, &table, " ");
    EXPECT_EQ(id, -1);
    EXPECT_EQ(s.get_next_token_id(id, &table, " "), nullptr);
    EXPECT_EQ(id, -1);
}

TEST(TokenString, ATextWithoutTokenLeavesTheTargetAlone) {
    std::string token = "kept";
    EXPECT_EQ(get_first_token_from_str(token, "  ", " "), 1);
    EXPECT_EQ(token, "kept");
    get_first_token_from_str(token, "a b", " ");
    EXPECT_EQ(token, "a");
}

TEST(Process, OutOfMemoryEndsWithStatusOne) {
    EXPECT_EXIT(out_of_memory(), testing::ExitedWithCode(1), "^$");
}

TEST(Process, CountsOpenFiles) {
    const int before = inc_open_file_count();
    EXPECT_EQ(inc_open_file_count(), before + 1);
    EXPECT_EQ(dec_open_file_count(), before);
}

}  // namespace
