// SPDX-License-Identifier: MIT
#include "app/program/failures.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace {

using gw::Failure;
using gw::Reason;
using gw::Sequel;

std::string said(const Failure& failure) {
    testing::internal::CaptureStderr();
    gw::say_on_standard_error(failure);
    return testing::internal::GetCapturedStderr();
}

TEST(SayOnStandardError, NamesTheProgramTheSubjectTheReasonAndTheConsequence) {
    EXPECT_EQ(said(Failure::of_system("a.pcf", ENOSPC).with(Sequel::FONT_LEFT_OUT)),
              "glyphward: a.pcf: No space left on device; the font is left out\n");
    EXPECT_EQ(said({"a.pcf", Reason::NO_FILE}), "glyphward: a.pcf: this font has no file\n");
}

TEST(SayOnStandardError, PrintsAFailureOfTheSystemWithoutAConsequenceAsPerrorDoes) {
    EXPECT_EQ(said(Failure::of_system("make_font_list", EEXIST)), "make_font_list: File exists\n");
}

}  // namespace
