// SPDX-License-Identifier: MIT
#include "model/xlfd_fields.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <vector>

namespace gw {

namespace {

using Texts = std::vector<std::string>;

Texts texts_of(const XlfdFields& fields) {
    Texts texts;
    for (std::size_t i = 0; i < XlfdFields::COUNT; ++i) {
        texts.emplace_back(fields[i]);
        EXPECT_EQ(texts.back(), fields.c_str(i));
    }
    return texts;
}

TEST(XlfdFieldsTest, AreEmptyAtFirst) {
    const XlfdFields fields;
    EXPECT_EQ(texts_of(fields), Texts(XlfdFields::COUNT));
    EXPECT_EQ(fields.name(), "--------------");
}

TEST(XlfdFieldsTest, AreTakenFromAName) {
    XlfdFields fields;
    const std::string name = "-adobe-new century-bold-r-normal--12-120-75-75-p-0-iso8859-1";
    fields.take(name);
    EXPECT_EQ(texts_of(fields), (Texts{"adobe", "new century", "bold", "r", "normal", "", "12", "120", "75",
                                       "75", "p", "0", "iso8859", "1"}));
    EXPECT_EQ(fields.name(), name);
}

TEST(XlfdFieldsTest, ThatANameDoesNotHaveAreEmpty) {
    for (const char* name : {"", "-", "adobe", "-adobe", "-adobe-"}) {
        XlfdFields fields;
        fields.take(name);
        Texts expected(XlfdFields::COUNT);
        if (std::string(name).starts_with("-adobe")) expected.front() = "adobe";
        EXPECT_EQ(texts_of(fields), expected) << name;
    }
}

TEST(XlfdFieldsTest, AreCutOff) {
    XlfdFields fields;
    const std::string most(XlfdFields::LIMIT, 'x');
    std::string name;
    for (std::size_t i = 0; i < XlfdFields::COUNT; ++i) name += '-' + most + 'y';
    fields.take(name);
    EXPECT_EQ(texts_of(fields), Texts(XlfdFields::COUNT, most));
    fields.set(3, std::string(300, 'z'));
    EXPECT_EQ(fields[3], std::string(XlfdFields::LIMIT, 'z'));
    EXPECT_EQ(fields[4], most);
}

TEST(XlfdFieldsTest, AreSetLikeFourteenTexts) {
    std::mt19937 random(3);
    XlfdFields fields;
    Texts expected(XlfdFields::COUNT);
    for (int i = 0; i < 2000; ++i) {
        const std::size_t field = random() % XlfdFields::COUNT;
        const std::string value(random() % 20, static_cast<char>('a' + i % 26));
        fields.set(field, value);
        expected.at(field) = value;
        ASSERT_EQ(texts_of(fields), expected);
    }
    const XlfdFields copy = fields;
    fields.set(0, "another");
    EXPECT_EQ(texts_of(copy), expected);
}

}  // namespace

}  // namespace gw
