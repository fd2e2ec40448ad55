// SPDX-License-Identifier: MIT
//
// The window "Deleted Fonts".
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include "app/common/warningdlg.h"
#include "app/deleting/deletedfontsdlg.h"
#include "app/kit/lists.h"
#include "app/main_window/glyphwardapp.h"
#include "app/main_window/helpdlg.h"
#include "app/program/program_objects.h"
#include "app/program/work_record.h"
#include "app/samples/installed_list.h"
#include "fontpath/trash_places.h"
#include "platform/host_paths.h"
#include "platform/user_name.h"
#include "store/trash.h"

#include "widget/deleting/undo_test_support.h"

namespace {

using namespace gw::test;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class DeletedFontsWindow : public UndoTest {
  protected:
    void TearDown() override {
        if (is_managed(wi_for_good_dlg)) press(find(wi_for_good_dlg, "Cancel"));
        if (is_managed(wi_deleted_fonts_dlg)) press(part("close_button"));
        UndoTest::TearDown();
        std::filesystem::remove(list_file());
    }
    static std::string list_file() {
        return is_root() ? gw::SUPERUSER_TRASH_LIST : home().file(".glyphwdtrash");
    }
    static Widget part(const std::string& name) { return find(wi_deleted_fonts_dlg, name); }
    static Widget list() { return part("deleted_list"); }
    static void open() {
        ASSERT_TRUE(press(find(wi_mainwindow, "_tools_pulldown._deleted_fonts_dlg_button")));
    }
    static std::string said() { return label(wi_deleted_fonts_dlg, "msg_label"); }
    static std::string title() { return label(wi_deleted_fonts_dlg, "deleted_label"); }
    static bool can(const std::string& button) { return is_sensitive(wi_deleted_fonts_dlg, button); }
    /// Makes three fonts and deletes them in two actions: alpha and beta, then gamma.
    void delete_three() {
        make_fonts({"alpha", "beta", "gamma"});
        static std::time_t now = 0;
        now = std::time(nullptr);
        gw::set_trash_clock([] { return ++now; });
        remove({1, 2});
        remove({1});
        gw::set_trash_clock(nullptr);
    }
    /// What the rows are about, without their times.
    static std::vector<std::string> rows() {
        constexpr std::size_t TIME = 16;
        std::vector<std::string> all;
        for (const std::string& row : items(list())) all.push_back(row.substr(TIME));
        return all;
    }
};

TEST_F(DeletedFontsWindow, SaysWhenThereIsNothing) {
    list_own();
    open();
    EXPECT_EQ(title_of(wi_deleted_fonts_dlg), "Glyph Warden - Deleted Fonts");
    EXPECT_EQ(title(), "No deleted fonts.");
    EXPECT_THAT(items(list()), IsEmpty());
    for (const char* button : {"bring_back_button", "for_good_button", "empty_button"})
        EXPECT_FALSE(can(button));
    EXPECT_TRUE(can("close_button"));
}

TEST_F(DeletedFontsWindow, ListsWhatCanComeBack) {
    delete_three();
    open();
    EXPECT_EQ(title(), "Deleted fonts, the newest first:");
    ASSERT_THAT(items(list()), SizeIs(3));
    EXPECT_THAT(rows()[0],
                StartsWith("Gamma Medium [Bitmap]" + installed().path() + gw::user_name(::geteuid())));
    EXPECT_THAT(rows()[0], testing::EndsWith(" Kbytes"));
    const std::time_t now = std::time(nullptr);
    char year[8] = "";
    std::tm parts = {};
    ASSERT_NE(::localtime_r(&now, &parts), nullptr);
    std::strftime(year, sizeof year, "%Y-", &parts);
    EXPECT_THAT(items(list())[0], StartsWith(year));
    EXPECT_FALSE(can("bring_back_button")) << "nothing is selected";
    EXPECT_TRUE(can("empty_button"));
}

TEST_F(DeletedFontsWindow, BringsSelectedFontsBack) {
    delete_three();
    open();
    select(list(), {1, 3});
    ASSERT_TRUE(press(part("bring_back_button")));
    EXPECT_EQ(said(), "2 fonts brought back.");
    ASSERT_THAT(rows(), SizeIs(1));
    EXPECT_TRUE(installed().exists("gamma.pcf"));
    EXPECT_TRUE(lists("Gamma Medium [Bitmap]"));
    EXPECT_TRUE(server_has(face("gamma")));
    EXPECT_NE(installed().exists("alpha.pcf"), installed().exists("beta.pcf")) << "the other one stays";
    EXPECT_FALSE(can("bring_back_button"));
}

TEST_F(DeletedFontsWindow, FollowsWhatIsDeletedAndUndone) {
    make_fonts({"alpha", "beta"});
    open();
    EXPECT_THAT(rows(), IsEmpty());
    remove({1});
    EXPECT_THAT(rows(), SizeIs(1));
    ASSERT_TRUE(press(undo_button()));
    open();
    EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(DeletedFontsWindow, AsksBeforeFontsAreDeletedForGood) {
    delete_three();
    open();
    select(list(), {1});
    ASSERT_TRUE(press(part("for_good_button")));
    EXPECT_EQ(message_of(wi_for_good_dlg), "Delete this font for good?\nThis cannot be undone.");
    ASSERT_TRUE(press(find(wi_for_good_dlg, "Cancel")));
    EXPECT_THAT(rows(), SizeIs(3));
    select(list(), {2});
    const std::string other = rows()[2];
    ASSERT_TRUE(press(part("for_good_button")));
    ASSERT_TRUE(press(find(wi_for_good_dlg, "OK")));
    EXPECT_EQ(said(), "1 font deleted for good.");
    ASSERT_THAT(rows(), SizeIs(2));
    EXPECT_EQ(rows()[1], other) << "the other font of the same action stays";
    select(list(), {2});
    ASSERT_TRUE(press(part("bring_back_button")));
    EXPECT_EQ(said(), "1 font brought back.");
}

TEST_F(DeletedFontsWindow, IsEmptiedAfterAQuestion) {
    delete_three();
    open();
    ASSERT_TRUE(press(part("empty_button")));
    EXPECT_EQ(message_of(wi_for_good_dlg), "Delete these 3 fonts for good?\nThis cannot be undone.");
    ASSERT_TRUE(press(find(wi_for_good_dlg, "OK")));
    EXPECT_EQ(said(), "3 fonts deleted for good.");
    EXPECT_EQ(title(), "No deleted fonts.");
    const auto left = gw::trash_entries(installed().path());
    ASSERT_TRUE(left);
    EXPECT_THAT(*left, IsEmpty());
}

TEST_F(DeletedFontsWindow, TellsWhatIsInTheWay) {
    delete_three();
    installed().dir().write("alpha.pcf", "somebody else's");
    open();
    select(list(), {1, 2, 3});
    ASSERT_TRUE(press(part("bring_back_button")));
    EXPECT_EQ(said(), "2 fonts brought back.");
    EXPECT_THAT(rows(), SizeIs(1)) << "it is kept in the trash";
    EXPECT_EQ(message_of(wi_warning_dlg),
              "1 font could not be brought back:\nAlpha Medium [Bitmap]: " + installed().file("alpha.pcf") +
                  ": there is a file of this name now\n\nWhat you can do:\n"
                  "Move the file that is there now away, or give it another name.\n"
                  "Then bring it back with \"Tools, Deleted Fonts...\", where it stays until then.");
}

// Another instance was faster, or somebody has emptied the trash.
TEST_F(DeletedFontsWindow, TellsWhatIsNotThereAnyMore) {
    delete_three();
    open();
    select(list(), {1, 2, 3});
    ASSERT_TRUE(gw::empty_trash(installed().path()));
    ASSERT_TRUE(press(part("bring_back_button")));
    EXPECT_EQ(said(), "0 fonts brought back.");
    EXPECT_THAT(message_of(wi_warning_dlg), HasSubstr("this is not in the trash any more"));
    EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(DeletedFontsWindow, TellsThatADirectoryIsGone) {
    delete_three();
    open();
    select(list(), {1});
    const std::string moved = installed().path().substr(0, installed().path().size() - 1) + "-moved";
    std::filesystem::rename(installed().path(), moved);
    ASSERT_TRUE(press(part("bring_back_button")));
    EXPECT_EQ(said(), "0 fonts brought back.");
    EXPECT_THAT(message_of(wi_warning_dlg), HasSubstr(installed().path()));
    EXPECT_THAT(rows(), IsEmpty());
    std::filesystem::rename(moved, installed().path());
    open();
    EXPECT_THAT(rows(), SizeIs(3)) << "when it is there again";
}

// The directory has left the font path since.
TEST_F(DeletedFontsWindow, KnowsEveryDirectoryWhereTheUserHasDeletedSomething) {
    delete_three();
    EXPECT_THAT(gw::remembered_trash_places(), Contains(installed().path()));
    own_path().write({});
    read_font_path();
    open();
    EXPECT_THAT(rows(), SizeIs(3));
    std::filesystem::remove(list_file());
    open();
    EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(DeletedFontsWindow, DoesNothingWhileOtherWorkIsGoingOn) {
    delete_three();
    open();
    select(list(), {1});
    the_wp_cl_data = {{1}, 0, 0};
    ASSERT_TRUE(press(part("bring_back_button")));
    EXPECT_EQ(said(), "Fonts are being installed or deleted. Try it again when that is done.");
    the_wp_cl_data = {};
    EXPECT_THAT(rows(), SizeIs(3));
}

TEST_F(DeletedFontsWindow, HasItsSectionOfTheManual) {
    list_own();
    open();
    ASSERT_TRUE(press(part("help_button")));
    EXPECT_TRUE(is_managed(wi_help_dlg));
    press(find(wi_help_dlg, "ok_button"));
    XtUnmanageChild(wi_help_dlg);
}

TEST_F(DeletedFontsWindow, IsClosedByEveryWayOut) {
    list_own();
    open();
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_deleted_fonts_dlg); }));
    close_box(wi_deleted_fonts_dlg);
    EXPECT_FALSE(is_managed(wi_deleted_fonts_dlg));
    open();
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_deleted_fonts_dlg); }));
    press_key(wi_deleted_fonts_dlg, "Escape");
    EXPECT_TRUE(pump_until([] { return !is_managed(wi_deleted_fonts_dlg); }));
}

}  // namespace
