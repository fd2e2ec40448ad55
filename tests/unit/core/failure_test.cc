// SPDX-License-Identifier: MIT
#include "core/failure.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "support/heard_failures.h"

namespace {

using gw::Failure;
using gw::Outcome;
using gw::Reason;
using gw::Result;
using gw::Sequel;

TEST(Failure, SaysWhatWhyAndWhatFollows) {
    const Failure full = Failure::of_system("/fonts/a.pcf", ENOSPC);
    EXPECT_EQ(full.text(), "/fonts/a.pcf: No space left on device");
    EXPECT_EQ(full.with(Sequel::FONT_LEFT_OUT).text(),
              "/fonts/a.pcf: No space left on device; the font is left out");
    EXPECT_EQ((Failure{"a b.pfa", Reason::NAME_UNFIT_FOR_INDEX}).reason_text(),
              "this name does not fit into a font index");
}

TEST(Failure, PutsItsDetailIntoTheTextOfWhatFollows) {
    const Failure unlisted = Failure::of_system("/a", EIO).with(Sequel::UNKNOWN_TO_PROGRAMS, "/fonts/");
    EXPECT_EQ(unlisted.text(), "/a: Input/output error; programs do not see the fonts in /fonts/");
}

TEST(Failure, PutsItsDetailIntoTheTextOfItsReason) {
    const Failure busy = {.subject = "/a/", .reason = Reason::IN_USE, .detail = "17"};
    EXPECT_EQ(busy.text(), "/a/: process 17 is changing this directory");
    EXPECT_EQ(busy.with(Sequel::FONT_STAYS).text(),
              "/a/: process 17 is changing this directory; the font stays");
}

// A full disk was once reported as "Success": the reason had been overwritten by then.
TEST(Failure, OfTheSystemIsNeverASuccess) {
    EXPECT_EQ(Failure::of_system("/a", 0).error, EIO);
}

TEST(Failure, EveryReasonAndSequelHasAText) {
#define REASON(name, words) \
    EXPECT_EQ((Failure{"x", Reason::name}).text(), "x: " + Failure{}.with_detail(words));
#include "core/failures.def"
#define SEQUEL(name, words) \
    EXPECT_FALSE((Failure{"x", Reason::NOT_OURS}.with(Sequel::name)).text().ends_with("; "));
#include "core/failures.def"
}

TEST(Outcome, IsTrueWhenDone) {
    const Outcome done;
    EXPECT_TRUE(done);
    EXPECT_EQ(done.with(Sequel::FONT_STAYS), done);
    const Outcome failed = Failure::of_system("/a", EROFS);
    EXPECT_FALSE(failed);
    EXPECT_EQ(failed.with(Sequel::FONT_STAYS).failure().sequel, Sequel::FONT_STAYS);
    EXPECT_EQ(failed.failure().sequel, Sequel::NONE) << "the outcome itself stays as it was";
}

TEST(Result, HoldsAValueOrAFailure) {
    const Result<std::string> text = std::string("bytes");
    ASSERT_TRUE(text);
    EXPECT_EQ(*text, "bytes");
    EXPECT_EQ(text->size(), 5U);
    const Result<std::string> none = Failure::of_system("/a", EACCES);
    ASSERT_FALSE(none);
    EXPECT_EQ(none.failure().error, EACCES);
}

TEST(Listening, HearsWhatNobodyAsksFor) {
    gw::tell(Failure::of_system("/unheard", EIO));
    const gw::test::HeardFailures heard;
    EXPECT_TRUE(gw::tell_unless_done(gw::done()));
    EXPECT_FALSE(gw::tell_unless_done(Failure::of_system("/a", EIO)));
    EXPECT_EQ(heard.text(), "/a: Input/output error\n");
}

}  // namespace
