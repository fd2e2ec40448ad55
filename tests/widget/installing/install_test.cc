// SPDX-License-Identifier: MIT
//
// Installing fonts: where they go; the main window, the files and the server afterwards; and what is not
// possible during the work.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "app/common/progressdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/deleting/delwarningdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/installing/font_source.h"
#include "app/installing/installdlg.h"
#include "app/installing/rmediadlg.h"
#include "app/kit/lists.h"
#include "app/main_window/glyphwardapp.h"
#include "app/program/program_objects.h"
#include "app/program/work_record.h"
#include "app/samples/attrdlg.h"
#include "app/samples/installed_list.h"
#include "platform/host_paths.h"
#include "platform/scratch.h"
#include "support/under_policy.h"

#include "widget/work_test_support.h"

#include <Xm/List.h>
#include <Xm/Scale.h>

namespace {

using namespace gw::test;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr int ORDINARY_UID = 1000;

std::string status() {
    return label(wi_install_dlg, "_message_label");
}

unsigned mode_of(const std::string& path) {
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0 ? info.st_mode & 07777U : 0;
}

class Install : public WorkTest {
  protected:
    void SetUp() override {
        WorkTest::SetUp();
        choose_destination(destination());
    }
    /// Empty at the start of every test; below the home directory.
    static std::string destination() { return home().file("glyphwd_fonts/"); }
    static std::string destination_index() { return home().read("glyphwd_fonts/fonts.dir"); }
    static std::string size_of_progress() {
        int maximum = 0;
        int minimum = 0;
        XtVaGetValues(find(wi_progress_dlg, "progress_scale"), XmNmaximum, &maximum, XmNminimum, &minimum,
                      nullptr);
        return std::to_string(minimum) + " to " + std::to_string(maximum);
    }
    static int progress() {
        int value = -1;
        XmScaleGetValue(find(wi_progress_dlg, "progress_scale"), &value);
        return value;
    }

    FontDirectory fonts_;
};

TEST_F(Install, PutsFontsWhereTheServerFindsThem) {
    fonts_.add("b.pcf", face("beta"));
    fonts_.add("a.pcf", face("alpha"));
    fonts_.add("c.pcf", face("gamma"));
    installed().add("old.pcf", face("delta"));
    show_installed({"my-alias"});
    const std::string source_index = fonts_.index();
    choose_source(fonts_);
    install({1, 3});
    EXPECT_EQ(mode_of(destination()), 0755U);
    EXPECT_EQ(destination_index(), index_of({"a.pcf " + face("alpha"), "c.pcf " + face("gamma")}));
    EXPECT_TRUE(home().read("glyphwd_fonts/a.pcf") == fonts_.read("a.pcf"));
    EXPECT_TRUE(home().read("glyphwd_fonts/c.pcf") == fonts_.read("c.pcf"));
    EXPECT_FALSE(home().exists("glyphwd_fonts/b.pcf"));
    EXPECT_EQ(fonts_.index(), source_index);

    EXPECT_EQ(main_status(), "2 fonts successfully installed.");
    EXPECT_EQ(the_installed_hrn_count, 3);
    const std::vector<std::string> names = items(wi_hrn_list);
    ASSERT_EQ(names.size(), 4U);
    EXPECT_EQ(names[0], listed("Alpha"));
    EXPECT_EQ(names[1], listed("Delta"));
    EXPECT_EQ(names[2], listed("Gamma"));
    EXPECT_EQ(names[3], the_alias_list.get_elem_at_pos(1)->get_hrn_name());
    EXPECT_EQ(gw::selected_count(wi_hrn_list), 0);
    EXPECT_EQ(shown_text(wi_installed_sample_textfield), " ");
    EXPECT_EQ(gw::selected_count(source_list()), 0);
    EXPECT_FALSE(is_sensitive(wi_install_dlg, "_install_button"));
    EXPECT_FALSE(is_managed(wi_install_dlg));
    EXPECT_FALSE(is_managed(wi_preconflict_dlg));
}

// An ordinary user's directory is put on the font path of this session and of later ones; the superuser gets
// a message about what to do.
TEST_F(Install, ByAUserPutsTheDirectoryOnTheFontPath) {
    const ActingAs user(ORDINARY_UID);
    fonts_.add("a.pcf", face("alpha"));
    choose_source(fonts_);
    install({1});
    EXPECT_FALSE(is_managed(wi_fp_info_dlg));
    EXPECT_TRUE(is_on_server_path(destination()));
    gw::stop_source_preview();
    EXPECT_TRUE(server_has(face("alpha")));
    if (!is_root()) {
        EXPECT_THAT(home().read(".VTfontpath"), HasSubstr(destination()));
    }
    // The directory is on the path once, however often fonts are installed into it.
    FontDirectory more;
    more.add("b.pcf", face("beta"));
    choose_source(more);
    // Its mode lets this user write, whoever the owner is.
    ASSERT_EQ(::chmod(destination().c_str(), 0777), 0);
    install({1});
    const std::vector<std::string> path = server_font_path();
    EXPECT_EQ(std::count(path.begin(), path.end(), destination()), 1);
    gw::stop_source_preview();
    EXPECT_TRUE(server_has(face("beta")));
}

TEST_F(Install, ByTheSuperuserEndsWithTheAdviceAboutTheFontPath) {
    const ActingAs superuser(0);
    fonts_.add("a.pcf", face("alpha"));
    choose_source(fonts_);
    install({1});
    EXPECT_TRUE(is_managed(wi_fp_info_dlg));
    EXPECT_EQ(title_of(wi_fp_info_dlg), "Glyph Warden - Information");
    EXPECT_EQ(label(wi_fp_info_dlg, "Message"),
              "Now update font path of the Vantor\ninstallation(s) using Modify Font Path menu\nitem from "
              "the main window.");
    EXPECT_FALSE(is_on_server_path(destination()));
    EXPECT_EQ(main_status(), "1 fonts successfully installed.");
}

TEST_F(Install, OfNothingClosesTheDialog) {
    fonts_.add("a.pcf", face("alpha"));
    choose_source(fonts_);
    select(source_list(), {1});
    XmListDeselectAllItems(source_list());
    popup_rmedia_dlg(installdlg::rmedia_specified_cb);
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    EXPECT_FALSE(is_managed(wi_install_dlg));
    EXPECT_FALSE(is_managed(wi_rmedia_dlg));
    EXPECT_FALSE(is_managed(wi_progress_dlg));
    EXPECT_FALSE(is_sensitive(wi_install_dlg, "_install_button"));
    EXPECT_EQ(main_status(), " ");
    EXPECT_EQ(mode_of(destination()), 0755U);
}

TEST_F(Install, NeedsADestinationThatCanBeMade) {
    fonts_.add("a.pcf", face("alpha"));
    choose_source(fonts_);
    select(source_list(), {1});
    choose_destination("/nonexistent/dir");
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    EXPECT_EQ(status(), "Incorrect installation directory");
    EXPECT_TRUE(is_managed(wi_install_dlg));
    EXPECT_TRUE(is_sensitive(wi_install_dlg, "_install_button"));
    EXPECT_EQ(gw::selected_count(source_list()), 1);
    EXPECT_EQ(main_status(), " ");
    // The next selection clears the message.
    select(source_list(), {1});
    EXPECT_EQ(status(), " ");
    // A second attempt with another destination succeeds.
    choose_destination(destination());
    install({1});
    EXPECT_EQ(main_status(), "1 fonts successfully installed.");
}

TEST_F(Install, FailsWhereTheDestinationGoesWhenWorkBegins) {
    fonts_.add("a.pcf", face("alpha"));
    choose_source(fonts_);
    destination_goes_when_work_begins();
    install({1});
    EXPECT_EQ(main_status(), "0 fonts successfully installed.");
    EXPECT_FALSE(std::filesystem::exists(destination()));
}

TEST_F(Install, NeedsADestinationWithoutAComma) {
    fonts_.add("a.pcf", face("alpha"));
    choose_source(fonts_);
    choose_destination(fonts_.dir().make_dir("a,b"));
    select(source_list(), {1});
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    EXPECT_EQ(label(wi_install_dlg, "_message_label"),
              "a directory of a font path cannot have a comma in its name");
    EXPECT_TRUE(is_managed(wi_install_dlg));
    EXPECT_FALSE(fonts_.exists("a,b/a.pcf"));
}

TEST_F(Install, NeedsADestinationThatIsWriteable) {
    fonts_.add("a.pcf", face("alpha"));
    choose_source(fonts_);
    select(source_list(), {1});
    std::filesystem::create_directory(destination());
    // This also applies to the superuser.
    ASSERT_EQ(::chmod(destination().c_str(), 0555), 0);
    choose_destination(destination());
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    EXPECT_EQ(status(), "Installation directory is not writeable\n");
    EXPECT_TRUE(is_managed(wi_install_dlg));
    EXPECT_TRUE(std::filesystem::is_empty(destination()));
    ASSERT_EQ(::chmod(destination().c_str(), 0755), 0);
}

TEST_F(Install, TakesNoNoteOfTheGroup) {
    if (!is_root()) GTEST_SKIP() << "only the superuser makes directories of others";
    fonts_.add("a.pcf", face("alpha"));
    choose_source(fonts_);
    select(source_list(), {1});
    std::filesystem::create_directory(destination());
    ASSERT_EQ(::chown(destination().c_str(), ORDINARY_UID, 0), 0);
    ASSERT_EQ(::chmod(destination().c_str(), 0775), 0);
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    EXPECT_EQ(status(), "Installation directory is not writeable\n");
    ASSERT_EQ(::chmod(destination().c_str(), 0757), 0);
    install({1});
    EXPECT_EQ(main_status(), "1 fonts successfully installed.");
}

TEST_F(Install, TellsHowFarItIs) {
    for (const char* name : {"a", "b", "c"}) fonts_.add(std::string(name) + ".pcf", face(name));
    choose_source(fonts_);
    select(source_list(), {1, 2, 3});
    act_when([] { return is_managed(wi_progress_dlg) && progress() == 0; },
             [] {
                 EXPECT_EQ(title_of(wi_progress_dlg), "Font Installation Progress Dialog");
                 EXPECT_EQ(label(wi_progress_dlg, "action_label"), "Fonts Installed");
                 EXPECT_EQ(size_of_progress(), "0 to 3");
                 EXPECT_FALSE(is_managed(wi_install_dlg));
             });
    act_when([] { return progress() == 2; },
             [] {
                 EXPECT_TRUE(is_managed(wi_progress_dlg));
                 EXPECT_EQ(the_wp_cl_data.done, 2);
                 close_box(wi_progress_dlg);
                 EXPECT_TRUE(is_managed(wi_progress_dlg));
             });
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    ASSERT_TRUE(wait_for_work());
    EXPECT_TRUE(all_acted());
    EXPECT_EQ(progress(), 3);
    EXPECT_EQ(main_status(), "3 fonts successfully installed.");
}

TEST_F(Install, OfThreeWithOneConflictInstallsTwo) {
    installed().add("old.pcf", face("beta"));
    show_installed();
    for (const char* name : {"alpha", "beta", "gamma"}) fonts_.add(std::string(name) + ".pcf", face(name));
    choose_source(fonts_);
    install({1, 2, 3});
    EXPECT_EQ(main_status(), "2 fonts successfully installed.");
    EXPECT_TRUE(is_managed(wi_preconflict_dlg));
    EXPECT_FALSE(is_managed(wi_fp_info_dlg));
    EXPECT_EQ(label(wi_preconflict_dlg, "success_label"), "Fonts Successfully Installed:       2");
    EXPECT_EQ(destination_index(), index_of({"alpha.pcf " + face("alpha"), "gamma.pcf " + face("gamma")}));
    EXPECT_EQ(installed().index(), index_of({"old.pcf " + face("beta")}));
    EXPECT_EQ(the_installed_hrn_count, 3);
}

// The first of the three fonts conflicts, so the number of installed fonts and the number of processed ones
// differ.
TEST_F(Install, OfTheSameFontsAgainInstallsNone) {
    fonts_.add("a.pcf", face("alpha"));
    fonts_.add("b.pcf", face("beta"));
    choose_source(fonts_);
    install({1, 2});
    const std::string index = destination_index();
    open_install_dialog();
    install({1, 2});
    EXPECT_EQ(main_status(), "0 fonts successfully installed.");
    EXPECT_EQ(label(wi_preconflict_dlg, "success_label"), "Fonts Successfully Installed:       0");
    EXPECT_EQ(label(wi_preconflict_dlg, "conflict_label"), "Fonts with Naming Conflicts:     2 *");
    EXPECT_EQ(destination_index(), index);
    EXPECT_EQ(the_installed_hrn_count, 2);
}

// An index cannot hold a file name with a blank.
TEST_F(Install, ListsNoFontWhoseFileNameHasABlank) {
    const gw::test::UnderPolicy plain(false);
    fonts_.add("a.pcf", face("alpha"));
    fonts_.add("odd name.pcf", face("odd"));
    choose_source(fonts_);
    EXPECT_THAT(items(source_list()), ElementsAre(listed("Alpha")));
    install({1});
    EXPECT_EQ(destination_index(), index_of({"a.pcf " + face("alpha")}));
    EXPECT_FALSE(home().exists("glyphwd_fonts/odd name.pcf"));
    // The directory with a fixed name is another test's to find.
    gw::stop_source_preview();
    gw::drop_scratch_dir(gw::scratch_path(gw::STAGING_DIR));
}

TEST_F(Install, CopiesAFileWithABlankInItsNameUnderAnotherName) {
    const gw::test::UnderPolicy modern(true);
    fonts_.add("a.pcf", face("alpha"));
    std::filesystem::rename(fonts_.path() + "a.pcf", fonts_.path() + "odd name.PCF");
    std::filesystem::remove(fonts_.path() + "fonts.dir");
    choose_source(fonts_);
    ASSERT_EQ(items(source_list()).size(), 1U);
    EXPECT_THAT(TempDir::read_bytes(gw::scratch_path(gw::STAGING_DIR) + "fonts.dir"),
                HasSubstr("\nstand-in-1.pcf -"));
    install({1});
    EXPECT_EQ(main_status(), "1 fonts successfully installed.");
    EXPECT_THAT(destination_index(), HasSubstr("1\nodd_name.pcf -"));
}

TEST_F(Install, IntoADirectoryWithAHardName) {
    const std::string hard = home().path() + "my 'fonts' $(touch x);`y`&/";
    choose_destination(hard);
    fonts_.add("a.pcf", face("alpha"));
    choose_source(fonts_);
    install({1});
    EXPECT_EQ(main_status(), "1 fonts successfully installed.");
    EXPECT_EQ(TempDir::read_bytes(hard + "fonts.dir"), index_of({"a.pcf " + face("alpha")}));
    EXPECT_EQ(is_on_server_path(hard), uid != 0);
    std::filesystem::remove_all(hard);
}

// A new size of a listed face adds a font but no name, so the aliases after the fonts keep their positions.
TEST_F(Install, OfASizeOfAFaceThatIsThereAddsNoName) {
    installed().add("alpha12.pcf", face("alpha", "120"));
    installed().add("beta.pcf", face("beta"));
    show_installed({"my-alias"});
    fonts_.add("alpha14.pcf", face("alpha", "140"));
    choose_source(fonts_);
    install({1});
    EXPECT_EQ(main_status(), "1 fonts successfully installed.");
    EXPECT_EQ(the_installed_hrn_count, 2);
    EXPECT_EQ(items(wi_hrn_list).size(), 3U);
    unsigned sizes = 0;
    the_installed_hrn_list.get_point_sizes(1, sizes);
    EXPECT_EQ(sizes, 2U);
    // The position after the last font is an alias, which cannot be deleted.
    remove({3});
    EXPECT_EQ(main_status(), "0 fonts successfully deleted.");
    EXPECT_EQ(the_installed_hrn_count, 2);
    EXPECT_TRUE(home().exists("glyphwd_fonts/alpha14.pcf"));
}

// --- one work at a time ------------------------------------------------------

TEST_F(Install, WaitsForTheLookup) {
    FontDirectory other;
    fonts_.add("a.pcf", face("alpha"));
    other.add("b.pcf", face("beta"));
    choose_source(fonts_);
    select(source_list(), {1});
    installdlg::from_dir_specified_cb(other.c_str());
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    EXPECT_TRUE(is_managed(wi_install_dlg));
    ASSERT_TRUE(pump_until([] { return status().empty(); }));
    EXPECT_FALSE(std::filesystem::exists(destination()));
    EXPECT_FALSE(the_wp_cl_data.is_in_progress());
    EXPECT_EQ(main_status(), " ");
}

// The look-up handles events while it shows the busy cursor; the selection is still the old one.
TEST_F(Install, WaitsForALookupThatHasBegun) {
    FontDirectory other;
    fonts_.add("a.pcf", face("alpha"));
    other.add("b.pcf", face("beta"));
    choose_source(fonts_);
    select(source_list(), {1});
    installdlg::from_dir_specified_cb(other.c_str());
    const std::size_t cursors = cursor_changes().size();
    act_when([=] { return cursor_changes().size() > cursors; },
             [] { press(find(wi_install_dlg, "_install_button")); });
    ASSERT_TRUE(pump_until([] { return all_acted() && status().empty(); }));
    ASSERT_TRUE(wait_for_work());
    EXPECT_TRUE(is_managed(wi_install_dlg));
    EXPECT_FALSE(home().exists("glyphwd_fonts/b.pcf"));
    EXPECT_FALSE(home().exists("glyphwd_fonts/a.pcf"));
    EXPECT_EQ(main_status(), " ");
}

TEST_F(Install, KeepsOtherWorkOut) {
    installed().add("old.pcf", face("delta"));
    show_installed();
    for (const char* name : {"a", "b", "c"}) fonts_.add(std::string(name) + ".pcf", face(name));
    choose_source(fonts_);
    select(wi_hrn_list, {1});
    select(source_list(), {1, 2, 3});
    // The question is open when the installation begins.
    ASSERT_TRUE(press(find(wi_mainwindow, "_command_form._delete_button")));
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    ASSERT_TRUE(the_wp_cl_data.is_in_progress());
    EXPECT_FALSE(is_sensitive(wi_mainwindow, "_install_dlg_button"));
    EXPECT_FALSE(is_sensitive(wi_mainwindow, "_command_form._delete_button"));
    select(wi_hrn_list, {1});
    EXPECT_FALSE(is_sensitive(wi_mainwindow, "_command_form._delete_button"));
    const FontDirectory empty;
    installdlg::from_dir_specified_cb(empty.c_str());
    installdlg::rmedia_specified_cb(2);
    EXPECT_EQ(label(wi_install_dlg, "_fontlist_label"), "Fonts From " + fonts_.path());
    ASSERT_TRUE(press(find(wi_del_warning_dlg, "OK")));
    ASSERT_TRUE(wait_for_work());
    EXPECT_EQ(main_status(), "3 fonts successfully installed.");
    EXPECT_TRUE(installed().exists("old.pcf"));
    EXPECT_EQ(the_installed_hrn_count, 4);
    EXPECT_TRUE(is_sensitive(wi_mainwindow, "_install_dlg_button"));
    EXPECT_FALSE(is_sensitive(wi_mainwindow, "_command_form._delete_button"));
    select(wi_hrn_list, {1});
    EXPECT_TRUE(is_sensitive(wi_mainwindow, "_command_form._delete_button"));
}

// The last font is installed, and shown, before the work is over.
TEST_F(Install, KeepsOtherWorkOutToTheLastFont) {
    installed().add("old.pcf", face("delta"));
    installed().add("older.pcf", face("epsilon"));
    show_installed();
    fonts_.add("a.pcf", face("alpha"));
    fonts_.add("b.pcf", face("beta"));
    choose_source(fonts_);
    select(wi_hrn_list, {1, 2});
    ASSERT_TRUE(press(find(wi_mainwindow, "_command_form._delete_button")));
    select(source_list(), {1, 2});
    act_when([] { return progress() == 2; }, [] { press(find(wi_del_warning_dlg, "OK")); });
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    ASSERT_TRUE(pump_until([] { return all_acted(); }));
    ASSERT_TRUE(wait_for_work());
    EXPECT_EQ(main_status(), "2 fonts successfully installed.");
    EXPECT_TRUE(installed().exists("old.pcf"));
    EXPECT_TRUE(installed().exists("older.pcf"));
    EXPECT_EQ(the_installed_hrn_count, 4);
}

}  // namespace
