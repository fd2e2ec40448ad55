// SPDX-License-Identifier: MIT
#include "fontfiles/alias_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "fontfiles/server_index.h"

namespace {

using gw::alias_entries;
using gw::AliasEntry;
using gw::entry_of;
using gw::with_comments;
using gw::with_other_font;
using gw::with_our_alias;
using gw::without_entry;

using Pairs = std::vector<std::pair<std::string, std::string>>;

Pairs pairs_in(const std::string& text) {
    Pairs pairs;
    const auto entries = alias_entries(text);
    if (!entries) return {{"refused", ""}};
    for (const AliasEntry& entry : *entries) pairs.emplace_back(entry.alias, entry.font);
    return pairs;
}

TEST(AliasText, IsReadAsServersReadIt) {
    const std::vector<std::pair<std::string, Pairs>> cases = {
        {"", {}},
        {"\n\n  \n", {}},
        {"! a comment\n", {}},
        {"  ! \"a comment\n", {}},
        {"a b\n", {{"a", "b"}}},
        {"\ta \t b  \n", {{"a", "b"}}},
        {"a b", {{"a", "b"}}},
        {"a b c d\n", {{"a", "b"}, {"c", "d"}}},
        {"a b ! a comment\nc d\n", {{"a", "b"}, {"c", "d"}}},
        {"\"a name\" \"a font\"\n", {{"a name", "a font"}}},
        {"a\" \"b c\n", {{"a b", "c"}}},
        {"a\\ b c\\\"\\\\d\n", {{"a b", "c\"\\d"}}},
        {"\"!a\" b!c\n", {{"!a", "b!c"}}},
        {"FILE_NAMES_ALIASES\na b\n", {{"a", "b"}}},
        {"a \"open\nc d\n", {{"a", "open"}, {"c", "d"}}},
        {"\"a name\" \"open", {{"a name", "open"}}},
        {"a b\\", {{"a", "b"}}},
        {"a b \\", {{"a", "b"}}},
        {"a b\n\\", {{"a", "b"}}},
        {"a b\\\nc d e\n", {{"a", "b\nc"}, {"d", "e"}}},
        {"a b\rc d\r\n", {{"a", "b"}, {"c", "d"}}},
        {"! a \\\ncomment\na b\n", {{"a", "b"}}},
        {"a\vb c\f\n", {{"a\vb", "c\f"}}},
        {"FILE_NAMES_ALIASES\r\na b\r\n", {{"a", "b"}}},
        {"FILE_NAMES_ALIASES b\n", {{"FILE_NAMES_ALIASES", "b"}}},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(pairs_in(text), expected) << text;
}

TEST(AliasText, IsRefusedWhereServersRefuseTheDirectory) {
    for (const char* text : {"alone\n", "alone", "a b\nalone ! comment\n", "\"open\n", "alone \\",
                             "\"two\nlines\" b\n", "a b\\\nc d\n", "FILE_NAMES_ALIASES", "a A\n"}) {
        EXPECT_FALSE(alias_entries(text)) << text;
        EXPECT_FALSE(with_our_alias(text, "new", "font")) << text;
    }
}

TEST(AliasText, AnEntryOfOursIsReadBackAndLeavesNoTrace) {
    for (const std::string name :
         {"plain", "two words", "qu\"ote", "back\\slash", "!bang", "-a-b--12-*-c", "new\nline\r", "a\vb"}) {
        for (const std::string before : {"", "a b\n", "! theirs\n\n", "a b"}) {
            const auto text = with_our_alias(before, name, "the font");
            ASSERT_TRUE(text) << name;
            const auto entries = alias_entries(*text);
            ASSERT_TRUE(entries) << *text;
            const AliasEntry* entry = entry_of(*entries, name);
            ASSERT_NE(entry, nullptr) << *text;
            EXPECT_EQ(entry->font, "the font");
            EXPECT_TRUE(entry->is_ours);
            const std::string after = without_entry(*text, *entry);
            EXPECT_EQ(after, before == "a b" ? "a b\n" : before);
        }
    }
}

TEST(AliasText, AnEntryOfOursComesBehindAnEndThatIsNone) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"a b\\\n", "a b\\\n\n"},  // a backslash lets the line go on
        {"! c\\\n", "! c\\\n\n"},  // and a comment
        {"! comment", "! comment\n"}, {"! comment\\", "! comment\\\n\n"}, {"a \"open", "a \"open\n"},
        {"a b\\", "a b\n"},  // it would take our newline into the word
        {"a b\n\\", "a b\n"},         {"a b\\\\", "a b\\\\\n"},           {"a b\r", "a b\r"},
    };
    for (const auto& [before, kept] : cases)
        EXPECT_EQ(with_our_alias(before, "new", "font"), kept + "! Made by Glyph Warden\nnew font\n")
            << before;
}

TEST(AliasText, ManyAreAddedInTheirOrder) {
    const auto text = gw::with_our_aliases("a b", {{"one", "b"}, {"two", "one"}});
    EXPECT_EQ(text, "a b\n! Made by Glyph Warden\none b\n! Made by Glyph Warden\ntwo one\n");
    EXPECT_EQ(gw::with_our_aliases("a b", {}), "a b");
    EXPECT_FALSE(gw::with_our_aliases("a b", {{"one", "b"}, {"two", "TWO"}}));
    EXPECT_FALSE(gw::with_our_aliases("a b", {{"one", "b"}, {std::string(1024, 'n'), "b"}}));
}

TEST(AliasText, WhatNoFileCanSayIsRefused) {
    using namespace std::string_literals;
    EXPECT_FALSE(with_our_alias("a b\n", "new", "NEW"));
    EXPECT_FALSE(with_our_alias("a b\n", "n\0w"s, "font"));
    EXPECT_FALSE(with_our_alias("a b\n", std::string(1024, 'n'), "font"));
    EXPECT_TRUE(with_our_alias("a b\n", std::string(1023, 'n'), "font"));
    const std::string text = with_our_alias("a b\n", "new", "font").value_or("");
    const auto entries = alias_entries(text);
    ASSERT_TRUE(entries);
    EXPECT_FALSE(with_other_font(text, entries->back(), "new"));
    EXPECT_EQ(with_other_font(text, entries->back(), "other"), "a b\n! Made by Glyph Warden\nnew other\n");
}

TEST(AliasText, ACommentWithinAWordIsNotOurs) {
    const auto entries = alias_entries("x y\\\n! Made by Glyph Warden\na b\n");
    ASSERT_TRUE(entries);
    for (const AliasEntry& entry : *entries) EXPECT_FALSE(entry.is_ours) << entry.alias;
}

/// A text of pieces that mean something in such files.
std::string random_text(std::mt19937& random) {
    static const std::vector<std::string> pieces = {"a",
                                                    "b",
                                                    "foo",
                                                    " ",
                                                    "\t",
                                                    "\n",
                                                    "\n",
                                                    "\n",
                                                    "\r\n",
                                                    "\r",
                                                    "!",
                                                    "\"",
                                                    "\\",
                                                    "\\\n",
                                                    "\\\"",
                                                    "x y\n",
                                                    "FILE_NAMES_ALIASES\n",
                                                    "! c",
                                                    "\v",
                                                    "\f",
                                                    "one two\n",
                                                    "! Made by Glyph Warden\n",
                                                    "\xC9",
                                                    "\"\"",
                                                    std::string(1, '\0')};
    std::string text;
    for (auto count = random() % 12; count > 0; --count) text += pieces[random() % pieces.size()];
    return text;
}

TEST(AliasText, AnEditKeepsAllOtherAliasesWhateverTheTextIs) {
    constexpr int TEXTS = 50000;
    std::mt19937 random(12);  // NOLINT(cert-msc51-cpp): each run tries the same texts
    int edited = 0;
    for (int i = 0; i < TEXTS; ++i) {
        const std::string before = random_text(random);
        const auto entries = alias_entries(before);
        ASSERT_EQ(entries.has_value(), !gw::read_server_aliases(before).fault) << before;
        if (!entries) continue;
        const auto added = with_our_alias(before, "new", "font");
        ASSERT_TRUE(added) << before;
        const Pairs old = pairs_in(before);
        Pairs longer = old;
        longer.emplace_back("new", "font");
        ASSERT_EQ(pairs_in(*added), longer) << before << "\n-> " << *added;
        const std::vector<AliasEntry> all = *alias_entries(*added);
        ASSERT_EQ(pairs_in(without_entry(*added, all.back())), old) << before << "\n-> " << *added;
        const auto changed = with_other_font(*added, all.back(), "other font");
        longer.back().second = "other font";
        ASSERT_TRUE(changed && pairs_in(*changed) == longer) << before << "\n-> " << *changed;
        ++edited;
    }
    EXPECT_GT(edited, TEXTS / 20);
}

TEST(AliasText, WithCommentsInTheirPlaceNoLineIsRefused) {
    std::mt19937 random(14);  // NOLINT(cert-msc51-cpp): each run tries the same texts
    int refused = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::string text = random_text(random);
        const bool is_sound = alias_entries(text).has_value();
        const gw::CommentedAliases commented = with_comments(text, {});
        ASSERT_TRUE(alias_entries(commented.text)) << text << "\n-> " << commented.text;
        ASSERT_EQ(commented.text == text, is_sound) << text;
        ASSERT_EQ(commented.lines.empty(), is_sound) << text;
        if (!is_sound) ++refused;
        if (!is_sound || pairs_in(text).empty()) continue;
        const Pairs old = pairs_in(text);
        const Pairs rest = pairs_in(with_comments(text, {old.front()}).text);
        Pairs others;
        std::copy_if(old.begin(), old.end(), std::back_inserter(others), [&](const auto& pair) {
            return gw::server_lower_case(pair.first) != gw::server_lower_case(old.front().first) ||
                   gw::server_lower_case(pair.second) != gw::server_lower_case(old.front().second);
        });
        ASSERT_EQ(rest, others) << text;
    }
    EXPECT_GT(refused, 100);
}

TEST(AliasText, WithoutAnyOneEntryTheOthersStay) {
    std::mt19937 random(13);  // NOLINT(cert-msc51-cpp): each run tries the same texts
    for (int i = 0; i < 20000; ++i) {
        const std::string text = random_text(random);
        const auto entries = alias_entries(text);
        for (std::size_t gone = 0; entries && gone < entries->size(); ++gone) {
            Pairs others = pairs_in(text);
            others.erase(others.begin() + static_cast<std::ptrdiff_t>(gone));
            ASSERT_EQ(pairs_in(without_entry(text, (*entries)[gone])), others) << text;
        }
    }
}

TEST(AliasText, OnlyAnAliasBehindOurCommentIsOurs) {
    const std::string text =
        "one f\n! Made by Glyph Warden\ntwo f\nthree f\n! Made by Glyph Warden\nfour f five f\n";
    const auto entries = alias_entries(text);
    ASSERT_TRUE(entries);
    for (const AliasEntry& entry : *entries) EXPECT_EQ(entry.is_ours, entry.alias == "two") << entry.alias;
    EXPECT_EQ(without_entry(text, (*entries)[1]), "one f\nthree f\n! Made by Glyph Warden\nfour f five f\n");
    EXPECT_EQ(without_entry(text, (*entries)[2]),
              "one f\n! Made by Glyph Warden\ntwo f\n! Made by Glyph Warden\nfour f five f\n");
}

TEST(AliasText, NamesAreTheSameInUpperAndLowerCase) {
    const auto entries = alias_entries("Fancy f\n");
    EXPECT_NE(entry_of(*entries, "fANCY"), nullptr);
    EXPECT_EQ(entry_of(*entries, "fanc"), nullptr);
}

}  // namespace
