// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/kit/lists.h"
#include "app/kit/row_filter.h"
#include "app/kit/toolkit.h"
#include "widget/widget_test_support.h"

// X headers come last.
#include <X11/Shell.h>
#include <Xm/List.h>

namespace {

using gw::RowFilter;
using Lines = std::vector<std::string>;
using Positions = std::vector<int>;

/// A list whose filter wants the rows with a text in them.
class RowFilterTest : public testing::Test {
  protected:
    void SetUp() override {
        gw::test::start_program();
        shell = XtCreatePopupShell("lists", topLevelShellWidgetClass, wi_toplevel, nullptr, 0);
        list = gw::scrolled_list(shell, "list");
        filter = std::make_unique<RowFilter>(
            list, [this](bool are_new) { return flags(are_new); }, [this] { ++changes; });
        fill({"Courier", "Helvetica", "Helvetica Bold", "Times", "Times Bold"});
    }
    void TearDown() override {
        filter.reset();
        XtDestroyWidget(shell);
    }

    void fill(Lines lines) {
        rows = std::move(lines);
        gw::fill_list(list, rows);
    }
    void want(const std::string& text) {
        wanted = text;
        filter->apply();
    }
    std::vector<bool> flags(bool are_new) {
        told_of_new_rows = told_of_new_rows || are_new;
        std::vector<bool> result;
        for (const std::string& row : rows) result.push_back(row.find(wanted) != std::string::npos);
        return result;
    }
    /// What the list calls when the user selects; `state` is that of the keyboard.
    void user_selects(const Positions& places, unsigned state) const {
        if (state == 0) XmListDeselectAllItems(list);
        gw::select_items_too(list, places);
        XEvent event = {};
        event.xbutton.type = ButtonRelease;
        event.xbutton.state = state;
        XmListCallbackStruct call = {};
        call.reason = XmCR_EXTENDED_SELECT;
        call.event = &event;
        call.selected_item_count = gw::test::items(list).empty() ? 0 : 1;
        XtCallCallbacks(list, XmNextendedSelectionCallback, &call);
    }

    Widget shell = nullptr;
    Widget list = nullptr;
    std::unique_ptr<RowFilter> filter;
    Lines rows;
    std::string wanted;
    bool told_of_new_rows = false;
    int changes = 0;
};

TEST_F(RowFilterTest, PositionsAreThoseOfAllRows) {
    want("Bold");
    EXPECT_EQ(gw::test::items(list), (Lines{"Helvetica Bold", "Times Bold"}));
    EXPECT_EQ(gw::row_count(list), 5);
    EXPECT_EQ(filter->shown_count(), 2);
    user_selects({2}, 0);
    EXPECT_EQ(gw::selected_positions(list), Positions{5});
    EXPECT_EQ(gw::selected_position(list), 5);
    EXPECT_EQ(gw::top_position(list), 3);
    gw::deselect_row(list, 5);
    EXPECT_EQ(gw::selected_count(list), 0);
}

TEST_F(RowFilterTest, WhatIsSelectedStaysSo) {
    gw::select_too(list, {2, 5});
    want("Bold");
    EXPECT_EQ(gw::selected_positions(list), (Positions{2, 5}));
    EXPECT_EQ(gw::selected_count(list), 2);
    EXPECT_EQ(filter->selected_and_hidden(), 1);
    want("Courier");
    EXPECT_EQ(gw::selected_positions(list), (Positions{2, 5}));
    EXPECT_EQ(filter->selected_and_hidden(), 2);
    want("");
    EXPECT_EQ(gw::selected_positions(list), (Positions{2, 5}));
    EXPECT_EQ(filter->selected_and_hidden(), 0);
}

TEST_F(RowFilterTest, ANewSelectionLeavesNothingHiddenSelected) {
    gw::select_too(list, {2});
    want("Bold");
    user_selects({1}, 0);
    EXPECT_EQ(gw::selected_positions(list), Positions{3});
    want("");
    EXPECT_EQ(gw::selected_positions(list), Positions{3});
}

TEST_F(RowFilterTest, AnAdditionKeepsWhatIsHidden) {
    gw::select_too(list, {2});
    want("Bold");
    user_selects({1}, ControlMask);
    EXPECT_EQ(gw::selected_positions(list), (Positions{2, 3}));
    user_selects({2}, ShiftMask);
    EXPECT_EQ(gw::selected_positions(list), (Positions{2, 3, 5}));
    gw::deselect_all(list);
    EXPECT_EQ(gw::selected_positions(list), Positions{});
}

TEST_F(RowFilterTest, SelectingDoesNotChangeWhatAKeyDoes) {
    gw::select_too(list, {1, 2});
    unsigned char mode = XmADD_MODE;
    XtVaGetValues(list, XmNselectionMode, &mode, nullptr);
    EXPECT_EQ(mode, XmNORMAL_MODE);
}

TEST_F(RowFilterTest, NewRowsAreFilteredToo) {
    want("Bold");
    told_of_new_rows = false;
    fill({"Aa Bold", "Bb", "Cc Bold"});
    EXPECT_TRUE(told_of_new_rows);
    EXPECT_EQ(gw::test::items(list), (Lines{"Aa Bold", "Cc Bold"}));
    rows.push_back("Dd Bold");
    gw::append_to_list(list, {"Dd Bold"});
    EXPECT_EQ(gw::test::items(list), (Lines{"Aa Bold", "Cc Bold", "Dd Bold"}));
    told_of_new_rows = false;
    want("Bb");
    EXPECT_FALSE(told_of_new_rows);
    EXPECT_EQ(gw::test::items(list), Lines{"Bb"});
}

TEST_F(RowFilterTest, ARowThatGoesMovesTheOthersUp) {
    gw::select_too(list, {2, 5});
    want("Bold");
    rows.erase(rows.begin());
    gw::delete_row(list, 1);  // a hidden one
    EXPECT_EQ(gw::selected_positions(list), (Positions{1, 4}));
    rows.erase(rows.begin() + 1);
    gw::delete_row(list, 2);  // one that is shown
    EXPECT_EQ(gw::test::items(list), Lines{"Times Bold"});
    EXPECT_EQ(gw::selected_positions(list), (Positions{1, 3}));
    want("");
    EXPECT_EQ(gw::test::items(list), (Lines{"Helvetica", "Times", "Times Bold"}));
}

TEST_F(RowFilterTest, ALineMayChangeWhereverItIs) {
    want("Bold");
    gw::replace_row(list, 3, "Helvetica Bold [Damaged]");
    gw::replace_row(list, 1, "Courier [Damaged]");
    EXPECT_EQ(gw::test::items(list), (Lines{"Helvetica Bold [Damaged]", "Times Bold"}));
    want("");
    EXPECT_EQ(gw::test::items(list).front(), "Courier [Damaged]");
}

TEST_F(RowFilterTest, PositionsThatDoNotExistAreNothing) {
    want("Bold");
    for (const int position : {-1, 0, 6, 1000}) {
        gw::delete_row(list, position);
        gw::replace_row(list, position, "x");
        gw::select_too(list, {position});
        gw::deselect_row(list, position);
        gw::show_position(list, position);
        gw::set_top_position(list, position);
    }
    EXPECT_EQ(gw::row_count(list), 5);
    EXPECT_EQ(gw::selected_count(list), 0);
}

/// Their number alone: their texts would take longer to read than the list takes to be filled.
std::size_t items_in(Widget list) {
    int count = 0;
    XtVaGetValues(list, XmNitemCount, &count, nullptr);
    return static_cast<std::size_t>(count);
}

TEST_F(RowFilterTest, ALongListIsWholeWheneverItIsNeeded) {
    Lines many;
    for (int i = 1; i <= 20000; ++i) many.push_back("Font " + std::to_string(i));
    fill(many);
    EXPECT_EQ(gw::test::items(list), many);
    want("1");
    want("Font");
    EXPECT_LT(gw::test::items(list).size(), many.size()) << "what is seen comes first";
    gw::select_too(list, {20000});
    EXPECT_EQ(gw::test::items(list), many);
    EXPECT_EQ(gw::selected_positions(list), Positions{20000});

    want("Font 1");
    const std::size_t found = static_cast<std::size_t>(filter->shown_count());
    EXPECT_TRUE(gw::test::pump_until([&] { return items_in(list) == found; }));
    EXPECT_EQ(gw::selected_positions(list), Positions{20000});
    gw::delete_row(list, 19999);
    want("");
    EXPECT_TRUE(gw::test::pump_until([&] { return items_in(list) == many.size() - 1; }));
    EXPECT_EQ(gw::selected_positions(list), Positions{19999});
}

TEST_F(RowFilterTest, AFilterThatGoesInTheMiddleLeavesNoWork) {
    fill(Lines(20000, "Font"));
    want("none");
    want("Font");
    filter.reset();
    gw::test::pump();
    EXPECT_EQ(RowFilter::of(list), nullptr);
}

}  // namespace
