// SPDX-License-Identifier: MIT
//
// The modify font path dialog, which only the superuser has: the list and its edits, the two installations,
// and what is stored.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "app/common/dirdlg.h"
#include "app/common/warningdlg.h"
#include "app/font_path/modifyfpdlg.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/main_window/glyphwardapp.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "app/program/work_record.h"
#include "app/samples/installed_list.h"
#include "widget/dialogs_test_support.h"

// X headers come last.
#include <Xm/FileSB.h>
#include <Xm/List.h>
#include <Xm/MessageB.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>

namespace {

using gw::test::find;
using gw::test::items;
using gw::test::press;
using gw::test::pump;
using gw::test::TempDir;
using gw::test::title_of;
using testing::ElementsAre;

constexpr const char* CONFIG = "/usr/vantor/server/etc/VTconfig";
constexpr const char* MISC = "/usr/vantor/lib/X11/fonts/misc/";

class ModifyFontPathTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { gw::test::start_at_home(); }

    void SetUp() override {
        if (::geteuid() != 0) GTEST_SKIP() << "for the superuser";
        config_before_ = TempDir::read_bytes(CONFIG);
        remake();
        open();
        before_ = items(list());
        ASSERT_GE(before_.size(), 3U);
    }
    void TearDown() override {
        if (::geteuid() != 0) return;
        XtUnmanageChild(wi_warning_dlg);
        popdown_dir_dlg();
        press(part("_cancel_button"));
        if (TempDir::read_bytes(CONFIG) != config_before_) store(before_);
        EXPECT_EQ(TempDir::read_bytes(CONFIG), config_before_);
    }

    /// Makes the dialog again, as at the start of the program: no other installation has been chosen.
    static void remake() {
        XtDestroyWidget(XtParent(wi_modify_fp_dlg));
        pump();
        create_modify_fp_dlg("modify_fp_dlg", wi_toplevel);
    }
    static void store(const std::vector<std::string>& path) {
        open();
        select(1);
        while (!items(list()).empty()) press(part("_delete_button"));
        // An element that the stored path has already is not added again.
        press(part("_apply_button"));
        for (const std::string& element : path) {
            type(element);
            press(part("_add_new_button"));
        }
        press(part("_ok_button"));
    }
    static void open() {
        ASSERT_TRUE(press(find(wi_toplevel, "_modify_fp_dlg_button")));
        ASSERT_TRUE(gw::test::pump_until([] { return gw::test::is_viewable(wi_modify_fp_dlg); }));
    }
    static Widget part(const char* name) { return find(wi_modify_fp_dlg, name); }
    static Widget list() { return part("_fpe_list"); }
    static bool sensitive(const char* name) { return XtIsSensitive(part(name)) != False; }
    static void select(int position) {
        XmListSelectPos(list(), position, True);
        pump();
    }
    static int selected() {
        const std::vector<int> positions = gw::selected_positions(list());
        return positions.size() == 1 ? positions.front() : 0;
    }
    static void type(const std::string& text) {
        XmTextFieldSetString(part("_new_fp_textfield"), gw::name_arg(text.c_str()));
    }
    static std::string text_of(const char* name) { return gw::label_of(part(name)); }
    static std::string stored() {
        std::string line = TempDir::read_bytes(CONFIG);
        line.erase(0, line.find('\t') + 1);
        return line.substr(0, line.find('\n'));
    }
    static std::string joined(const std::vector<std::string>& elements) {
        std::string text;
        for (const std::string& element : elements) text += (text.empty() ? "" : ",") + element;
        return text;
    }
    static void choose_directory(const std::string& dir) {
        // The chooser returns the selected entry of its list.
        XmListDeleteAllItems(wi_dir_list);
        const gw::XmText item = gw::xm_text(dir);
        XmListAddItem(wi_dir_list, item.get(), 1);
        XmListSelectPos(wi_dir_list, 1, False);
        XtCallCallbacks(wi_dir_dlg, XmNokCallback, nullptr);
        pump();
    }

    std::vector<std::string> before_;
    std::string config_before_;
};

TEST_F(ModifyFontPathTest, ShowsTheStoredPathOfTheDefaultInstallation) {
    struct utsname host = {};
    ASSERT_EQ(::uname(&host), 0);
    EXPECT_EQ(title_of(wi_modify_fp_dlg), "Glyph Warden - Modify Font Path");
    EXPECT_EQ(text_of("_modify_label"), "Modify Font Path for:");
    EXPECT_EQ(text_of("_default_fp_toggle"), std::string("Default Vantor installation on  ") + host.nodename);
    EXPECT_EQ(text_of("_other_inst_fp_toggle"),
              std::string("Another Vantor installation on  ") + host.nodename);
    EXPECT_NE(XmToggleButtonGetState(part("_default_fp_toggle")), False);
    EXPECT_EQ(text_of("_fpe_list_label"), "Current Font Path Listing For /usr/vantor");
    EXPECT_EQ(joined(before_), stored());
    EXPECT_EQ(text_of("_move_up_button"), "Move up");
    EXPECT_EQ(text_of("_move_down_button"), "Move down");
    EXPECT_EQ(text_of("_delete_button"), "Delete");
    EXPECT_EQ(text_of("_add_new_button"), "Add new");
    EXPECT_EQ(text_of("_new_fp_label"), "New font path element:");
    EXPECT_EQ(text_of("_dir_dlg_button"), "Directory...");
    EXPECT_EQ(text_of("_vantor_dir_dlg_button"), "Directory...");
    EXPECT_EQ(text_of("_msg_label"), "");
    for (const char* button : {"_ok_button", "_apply_button", "_reset_button", "_move_up_button",
                               "_move_down_button", "_delete_button", "_vantor_dir_dlg_button"})
        EXPECT_FALSE(sensitive(button)) << button;
    for (const char* button : {"_add_new_button", "_new_fp_textfield", "_dir_dlg_button", "_cancel_button"})
        EXPECT_TRUE(sensitive(button)) << button;
}

TEST_F(ModifyFontPathTest, TheFirstElementCannotGoUpNorTheLastDown) {
    const int count = static_cast<int>(before_.size());
    select(1);
    EXPECT_FALSE(sensitive("_move_up_button"));
    EXPECT_TRUE(sensitive("_move_down_button"));
    EXPECT_TRUE(sensitive("_delete_button"));
    select(count);
    EXPECT_TRUE(sensitive("_move_up_button"));
    EXPECT_FALSE(sensitive("_move_down_button"));
    EXPECT_FALSE(sensitive("_apply_button")) << "nothing is changed";
}

TEST_F(ModifyFontPathTest, MovingTheSecondUpMakesItTheFirst) {
    select(2);
    ASSERT_TRUE(press(part("_move_up_button")));
    std::swap(before_[0], before_[1]);
    EXPECT_EQ(items(list()), before_);
    std::swap(before_[0], before_[1]);
    EXPECT_EQ(selected(), 1);
    EXPECT_FALSE(sensitive("_move_up_button"));
    for (const char* button : {"_ok_button", "_apply_button", "_reset_button"})
        EXPECT_TRUE(sensitive(button)) << button;
    EXPECT_EQ(TempDir::read_bytes(CONFIG), config_before_) << "nothing is written yet";
    ASSERT_TRUE(press(part("_move_down_button")));
    EXPECT_EQ(items(list()), before_);
    EXPECT_EQ(selected(), 2);
}

TEST_F(ModifyFontPathTest, MovingDownEndsAtTheLast) {
    const int count = static_cast<int>(before_.size());
    select(count - 1);
    ASSERT_TRUE(press(part("_move_down_button")));
    EXPECT_EQ(selected(), count);
    EXPECT_FALSE(sensitive("_move_down_button"));
    EXPECT_EQ(items(list()).back(), before_[before_.size() - 2]);
}

TEST_F(ModifyFontPathTest, DeletingTheLastSelectsTheNewLast) {
    const int count = static_cast<int>(before_.size());
    select(count);
    ASSERT_TRUE(press(part("_delete_button")));
    EXPECT_EQ(items(list()).size(), before_.size() - 1);
    EXPECT_EQ(selected(), count - 1);
    EXPECT_FALSE(sensitive("_move_down_button"));
    EXPECT_TRUE(sensitive("_move_up_button"));
    select(1);
    ASSERT_TRUE(press(part("_delete_button")));
    EXPECT_EQ(selected(), 1);
    while (!items(list()).empty()) ASSERT_TRUE(press(part("_delete_button")));
    for (const char* button : {"_move_up_button", "_move_down_button", "_delete_button"})
        EXPECT_FALSE(sensitive(button)) << button;
    EXPECT_TRUE(sensitive("_apply_button"));
}

TEST_F(ModifyFontPathTest, AnEmptyOrStoredElementIsNotAdded) {
    for (const std::string& text : {std::string(), std::string(MISC)}) {
        type(text);
        ASSERT_TRUE(press(part("_add_new_button")));
        EXPECT_EQ(items(list()), before_) << text;
        EXPECT_FALSE(sensitive("_apply_button")) << text;
    }
}

// Compares with the stored path, not with the list on the screen.
TEST_F(ModifyFontPathTest, AnElementThatIsNotAppliedYetCanBeAddedAgain) {
    type("/fonts/new/");
    ASSERT_TRUE(press(part("_add_new_button")));
    ASSERT_TRUE(press(part("_add_new_button")));
    EXPECT_EQ(items(list()).size(), before_.size() + 2);
    EXPECT_EQ(selected(), static_cast<int>(before_.size()) + 2);
    EXPECT_TRUE(sensitive("_move_up_button"));
    EXPECT_TRUE(sensitive("_delete_button"));
}

TEST_F(ModifyFontPathTest, ApplyStoresTheListAndResetGoesBackToIt) {
    type("/fonts/with blank/\xc3\xa9/");
    ASSERT_TRUE(press(part("_add_new_button")));
    std::vector<std::string> expected = before_;
    expected.emplace_back("/fonts/with blank/\xc3\xa9/");
    ASSERT_TRUE(press(part("_apply_button")));
    EXPECT_TRUE(gw::test::is_viewable(wi_modify_fp_dlg));
    for (const char* button : {"_ok_button", "_apply_button", "_reset_button"})
        EXPECT_FALSE(sensitive(button)) << button;
    press(part("_cancel_button"));
    open();
    EXPECT_EQ(items(list()), expected);
    select(1);
    ASSERT_TRUE(press(part("_delete_button")));
    ASSERT_TRUE(press(part("_reset_button")));
    EXPECT_EQ(items(list()), expected);
    EXPECT_EQ(selected(), 0);
    for (const char* button : {"_move_up_button", "_move_down_button", "_delete_button", "_apply_button"})
        EXPECT_FALSE(sensitive(button)) << button;
}

TEST_F(ModifyFontPathTest, ADirectoryWithACommaIsRefusedWithASentence) {
    type("/fonts/a,b/");
    ASSERT_TRUE(press(part("_add_new_button")));
    EXPECT_EQ(items(list()), before_);
    EXPECT_EQ(text_of("_msg_label"), "a directory of a font path cannot have a comma in its name");
    EXPECT_FALSE(sensitive("_apply_button"));
    type("/fonts/ab/");
    ASSERT_TRUE(press(part("_add_new_button")));
    EXPECT_EQ(text_of("_msg_label"), "");
    gw::set_label(part("_msg_label"), "another message");
    type("/fonts/abc/");
    ASSERT_TRUE(press(part("_add_new_button")));
    EXPECT_EQ(text_of("_msg_label"), "another message");
}

// With the resource for today's windows the file becomes what the window shows.
TEST_F(ModifyFontPathTest, APathWithoutDirectoriesIsStored) {
    gw::set_window_policy(gw::WindowPolicy(true));
    while (!items(list()).empty()) {
        select(1);
        if (!press(part("_delete_button"))) break;
    }
    const bool is_applied = press(part("_apply_button"));
    gw::set_window_policy(gw::WindowPolicy(false));
    ASSERT_TRUE(is_applied);
    unsigned count = 1;
    GWFontPath stored("/usr/vantor");
    stored.get_fpe_list(GWFontPath::INSTALLATION_FP, count);
    EXPECT_EQ(count, 0U);
}

TEST_F(ModifyFontPathTest, EditsWithoutApplyAreGoneAtTheNextOpening) {
    for (const bool by_close_box : {false, true}) {
        type("/unwanted/");
        ASSERT_TRUE(press(part("_add_new_button")));
        if (by_close_box) {
            gw::test::close_box(wi_modify_fp_dlg);
        } else {
            ASSERT_TRUE(press(part("_cancel_button")));
        }
        EXPECT_FALSE(XtIsManaged(wi_modify_fp_dlg));
        open();
        EXPECT_EQ(items(list()), before_);
        EXPECT_EQ(gw::field_text(part("_new_fp_textfield")), "");
    }
    EXPECT_EQ(TempDir::read_bytes(CONFIG), config_before_);
}

TEST_F(ModifyFontPathTest, TheMainWindowFollowsTheStoredPath) {
    const int fonts = the_installed_hrn_count;
    const auto type1 = std::find(before_.begin(), before_.end(), "/usr/vantor/lib/X11/fonts/Type1/");
    ASSERT_NE(type1, before_.end());
    select(static_cast<int>(type1 - before_.begin()) + 1);
    ASSERT_TRUE(press(part("_delete_button")));
    ASSERT_TRUE(press(part("_ok_button")));
    EXPECT_FALSE(XtIsManaged(wi_modify_fp_dlg));
    EXPECT_LT(the_installed_hrn_count, fonts);
    EXPECT_GT(the_installed_hrn_count, 0);
    EXPECT_EQ(items(wi_hrn_list).size(), static_cast<std::size_t>(the_installed_hrn_count + the_alias_count));
    for (const std::string& line : items(wi_hrn_list)) EXPECT_EQ(line.find("[Type-1]"), std::string::npos);
    EXPECT_FALSE(XtIsSensitive(find(wi_mainwindow, "_command_form._delete_button")));
}

TEST_F(ModifyFontPathTest, AThousandElementsAreShownAndReset) {
    for (int i = 0; i < 1000; ++i) {
        type("/fonts/" + std::to_string(i) + "/");
        press(part("_add_new_button"));
    }
    ASSERT_EQ(items(list()).size(), before_.size() + 1000);
    ASSERT_TRUE(press(part("_apply_button")));
    type("/one more/");
    ASSERT_TRUE(press(part("_add_new_button")));
    ASSERT_TRUE(press(part("_reset_button")));
    const std::vector<std::string> shown = items(list());
    ASSERT_EQ(shown.size(), before_.size() + 1000);
    EXPECT_EQ(shown.back(), "/fonts/999/");
}

TEST_F(ModifyFontPathTest, ANewElementCanBeChosen) {
    ASSERT_TRUE(press(part("_dir_dlg_button")));
    EXPECT_EQ(title_of(wi_dir_dlg), "Glyph Warden : Font Path Element");
    choose_directory("/some/where");
    EXPECT_EQ(gw::field_text(part("_new_fp_textfield")), "/some/where");
    EXPECT_EQ(items(list()), before_) << "it is added by the button only";
}

class OtherInstallationTest : public ModifyFontPathTest {
  protected:
    void choose_other(const std::string& root) {
        XmToggleButtonSetState(part("_other_inst_fp_toggle"), True, True);
        pump();
        ASSERT_TRUE(press(part("_vantor_dir_dlg_button")));
        EXPECT_EQ(title_of(wi_dir_dlg), "Glyph Warden : Vantor Installation");
        choose_directory(root);
    }
    TempDir other_;
};

TEST_F(OtherInstallationTest, IsEmptyUntilItIsChosen) {
    XmToggleButtonSetState(part("_other_inst_fp_toggle"), True, True);
    pump();
    EXPECT_EQ(text_of("_fpe_list_label"), "Current Font Path Listing For ");
    EXPECT_TRUE(items(list()).empty());
    EXPECT_EQ(text_of("_msg_label"), "The font path is read-only");
    for (const char* button : {"_add_new_button", "_new_fp_textfield", "_dir_dlg_button"})
        EXPECT_FALSE(sensitive(button)) << button;
    EXPECT_TRUE(sensitive("_vantor_dir_dlg_button"));
    XmToggleButtonSetState(part("_default_fp_toggle"), True, True);
    pump();
    EXPECT_EQ(items(list()), before_);
    EXPECT_EQ(text_of("_msg_label"), "");
    EXPECT_FALSE(sensitive("_vantor_dir_dlg_button"));
}

TEST_F(OtherInstallationTest, IsStoredInItsOwnDatabase) {
    other_.write("server/etc/VTconfig", "XDISPLAY.0.fontpath:\t/other/a/,/other/b/\n");
    choose_other(other_.path());
    EXPECT_EQ(text_of("_fpe_list_label"), "Current Font Path Listing For " + other_.path());
    EXPECT_THAT(items(list()), ElementsAre("/other/a/", "/other/b/"));
    const int fonts = the_installed_hrn_count;
    select(1);
    ASSERT_TRUE(press(part("_move_down_button")));
    ASSERT_TRUE(press(part("_apply_button")));
    EXPECT_EQ(other_.read("server/etc/VTconfig"), "XDISPLAY.0.fontpath:\t/other/b/,/other/a/\n");
    EXPECT_EQ(TempDir::read_bytes(CONFIG), config_before_);
    EXPECT_EQ(the_installed_hrn_count, fonts);
    press(part("_cancel_button"));
    open();
    EXPECT_EQ(items(list()), before_) << "the dialog opens on the default installation";
}

TEST_F(OtherInstallationTest, WithoutADatabaseItIsReadOnly) {
    choose_other(other_.path());
    EXPECT_EQ(text_of("_msg_label"), "The font path is read-only");
    EXPECT_FALSE(sensitive("_add_new_button"));
    EXPECT_TRUE(items(list()).empty());
}

TEST_F(OtherInstallationTest, WhatIsNoDatabaseIsReadOnlyAndStays) {
    const std::string bytes("\0\1\2 no database\n", 16);
    other_.write("server/etc/VTconfig", bytes);
    choose_other(other_.path());
    EXPECT_EQ(text_of("_msg_label"), "The font path is read-only");
    EXPECT_EQ(other_.read("server/etc/VTconfig"), bytes);
}

// The mode bits decide for the superuser too.
TEST_F(OtherInstallationTest, AClosedDatabaseIsReadOnly) {
    const std::string path = other_.write("server/etc/VTconfig", "XDISPLAY.0.fontpath:\t/other/a/\n");
    ::chmod(path.c_str(), 0444);
    choose_other(other_.path());
    EXPECT_EQ(text_of("_msg_label"), "The font path is read-only");
    select(1);
    for (const char* button : {"_move_up_button", "_move_down_button", "_delete_button"})
        EXPECT_FALSE(sensitive(button)) << button;
}

TEST_F(OtherInstallationTest, AWriteThatFailsIsSaidAndTakenBack) {
    const std::string path =
        other_.write("server/etc/VTconfig", "XDISPLAY.0.fontpath:\t/other/a/,/other/b/\n");
    choose_other(other_.path());
    select(1);
    ASSERT_TRUE(press(part("_delete_button")));
    ::chmod(path.c_str(), 0444);
    std::filesystem::remove_all(other_.file("server"));
    ASSERT_TRUE(press(part("_apply_button")));
    EXPECT_THAT(items(list()), ElementsAre("/other/a/", "/other/b/"));
    EXPECT_TRUE(XtIsManaged(wi_warning_dlg));
    EXPECT_EQ(title_of(wi_warning_dlg), "Glyph Warden - Warning");
    EXPECT_EQ(gw::label_of(XmMessageBoxGetChild(wi_warning_dlg, XmDIALOG_MESSAGE_LABEL)),
              "Cannot update font path, permission denied");
    EXPECT_FALSE(sensitive("_apply_button"));
}

TEST_F(OtherInstallationTest, TheReasonOfAFailureIsSaidWhereWindowsShowReasons) {
    other_.write("server/etc/VTconfig", "XDISPLAY.0.fontpath:\t/other/a/,/other/b/\n");
    choose_other(other_.path());
    select(1);
    ASSERT_TRUE(press(part("_delete_button")));
    std::filesystem::remove_all(other_.file("server"));
    gw::set_window_policy(gw::WindowPolicy(true));
    EXPECT_TRUE(press(part("_apply_button")));
    gw::set_window_policy(gw::WindowPolicy(false));
    EXPECT_EQ(gw::test::message_of(wi_warning_dlg), "Cannot update font path, permission denied\n" +
                                                        other_.file("server/etc/VTconfig") +
                                                        ": No such file or directory");
}

TEST_F(ModifyFontPathTest, NothingIsAppliedWhileAnInstallationRuns) {
    select(2);
    ASSERT_TRUE(press(part("_move_up_button")));
    the_wp_cl_data.positions = {1};
    ASSERT_TRUE(press(part("_apply_button")));
    the_wp_cl_data = {};
    EXPECT_EQ(TempDir::read_bytes(CONFIG), config_before_);
}

TEST(FpeExists, ComparesWholeTexts) {
    EXPECT_EQ(modifyfpdlg::fpe_exists("/a/", {"/b/", "/a/"}), 1);
    EXPECT_EQ(modifyfpdlg::fpe_exists("/a", {"/a/"}), 0);
    EXPECT_EQ(modifyfpdlg::fpe_exists(nullptr, {"/a/"}), 0);
    EXPECT_EQ(modifyfpdlg::fpe_exists("/a/", {}), 0);
}

TEST(ModifyFontPath, AnOrdinaryUserHasNoSuchDialog) {
    if (::geteuid() == 0) GTEST_SKIP() << "for an ordinary user";
    gw::test::start_at_home();
    EXPECT_EQ(wi_modify_fp_dlg, nullptr);
}

}  // namespace
