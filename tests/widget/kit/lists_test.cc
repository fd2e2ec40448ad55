// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "app/kit/lists.h"
#include "app/kit/looks.h"
#include "app/kit/table_list.h"
#include "app/kit/toolkit.h"
#include "widget/widget_test_support.h"

// X headers come last.
#include <X11/Shell.h>
#include <Xm/List.h>

namespace {

using Lines = std::vector<std::string>;

class Lists : public testing::Test {
  protected:
    void SetUp() override {
        gw::test::start_program();
        shell = XtCreatePopupShell("lists", topLevelShellWidgetClass, wi_toplevel, nullptr, 0);
        list = gw::scrolled_list(shell, "list");
    }
    void TearDown() override { XtDestroyWidget(shell); }
    void select(int position) const { XmListSelectPos(list, position, False); }
    Widget shell = nullptr;
    Widget list = nullptr;
};

/// Numbers of one column end at one place.
TEST_F(Lists, NumbersStandAtTheRightOfTheirColumn) {
    gw::TableList table(list);
    table.show({{{"one"}, {.text = "7", .is_number = true}, {"x"}},
                {{"twenty"}, {.text = "1234", .is_number = true}, {"y"}}});
    const Lines shown = gw::test::items(list);
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_EQ(shown[1], "twenty1234y") << "read without its tabs";
    XmRenderTable fonts = nullptr;
    XtVaGetValues(list, XmNrenderTable, &fonts, nullptr);
    const auto width = [fonts](const std::string& text) {
        const gw::XmText string = gw::xm_text(text);
        return XmStringWidth(fonts, string.get());
    };
    ASSERT_TRUE(shown[0].starts_with("one ") && shown[0].ends_with(" 7x")) << shown[0];
    const std::string padded = shown[0].substr(3, shown[0].size() - 4);
    EXPECT_NEAR(width(padded), width("1234"), width(" "));
}

TEST_F(Lists, ARowIsWhatOtherTextsAre) {
    XmRenderTable fonts = nullptr;
    XtVaGetValues(list, XmNrenderTable, &fonts, nullptr);
    for (const std::string text : {"", "Courier Medium [Bitmap]", "Gr\xC3\xB6\xC3\x9F", "caf\xE9"}) {
        const gw::XmText row = gw::xm_row(text);
        const gw::XmText other = gw::xm_text(text);
        EXPECT_TRUE(XmStringCompare(row.get(), other.get())) << text;
        EXPECT_EQ(gw::text_of(row.get()), gw::text_of(other.get()));
        EXPECT_EQ(XmStringWidth(fonts, row.get()), XmStringWidth(fonts, other.get())) << text;
        EXPECT_EQ(XmStringHeight(fonts, row.get()), XmStringHeight(fonts, other.get())) << text;
    }
}

// Names in indexes are in Latin-1; the toolkit draws nothing behind a byte that is not UTF-8.
TEST_F(Lists, RowsInAScalableFontAreUtf8) {
    const gw::Looks before = gw::looks();
    EXPECT_EQ(gw::row_text("caf\xE9\n"), "caf\xE9\\x0A");
    XmRenderTable fonts = nullptr;
    XtVaGetValues(list, XmNrenderTable, &fonts, nullptr);
    gw::Looks scalable = before;
    scalable.name_fonts = fonts;
    gw::set_looks(scalable);
    EXPECT_EQ(gw::row_text("caf\xE9"), "caf\xC3\xA9");
    EXPECT_EQ(gw::row_text("caf\xC3\xA9"), "caf\xC3\xA9");
    gw::set_looks(before);
}

unsigned char drag_model_of(Widget list) {
    unsigned char model = 0;
    XtVaGetValues(XtParent(list), XmNautoDragModel, &model, nullptr);
    return model;
}

// Each scroll bar that is a drop site costs three round trips to the server.
TEST_F(Lists, ScrollBarsAreDropSitesOnlyInTheToolkitsLook) {
    const gw::Looks before = gw::looks();
    EXPECT_EQ(drag_model_of(list), XmAUTO_DRAG_ENABLED);
    gw::Looks sparing = before;
    sparing.spares_requests = true;
    gw::set_looks(sparing);
    EXPECT_EQ(drag_model_of(gw::scrolled_list(shell, "sparing")), XmAUTO_DRAG_DISABLED);
    gw::set_looks(before);
}

TEST_F(Lists, FillingReplacesWhatWasThere) {
    gw::fill_list(list, {"Courier", "Helvetica"});
    EXPECT_EQ(gw::test::items(list), (Lines{"Courier", "Helvetica"}));
    gw::fill_list(list, {"Times"});
    EXPECT_EQ(gw::test::items(list), (Lines{"Times"}));
    gw::fill_list(list, {});
    EXPECT_EQ(gw::test::items(list), Lines{});
}

TEST_F(Lists, AppendingKeepsWhatIsThere) {
    gw::fill_list(list, {"Courier"});
    gw::append_to_list(list, {});
    gw::append_to_list(list, {"Helvetica", "Times"});
    EXPECT_EQ(gw::test::items(list), (Lines{"Courier", "Helvetica", "Times"}));
}

TEST_F(Lists, LinesComeUnselectedEvenUnderASelectedName) {
    gw::fill_list(list, {"Courier", "Helvetica"});
    select(1);
    gw::append_to_list(list, {"Courier"});
    EXPECT_EQ(gw::selected_positions(list), std::vector<int>{1});
    gw::fill_list(list, {"Courier", "Helvetica"});
    EXPECT_EQ(gw::selected_count(list), 0);
}

TEST_F(Lists, SelectedPositionsAscend) {
    gw::fill_list(list, {"Courier", "Helvetica", "Times"});
    EXPECT_EQ(gw::selected_position(list), 0);
    EXPECT_EQ(gw::selected_positions(list), std::vector<int>{});
    XtVaSetValues(list, XmNselectionPolicy, XmMULTIPLE_SELECT, nullptr);
    select(3);
    select(2);
    EXPECT_EQ(gw::selected_positions(list), (std::vector<int>{2, 3}));
    EXPECT_EQ(gw::selected_position(list), 2);
    EXPECT_EQ(gw::selected_count(list), 2);
}

TEST_F(Lists, StringsKeepEveryLineAndItsOrder) {
    gw::XmTexts texts({"", "two\nlines", "Courier"});
    ASSERT_EQ(texts.count(), 3);
    EXPECT_EQ(gw::text_of(texts.table()[0]), "");
    EXPECT_EQ(gw::text_of(texts.table()[1]), "two\nlines");
    EXPECT_EQ(gw::text_of(texts.table()[2]), "Courier");
    EXPECT_EQ(gw::XmTexts({}).count(), 0);
}

TEST_F(Lists, ALineIsAsWideAsItsCharacters) {
    Dimension narrow = 0;
    Dimension wide = 0;
    gw::set_list_columns(list, 10);
    XtVaGetValues(list, XmNwidth, &narrow, nullptr);
    gw::set_list_columns(list, 40);
    XtVaGetValues(list, XmNwidth, &wide, nullptr);
    EXPECT_GT(wide, 3 * narrow);
}

}  // namespace
