// SPDX-License-Identifier: MIT
//
// Deleting the fonts that are selected in the main window: the question, the work, its results, and leaving
// the program in the middle.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "app/common/progressdlg.h"
#include "app/conflicts/conflictdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/deleting/deletion.h"
#include "app/deleting/delwarningdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/installing/installdlg.h"
#include "app/kit/lists.h"
#include "app/kit/widgets.h"
#include "app/main_window/glyphwardapp.h"
#include "app/program/program_objects.h"
#include "app/program/work_record.h"
#include "app/samples/attrdlg.h"
#include "app/samples/installed_list.h"
#include "platform/host_paths.h"
#include "platform/scratch.h"
#include "support/fake_packages.h"

#include "widget/work_test_support.h"

#include <Xm/List.h>
#include <Xm/Scale.h>

namespace {

using namespace gw::test;

class Deletion : public WorkTest {
  protected:
    void TearDown() override {
        press(find(wi_attr_dlg, "close_button"));
        WorkTest::TearDown();
    }
    /// Makes four fonts, and two aliases after them.
    void make_fonts() {
        for (const char* name : {"alpha", "beta", "delta", "gamma"})
            installed().add(std::string(name) + ".pcf", face(name));
        show_installed({"my-alias", "your-alias"});
    }
    static bool ask() { return press(find(wi_mainwindow, "_command_form._delete_button")); }
    static bool can_delete() {
        const bool button = is_sensitive(wi_mainwindow, "_command_form._delete_button");
        EXPECT_EQ(is_sensitive(wi_mainwindow, "_fonts_pulldown._delete_button"), button);
        return button;
    }
    static bool can_show_attributes() {
        const bool button = is_sensitive(wi_mainwindow, "_attributes_button1");
        EXPECT_EQ(is_sensitive(wi_mainwindow, "_attributes_dlg_button"), button);
        return button;
    }
    static int progress() {
        int value = -1;
        XmScaleGetValue(find(wi_progress_dlg, "progress_scale"), &value);
        return value;
    }
};

TEST_F(Deletion, AsksFirst) {
    make_fonts();
    select(wi_hrn_list, {1});
    ASSERT_TRUE(press(find(wi_mainwindow, "_fonts_pulldown._delete_button")));
    EXPECT_TRUE(is_managed(wi_del_warning_dlg));
    EXPECT_EQ(title_of(wi_del_warning_dlg), "Glyph Warden - Deletion Confirmation");
    EXPECT_EQ(label(wi_del_warning_dlg, "Message"),
              "Choosing Delete will remove these fonts permanently\nfrom your system.\nAre you sure you want "
              "to delete these fonts?\n \nThis action is not undo-able.");
    EXPECT_EQ(label(wi_del_warning_dlg, "OK"), "Delete");
    EXPECT_FALSE(is_managed(find(wi_del_warning_dlg, "Help")));
    for (const bool by_box : {false, true}) {
        if (by_box) {
            ASSERT_TRUE(ask());
            ASSERT_TRUE(pump_until([] { return is_viewable(wi_del_warning_dlg); }));
            close_box(wi_del_warning_dlg);
        } else {
            ASSERT_TRUE(press(find(wi_del_warning_dlg, "Cancel")));
        }
        EXPECT_FALSE(is_managed(wi_del_warning_dlg));
        EXPECT_EQ(items(wi_hrn_list).size(), 6U);
        EXPECT_EQ(gw::selected_count(wi_hrn_list), 1);
        EXPECT_TRUE(can_delete());
        EXPECT_TRUE(can_show_attributes());
        EXPECT_TRUE(installed().exists("alpha.pcf"));
        EXPECT_EQ(main_status(), " ");
    }
}

TEST_F(Deletion, TakesTheFontsAway) {
    make_fonts();
    EXPECT_TRUE(server_has(face("beta")));
    remove({2, 3});
    EXPECT_EQ(main_status(), "2 fonts successfully deleted.");
    EXPECT_EQ(installed().index(), index_of({"alpha.pcf " + face("alpha"), "gamma.pcf " + face("gamma")}));
    EXPECT_FALSE(installed().exists("beta.pcf"));
    EXPECT_FALSE(installed().exists("delta.pcf"));
    EXPECT_FALSE(server_has(face("beta")));
    EXPECT_TRUE(server_has(face("gamma")));
    EXPECT_EQ(the_installed_hrn_count, 2);
    EXPECT_EQ(the_alias_count, 2);
    const std::vector<std::string> names = items(wi_hrn_list);
    ASSERT_EQ(names.size(), 4U);
    EXPECT_EQ(names[0], listed("Alpha"));
    EXPECT_EQ(names[1], listed("Gamma"));
    EXPECT_FALSE(is_managed(wi_preconflict_dlg));
    EXPECT_FALSE(is_managed(wi_fp_info_dlg));
}

TEST_F(Deletion, OfAllFontsLeavesTheAliases) {
    make_fonts();
    remove({1, 2, 3, 4});
    EXPECT_EQ(installed().index(), "0\n");
    EXPECT_EQ(the_installed_hrn_count, 0);
    EXPECT_EQ(items(wi_hrn_list).size(), 2U);
    remove({1});
    EXPECT_EQ(main_status(), "0 fonts successfully deleted.");
    EXPECT_EQ(label(wi_preconflict_dlg, "read_only_label"), "Read-Only Fonts (Cannot Delete): 1");
}

TEST_F(Deletion, ForgetsTheSelection) {
    make_fonts();
    select(wi_hrn_list, {1});
    ASSERT_TRUE(press(find(wi_mainwindow, "_attributes_button1")));
    EXPECT_EQ(is_attr_dlg_displayed(), 1);
    ASSERT_TRUE(ask());
    act_when([] { return the_wp_cl_data.is_in_progress() && is_managed(wi_progress_dlg); },
             [] {
                 EXPECT_EQ(gw::selected_count(wi_hrn_list), 0);
                 EXPECT_EQ(shown_text(wi_installed_sample_textfield), "");
                 for (const char* name : {"_size_option_menu", "_res_option_menu", "_sample_textfield"})
                     EXPECT_FALSE(is_sensitive(wi_mainwindow, name)) << name;
                 EXPECT_EQ(label(wi_mainwindow, "_disk_space_val"), " ");
                 EXPECT_EQ(gw::label_of(wi_font_xlfd_name), "");
                 EXPECT_FALSE(can_delete());
                 EXPECT_FALSE(can_show_attributes());
             });
    ASSERT_TRUE(press(find(wi_del_warning_dlg, "OK")));
    ASSERT_TRUE(wait_for_work());
    EXPECT_TRUE(all_acted());
    EXPECT_FALSE(can_delete());
    EXPECT_FALSE(can_show_attributes());
    select(wi_hrn_list, {1});
    EXPECT_TRUE(can_delete());
    EXPECT_TRUE(can_show_attributes());
    EXPECT_EQ(main_status(), " ");
}

TEST_F(Deletion, OfNothingOnlyTakesTheControlsAway) {
    make_fonts();
    select(wi_hrn_list, {1});
    ASSERT_TRUE(ask());
    XmListDeselectAllItems(wi_hrn_list);
    ASSERT_TRUE(press(find(wi_del_warning_dlg, "OK")));
    EXPECT_FALSE(can_delete());
    EXPECT_FALSE(can_show_attributes());
    EXPECT_FALSE(the_wp_cl_data.is_in_progress());
    EXPECT_FALSE(is_managed(wi_progress_dlg));
    EXPECT_EQ(items(wi_hrn_list).size(), 6U);
    EXPECT_EQ(main_status(), " ");
    delete_confirmed_cb(0);
    EXPECT_EQ(main_status(), " ");
}

TEST_F(Deletion, TellsHowFarItIs) {
    make_fonts();
    select(wi_hrn_list, {1, 2, 3});
    ASSERT_TRUE(ask());
    act_when([] { return is_managed(wi_progress_dlg) && progress() == 0; },
             [] {
                 EXPECT_EQ(title_of(wi_progress_dlg), "Font Deletion Progress Dialog");
                 EXPECT_EQ(label(wi_progress_dlg, "action_label"), "Fonts Deleted");
                 int maximum = 0;
                 XtVaGetValues(find(wi_progress_dlg, "progress_scale"), XmNmaximum, &maximum, nullptr);
                 EXPECT_EQ(maximum, 3);
             });
    act_when([] { return progress() == 2; }, [] { EXPECT_EQ(items(wi_hrn_list).size(), 4U); });
    ASSERT_TRUE(press(find(wi_del_warning_dlg, "OK")));
    ASSERT_TRUE(wait_for_work());
    EXPECT_TRUE(all_acted());
    EXPECT_EQ(main_status(), "3 fonts successfully deleted.");
}

TEST_F(Deletion, OfAliasesDeletesNothing) {
    make_fonts();
    remove({5, 6});
    EXPECT_EQ(main_status(), "0 fonts successfully deleted.");
    EXPECT_TRUE(is_managed(wi_preconflict_dlg));
    EXPECT_EQ(label(wi_preconflict_dlg, "success_label"), "Fonts Successfully Deleted:       0");
    EXPECT_EQ(label(wi_preconflict_dlg, "read_only_label"), "Read-Only Fonts (Cannot Delete): 2");
    EXPECT_EQ(label(wi_preconflict_dlg, "conflict_label"), "Deletions needing confirmation: 0 *");
    EXPECT_EQ(items(wi_hrn_list).size(), 6U);
    EXPECT_EQ(the_alias_list.get_count(), 2);
    ASSERT_TRUE(press(find(wi_preconflict_dlg, "resolve_button")));
    const std::vector<std::string> names = items(conflicts_list());
    ASSERT_EQ(names.size(), 2U);
    EXPECT_TRUE(names[0].starts_with(the_alias_list.get_elem_at_pos(1)->get_hrn_name())) << names[0];
    pick(conflicts_list(), 2);
    EXPECT_FALSE(is_sensitive(wi_conflict_dlg, "not_keep_button"));
}

// Positions move up by one for each font that was deleted, and for no other.
TEST_F(Deletion, OfFontsAndAnAliasDeletesTheFonts) {
    make_fonts();
    remove({1, 4, 5});
    EXPECT_EQ(main_status(), "2 fonts successfully deleted.");
    EXPECT_EQ(installed().index(), index_of({"beta.pcf " + face("beta"), "delta.pcf " + face("delta")}));
    EXPECT_EQ(label(wi_preconflict_dlg, "success_label"), "Fonts Successfully Deleted:       2");
    EXPECT_EQ(label(wi_preconflict_dlg, "read_only_label"), "Read-Only Fonts (Cannot Delete): 1");
    EXPECT_EQ(items(wi_hrn_list).size(), 4U);
}

TEST_F(Deletion, OfAReadOnlyFontDeletesTheOthers) {
    make_fonts();
    // Nobody can make a file in /proc, so a font there is read-only.
    auto* font = new GWFont(GWFont::BITMAP_FONT);
    font->set_xlfd_name(face("closed").c_str());
    auto files = std::make_unique<GW_FSPEC_LIST>();
    files->append(new GW_FILE_SPEC("closed.pcf", "/proc/", gw::FILE_TYPE_REGULAR, gw::EXT_UNKNOWN));
    font->set_dir_name("/proc/");
    font->set_font_file_list(std::move(files));
    the_installed_hrn_list.add_font(font);
    the_installed_hrn_count = the_installed_hrn_list.get_count();
    update_wi_installed_hrn_list();
    ASSERT_EQ(items(wi_hrn_list)[2], listed("Closed", true));
    remove({2, 3, 4});
    EXPECT_EQ(main_status(), "2 fonts successfully deleted.");
    EXPECT_EQ(items(wi_hrn_list)[1], listed("Closed", true));
    EXPECT_EQ(label(wi_preconflict_dlg, "read_only_label"), "Read-Only Fonts (Cannot Delete): 1");
    EXPECT_EQ(label(wi_preconflict_dlg, "ok_button"), "Ok");
}

// A font of the installation is deleted when the user insists and has the permission.
TEST_F(Deletion, OfASystemFontWantsADecision) {
    if (!is_root()) GTEST_SKIP() << "to an ordinary user the system's fonts are read-only";
    const std::string dir = std::string(gw::SYSTEM_FONT_DIR) + "/extra/";
    std::filesystem::create_directory(dir);
    installed().add("system.pcf", face("system"));
    for (const char* name : {"system.pcf", "fonts.dir"})
        std::filesystem::copy_file(installed().file(name), dir + name);
    GW_FPE element(dir.c_str());
    GW_LIST<GWFont> fonts;
    the_pcf_fsm.make_installed_font_list(fonts, &element);
    for (GWFont* font : fonts) the_installed_hrn_list.add_font(font);
    the_installed_hrn_count = the_installed_hrn_list.get_count();
    update_wi_installed_hrn_list();
    remove({1});
    EXPECT_EQ(main_status(), "0 fonts successfully deleted.");
    EXPECT_EQ(label(wi_preconflict_dlg, "conflict_label"), "Deletions needing confirmation: 1 *");
    EXPECT_TRUE(std::filesystem::exists(dir + "system.pcf"));
    ASSERT_TRUE(press(find(wi_preconflict_dlg, "resolve_button")));
    pick(conflicts_list(), 1);
    EXPECT_EQ(label(wi_conflict_dlg, "conflict_detail_label"), "\nIt is a system font.");
    ASSERT_TRUE(press(find(wi_conflict_dlg, "not_keep_button")));
    ASSERT_TRUE(press(find(wi_conflict_dlg, "ok_button")));
    EXPECT_EQ(main_status(), "1 fonts successfully deleted.");
    EXPECT_FALSE(std::filesystem::exists(dir + "system.pcf"));
    EXPECT_EQ(TempDir::read_bytes(dir + "fonts.dir"), "0\n");
    EXPECT_EQ(the_installed_hrn_count, 0);
    EXPECT_TRUE(items(wi_hrn_list).empty());
    EXPECT_TRUE(is_managed(wi_fp_info_dlg));
    std::filesystem::remove_all(dir);
}

// The package manager would miss the file. So the user is asked first, wherever the font is.
TEST_F(Deletion, OfAPackagesFontWantsADecisionThatNamesThePackage) {
    if (!is_root()) GTEST_SKIP() << "to an ordinary user the fonts of packages are read-only";
    make_fonts();
    const gw::test::FakePackages packages(installed().path(), "xfonts-test");
    for (const bool insists : {false, true}) {
        remove({1});
        EXPECT_EQ(main_status(), "0 fonts successfully deleted.");
        EXPECT_EQ(label(wi_preconflict_dlg, "conflict_label"), "Deletions needing confirmation: 1 *");
        ASSERT_TRUE(press(find(wi_preconflict_dlg, "resolve_button")));
        pick(conflicts_list(), 1);
        EXPECT_EQ(label(wi_conflict_dlg, "conflict_detail_label"),
                  "\nIt is part of a package.\nPackage: xfonts-test");
        const std::size_t before = items(wi_hrn_list).size();
        ASSERT_TRUE(press(find(wi_conflict_dlg, insists ? "not_keep_button" : "keep_button")));
        ASSERT_TRUE(press(find(wi_conflict_dlg, "ok_button")));
        EXPECT_EQ(items(wi_hrn_list).size(), before - (insists ? 1 : 0)) << "the superuser may insist";
        stop_fp_info_dlg();
    }
}

TEST_F(Deletion, StaysUndoneWhenThePackageManagerDoesNotAnswer) {
    if (!is_root()) GTEST_SKIP() << "to an ordinary user the fonts of packages are read-only";
    make_fonts();
    const gw::test::FakePackages packages("kill -9 $$\n");
    const std::size_t before = items(wi_hrn_list).size();
    testing::internal::CaptureStderr();
    remove({1});
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "glyphward: dpkg-query -S: this command failed with status 137; the font stays\n");
    EXPECT_EQ(main_status(), "0 fonts successfully deleted.");
    EXPECT_EQ(items(wi_hrn_list).size(), before);
}

// An ordinary user cannot insist on deleting the same font.
TEST_F(Deletion, OfASystemFontIsNotForAUser) {
    if (is_root()) GTEST_SKIP() << "for an ordinary user";
    GW_FPE element((std::string(gw::SYSTEM_FONT_DIR) + "/misc/").c_str());
    GW_LIST<GWFont> fonts;
    the_pcf_fsm.make_installed_font_list(fonts, &element);
    for (GWFont* font : fonts) the_installed_hrn_list.add_font(font);
    the_installed_hrn_count = the_installed_hrn_list.get_count();
    update_wi_installed_hrn_list();
    remove({1});
    EXPECT_EQ(main_status(), "0 fonts successfully deleted.");
    EXPECT_EQ(label(wi_preconflict_dlg, "read_only_label"), "Read-Only Fonts (Cannot Delete): 1");
    EXPECT_EQ(label(wi_preconflict_dlg, "conflict_label"), "Deletions needing confirmation: 0 *");
}

// --- one work at a time ------------------------------------------------------

TEST_F(Deletion, KeepsOtherWorkOutToTheLastFont) {
    make_fonts();
    FontDirectory source;
    source.add("new.pcf", face("new"));
    choose_source(source);
    select(source_list(), {1});
    select(wi_hrn_list, {1, 2});
    ASSERT_TRUE(ask());
    act_when([] { return progress() == 2; },
             [] {
                 EXPECT_TRUE(press(find(wi_install_dlg, "_install_button")));
                 select(wi_hrn_list, {1});
                 EXPECT_FALSE(can_delete());
                 EXPECT_FALSE(is_sensitive(wi_mainwindow, "_install_dlg_button"));
                 delete_confirmed_cb(1);
             });
    ASSERT_TRUE(press(find(wi_del_warning_dlg, "OK")));
    ASSERT_TRUE(wait_for_work());
    EXPECT_TRUE(all_acted());
    EXPECT_EQ(main_status(), "2 fonts successfully deleted.");
    EXPECT_EQ(the_installed_hrn_count, 2);
    EXPECT_FALSE(home().exists("glyphwd_fonts/new.pcf"));
    EXPECT_TRUE(is_managed(wi_install_dlg));
    EXPECT_TRUE(is_sensitive(wi_mainwindow, "_install_dlg_button"));
}

// --- leaving in the middle ---------------------------------------------------

class Leaving : public Deletion {
  protected:
    Leaving() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
    // A process that leaves does not clean up as tests do: its fonts stay on the server.
    void SetUp() override {
        Deletion::SetUp();
        path_before_ = server_font_path();
    }
    void TearDown() override {
        set_server_font_path(path_before_);
        Deletion::TearDown();
    }
    /// Ends the process with status 0. The sanitizers report what it does not clean up.
    static void leave() { press(find(wi_mainwindow, "_exit_button")); }

  private:
    std::vector<std::string> path_before_;
};

TEST_F(Leaving, WithConflictsUndecidedEndsWell) {
    EXPECT_EXIT(
        {
            make_fonts();
            remove({1, 5});
            press(find(wi_preconflict_dlg, "resolve_button"));
            remove({4});
            if (!is_managed(wi_preconflict_dlg) || !is_managed(wi_conflict_dlg)) std::_Exit(2);
            leave();
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(Leaving, InTheMiddleOfADeletionEndsWell) {
    EXPECT_EXIT(
        {
            make_fonts();
            select(wi_hrn_list, {1, 2, 3});
            ask();
            act_when([] { return progress() == 1; }, leave);
            press(find(wi_del_warning_dlg, "OK"));
            wait_for_work();
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(Leaving, InTheMiddleOfAnInstallationEndsWell) {
    EXPECT_EXIT(
        {
            FontDirectory source;
            source.add("a.pcf", face("alpha"));
            source.add("b.pcf", face("beta"));
            choose_source(source);
            select(source_list(), {1, 2});
            act_when([] { return progress() == 1; }, leave);
            press(find(wi_install_dlg, "_install_button"));
            wait_for_work();
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(Leaving, TakesThePreviewOffTheServer) {
    EXPECT_EXIT(
        {
            FontDirectory source;
            source.add("a.pcf", face("alpha"));
            choose_source(source);
            if (!is_on_server_path(gw::scratch_path(gw::STAGING_DIR))) std::_Exit(2);
            leave();
        },
        testing::ExitedWithCode(0), "");
    EXPECT_FALSE(is_on_server_path(gw::scratch_path(gw::STAGING_DIR)));
}

}  // namespace
