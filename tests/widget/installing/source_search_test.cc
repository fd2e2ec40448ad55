// SPDX-License-Identifier: MIT
//
// The search above the fonts of a source, and "Select All" below it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/installing/font_source.h"
#include "app/installing/installdlg.h"
#include "app/kit/lists.h"
#include "app/kit/widgets.h"
#include "app/program/work_record.h"

#include "widget/work_test_support.h"

namespace {

using namespace gw::test;
using testing::ElementsAre;
using Texts = std::vector<std::string>;

class SourceSearch : public WorkTest {
  protected:
    static void SetUpTestSuite() {
        home();
        start_program({"-xrm", "Glyphward*gw_modern_windows: True"});
    }
    void SetUp() override {
        WorkTest::SetUp();
        choose_destination(destination.path());
        for (const char* family : {"alpha", "beta", "alphabet"})
            source.add(std::string(family) + ".pcf", face(family));
        open_install_dialog();
        installdlg::from_dir_specified_cb(source.c_str());
        ASSERT_TRUE(pump_until([] { return !gw::is_lookup_pending(); }));
        ASSERT_EQ(items(source_list()).size(), 3U);
    }
    static Widget field() { return find(wi_install_dlg, "_avail_font_list._search_textfield"); }
    static std::string count() { return label(wi_install_dlg, "_avail_font_list._search_count"); }
    static std::vector<int> selected() { return gw::selected_positions(source_list()); }

    FontDirectory source;
    TempDir destination;
};

TEST_F(SourceSearch, SelectAllSelectsWhatIsShownAndCanBeInstalled) {
    EXPECT_FALSE(is_sensitive(wi_install_dlg, "_install_button"));
    type_into(field(), "alpha");
    EXPECT_EQ(count(), "2 of 3");
    ASSERT_TRUE(press(find(wi_install_dlg, "_select_all_button")));
    EXPECT_THAT(selected(), ElementsAre(1, 2));
    EXPECT_TRUE(is_sensitive(wi_install_dlg, "_install_button"));
    EXPECT_FALSE(is_sensitive(wi_install_dlg, "_attr_button"));
    EXPECT_NE(label(wi_install_dlg, "_req_space_val"), "0 Kbytes");
}

TEST_F(SourceSearch, WhatIsSelectedInAFilteredListIsInstalled) {
    type_into(field(), "beta.pcf");
    ASSERT_EQ(items(source_list()).size(), 1U);
    select(source_list(), {1});
    EXPECT_THAT(selected(), ElementsAre(3));
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    ASSERT_TRUE(pump_until([] { return !the_wp_cl_data.is_in_progress(); }));
    EXPECT_TRUE(destination.exists("beta.pcf"));
    EXPECT_FALSE(destination.exists("alpha.pcf"));
}

TEST_F(SourceSearch, AnotherSourceIsShownWhole) {
    type_into(field(), "beta.pcf");
    FontDirectory other;
    other.add("gamma.pcf", face("gamma"));
    installdlg::from_dir_specified_cb(other.c_str());
    ASSERT_TRUE(pump_until([] { return !gw::is_lookup_pending(); }));
    EXPECT_EQ(shown_text(field()), "");
    EXPECT_EQ(count(), "1 of 1");
}

}  // namespace
