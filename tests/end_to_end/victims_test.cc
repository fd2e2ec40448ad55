// SPDX-License-Identifier: MIT
//
// Other programs before anybody helps them: the tests that do rely on this.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "end_to_end/program_test.h"
#include "end_to_end/victim.h"

namespace {

using namespace gw::e2e;
using testing::HasSubstr;

constexpr const char* MISSING = "-own-nothere-medium-r-normal--12-120-75-75-c-80-iso8859-1";
constexpr const char* THERE = "-misc-fixed-bold-r-normal--13-120-75-75-c-70-iso8859-1";

class Victims : public testing::TestWithParam<Victim> {
  protected:
    Desktop desktop;
};

TEST_P(Victims, NameTheFontThatTheyDoNotFind) {
    EXPECT_THAT(complaint_of(GetParam(), MISSING, desktop), HasSubstr(MISSING));
}

TEST_P(Victims, ShowTextInTheFontThatTheyFind) {
    EXPECT_EQ(complaint_of(GetParam(), THERE, desktop), "");
    EXPECT_TRUE(shows_text(GetParam(), THERE, THERE, desktop));
}

INSTANTIATE_TEST_SUITE_P(, Victims, testing::ValuesIn(VICTIMS));

}  // namespace
