// SPDX-License-Identifier: MIT
//
// The conflict dialog that shows two fonts side by side, and the summary that tells everything, where
// `gw_modern_windows` is on.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "app/deleting/delwarningdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/installing/installdlg.h"
#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/kit/wrapped_text.h"
#include "app/program/conflict_lists.h"
#include "app/program/undo_record.h"
#include "app/program/work_record.h"
#include "app/samples/installed_list.h"
#include "platform/user_name.h"
#include "support/fake_packages.h"

#include "widget/conflicts/conflicts_test_support.h"

#include <Xm/List.h>

namespace {

using namespace gw::test;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class Comparing : public ConflictTest {
  protected:
    static void SetUpTestSuite() {
        home();
        start_program(
            {"-xrm", "Glyphward*gw_modern_windows: True", "-xrm", "Glyphward*gw_modern_fonts: True"});
    }
    static std::vector<std::string> rows() { return items(conflicts_list()); }
    static std::vector<std::string> told() { return items(find(wi_preconflict_dlg, "failed_list")); }
    static std::string field(const std::string& name) { return shown_text(find(wi_conflict_dlg, name)); }
    static std::string detail() { return gw::wrapped_text_of(find(wi_conflict_dlg, "conflict_detail")); }
    static bool press_in(Widget dialog, const std::string& name) { return press(find(dialog, name)); }
    static bool shows_picture(const std::string& side) {
        Widget picture = find(wi_conflict_dlg, side + "_picture");
        XWindowAttributes attributes = {};
        XGetWindowAttributes(display, XtWindow(picture), &attributes);
        return attributes.map_state == IsViewable;
    }
    /// Shows made-up conflicts: fonts that can be decided about, and read-only ones.
    static void show_conflicts(GWConflict::TYPE type, int open, int closed) {
        for (int i = 0; i < closed; ++i)
            add_conflict(type, "closed" + std::to_string(i), {GWConflict::READ_ONLY});
        const auto reason = type == GWConflict::INSTALL ? GWConflict::SAME_NAME : GWConflict::SYSTEM_FONT;
        for (int i = 0; i < open; ++i) add_conflict(type, "open" + std::to_string(i), {reason});
        ASSERT_TRUE(start_summary({type, 3, &the_conflict_list, {}}));
        pump();
    }
};

// --- the conflicts -----------------------------------------------------------

TEST_F(Comparing, ComesAtOnceAndShowsTheFirstPair) {
    make_conflicts({"alpha", "beta"});
    fonts_.add("gamma.pcf", face("gamma"));
    install_source();
    ASSERT_TRUE(is_managed(wi_conflict_dlg));
    EXPECT_FALSE(is_managed(wi_preconflict_dlg)) << "it comes when all is decided";
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_conflict_dlg); }));
    EXPECT_EQ(resolve("list_label"), "2 fonts need your decision:");
    EXPECT_THAT(rows(), ElementsAre(AllOf(HasSubstr("Alpha Medium [Bitmap]"), HasSubstr("not decided"),
                                          HasSubstr(installed().path())),
                                    HasSubstr("Beta Medium [Bitmap]")));
    EXPECT_EQ(gw::selected_positions(conflicts_list()), std::vector<int>{1});
    EXPECT_EQ(field("old_file"), "old-alpha.pcf");
    EXPECT_EQ(field("new_file"), "alpha.pcf");
    EXPECT_EQ(field("old_directory"), installed().path());
    EXPECT_EQ(field("new_directory"), fonts_.path());
    EXPECT_THAT(field("old_size"), testing::MatchesRegex("[0-9]+ bytes, ....-..-.. ..:.."));
    EXPECT_TRUE(field("new_size").starts_with("512000 bytes, "));
    EXPECT_EQ(field("old_owner"), gw::user_name(::geteuid()));
    EXPECT_EQ(detail(), "The bytes of the files are different.");
    EXPECT_TRUE(pump_until([] { return shows_picture("old") && shows_picture("new"); }));
    EXPECT_EQ(resolve("msg_label"), "2 fonts are not decided yet; they would stay as they are.");
}

TEST_F(Comparing, SaysThatBothFilesHaveTheSameBytes) {
    make_conflicts({"alpha"});
    std::filesystem::copy_file(installed().file("old-alpha.pcf"), fonts_.file("alpha.pcf"),
                               std::filesystem::copy_options::overwrite_existing);
    install_source();
    EXPECT_EQ(resolve("list_label"), "1 font needs your decision:");
    EXPECT_THAT(detail(), testing::StartsWith("Both files have the same bytes."));
}

TEST_F(Comparing, SaysWhyAFileCannotBeShown) {
    make_conflicts({"alpha", "beta"});
    install_source();
    std::filesystem::remove(fonts_.file("beta.pcf"));
    installed().dir().write("old-beta.pcf", "no font");
    pick(conflicts_list(), 2);
    EXPECT_THAT(detail(), testing::StartsWith("The files cannot be compared: " + fonts_.file("beta.pcf")));
    EXPECT_EQ(field("old_sample"), "this is no font");
    EXPECT_EQ(field("new_size"), "No such file or directory");
    EXPECT_FALSE(shows_picture("old"));
    pick(conflicts_list(), 1);
    EXPECT_EQ(field("old_sample"), "");
    EXPECT_TRUE(shows_picture("old"));
}

TEST_F(Comparing, DecidesAboutWhatIsSelected) {
    show_conflicts(GWConflict::INSTALL, 4, 0);
    select(conflicts_list(), {1, 3});
    ASSERT_TRUE(can_resolve());
    EXPECT_TRUE(force());
    EXPECT_EQ(gw::selected_positions(conflicts_list()), (std::vector<int>{1, 3})) << "it can be changed";
    EXPECT_THAT(rows(), ElementsAre(HasSubstr("Install New"), HasSubstr("not decided"),
                                    HasSubstr("Install New"), HasSubstr("not decided")));
    EXPECT_EQ(resolve("msg_label"), "2 fonts are not decided yet; they would stay as they are.");
    select(conflicts_list(), {3, 4});
    EXPECT_TRUE(keep());
    EXPECT_THAT(rows(), ElementsAre(HasSubstr("Install New"), HasSubstr("not decided"), HasSubstr("Keep Old"),
                                    HasSubstr("Keep Old")));
    EXPECT_EQ(resolve("msg_label"), "1 font is not decided yet; it would stay as it is.");
}

TEST_F(Comparing, DecidesAboutAll) {
    show_conflicts(GWConflict::INSTALL, 3, 2);
    EXPECT_EQ(resolve("keep_all_button"), "Keep All Old");
    EXPECT_EQ(resolve("not_keep_all_button"), "Install All New");
    EXPECT_TRUE(press_in(wi_conflict_dlg, "not_keep_all_button"));
    const auto words = [](const char* word) {
        std::vector<std::string> all = rows();
        return std::count_if(all.begin(), all.end(),
                             [&](const std::string& row) { return row.find(word) != std::string::npos; });
    };
    EXPECT_EQ(words("Install New"), 3);
    EXPECT_EQ(resolve("msg_label"), " ");
    EXPECT_TRUE(press_in(wi_conflict_dlg, "keep_all_button"));
    EXPECT_EQ(words("Keep Old"), 3);
    EXPECT_EQ(words("read-only"), 2);
}

TEST_F(Comparing, SetsApartWhatCannotBeDecided) {
    show_conflicts(GWConflict::INSTALL, 4, 60);
    ASSERT_THAT(rows(), SizeIs(65));
    EXPECT_EQ(resolve("list_label"), "4 fonts need your decision:");
    for (std::size_t i = 0; i < 4; ++i) EXPECT_THAT(rows()[i], HasSubstr("Open" + std::to_string(i)));
    EXPECT_EQ(rows()[4], "These 60 stay as they are:");
    for (std::size_t i = 5; i < 65; ++i)
        EXPECT_THAT(rows()[i], AllOf(HasSubstr("Closed"), HasSubstr("read-only")));
    EXPECT_EQ(gw::top_position(conflicts_list()), 1);
    for (const int row : {5, 6, 65}) {
        pick(conflicts_list(), row);
        EXPECT_FALSE(can_resolve()) << row;
    }
    select(conflicts_list(), {4, 5, 6});
    EXPECT_TRUE(force());
    EXPECT_THAT(rows()[3], HasSubstr("Install New"));
    EXPECT_THAT(rows()[5], HasSubstr("read-only"));
}

TEST_F(Comparing, NamesThePackageOfWhatCannotBeDecided) {
    add_conflict(GWConflict::INSTALL, "alpha", {GWConflict::READ_ONLY});
    (*the_conflict_list.begin())->add_packages({"xfonts-base"});
    add_conflict(GWConflict::INSTALL, "beta", {GWConflict::SAME_NAME});
    start_conflict_dlg(0, &the_conflict_list);
    EXPECT_THAT(rows()[1], testing::StrEq("This one stays as it is:"));
    EXPECT_THAT(rows()[2], HasSubstr("read-only, of the package xfonts-base"));
}

TEST_F(Comparing, HasNothingToDecideAboutReadOnlyFonts) {
    show_conflicts(GWConflict::INSTALL, 0, 60);
    EXPECT_FALSE(is_managed(wi_conflict_dlg));
    ASSERT_TRUE(is_managed(wi_preconflict_dlg));
    EXPECT_EQ(summary("success_label"), "3 fonts installed.\n60 fonts stay as they were.");
    ASSERT_THAT(told(), SizeIs(60));
    EXPECT_THAT(told()[0], AllOf(HasSubstr("kept"), HasSubstr("Closed0"), HasSubstr("read-only")));
    EXPECT_EQ(summary("resolve_button"), "Review...");
    ASSERT_TRUE(choose_resolutions());
    EXPECT_EQ(resolve("list_label"), "There is nothing to decide:");
    EXPECT_THAT(rows(), SizeIs(60));
    for (const char* button : {"keep_all_button", "not_keep_all_button"})
        EXPECT_FALSE(is_sensitive(wi_conflict_dlg, button)) << button;
    EXPECT_FALSE(can_resolve());
    EXPECT_TRUE(finish());
    EXPECT_TRUE(is_managed(wi_preconflict_dlg));
}

// --- carrying out, and the summary -------------------------------------------

TEST_F(Comparing, FinishWorksAtOnceAndKeepsWhatIsUndecided) {
    make_conflicts({"alpha", "beta"});
    const std::string before = installed().index();
    fonts_.add("gamma.pcf", face("gamma"));
    install_source();
    ASSERT_TRUE(finish());
    EXPECT_FALSE(is_managed(wi_conflict_dlg));
    ASSERT_TRUE(is_managed(wi_preconflict_dlg));
    EXPECT_EQ(installed().index(), before);
    EXPECT_EQ(summary("success_label"), "1 font installed.\n2 fonts stay as they were.");
    EXPECT_THAT(told(), ElementsAre(AllOf(HasSubstr("kept"), HasSubstr("Alpha"), HasSubstr("not decided")),
                                    AllOf(HasSubstr("kept"), HasSubstr("Beta"), HasSubstr("not decided")),
                                    AllOf(HasSubstr("installed"), HasSubstr("Gamma Medium [Bitmap]"))));
    EXPECT_FALSE(is_sensitive(wi_preconflict_dlg, "resolve_button")) << "everything is decided";
    EXPECT_EQ(main_status(), "1 font installed.");
    EXPECT_TRUE(press_in(wi_preconflict_dlg, "ok_button"));
    EXPECT_FALSE(is_managed(wi_fp_info_dlg)) << "the destination is on the font path";
}

TEST_F(Comparing, TellsEverythingInOneSummary) {
    make_conflicts({"alpha", "beta", "delta"});
    fonts_.add("gamma.pcf", face("gamma"));
    install_source();
    home().make_dir("glyphwd_fonts/delta.pcf");  // so that the copy fails
    select(conflicts_list(), {1, 3});
    EXPECT_TRUE(force());
    pick(conflicts_list(), 2);
    EXPECT_TRUE(keep());
    ASSERT_TRUE(finish());
    EXPECT_EQ(summary("success_label"),
              "1 font installed.\n1 font replaced.\n1 font stays as it was.\n1 failure.");
    EXPECT_THAT(told(),
                ElementsAre(AllOf(HasSubstr("failed"), HasSubstr("Delta"), HasSubstr("Is a directory")),
                            AllOf(HasSubstr("kept"), HasSubstr("Beta"), HasSubstr("as you decided")),
                            AllOf(HasSubstr("replaced"), HasSubstr("Alpha"),
                                  HasSubstr("the old font was in " + installed().path())),
                            AllOf(HasSubstr("installed"), HasSubstr("Gamma"))));
    EXPECT_EQ(main_status(), "2 fonts installed.");
    EXPECT_FALSE(installed().exists("old-alpha.pcf"));
    EXPECT_TRUE(installed().exists("old-beta.pcf"));
    EXPECT_TRUE(installed().exists("old-delta.pcf"));
    EXPECT_TRUE(home().read("glyphwd_fonts/alpha.pcf") == fonts_.read("alpha.pcf"));
    EXPECT_EQ(gw::undo_record().kind, gw::UndoableWork::REPLACEMENT);
    EXPECT_THAT(gw::undo_record().entries, SizeIs(1));
}

TEST_F(Comparing, CancelOffersTheSameConflictsAgain) {
    make_conflicts({"alpha"});
    install_source();
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(press_in(wi_conflict_dlg, "not_keep_all_button"));
        if (round == 0) {
            EXPECT_TRUE(press_in(wi_conflict_dlg, "cancel_button"));
        } else {
            ASSERT_TRUE(pump_until([] { return is_viewable(wi_conflict_dlg); }));
            close_box(wi_conflict_dlg);
        }
        ASSERT_TRUE(is_managed(wi_preconflict_dlg));
        EXPECT_EQ(summary("success_label"), "0 fonts installed.\n1 font stays as it was.");
        EXPECT_EQ(summary("resolve_button"), "Choose...");
        ASSERT_TRUE(choose_resolutions());
        EXPECT_FALSE(is_managed(wi_preconflict_dlg));
        EXPECT_THAT(rows(), ElementsAre(HasSubstr("not decided")));
    }
    EXPECT_TRUE(press_in(wi_conflict_dlg, "not_keep_all_button"));
    EXPECT_TRUE(finish());
    EXPECT_EQ(summary("success_label"), "0 fonts installed.\n1 font replaced.");
    EXPECT_EQ(destination_index(), index_of({"alpha.pcf " + face("alpha")}));
}

TEST_F(Comparing, SuccessAloneNeedsNoWindow) {
    show_installed();
    fonts_.add("gamma.pcf", face("gamma"));
    install_source();
    EXPECT_FALSE(is_managed(wi_conflict_dlg));
    EXPECT_FALSE(is_managed(wi_preconflict_dlg));
    EXPECT_EQ(main_status(), "1 font installed.");
}

// The second installation makes new conflicts while the first ones are still shown.
TEST_F(Comparing, OutlivesAnotherInstallation) {
    make_conflicts({"alpha", "beta"});
    install_source();
    open_install_dialog();
    select(source_list(), {2});
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    ASSERT_TRUE(wait_for_work());
    EXPECT_THAT(rows(), SizeIs(2));
    ASSERT_TRUE(is_managed(wi_preconflict_dlg));
    EXPECT_EQ(summary("resolve_button"), "Choose...");
    EXPECT_TRUE(press_in(wi_conflict_dlg, "not_keep_all_button"));
    EXPECT_TRUE(finish());
    EXPECT_EQ(summary("success_label"), "0 fonts installed.\n2 fonts replaced.\n1 font stays as it was.");
    ASSERT_TRUE(choose_resolutions());
    EXPECT_THAT(rows(), ElementsAre(HasSubstr("Beta")));
    EXPECT_EQ(the_installed_hrn_count, 2);
}

TEST_F(Comparing, OneSideIsShownOfAFontThatIsToBeDeleted) {
    show_conflicts(GWConflict::DELETE, 2, 1);
    ASSERT_TRUE(is_managed(wi_conflict_dlg));
    EXPECT_EQ(resolve("keep_button"), "Keep");
    EXPECT_EQ(resolve("not_keep_button"), "Delete");
    EXPECT_EQ(resolve("keep_all_button"), "Keep All");
    EXPECT_EQ(resolve("not_keep_all_button"), "Delete All");
    EXPECT_EQ(resolve("ok_button"), "Finish Deletion");
    EXPECT_FALSE(XtIsManaged(find(wi_conflict_dlg, "new_file")));
    EXPECT_EQ(detail(), "It is a system font.");
    EXPECT_TRUE(finish());
    EXPECT_EQ(summary("success_label"), "3 fonts deleted.\n3 fonts stay as they were.");
    EXPECT_THAT(told(),
                ElementsAre(HasSubstr("read-only"), HasSubstr("not decided"), HasSubstr("not decided")));
    press_in(wi_preconflict_dlg, "ok_button");

    gw::clear_conflict_list();
    show_conflicts(GWConflict::INSTALL, 1, 0);
    EXPECT_TRUE(XtIsManaged(find(wi_conflict_dlg, "new_file")));
}

TEST_F(Comparing, ADeletionNamesWhatIsGoneAndWhatStays) {
    installed().add("a.pcf", face("alpha"));
    show_installed({"my-alias"});
    remove({1, 2});
    EXPECT_FALSE(is_managed(wi_conflict_dlg)) << "an alias is nothing to decide about";
    ASSERT_TRUE(is_managed(wi_preconflict_dlg));
    EXPECT_EQ(summary("success_label"), "1 font deleted.\n1 font stays as it was.");
    EXPECT_THAT(told(), ElementsAre(AllOf(HasSubstr("kept"), HasSubstr("an alias")),
                                    AllOf(HasSubstr("deleted"), HasSubstr("Alpha Medium [Bitmap]"))));
}

// The package manager would miss the file. So the user is asked first, wherever the font is.
TEST_F(Comparing, ADeletionOfAPackagesFontNamesThePackage) {
    if (!is_root()) GTEST_SKIP() << "to an ordinary user the fonts of packages are read-only";
    installed().add("a.pcf", face("alpha"));
    show_installed();
    const gw::test::FakePackages packages(installed().path(), "xfonts-test");
    remove({1});
    ASSERT_TRUE(is_managed(wi_conflict_dlg));
    EXPECT_EQ(field("old_owner"), gw::user_name(::geteuid()) + ", package xfonts-test");
    EXPECT_EQ(detail(),
              "It is part of a package.\nPackage: xfonts-test\n"
              "The package manager will miss it,\nand may bring it back at an update.");
    EXPECT_TRUE(installed().exists("a.pcf"));
    EXPECT_TRUE(force());
    EXPECT_TRUE(finish());
    EXPECT_FALSE(installed().exists("a.pcf")) << "the superuser may insist";
    EXPECT_EQ(summary("success_label"), "1 font deleted.");
    EXPECT_THAT(told(), ElementsAre(AllOf(HasSubstr("deleted"), HasSubstr("as you decided"))));
}

TEST_F(Comparing, NothingIsCarriedOutWhileOtherWorkIsGoingOn) {
    make_conflicts({"alpha"});
    install_source();
    EXPECT_TRUE(press_in(wi_conflict_dlg, "not_keep_all_button"));
    the_wp_cl_data = {{1}, 0, 0};
    EXPECT_TRUE(finish());
    EXPECT_TRUE(is_managed(wi_conflict_dlg));
    EXPECT_THAT(resolve("msg_label"), HasSubstr("Try it again when that is done."));
    EXPECT_EQ(destination_index(), "");
    the_wp_cl_data = {};
    EXPECT_TRUE(finish());
    EXPECT_EQ(destination_index(), index_of({"alpha.pcf " + face("alpha")}));
}

// A thousand lines are enough to look at.
TEST_F(Comparing, CountsAllAndNamesAThousand) {
    gw::FontReport report;
    for (int i = 0; i < 1002; ++i) {
        const gw::Ref<GWFont> font(make_font(GWFont::BITMAP_FONT, face("f" + std::to_string(i))));
        report.note(*font, gw::done(), "/fonts/");
    }
    add_conflict(GWConflict::INSTALL, "closed", {GWConflict::READ_ONLY});
    ASSERT_TRUE(start_summary({GWConflict::INSTALL, 1002, &the_conflict_list, {}, {}, &report}));
    EXPECT_EQ(summary("success_label"), "1002 fonts installed.\n1 font stays as it was.");
    ASSERT_THAT(told(), SizeIs(1002));
    EXPECT_THAT(told().back(), HasSubstr("and 2 more"));
}

}  // namespace
