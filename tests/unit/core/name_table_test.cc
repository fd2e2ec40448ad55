// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <random>
#include <string>

#include "core/name_table.h"

namespace gw {
namespace {

TEST(NameTable, KnowsNothingAtFirst) {
    const NameTable names;
    EXPECT_EQ(names.size(), 0U);
    EXPECT_EQ(names.find(""), std::nullopt);
    EXPECT_EQ(names.find("cour.pfa"), std::nullopt);
}

TEST(NameTable, ANameKeepsItsPlace) {
    NameTable names;
    EXPECT_EQ(names.add("cour.pfa"), 0U);
    EXPECT_EQ(names.add(""), 1U);
    EXPECT_EQ(names.add("cour.pf"), 2U);
    EXPECT_EQ(names.add("cour.pfa"), 0U);
    EXPECT_EQ(names.add(std::string("cour\0pfa", 8)), 3U);
    EXPECT_EQ(names.size(), 4U);
    EXPECT_EQ(names.find("cour.pf"), 2U);
    EXPECT_EQ(names.find(""), 1U);
    EXPECT_EQ(names.find("cour"), std::nullopt);
    EXPECT_EQ(names[0], "cour.pfa");
    EXPECT_EQ(names[1], "");
    EXPECT_EQ(names[3], std::string("cour\0pfa", 8));
}

TEST(NameTable, MayHoldItsOwnText) {
    NameTable names;
    names.add("abc");
    for (std::size_t i = 0; i < 100; ++i) names.add(std::string(names[names.size() - 1]) + 'x');
    EXPECT_EQ(names.size(), 101U);
    EXPECT_EQ(names[100], "abc" + std::string(100, 'x'));
    EXPECT_EQ(names.add(names[50]), 50U);
}

TEST(NameTable, AnswersAsAMapDoes) {
    constexpr int TIMES = 20000;
    std::mt19937 random(1);
    std::map<std::string, std::size_t> known;
    NameTable names;
    for (int i = 0; i < TIMES; ++i) {
        const std::string name = "f" + std::to_string(random() % TIMES) + ".pfa";
        const auto found = known.find(name);
        EXPECT_EQ(names.find(name), found != known.end() ? std::optional(found->second) : std::nullopt);
        EXPECT_EQ(names.add(name), known.try_emplace(name, known.size()).first->second);
    }
    EXPECT_EQ(names.size(), known.size());
    for (const auto& [name, place] : known) EXPECT_EQ(names[place], name);
}

}  // namespace
}  // namespace gw
