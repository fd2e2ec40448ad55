// SPDX-License-Identifier: MIT
//
// The letters that controls of a window get. The keys themselves are tried in the end-to-end tests.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/kit/free_letters.h"
#include "app/kit/mnemonics.h"

namespace {

using gw::free_letters;
using Texts = std::vector<std::string>;

std::string letters_for(const Texts& texts, std::string_view taken = "") {
    return free_letters(texts, Texts(texts.size(), "some_button"), taken);
}

TEST(FreeLetters, AreTheFirstOfTheText) {
    EXPECT_EQ(letters_for({"Delete", "Attributes..."}), "DA");
}

TEST(FreeLetters, OfAWordAreBetterThanOthers) {
    EXPECT_EQ(letters_for({"Delete", "Delete Set..."}), "DS");
}

TEST(FreeLetters, DoNotTellCapitalsFromSmallLetters) {
    EXPECT_EQ(letters_for({"OK", "of"}), "Of");
    EXPECT_EQ(letters_for({"Delete"}, "d"), "e");
}

TEST(FreeLetters, GoToWhoHasNoOtherOne) {
    EXPECT_EQ(letters_for({"OK", "O"}), "KO") << "OK lets go of its first letter";
    EXPECT_EQ(letters_for({"abc", "ab", "a"}), "cba");
}

TEST(FreeLetters, MayBeUsedUp) {
    EXPECT_EQ(letters_for({"a", "A"}), std::string("a\0", 2));
    EXPECT_EQ(letters_for({"Type", "Type 1"}, "tyep"), std::string("\0", 1) + "1") << "digits come last";
    EXPECT_EQ(letters_for({"", "   ", "x"}), std::string("\0\0x", 3));
}

TEST(FreeLetters, OfTheNameStandForATextWithoutLatinLetters) {
    EXPECT_EQ(
        free_letters({"\xe5\x89\x8a\xe9\x99\xa4", "\xe5\x89\x8a"}, {"delete_button", "_delete_toggle"}, ""),
        "DE");
}

}  // namespace
