// SPDX-License-Identifier: MIT
#include "diagnosis/sentence.h"

#include <gtest/gtest.h>

namespace {

using gw::diagnosis::filled_in;

TEST(SentenceTest, DetailsStandInTheirPlacesInAnyOrder) {
    EXPECT_EQ(filled_in("{2} before {1}, and {2} again", {"one", "two"}), "two before one, and two again");
}

TEST(SentenceTest, APlaceWithoutADetailIsEmpty) {
    EXPECT_EQ(filled_in("<{1}> <{2}>", {"one"}), "<one> <>");
}

TEST(SentenceTest, OtherBracesStay) {
    EXPECT_EQ(filled_in("{0} {} {a} {1", {"one"}), "{0} {} {a} {1");
}

TEST(SentenceTest, ADetailIsNoPlaceAndBreaksNoLine) {
    EXPECT_EQ(filled_in("{1}", {"{2}\n", "two"}), "{2}\\x0A");
}

TEST(SentenceTest, EnglishIsTheTextOfTheTable) {
    EXPECT_EQ(gw::diagnosis::in_english({gw::diagnosis::Said::SERVER_HAS_GONE}),
              "The X server does not answer any more.");
}

}  // namespace
