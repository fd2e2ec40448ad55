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

TEST(FontReport, HasTheNameOfEachFontThatIsDoneOnce) {
    gw::FontReport report;
    for (const char* decipoints : {"120", "140"}) {
        const auto font = gw::test::make_font(gw::test::Xlfd{.decipoints = decipoints});
        report.note(*font, gw::done(), "/fonts");
    }
    const auto bold = gw::test::make_font(gw::test::Xlfd{.weight = "bold"});
    report.note(*bold, gw::done(), "/other/");
    const auto failed = gw::test::make_font(gw::test::Xlfd{.family = "helvetica"});
    report.note(*failed, Failure{"h.pcf", Reason::NO_FILE}, "/fonts/");
    EXPECT_EQ(report.done_names(),
              (std::vector<std::string>{"Courier Medium [Bitmap]", "Courier Bold [Bitmap]"}));
    report.fail_all_in("/other/", Failure{"/other/", Reason::NOT_ALLOWED});
    EXPECT_EQ(report.done_names(), std::vector<std::string>{"Courier Medium [Bitmap]"});
}

TEST(FontReport, NamesFontsWithoutTheirMarks) {
    EXPECT_EQ(gw::name_without_mark("Courier (iso8859-2) [Bitmap]     [Read Only]"),
              "Courier (iso8859-2) [Bitmap]");
    EXPECT_EQ(gw::name_without_mark("my-alias"), "my-alias");
    EXPECT_EQ(gw::name_without_mark("odd [name"), "odd [name");
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
