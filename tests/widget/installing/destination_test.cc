// SPDX-License-Identifier: MIT
//
// The destinations that the install dialog offers, the font path after an installation, and recent sources.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "app/font_path/fpinfodlg.h"
#include "app/installing/font_source.h"
#include "app/installing/installdlg.h"
#include "app/installing/nottakendlg.h"
#include "app/kit/lists.h"
#include "app/kit/menus.h"
#include "app/kit/widgets.h"
#include "app/program/program_objects.h"
#include "drivers/recent_sources.h"
#include "fontpath/gw_font_path.h"
#include "platform/host_paths.h"

#include "widget/installing/install_test_support.h"

#include <Xm/RowColumn.h>
#include <Xm/ToggleB.h>

namespace {

using namespace gw::test;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

class Destination : public TwoFontsTest {
  protected:
    static void SetUpTestSuite() {
        std::filesystem::remove(gw::SUPERUSER_RECENT_SOURCES);
        home();
        start_program({"-xrm", "Glyphward*gw_modern_windows: True"});
    }
    void TearDown() override {
        if (!is_set(join())) {
            XmToggleButtonSetState(join(), True, True);
        }
        stop_not_taken_dlg();
        for (const GWFontPath::TYPE t : {GWFontPath::HOST_FP, GWFontPath::INSTALLATION_FP}) {
            if (int position = position_in(t, destination.path()); position != 0)
                the_font_path->delete_pos(t, position);
        }
        WorkTest::TearDown();
    }
    static Widget for_me() { return find(wi_install_dlg, "_destination_choice._for_me_toggle"); }
    static Widget join() { return find(wi_install_dlg, "_join_path_toggle"); }
    static bool is_set(Widget toggle) { return XmToggleButtonGetState(toggle) != False; }
    static std::string shown() { return label(wi_install_dlg, "_dest_label"); }
    static int position_in(GWFontPath::TYPE t, const std::string& dir) {
        unsigned count = 0;
        int position = 0;
        for (const GW_STRING* element : *the_font_path->get_fpe_list(t, count)) {
            ++position;
            if (dir == element->get_str()) return position;
        }
        return 0;
    }
    static std::vector<Widget> recent() {
        Widget pulldown = nullptr;
        XtVaGetValues(find(wi_install_dlg, "MediaChoiceTemplate._recent_menu"), XmNsubMenuId, &pulldown,
                      nullptr);
        return gw::entries_of(pulldown);
    }

    TempDir destination;
};

TEST_F(Destination, EachUserHasOneThatTheyMayUse) {
    EXPECT_EQ(XtIsSensitive(for_me()) != False, !is_root());
    EXPECT_TRUE(XtIsSensitive(for_everyone()));
    EXPECT_EQ(gw::label_of(for_me()), is_root() ? "For Me (not for root)" : "For Me");
    EXPECT_EQ(gw::label_of(for_everyone()), is_root() ? "For Everyone" : "For Everyone (only root)");
}

TEST_F(Destination, TheChoiceFollowsTheDirectory) {
    open_install_dialog();
    Widget own = is_root() ? for_everyone() : for_me();
    const std::string dir = is_root() ? gw::SUPERUSER_FONT_DIR : home().path() + "glyphwd_fonts/";
    choose_destination(destination.path());
    EXPECT_FALSE(is_set(for_me()) || is_set(for_everyone()));
    EXPECT_THAT(shown(), HasSubstr(destination.path()));
    XmToggleButtonSetState(own, !is_set(own), True);
    EXPECT_TRUE(is_set(own));
    EXPECT_THAT(shown(), HasSubstr(dir));
    XmToggleButtonSetState(own, !is_set(own), True);
    EXPECT_TRUE(is_set(own)) << "pressing it again leaves it set";
    choose_destination(destination.path());
    choose_destination(dir);
    EXPECT_TRUE(is_set(own)) << "also when the directory was found in the chooser";
}

TEST_F(Destination, ItIsOnTheFontPathAfterwards) {
    choose_destination(destination.path());
    choose_source(source);
    install({1});
    ASSERT_TRUE(destination.exists("alpha.pcf"));
    EXPECT_TRUE(is_on_server_path(destination.path()));
    EXPECT_TRUE(server_has(face("alpha")));
    EXPECT_NE(position_in(GWFontPath::ALL_FP, destination.path()), 0) << "at the next login too";
    EXPECT_FALSE(is_managed(wi_fp_info_dlg)) << "there is nothing left to do by hand";
    choose_source(source);
    install({2});
    const std::vector<std::string> path = server_font_path();
    EXPECT_EQ(std::count(path.begin(), path.end(), destination.path()), 1) << "once";
}

TEST_F(Destination, UntickedItIsNotPutOnTheFontPath) {
    choose_destination(destination.path());
    choose_source(source);
    XmToggleButtonSetState(join(), False, True);
    install({1});
    ASSERT_TRUE(destination.exists("alpha.pcf"));
    EXPECT_FALSE(is_on_server_path(destination.path()));
    EXPECT_EQ(position_in(GWFontPath::ALL_FP, destination.path()), 0);
    EXPECT_EQ(is_managed(wi_fp_info_dlg), is_root());
}

TEST_F(Destination, OneThatGoesWhenWorkBeginsIsMadeAnew) {
    choose_destination(destination.file("shared/"));
    choose_source(source);
    destination_goes_when_work_begins();
    install({1, 2});
    EXPECT_TRUE(destination.exists("shared/alpha.pcf"));
    EXPECT_THAT(destination.read("shared/fonts.dir"),
                AllOf(HasSubstr(face("alpha")), HasSubstr(face("beta"))));
}

TEST_F(Destination, SourcesAreRememberedAndOffered) {
    choose_source(source);
    const std::vector<Widget> entries = recent();
    ASSERT_GE(entries.size(), 2U);
    FontDirectory other;
    other.add("gamma.pcf", face("gamma"));
    choose_source(other);
    ASSERT_GE(recent().size(), 3U);
    EXPECT_EQ(gw::chosen_entry(find(wi_install_dlg, "MediaChoiceTemplate._recent_menu")), "Recent Sources");
    ASSERT_TRUE(press(recent()[2]));
    ASSERT_TRUE(pump_until([] { return !gw::is_lookup_pending(); }));
    EXPECT_EQ(current_dir + '/', source.path());
    EXPECT_THAT(items(source_list()), SizeIs(2));
    EXPECT_EQ(gw::recent_sources().front() + '/', source.path());
}

TEST_F(Destination, ASourceThatHasGoneIsTold) {
    {
        FontDirectory gone;
        gone.add("gamma.pcf", face("gamma"));
        choose_source(gone);
    }
    ASSERT_GE(recent().size(), 2U);
    ASSERT_TRUE(press(recent()[1]));
    EXPECT_TRUE(pump_until([] { return is_managed(wi_not_taken_dlg); }));
    EXPECT_THAT(items(find(wi_not_taken_dlg, "lines_list")), ElementsAre(HasSubstr("No such file")));
}

}  // namespace
