// SPDX-License-Identifier: MIT
//
// The install dialog before an installation: its widgets, the source, the destination, and what a selection
// shows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <optional>

#include "app/common/dirdlg.h"
#include "app/common/warningdlg.h"
#include "app/installing/installdlg.h"
#include "app/installing/rmediadlg.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/main_window/glyphwardapp.h"
#include "app/samples/attrdlg.h"
#include "platform/host_paths.h"
#include "platform/scratch.h"
#include "support/under_policy.h"

#include "widget/work_test_support.h"

#include <Xm/List.h>

namespace {

using namespace gw::test;
using testing::ElementsAre;

constexpr int ORDINARY_UID = 1000;
constexpr const char* BE_PATIENT = "Looking for fonts, be patient";

std::string status() {
    return label(wi_install_dlg, "_message_label");
}
std::string required_space() {
    return label(wi_install_dlg, "_req_space_val");
}
std::string available_space() {
    return label(wi_install_dlg, "_avail_space_val");
}
std::string destination() {
    return label(wi_install_dlg, "_dest_label");
}
std::string source() {
    return label(wi_install_dlg, "_fontlist_label");
}

/// The number of blocks that an ordinary user may still use.
std::string free_blocks(const std::string& path) {
    struct statvfs info = {};
    if (::statvfs(path.c_str(), &info) != 0) return "unknown";
    return std::to_string(info.f_bavail) + " Kbytes";
}

/// The kilobytes that a file occupies.
int kilobytes_of(const std::string& path) {
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0 ? static_cast<int>(info.st_blocks / 2) : -1;
}

class InstallDialog : public WorkTest {
  protected:
    void TearDown() override {
        press(find(wi_attr_dlg, "close_button"));
        WorkTest::TearDown();
        if (remade_) remake();
    }
    /// Makes the dialog again, as at the start of the program.
    void remake() {
        XtDestroyWidget(XtParent(wi_install_dlg));
        pump();
        create_install_dlg("install_dlg", wi_toplevel);
        remade_ = true;
    }
    static bool wait_for_lookup() {
        return pump_until([] { return status().empty(); });
    }

    FontDirectory fonts_;

  private:
    bool remade_ = false;
};

TEST_F(InstallDialog, HasItsWidgetsFromTopToBottom) {
    remake();
    const struct {
        const char* name;
        const char* text;
    } labels[] = {
        {"MediaChoiceTemplate._media_label", "List Fonts From:"},
        {"MediaChoiceTemplate._other_media_dlg_button", "Other Media..."},
        {"MediaChoiceTemplate.from_dir_dlg_button", "Directory..."},
        {"_avail_font_list._fontlist_label", "Fonts From "},
        {"_sample_text_label", " Sample Text "},
        {"_install_to_label", "Install To:"},
        {"install_dir_dlg_button", "Directory..."},
        {"_req_space_label", "Total disk space required:"},
        {"_req_space_val", "0 Kbytes"},
        {"_avail_space_label", "Total disk space available:"},
        {"_button_form._install_button", "Install"},
        {"_button_form._select_all_button", "Select All"},
        {"_button_form._attr_button", "Attributes..."},
        {"_button_form._cancel_button", "Cancel"},
        {"_button_form._help_button", "Help..."},
        {"_message_label", " "},
    };
    for (const auto& entry : labels) {
        ASSERT_NE(find(wi_install_dlg, entry.name), nullptr) << entry.name;
        EXPECT_EQ(label(wi_install_dlg, entry.name), entry.text) << entry.name;
    }
    open_install_dialog();
    EXPECT_TRUE(pump_until([] { return is_viewable(wi_install_dlg); }));
    Position before = -1;
    for (const char* name :
         {"MediaChoiceTemplate", "separator", "_avail_font_list", "_sample_text_label", "_sample_textfield",
          "separator1", "_install_to_label", "_dest_label", "separator2", "_req_space_label",
          "_avail_space_label", "separator3", "_button_form", "_message_label"}) {
        Position y = 0;
        ASSERT_NE(find(wi_install_dlg, name), nullptr) << name;
        XtVaGetValues(find(wi_install_dlg, name), XmNy, &y, nullptr);
        EXPECT_GT(y, before) << name;
        before = y;
    }
    EXPECT_EQ(title_of(wi_install_dlg), "Glyph Warden - Install");
    EXPECT_EQ(shown_text(find(wi_install_dlg, "_sample_textfield")), " ");
}

TEST_F(InstallDialog, BeginsWithNothingToInstall) {
    remake();
    for (const char* name : {"_install_button", "_help_button", "_attr_button", "_sample_textfield"})
        EXPECT_FALSE(is_sensitive(wi_install_dlg, name)) << name;
    for (const char* name :
         {"_select_all_button", "_cancel_button", "_other_media_dlg_button", "from_dir_dlg_button"})
        EXPECT_TRUE(is_sensitive(wi_install_dlg, name)) << name;
    Widget cancel = nullptr;
    int visible = 0;
    unsigned char policy = 0;
    XtVaGetValues(wi_install_dlg, XmNcancelButton, &cancel, nullptr);
    XtVaGetValues(source_list(), XmNvisibleItemCount, &visible, XmNselectionPolicy, &policy, nullptr);
    EXPECT_EQ(cancel, find(wi_install_dlg, "_cancel_button"));
    EXPECT_EQ(visible, 10);
    EXPECT_EQ(policy, XmEXTENDED_SELECT);
}

// --- destination -------------------------------------------------------------

TEST_F(InstallDialog, OfAUserInstallsBelowTheHomeDirectory) {
    const ActingAs user(ORDINARY_UID);
    remake();
    const std::string home_dir = home().path().substr(0, home().path().size() - 1);
    EXPECT_EQ(destination(), "Destination : " + home_dir + "/glyphwd_fonts/");
    EXPECT_EQ(available_space(), free_blocks(home_dir));
    open_install_dialog();
    EXPECT_EQ(available_space(), free_blocks(home_dir));
    EXPECT_FALSE(std::filesystem::exists(home_dir + "/glyphwd_fonts"));
}

TEST_F(InstallDialog, OfAUserWithoutAHomeDirectoryInstallsBelowScratch) {
    const ActingAs user(ORDINARY_UID);
    const std::string home_dir = std::getenv("HOME");
    ::unsetenv("HOME");
    remake();
    ::setenv("HOME", home_dir.c_str(), 1);
    EXPECT_EQ(destination(), "Destination : /tmp/glyphwd_fonts/");
    EXPECT_EQ(available_space(), free_blocks("/tmp"));
}

TEST_F(InstallDialog, OfTheSuperuserInstallsBelowTheHostsDirectory) {
    const ActingAs superuser(0);
    remake();
    EXPECT_EQ(destination(), "Destination : /etc/vantor/glyphwd_fonts/");
    EXPECT_EQ(available_space(), free_blocks("/etc/vantor"));
}

TEST_F(InstallDialog, OfTheSuperuserMakesTheHostsDirectory) {
    if (!is_root()) GTEST_SKIP() << "for the superuser";
    std::filesystem::rename("/etc/vantor", "/etc/aside");
    remake();
    struct stat info = {};
    EXPECT_EQ(::stat("/etc/vantor", &info), 0);
    EXPECT_EQ(info.st_mode & 07777U, 0755U);
    EXPECT_EQ(destination(), "Destination : /etc/vantor/glyphwd_fonts/");
    std::filesystem::remove("/etc/vantor");

    // The name is taken by something that is not a directory.
    std::filesystem::create_symlink("/nonexistent/vantor", "/etc/vantor");
    remake();
    EXPECT_EQ(destination(), "Destination : /tmp/glyphwd_fonts/");
    EXPECT_EQ(available_space(), free_blocks("/tmp"));
    std::filesystem::remove("/etc/vantor");
    std::filesystem::rename("/etc/aside", "/etc/vantor");
}

TEST_F(InstallDialog, ShowsTheDestinationWithASlash) {
    const std::string dir = fonts_.path().substr(0, fonts_.path().size() - 1);
    choose_destination(dir);
    EXPECT_EQ(destination(), "Destination : " + dir + '/');
    EXPECT_EQ(available_space(), free_blocks(dir));
    choose_destination(dir + '/');
    EXPECT_EQ(destination(), "Destination : " + dir + '/');
    choose_destination("/nonexistent/dir");
    EXPECT_EQ(destination(), "Destination : /nonexistent/dir/");
    EXPECT_EQ(available_space(), "0 Kbytes");
}

TEST_F(InstallDialog, CountsFreeBlocksWhateverTheirSize) {
    struct statvfs info = {};
    ASSERT_EQ(::statvfs("/tmp", &info), 0);
    EXPECT_EQ(installdlg::get_avail_space("/tmp"), static_cast<int>(info.f_bavail));
    // A file system without blocks.
    EXPECT_EQ(installdlg::get_avail_space("/proc"), 0);
    EXPECT_EQ(installdlg::get_avail_space("/nonexistent"), 0);
}

// When the dialog opens, a destination below the home directory may not exist yet; then the home directory's
// disk is measured.
TEST_F(InstallDialog, MeasuresTheDestinationOnOpening) {
    const ActingAs user(ORDINARY_UID);
    remake();
    choose_destination(home().path() + "not/yet/there");
    EXPECT_EQ(available_space(), "0 Kbytes");
    open_install_dialog();
    EXPECT_EQ(available_space(), free_blocks(home().path()));
    press(find(wi_install_dlg, "_cancel_button"));
    choose_destination("/proc/");
    open_install_dialog();
    EXPECT_EQ(available_space(), "0 Kbytes");
}

TEST_F(InstallDialog, IsTheChoosersOfBothDirectories) {
    open_install_dialog();
    press(find(wi_install_dlg, "from_dir_dlg_button"));
    EXPECT_TRUE(is_managed(wi_dir_dlg));
    EXPECT_EQ(title_of(wi_dir_dlg), "Glyph Warden : List Fonts From");
    press(find(wi_dir_dlg, "Cancel"));
    press(find(wi_install_dlg, "install_dir_dlg_button"));
    EXPECT_TRUE(is_managed(wi_dir_dlg));
    EXPECT_EQ(title_of(wi_dir_dlg), "Glyph Warden : Install Fonts In");

    // The first entry is the directory itself.
    const gw::XmText directory = gw::xm_text(fonts_.path());
    XtVaSetValues(wi_dir_dlg, XmNdirectory, directory.get(), nullptr);
    pick(wi_dir_list, 1);
    press(find(wi_dir_dlg, "OK"));
    EXPECT_FALSE(is_managed(wi_dir_dlg));
    EXPECT_EQ(destination(), "Destination : " + fonts_.path());
}

// --- source ------------------------------------------------------------------

TEST_F(InstallDialog, ListsADirectoryWhenItsTurnComes) {
    fonts_.add("b.pcf", face("beta"));
    fonts_.add("a.pcf", face("alpha"));
    open_install_dialog();
    const std::size_t cursors = cursor_changes().size();
    installdlg::from_dir_specified_cb(fonts_.c_str());
    EXPECT_EQ(status(), BE_PATIENT);
    EXPECT_EQ(source(), "Fonts From " + fonts_.path());
    EXPECT_TRUE(items(source_list()).empty());
    ASSERT_TRUE(wait_for_lookup());
    EXPECT_THAT(items(source_list()), ElementsAre(listed("Alpha"), listed("Beta")));
    EXPECT_EQ(cursor_changes().at(cursors).window, XtWindow(wi_mainwindow));
    EXPECT_NE(cursor_changes().at(cursors).cursor, 0U);
    EXPECT_EQ(cursor_changes().back().cursor, 0U);
}

TEST_F(InstallDialog, PreviewsTheSourceAsLongAsItIsTheSource) {
    fonts_.add("a.pcf", face("previewed"));
    const FontDirectory empty;
    choose_source(fonts_);
    EXPECT_TRUE(is_on_server_path(gw::scratch_path(gw::STAGING_DIR)));
    EXPECT_TRUE(server_has(face("previewed")));
    select(source_list(), {1});
    EXPECT_GT(ink(find(wi_install_dlg, "_sample_textfield")), 0);

    choose_source(empty);
    EXPECT_TRUE(items(source_list()).empty());
    EXPECT_FALSE(is_on_server_path(gw::scratch_path(gw::STAGING_DIR)));
    EXPECT_FALSE(server_has(face("previewed")));

    choose_source(fonts_);
    EXPECT_TRUE(server_has(face("previewed")));
    installdlg::rmedia_specified_cb(2);
    EXPECT_FALSE(is_on_server_path(gw::scratch_path(gw::STAGING_DIR)));
    EXPECT_TRUE(items(source_list()).empty());
    ASSERT_TRUE(wait_for_lookup());
}

TEST_F(InstallDialog, ADirectorysNameBreaksNoLine) {
    const std::string odd = fonts_.dir().make_dir("two\nlines");
    open_install_dialog();
    installdlg::from_dir_specified_cb(odd.c_str());
    EXPECT_EQ(source(), "Fonts From " + fonts_.path() + "two\\x0Alines/");
    ASSERT_TRUE(wait_for_lookup());
    choose_destination(odd);
    EXPECT_EQ(destination(), "Destination : " + fonts_.path() + "two\\x0Alines/");
}

// With fixed names somebody else's directory is in the way. The user is told where they look.
TEST_F(InstallDialog, SaysThatAnotherOneUsesTheScratchDirectory) {
    const gw::test::UnderPolicy as_ever(false);
    fonts_.add("a.pcf", face("alpha"));
    std::filesystem::create_directories("/tmp/gw_dir/not ours");
    open_install_dialog();
    installdlg::from_dir_specified_cb(fonts_.c_str());
    ASSERT_TRUE(pump_until([] { return status() != BE_PATIENT; }));
    EXPECT_TRUE(items(source_list()).empty());
    EXPECT_EQ(status(), "/tmp/gw_dir/: this is a link or belongs to someone else");
    std::filesystem::remove_all("/tmp/gw_dir");
    choose_source(fonts_);
    EXPECT_EQ(items(source_list()).size(), 1U);
    EXPECT_EQ(status(), "");
    const FontDirectory empty;
    choose_source(empty);
    gw::remove_scratch();
}

TEST_F(InstallDialog, ListsAMedium) {
    const std::string mount = gw::FLOPPY_MOUNT;
    std::filesystem::create_directories(mount);
    fonts_.add("f.pcf", face("floppy"));
    for (const char* name : {"f.pcf", "fonts.dir"})
        std::filesystem::copy_file(fonts_.file(name), mount + name);
    open_install_dialog();
    installdlg::rmedia_specified_cb(2);
    EXPECT_EQ(status(), BE_PATIENT);
    EXPECT_EQ(source(), "Fonts From Floppy");
    ASSERT_TRUE(wait_for_lookup());
    EXPECT_THAT(items(source_list()), ElementsAre(listed("Floppy")));
    EXPECT_TRUE(is_on_server_path(gw::scratch_path(gw::STAGING_FLOPPY)));
    std::filesystem::remove_all(mount);

    installdlg::rmedia_specified_cb(1);
    EXPECT_EQ(source(), "Fonts From CD-ROM");
    EXPECT_FALSE(is_on_server_path(gw::scratch_path(gw::STAGING_FLOPPY)));
    ASSERT_TRUE(wait_for_lookup());
    EXPECT_TRUE(items(source_list()).empty());

    // Lists no fonts, but sets the labels.
    installdlg::rmedia_specified_cb(0);
    EXPECT_EQ(source(), "Fonts From ");
    EXPECT_EQ(status(), BE_PATIENT);
    select(source_list(), {});
    EXPECT_EQ(status(), " ");
}

TEST_F(InstallDialog, TakesTheLastOfTwoSources) {
    FontDirectory other;
    fonts_.add("a.pcf", face("alpha"));
    other.add("b.pcf", face("beta"));
    open_install_dialog();
    installdlg::from_dir_specified_cb(fonts_.c_str());
    installdlg::from_dir_specified_cb(other.c_str());
    ASSERT_TRUE(wait_for_lookup());
    EXPECT_THAT(items(source_list()), ElementsAre(listed("Beta")));
    installdlg::rmedia_specified_cb(2);
    installdlg::from_dir_specified_cb(fonts_.c_str());
    ASSERT_TRUE(wait_for_lookup());
    EXPECT_THAT(items(source_list()), ElementsAre(listed("Alpha")));
    EXPECT_TRUE(server_has(face("alpha")));
    installdlg::from_dir_specified_cb(other.c_str());
    installdlg::rmedia_specified_cb(2);
    ASSERT_TRUE(wait_for_lookup());
    EXPECT_TRUE(items(source_list()).empty());
    EXPECT_FALSE(server_has(face("beta")));
}

TEST_F(InstallDialog, TakesASourceThatIsChosenInTheMiddleOfALookup) {
    FontDirectory other;
    fonts_.add("a.pcf", face("alpha"));
    other.add("b.pcf", face("beta"));
    open_install_dialog();
    installdlg::from_dir_specified_cb(fonts_.c_str());
    const std::size_t cursors = cursor_changes().size();
    act_when([=] { return cursor_changes().size() > cursors; },
             [&] { installdlg::from_dir_specified_cb(other.c_str()); });
    ASSERT_TRUE(pump_until([] { return all_acted() && status().empty(); }));
    EXPECT_EQ(source(), "Fonts From " + other.path());
    EXPECT_THAT(items(source_list()), ElementsAre(listed("Beta")));
}

TEST_F(InstallDialog, ListsTheSameSourceTwice) {
    fonts_.add("a.pcf", face("alpha"));
    choose_source(fonts_);
    fonts_.add("b.pcf", face("beta"));
    choose_source(fonts_);
    EXPECT_THAT(items(source_list()), ElementsAre(listed("Alpha"), listed("Beta")));
    EXPECT_TRUE(server_has(face("beta")));
    const std::vector<std::string> path = server_font_path();
    EXPECT_EQ(std::count(path.begin(), path.end(), gw::scratch_path(gw::STAGING_DIR)), 1);
}

TEST_F(InstallDialog, ForgetsTheSelectionWithTheList) {
    fonts_.add("a.pcf", face("alpha"));
    choose_source(fonts_);
    select(source_list(), {1});
    EXPECT_TRUE(is_sensitive(wi_install_dlg, "_attr_button"));
    EXPECT_NE(required_space(), "0 Kbytes");
    choose_source(fonts_);
    EXPECT_FALSE(is_sensitive(wi_install_dlg, "_attr_button"));
    EXPECT_EQ(required_space(), "0 Kbytes");
}

TEST_F(InstallDialog, KeepsSourceAndDestinationFromOpeningToOpening) {
    fonts_.add("a.pcf", face("alpha"));
    choose_source(fonts_);
    choose_destination("/tmp/elsewhere");
    popup_rmedia_dlg(installdlg::rmedia_specified_cb);
    EXPECT_TRUE(is_managed(wi_rmedia_dlg));
    press(find(wi_install_dlg, "_cancel_button"));
    EXPECT_FALSE(is_managed(wi_install_dlg));
    EXPECT_FALSE(is_managed(wi_rmedia_dlg));
    open_install_dialog();
    EXPECT_THAT(items(source_list()), ElementsAre(listed("Alpha")));
    EXPECT_EQ(source(), "Fonts From " + fonts_.path());
    EXPECT_EQ(destination(), "Destination : /tmp/elsewhere/");
    EXPECT_TRUE(server_has(face("alpha")));
    close_box(wi_install_dlg);
    EXPECT_FALSE(is_managed(wi_install_dlg));
}

TEST_F(InstallDialog, OpensTheMediaDialog) {
    open_install_dialog();
    press(find(wi_install_dlg, "_other_media_dlg_button"));
    EXPECT_TRUE(is_managed(wi_rmedia_dlg));
    press(find(wi_rmedia_dlg, "close_button"));
    EXPECT_FALSE(is_managed(wi_rmedia_dlg));
}

TEST_F(InstallDialog, EjectsTheMediumAndForgetsWhereTheFontsAreFrom) {
    std::filesystem::remove("/tmp/eject.log");
    open_install_dialog();
    press(find(wi_install_dlg, "_other_media_dlg_button"));
    press(find(wi_rmedia_dlg, "eject_button"));
    EXPECT_EQ(TempDir::read_bytes("/tmp/eject.log"), "-f floppy\n");
    EXPECT_EQ(source(), "Fonts From ");
    EXPECT_FALSE(is_managed(wi_rmedia_dlg));
}

// --- selection ---------------------------------------------------------------

TEST_F(InstallDialog, AddsUpTheSpaceOfTheSelection) {
    fonts_.add("a.pcf", face("alpha"), 40);
    fonts_.add("b.pcf", face("beta"), 80);
    const int first = kilobytes_of(fonts_.file("a.pcf"));
    const int second = kilobytes_of(fonts_.file("b.pcf"));
    ASSERT_GE(first, 40);
    ASSERT_GE(second, 80);
    choose_source(fonts_);
    select(source_list(), {1});
    EXPECT_EQ(required_space(), std::to_string(first) + " Kbytes");
    select(source_list(), {1, 2});
    EXPECT_EQ(required_space(), std::to_string(first + second) + " Kbytes");
    select(source_list(), {});
    EXPECT_EQ(required_space(), "0 Kbytes");
}

TEST_F(InstallDialog, AllowsWhatTheSelectionAllows) {
    fonts_.add("a.pcf", face("alpha"));
    fonts_.add("b.pcf", face("beta"));
    choose_source(fonts_);
    const struct {
        std::initializer_list<int> positions;
        bool install, attributes;
    } cases[] = {{{1}, true, true}, {{1, 2}, true, false}, {{}, false, false}, {{2}, true, true}};
    for (const auto& c : cases) {
        select(source_list(), c.positions);
        EXPECT_EQ(is_sensitive(wi_install_dlg, "_install_button"), c.install) << c.positions.size();
        EXPECT_EQ(is_sensitive(wi_install_dlg, "_attr_button"), c.attributes) << c.positions.size();
        EXPECT_FALSE(is_sensitive(wi_install_dlg, "_help_button"));
        EXPECT_EQ(status(), " ");
    }
}

TEST_F(InstallDialog, SelectsAllWithoutAddingUp) {
    fonts_.add("a.pcf", face("alpha"), 40);
    fonts_.add("b.pcf", face("beta"));
    fonts_.add("c.pcf", face("gamma"));
    choose_source(fonts_);
    select(source_list(), {});
    press(find(wi_install_dlg, "_select_all_button"));
    EXPECT_EQ(gw::selected_count(source_list()), 3);
    EXPECT_EQ(required_space(), "0 Kbytes");
    EXPECT_FALSE(is_sensitive(wi_install_dlg, "_install_button"));

    select(source_list(), {1});
    const std::string one = required_space();
    press(find(wi_install_dlg, "_select_all_button"));
    EXPECT_THAT(gw::selected_positions(source_list()), ElementsAre(1, 2, 3));
    EXPECT_EQ(required_space(), one);
    EXPECT_TRUE(is_sensitive(wi_install_dlg, "_install_button"));
    EXPECT_TRUE(is_sensitive(wi_install_dlg, "_attr_button"));

    // "Select All" does not make the button sensitive again, but choosing a destination does.
    select(source_list(), {});
    press(find(wi_install_dlg, "_select_all_button"));
    EXPECT_FALSE(is_sensitive(wi_install_dlg, "_install_button"));
    choose_destination(fonts_.path());
    EXPECT_TRUE(is_sensitive(wi_install_dlg, "_install_button"));
}

TEST_F(InstallDialog, SelectsNothingOfAnEmptyList) {
    const FontDirectory empty;
    choose_source(empty);
    press(find(wi_install_dlg, "_select_all_button"));
    EXPECT_EQ(gw::selected_count(source_list()), 0);
}

// The position is compared with the number of fonts in the main window.
TEST_F(InstallDialog, ShowsAttributesOfAsManyFontsAsAreInstalled) {
    for (const char* name : {"one", "three", "two"}) installed().add(std::string(name) + ".pcf", face(name));
    show_installed();
    fonts_.add("a.pcf", face("alpha"));
    fonts_.add("b.pcf", face("beta"));
    fonts_.add("c.pcf", face("gamma"));
    choose_source(fonts_);
    select(source_list(), {2});
    ASSERT_TRUE(press(find(wi_install_dlg, "_attr_button")));
    EXPECT_EQ(is_attr_dlg_displayed(), 1);
    EXPECT_EQ(gw::label_of(wi_font_hrn_name), listed("Beta"));
    EXPECT_EQ(gw::label_of(wi_font_xlfd_name), face("beta"));
    EXPECT_EQ(gw::label_of(wi_font_loc_name), fonts_.path());
    press(find(wi_attr_dlg, "close_button"));

    select(source_list(), {3});
    EXPECT_TRUE(press(find(wi_install_dlg, "_attr_button")));
    EXPECT_EQ(is_attr_dlg_displayed(), 0);
}

TEST_F(InstallDialog, ShowsAttributesOfASelectionThatIsGoneToNobody) {
    fonts_.add("a.pcf", face("alpha"));
    choose_source(fonts_);
    select(source_list(), {1});
    XmListDeselectAllItems(source_list());
    EXPECT_TRUE(press(find(wi_install_dlg, "_attr_button")));
    EXPECT_EQ(is_attr_dlg_displayed(), 0);
}

}  // namespace
