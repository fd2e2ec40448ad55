// SPDX-License-Identifier: MIT
#include "model/gw_xlfd_name.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

constexpr const char* COURIER = "-adobe-courier-bold-o-normal--12-120-75-75-m-70-iso8859-1";

std::vector<std::string> fields_of(const char* name, int number) {
    std::vector<std::string> fields;
    for (int i = 0; i < number; ++i) fields.emplace_back(extract_next_field(i == 0 ? name : nullptr));
    return fields;
}

TEST(XlfdName, HasExactlyFourteenDashes) {
    const struct {
        std::string name;
        int expected;
    } cases[] = {
        {COURIER, 1},
        {std::string(14, '-'), 1},
        {"x" + std::string(14, '-'), 1},
        {"", 0},
        {"fixed", 0},
        {std::string(13, '-'), 0},
        {std::string(15, '-'), 0},
        {"-adobe-courier-bold-o-normal--12-120-75-75-m-70-iso8859", 0},
        {"-adobe-courier-bold-o-normal--12-120-75-75-m-70-iso8859-1-x", 0},
    };
    for (const auto& c : cases) EXPECT_EQ(is_xlfd_name(c.name.c_str()), c.expected) << c.name;
}

TEST(XlfdName, SplitsIntoFourteenFieldsInOrder) {
    const std::vector<std::string> expected = {"adobe", "courier", "bold", "o", "normal", "",        "12",
                                               "120",   "75",      "75",   "m", "70",     "iso8859", "1"};
    EXPECT_EQ(fields_of(COURIER, 14), expected);
}

TEST(XlfdName, GivesTheLastFieldAgainAfterTheLast) {
    const std::vector<std::string> fields = fields_of(COURIER, 17);
    EXPECT_EQ(fields[13], "1");
    EXPECT_EQ(fields[14], "1");
    EXPECT_EQ(fields[16], "1");
}

TEST(XlfdName, GivesEmptyFieldsBetweenAdjacentDashes) {
    EXPECT_EQ(fields_of("--------------", 15), std::vector<std::string>(15));
}

TEST(XlfdName, GivesTheEmptyTextForAnotherNameAndGoesOnWithTheOldOne) {
    EXPECT_STREQ(extract_next_field(COURIER), "adobe");
    EXPECT_STREQ(extract_next_field("fixed"), "");
    EXPECT_STREQ(extract_next_field(nullptr), "courier");
}

TEST(XlfdName, KeepsItsOwnCopyOfTheName) {
    std::string name = COURIER;
    EXPECT_STREQ(extract_next_field(name.c_str()), "adobe");
    name.assign(name.size(), 'x');
    EXPECT_STREQ(extract_next_field(nullptr), "courier");
}

TEST(XlfdName, CutsAFieldAt999CharactersAndGoesOnBehindIt) {
    for (const std::size_t length : {998U, 999U, 1000U, 5000U}) {
        const std::string name = '-' + std::string(length, 'f') + "-second------------last";
        ASSERT_EQ(is_xlfd_name(name.c_str()), 1);
        EXPECT_EQ(std::string(extract_next_field(name.c_str())).size(), std::min<std::size_t>(length, 999))
            << length;
        EXPECT_STREQ(extract_next_field(nullptr), "second") << length;
    }
}

TEST(XlfdName, KeepsBytesOver127AndBlanks) {
    EXPECT_EQ(fields_of("-b\xfcro-two words------------x", 2),
              (std::vector<std::string>{"b\xfcro", "two words"}));
}

}  // namespace
