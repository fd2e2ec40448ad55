// SPDX-License-Identifier: MIT
#include "model/font_report.h"

#include <gtest/gtest.h>

#include "model_test_support.h"
#include "support/heard_failures.h"

namespace {

using gw::Failure;
using gw::Reason;
using gw::test::HeardFailures;

TEST(FontReport, CollectsTheFontsThatFailed) {
    const auto font = gw::test::make_font(gw::test::Xlfd{});
    gw::FontReport report;
    EXPECT_TRUE(report.note(*font, gw::done()));
    EXPECT_TRUE(report.failed().empty());
    EXPECT_FALSE(report.note(*font, Failure{"courier.pcf", Reason::FILE_OF_ANOTHER_FONT}));
    gw::FontReport later;
    later.note(*font, Failure{"other.pcf", Reason::NO_FILE});
    report.append(later);
    ASSERT_EQ(report.failed().size(), 2U);
    EXPECT_EQ(report.failed()[0].font, font->get_hrn_name());
    EXPECT_EQ(report.failed()[1].why, (Failure{"other.pcf", Reason::NO_FILE}));
    report.clear();
    EXPECT_TRUE(report.failed().empty());
}

TEST(FontReport, TellsNothingOfFontsThatWereAlwaysLeftOutInSilence) {
    const auto font = gw::test::make_font(gw::test::Xlfd{});
    gw::FontReport report;
    report.note(*font, Failure{font->get_xlfd_name(), Reason::NAME_OF_AN_ALIAS});
    report.note(*font, Failure{font->get_xlfd_name(), Reason::TOO_MANY_OF_ONE_SIZE});
    report.note(*font, Failure{"courier.pcf", Reason::FILE_OF_ANOTHER_FONT});
    const HeardFailures heard;
    report.tell();
    EXPECT_EQ(heard.text(), "courier.pcf: this is a file of another font\n");
}

}  // namespace
