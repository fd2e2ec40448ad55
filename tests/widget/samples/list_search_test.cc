// SPDX-License-Identifier: MIT
//
// The search above the list of installed fonts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/main_window/glyphwardapp.h"
#include "app/program/program_objects.h"
#include "app/program/shown_list.h"
#include "app/samples/attrdlg.h"
#include "app/samples/installed_list.h"

#include "widget/dialogs_test_support.h"

#include <Xm/List.h>
#include <Xm/ToggleB.h>

namespace {

using namespace gw::test;
using testing::AllOf;
using testing::Each;
using testing::HasSubstr;
using testing::Not;
using Texts = std::vector<std::string>;

class ListSearchTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        home();
        start_program(
            {"-xrm", "Glyphward*gw_modern_windows: True", "-xrm", "Glyphward*gw_modern_fonts: True"});
        ASSERT_TRUE(pump_until([] { return is_viewable(wi_mainwindow); }));
    }
    void SetUp() override {
        forget_selection();
        type("");
        pump();
        ASSERT_EQ(count(), all_of_all());
    }

    static Widget part(const std::string& name) { return find(wi_mainwindow, "FontListTemplate." + name); }
    static Widget field() { return part("_search_textfield"); }
    static void type(const std::string& text) { type_into(field(), text); }
    static std::string count() { return gw::label_of(part("_search_count")); }
    static std::string all_of_all() {
        const std::string all = std::to_string(gw::installed_entries().count());
        return all + " of " + all;
    }
    static std::size_t shown() { return static_cast<std::size_t>(std::stoi(count())); }
    /// The rows that are shown, when the list has all of them.
    static Texts rows() {
        EXPECT_TRUE(pump_until([] { return items(wi_hrn_list).size() == shown(); }));
        return items(wi_hrn_list);
    }
    static void set(const char* toggle, bool on) {
        XmToggleButtonSetState(part(std::string("_search_toggles.") + toggle), on ? True : False, True);
    }
};

TEST_F(ListSearchTest, AllWordsAreInEachRowThatStays) {
    type("bold helv 12 8859-1");
    const Texts found = rows();
    ASSERT_FALSE(found.empty());
    EXPECT_EQ(found.front().substr(0, 14), "Helvetica Bold");
    EXPECT_EQ(count(),
              std::to_string(found.size()) + " of " + std::to_string(gw::installed_entries().count()));
    type("no font has this");
    EXPECT_EQ(rows(), Texts{});
    EXPECT_EQ(count(), "0 of " + std::to_string(gw::installed_entries().count()));
}

TEST_F(ListSearchTest, TheSelectedRowIsTheFontThatIsMeant) {
    type("helvetica bold oblique");
    const Texts found = rows();
    ASSERT_GE(found.size(), 1U);
    select(wi_hrn_list, {1});
    const int position = gw::selected_position(wi_hrn_list);
    ASSERT_GT(position, 1);
    const GWHRNElement* element = gw::installed_entries().font_at(position);
    ASSERT_NE(element, nullptr);
    // The state stands in a column of its own.
    const std::string name = element->get_name();
    EXPECT_THAT(found.front(), testing::StartsWith(name.substr(0, name.find("  "))));
    ASSERT_TRUE(press(find(wi_mainwindow, "_command_form._attributes_button1")));
    EXPECT_THAT(gw::label_of(find(wi_attr_dlg, "hrn_name")), HasSubstr("Helvetica Bold Oblique"));
    clear_attributes();
}

TEST_F(ListSearchTest, WhatIsSelectedAndHiddenIsSaid) {
    select(wi_hrn_list, {1, 2});
    const std::vector<int> selected = gw::selected_positions(wi_hrn_list);
    type("helvetica bold");
    EXPECT_THAT(count(), testing::EndsWith("; hidden and selected: 2"));
    EXPECT_EQ(gw::selected_positions(wi_hrn_list), selected);
    type("");
    EXPECT_EQ(count(), all_of_all());
    EXPECT_EQ(gw::selected_positions(wi_hrn_list), selected);
}

TEST_F(ListSearchTest, EscapeClearsItAndDownLeadsToTheList) {
    type("courier");
    ASSERT_NE(count(), all_of_all());
    XmProcessTraversal(field(), XmTRAVERSE_CURRENT);
    press_key(field(), "Down");
    EXPECT_EQ(XmGetFocusWidget(wi_mainwindow), wi_hrn_list);
    press_key(wi_hrn_list, "Escape");
    EXPECT_EQ(shown_text(field()), "");
    EXPECT_EQ(count(), all_of_all());
    type("courier");
    press_key(field(), "Escape");
    EXPECT_EQ(count(), all_of_all());
}

TEST_F(ListSearchTest, WhatIsTypedInTheListGoesToTheField) {
    XmProcessTraversal(wi_hrn_list, XmTRAVERSE_CURRENT);
    press_key(wi_hrn_list, "v", ControlMask);
    press_key(wi_hrn_list, "space");
    EXPECT_EQ(shown_text(field()), "");
    for (const char* key : {"h", "e", "l"}) press_key(wi_hrn_list, key);
    EXPECT_EQ(shown_text(field()), "hel");
    EXPECT_EQ(XmGetFocusWidget(wi_mainwindow), field());
}

TEST_F(ListSearchTest, FormatsAreChosen) {
    for (const char* other : {"_type1_toggle", "_truetype_toggle", "_opentype_toggle", "_alias_toggle"})
        set(other, false);
    const Texts bitmaps = rows();
    ASSERT_FALSE(bitmaps.empty());
    EXPECT_THAT(bitmaps, Each(HasSubstr("[Bitmap]")));
    set("_bitmap_toggle", false);
    EXPECT_EQ(rows(), Texts{});
    set("_alias_toggle", true);
    ASSERT_FALSE(rows().empty());
    EXPECT_THAT(rows(), Each(HasSubstr("[Alias]")));
    for (const char* toggle : {"_type1_toggle", "_truetype_toggle", "_opentype_toggle", "_bitmap_toggle"})
        set(toggle, true);
    EXPECT_EQ(count(), all_of_all());
}

TEST_F(ListSearchTest, MineAndEveryonesAreAll) {
    set("_own_toggle", false);
    const std::size_t everyones = rows().size();
    set("_own_toggle", true);
    set("_everyones_toggle", false);
    const std::size_t mine = rows().size();
    EXPECT_EQ(everyones + mine, static_cast<std::size_t>(gw::installed_entries().count()));
    EXPECT_GT(everyones, 0U);
    set("_own_toggle", false);
    EXPECT_EQ(rows(), Texts{});
    set("_own_toggle", true);
    set("_everyones_toggle", true);
}

TEST_F(ListSearchTest, NoTextIsTooLongOrStrange) {
    for (const std::string& text :
         {std::string(10000, 'x'), std::string(12000, 'y'), std::string("[.*"), std::string("\\ ( ["),
          std::string("\xC3\xA4\xFF ]["), std::string(9999, ' ') + "helvetica"}) {
        type(text);
        EXPECT_EQ(rows().empty(), !text.ends_with("helvetica")) << text.substr(0, 20);
    }
}

TEST_F(ListSearchTest, AListThatIsFilledAgainStaysFiltered) {
    type("helvetica");
    const Texts found = rows();
    update_wi_installed_hrn_list();
    EXPECT_EQ(rows(), found);
}

}  // namespace
