// SPDX-License-Identifier: MIT
//
// The dialogs for the fonts of a printer: what they list, what stays insensitive, and the source of fonts
// that they share with the install dialog.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "app/common/dirdlg.h"
#include "app/installing/font_source.h"
#include "app/installing/installdlg.h"
#include "app/installing/rmediadlg.h"
#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/printer/printerdlg.h"
#include "app/program/program_objects.h"
#include "app/samples/attrdlg.h"
#include "texts/messages.h"
#include "widget/dialogs_test_support.h"

// X headers come last.
#include <Xm/FileSB.h>
#include <Xm/List.h>

namespace {

using gw::test::find;
using gw::test::is_viewable;
using gw::test::items;
using gw::test::press;
using gw::test::pump_until;
using gw::test::select;
using gw::test::TempDir;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class PrinterTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        make_printers();
        gw::test::start_program({"-xrm", "Glyphward*gw_printer_support: True"});
    }
    void TearDown() override {
        gw::stop_source_preview();
        press(find(wi_pr_install_dlg, "cancel_button"));
        XtUnmanageChild(wi_pr_delete_dlg);
        XtUnmanageChild(wi_pr_modify_fp_dlg);
        press(find(wi_install_dlg, "_cancel_button"));
        if (attr_dlg_managed != 0) press(find(wi_attr_dlg, "close_button"));
        popdown_dir_dlg();
    }
    static void make_printers() {
        std::filesystem::create_directories("/etc/lp/printers/laser/paper");
        std::filesystem::create_directories("/etc/lp/printers/plotter");
    }
    static Widget part(const char* name) { return find(wi_pr_install_dlg, name); }
    static bool sensitive(Widget dialog, const char* name) {
        return XtIsSensitive(find(dialog, name)) != False;
    }
    static std::string text_of(Widget dialog, const char* name) { return gw::label_of(find(dialog, name)); }
    static bool looked_up() {
        return pump_until([] { return !gw::is_lookup_pending(); });
    }
    /// Writes a bitmap font of that family, and its index, into the directory.
    static void write_font(const TempDir& dir, const std::string& family) {
        dir.write(family + ".pcf", "no font");
        dir.write("fonts.dir",
                  "1\n" + family + ".pcf -x-" + family + "-medium-r-normal--8-80-75-75-c-80-iso8859-1\n");
    }
};

TEST_F(PrinterTest, TheMenuOpensThem) {
    for (const auto& [entry, dialog, title] :
         {std::tuple{"_pr_install_dlg_button", wi_pr_install_dlg, "Glyph Warden - Install Font"},
          std::tuple{"_pr_delete_dlg_button", wi_pr_delete_dlg, "Glyph Warden - Delete Font"},
          std::tuple{"_pr_modify_fp_dlg_button", wi_pr_modify_fp_dlg, "Glyph Warden - Modify Font Path"}}) {
        ASSERT_TRUE(press(find(wi_toplevel, entry))) << entry;
        EXPECT_TRUE(XtIsManaged(dialog)) << entry;
        EXPECT_EQ(gw::test::title_of(dialog), title);
    }
}

TEST_F(PrinterTest, TheCloseBoxClosesThem) {
    for (Widget dialog : {wi_pr_install_dlg, wi_pr_delete_dlg, wi_pr_modify_fp_dlg}) {
        for (int round = 0; round < 2; ++round) {
            XtManageChild(dialog);
            ASSERT_TRUE(pump_until([dialog] { return is_viewable(dialog); })) << XtName(dialog);
            gw::test::close_box(dialog);
            EXPECT_FALSE(XtIsManaged(dialog)) << XtName(dialog);
        }
    }
}

TEST_F(PrinterTest, TheCloseBoxOfTheInstallDialogDoesWhatCancelDoes) {
    for (const bool by_close_box : {false, true}) {
        XtManageChild(wi_pr_install_dlg);
        ASSERT_TRUE(pump_until([] { return is_viewable(wi_pr_install_dlg); }));
        ASSERT_TRUE(press(part("other_media_dlg_button")));
        ASSERT_TRUE(XtIsManaged(wi_rmedia_dlg));
        if (by_close_box) {
            gw::test::close_box(wi_pr_install_dlg);
        } else {
            ASSERT_TRUE(press(part("cancel_button")));
        }
        EXPECT_FALSE(XtIsManaged(wi_pr_install_dlg)) << by_close_box;
        EXPECT_FALSE(XtIsManaged(wi_rmedia_dlg)) << "its media dialog goes with it, " << by_close_box;
    }
}

TEST_F(PrinterTest, TheInstallDialogHasItsTexts) {
    const std::vector<std::pair<const char*, const char*>> texts = {
        {"media_label", "List Fonts From:"},
        {"other_media_dlg_button", "Other Media..."},
        {"from_dir_dlg_button", "Directory..."},
        {"for_label", "Printer Name:"},
        {"install_to_label", "Install To:"},
        {"to_dir_dlg_button", "Directory..."},
        {"dest_label", "Destination:"},
        {"req_space_label", "Total disk space required:"},
        {"avail_space_label", "Total disk space available:"},
        {"install_button", "Install"},
        {"select_all_button", "Select All"},
        {"attr_button", "Attributes..."},
        {"cancel_button", "Cancel"},
        {"help_dlg_button", "Help..."}};
    for (const auto& [name, text] : texts) EXPECT_EQ(text_of(wi_pr_install_dlg, name), text) << name;
    EXPECT_FALSE(sensitive(wi_pr_install_dlg, "install_button"));
    EXPECT_FALSE(sensitive(wi_pr_install_dlg, "help_dlg_button"));
}

TEST_F(PrinterTest, ListsThePrintersOfTheSpooler) {
    Widget menu = part("for_menu");
    Widget pulldown = nullptr;
    XtVaGetValues(menu, XmNsubMenuId, &pulldown, nullptr);
    EXPECT_TRUE(XtIsSensitive(menu));
    EXPECT_THAT(gw::test::choices(pulldown), UnorderedElementsAre("laser", "plotter", "paper"));
    EXPECT_TRUE(gw::test::choose(menu, "plotter")) << "which does nothing further";
}

TEST_F(PrinterTest, WithoutPrintersTheirMenuIsInsensitive) {
    for (const char* printer : {"laser", "plotter"})
        std::filesystem::remove_all(std::string("/etc/lp/printers/") + printer);
    Widget dialog = create_pr_install_dlg("another_pr_install_dlg", wi_toplevel);
    EXPECT_FALSE(XtIsSensitive(find(dialog, "for_menu")));
    make_printers();
    create_pr_install_dlg("pr_install_dlg", wi_toplevel);
}

TEST_F(PrinterTest, ChoosingASourceReplacesThatOfTheInstallDialogToo) {
    const TempDir dir;
    write_font(dir, "aardvark");
    ASSERT_TRUE(press(part("from_dir_dlg_button")));
    EXPECT_EQ(gw::test::title_of(wi_dir_dlg), "Glyph Warden : List Fonts From");
    printerdlg::from_dir_specified_cb(dir.c_str());
    EXPECT_EQ(text_of(wi_pr_install_dlg, "msg_label"), "Looking for fonts, be patient");
    EXPECT_EQ(text_of(wi_pr_install_dlg, "fontlist_label"), "Fonts From " + dir.path());
    ASSERT_TRUE(looked_up());
    EXPECT_EQ(text_of(wi_pr_install_dlg, "msg_label"), "");
    EXPECT_EQ(install_from, 1);
    EXPECT_EQ(current_hrn_count, 1U);
    for (Widget list : {part("scrolledlist"), find(wi_install_dlg, "_hrn_list")})
        EXPECT_THAT(items(list), ElementsAre("Aardvark Medium [Bitmap]"));
    EXPECT_EQ(text_of(wi_install_dlg, "_fontlist_label"), "Fonts From " + dir.path());
}

TEST_F(PrinterTest, ChoosingASourceInTheInstallDialogReplacesThatOfThePrinter) {
    const TempDir dir;
    write_font(dir, "badger");
    installdlg::from_dir_specified_cb(dir.c_str());
    ASSERT_TRUE(looked_up());
    for (Widget list : {part("scrolledlist"), find(wi_install_dlg, "_hrn_list")})
        EXPECT_THAT(items(list), ElementsAre("Badger Medium [Bitmap]"));
}

TEST_F(PrinterTest, AMediumIsASourceAndEjectingItIsNone) {
    ASSERT_TRUE(press(part("other_media_dlg_button")));
    EXPECT_TRUE(XtIsManaged(wi_rmedia_dlg));
    printerdlg::rmedia_specified_cb(FLOPPY_MEDIUM);
    EXPECT_EQ(install_from, 3);
    EXPECT_EQ(current_driver, &the_floppy_driver);
    ASSERT_TRUE(looked_up());
    EXPECT_EQ(text_of(wi_pr_install_dlg, "fontlist_label"), "Fonts From Floppy");
    printerdlg::rmedia_specified_cb(CDROM_MEDIUM);
    EXPECT_EQ(install_from, 2);
    EXPECT_EQ(current_driver, &the_cdrom_driver);
    ASSERT_TRUE(looked_up());
    EXPECT_THAT(items(part("scrolledlist")), IsEmpty());
    printerdlg::rmedia_specified_cb(NO_MEDIUM);
    EXPECT_EQ(current_hrn_count, 0U);
    EXPECT_EQ(text_of(wi_pr_install_dlg, "msg_label"), "Looking for fonts, be patient");
    EXPECT_FALSE(gw::is_lookup_pending());
    press(part("cancel_button"));
    EXPECT_FALSE(XtIsManaged(wi_rmedia_dlg));
}

TEST_F(PrinterTest, TheDestinationIsDropped) {
    ASSERT_TRUE(press(part("to_dir_dlg_button")));
    // The catalogue has the same text for both choosers; without a catalogue this one says "Install To".
    EXPECT_EQ(gw::test::title_of(wi_dir_dlg),
              gw::text_or(gw::Message::CHOOSE_SOURCE_TITLE, "Glyph Warden : Install To"));
    const std::string label = text_of(wi_pr_install_dlg, "dest_label");
    printerdlg::to_dir_specified_cb("/tmp");
    EXPECT_EQ(text_of(wi_pr_install_dlg, "dest_label"), label);
}

TEST_F(PrinterTest, SelectAllSelectsEveryName) {
    const TempDir dir;
    write_font(dir, "cat");
    printerdlg::from_dir_specified_cb(dir.c_str());
    ASSERT_TRUE(looked_up());
    ASSERT_TRUE(press(part("select_all_button")));
    EXPECT_THAT(gw::selected_positions(part("scrolledlist")), ElementsAre(1));
}

TEST_F(PrinterTest, AttributesAreThoseOfTheSource) {
    const TempDir dir;
    write_font(dir, "dingo");
    printerdlg::from_dir_specified_cb(dir.c_str());
    ASSERT_TRUE(looked_up());
    ASSERT_TRUE(press(part("attr_button")));
    EXPECT_EQ(is_attr_dlg_displayed(), 0) << "nothing is selected";
    select(part("scrolledlist"), {1});
    ASSERT_TRUE(press(part("attr_button")));
    ASSERT_NE(is_attr_dlg_displayed(), 0);
    EXPECT_EQ(gw::label_of(wi_font_hrn_name), "Dingo Medium [Bitmap]");
    EXPECT_EQ(gw::label_of(wi_font_loc_name), dir.path());
}

// A position in the list of installed fonts is looked up in the source's list.
TEST_F(PrinterTest, TheDeleteDialogsAttributesAreThoseOfTheSourceToo) {
    const TempDir dir;
    write_font(dir, "emu");
    printerdlg::from_dir_specified_cb(dir.c_str());
    ASSERT_TRUE(looked_up());
    Widget list = find(wi_pr_delete_dlg, "scrolledlist");
    ASSERT_EQ(items(list).size(), static_cast<std::size_t>(the_installed_hrn_count));
    select(list, {the_installed_hrn_count});
    ASSERT_TRUE(press(find(wi_pr_delete_dlg, "attr_button")));
    EXPECT_EQ(is_attr_dlg_displayed(), 0) << "from the last on nothing is shown";
    select(list, {1});
    ASSERT_TRUE(press(find(wi_pr_delete_dlg, "attr_button")));
    EXPECT_EQ(gw::label_of(wi_font_hrn_name), "Emu Medium [Bitmap]");
}

TEST_F(PrinterTest, TheDeleteDialogDeletesNothing) {
    for (const char* name : {"for_menu", "size_menu", "delete_button", "help_dlg_button"})
        EXPECT_FALSE(sensitive(wi_pr_delete_dlg, name)) << name;
    EXPECT_EQ(text_of(wi_pr_delete_dlg, "for_label"), "Delete Fonts For:");
    EXPECT_EQ(text_of(wi_pr_delete_dlg, "fontlist_label"), "Currently Installed Fonts:");
    EXPECT_EQ(text_of(wi_pr_delete_dlg, "size_label"), "Sample Text Point Size:");
    EXPECT_EQ(text_of(wi_pr_delete_dlg, "disk_space_label"), "Total disk space occupied:");
    EXPECT_EQ(text_of(wi_pr_delete_dlg, "disk_space_val"), "size K");
}

TEST_F(PrinterTest, TheFontPathDialogIsLayoutOnly) {
    for (const char* name :
         {"printer_menu", "move_up_button", "move_down_button", "delete_button", "add_new_button",
          "dir_dlg_button", "ok_button", "apply_button", "reset_button", "help_button"})
        EXPECT_FALSE(sensitive(wi_pr_modify_fp_dlg, name)) << name;
    Widget cancel = find(wi_pr_modify_fp_dlg, "cancel_button");
    EXPECT_TRUE(XtIsSensitive(cancel));
    ASSERT_TRUE(press(find(wi_toplevel, "_pr_modify_fp_dlg_button")));
    press(cancel);
    EXPECT_TRUE(XtIsManaged(wi_pr_modify_fp_dlg)) << "only the window manager closes it";
    EXPECT_THAT(items(find(wi_pr_modify_fp_dlg, "scrolledlist")), IsEmpty());
}

}  // namespace
