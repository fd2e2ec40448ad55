// SPDX-License-Identifier: MIT
//
// Deleting and bringing back while the list is filtered, and while other programs change fonts and trash.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "app/deleting/deletedfontsdlg.h"
#include "app/deleting/delwarningdlg.h"
#include "app/kit/lists.h"
#include "app/kit/widgets.h"
#include "app/main_window/glyphwardapp.h"
#include "app/program/program_objects.h"
#include "app/program/work_record.h"
#include "app/samples/installed_list.h"
#include "store/trash.h"
#include "widget/deleting/undo_test_support.h"

#include <Xm/List.h>

namespace {

namespace fs = std::filesystem;
using namespace gw::test;
using testing::HasSubstr;
using testing::Not;

class FilteredDeletion : public UndoTest {
  protected:
    void TearDown() override {
        type("");
        if (is_managed(wi_del_warning_dlg)) press(find(wi_del_warning_dlg, "Cancel"));
        XtUnmanageChild(wi_deleted_fonts_dlg);
        UndoTest::TearDown();
    }
    static Widget part(const std::string& name) { return find(wi_mainwindow, "FontListTemplate." + name); }
    static void type(const std::string& text) { type_into(part("_search_textfield"), text); }
    static std::string count() { return gw::label_of(part("_search_count")); }
    static void ask() { EXPECT_TRUE(press(find(wi_mainwindow, "_command_form._delete_button"))); }
    static std::string question() { return message_of(wi_del_warning_dlg); }
    static void confirm() {
        EXPECT_TRUE(press(find(wi_del_warning_dlg, "OK")));
        EXPECT_TRUE(wait_for_work());
    }
    /// The row, among all, whose name begins so; 0 when there is none.
    static int row_of(const std::string& beginning) {
        int row = 0;
        for (const GWHRNElement* element : the_installed_hrn_list) {
            ++row;
            if (std::string(element->get_name()).starts_with(beginning)) return row;
        }
        return 0;
    }
    static void choose_rows(const std::vector<std::string>& beginnings) {
        std::vector<int> rows;
        for (const std::string& beginning : beginnings) rows.push_back(row_of(beginning));
        forget_selection();
        gw::select_too(wi_hrn_list, rows);
        activate_selection_controls(static_cast<int>(rows.size()));
    }
    /// As another program does it: the index, and then the files.
    void other_program_leaves(const std::vector<std::string>& families) {
        std::string index = std::to_string(families.size()) + '\n';
        for (const std::string& family : families) index += family + ".pcf " + face(family) + '\n';
        installed().dir().write("fonts.dir.new", index);
        fs::rename(installed().file("fonts.dir.new"), installed().file("fonts.dir"));
    }
};

TEST_F(FilteredDeletion, TakesWhatIsSeen) {
    make_fonts({"alpha", "beta", "gamma", "delta"});
    type("gamma");
    select(wi_hrn_list, {1});
    ask();
    EXPECT_THAT(question(), HasSubstr("Gamma Medium"));
    confirm();
    EXPECT_FALSE(installed().exists("gamma.pcf"));
    for (const char* other : {"alpha.pcf", "beta.pcf", "delta.pcf"}) EXPECT_TRUE(installed().exists(other));
    type("");
    EXPECT_TRUE(lists("Delta Medium"));
    EXPECT_FALSE(lists("Gamma Medium"));
}

TEST_F(FilteredDeletion, NamesAndTakesWhatIsHiddenToo) {
    make_fonts({"alpha", "beta", "gamma", "delta"});
    choose_rows({"Alpha", "Delta"});
    type("delta");
    EXPECT_THAT(count(), HasSubstr("hidden and selected: 1"));
    ask();
    EXPECT_THAT(question(), HasSubstr("Alpha Medium"));
    EXPECT_THAT(question(), HasSubstr("Delta Medium"));
    confirm();
    EXPECT_FALSE(installed().exists("alpha.pcf"));
    EXPECT_FALSE(installed().exists("delta.pcf"));
    EXPECT_TRUE(installed().exists("beta.pcf"));
    EXPECT_TRUE(installed().exists("gamma.pcf"));
    EXPECT_THAT(count(), Not(HasSubstr("hidden"))) << count();
}

TEST_F(FilteredDeletion, SearchingWhileFontsAreDeletedChangesNothing) {
    make_fonts({"alpha", "beta", "gamma", "delta", "epsilon"});
    type("a");
    choose_rows({"Alpha", "Beta", "Delta"});
    int typed = 0;
    const When searching([] { return the_wp_cl_data.is_in_progress() && the_wp_cl_data.done > 0; },
                         [&] { type(++typed % 2 == 0 ? "gamma" : "epsilon"); }, When::Often::EACH_TIME);
    ask();
    confirm();
    EXPECT_EQ(main_status(), "3 fonts deleted.");
    for (const char* gone : {"alpha.pcf", "beta.pcf", "delta.pcf"}) EXPECT_FALSE(installed().exists(gone));
    for (const char* left : {"gamma.pcf", "epsilon.pcf"}) EXPECT_TRUE(installed().exists(left));
}

TEST_F(FilteredDeletion, FollowsWhatAnotherProgramTakesAway) {
    make_fonts({"alpha", "beta", "gamma"});
    ASSERT_TRUE(pump_until([] { return row_of("Gamma") != 0; }));
    choose_rows({"Alpha", "Gamma"});
    type("beta");
    ask();
    EXPECT_THAT(question(), HasSubstr("Delete these 2 fonts?"));
    other_program_leaves({"beta", "gamma"});
    ASSERT_TRUE(pump_until([] { return row_of("Alpha") == 0; }));
    pump();
    EXPECT_EQ(gw::selected_positions(wi_hrn_list), std::vector<int>{row_of("Gamma")});
    EXPECT_THAT(count(), HasSubstr("hidden and selected: 1"));
    EXPECT_THAT(question(), HasSubstr("Delete this font?\n    Gamma Medium"));
    confirm();
    EXPECT_FALSE(installed().exists("gamma.pcf"));
    EXPECT_TRUE(installed().exists("beta.pcf"));
    EXPECT_TRUE(installed().exists("alpha.pcf")) << "no line, no font: it is not ours to delete";
}

TEST_F(FilteredDeletion, FollowsWhatAnotherProgramAdds) {
    make_fonts({"beta", "gamma"});
    choose_rows({"Gamma"});
    ask();
    fs::copy(installed().file("beta.pcf"), installed().file("alpha.pcf"));
    other_program_leaves({"alpha", "beta", "gamma"});
    ASSERT_TRUE(pump_until([] { return row_of("Alpha") != 0; }));
    confirm();
    EXPECT_TRUE(installed().exists("beta.pcf"));
    EXPECT_TRUE(installed().exists("alpha.pcf"));
    EXPECT_FALSE(installed().exists("gamma.pcf"));
}

// Another size of the same face: it belongs to the same row.
TEST_F(FilteredDeletion, TheQuestionCountsFilesThatCome) {
    installed().add("a10.pcf", face("alpha", "100"));
    list_own();
    choose_rows({"Alpha"});
    ask();
    EXPECT_THAT(question(), HasSubstr("\n1 file of "));
    fs::copy(installed().file("a10.pcf"), installed().file("a12.pcf"));
    installed().dir().write(
        "fonts.dir.new", "2\na10.pcf " + face("alpha", "100") + "\na12.pcf " + face("alpha", "120") + "\n");
    fs::rename(installed().file("fonts.dir.new"), installed().file("fonts.dir"));
    EXPECT_TRUE(pump_until([] { return question().find("\n2 files of ") != std::string::npos; }, 4000))
        << question();
}

TEST_F(FilteredDeletion, AFontThatIsRenamedIsNotSelectedAnyMore) {
    make_fonts({"alpha", "beta"});
    choose_rows({"Alpha"});
    type("beta");
    ask();
    installed().dir().write("fonts.dir.new",
                            "2\nalpha.pcf " + face("omega") + "\nbeta.pcf " + face("beta") + "\n");
    fs::rename(installed().file("fonts.dir.new"), installed().file("fonts.dir"));
    ASSERT_TRUE(pump_until([] { return row_of("Omega") != 0; }));
    pump();
    EXPECT_EQ(gw::selected_count(wi_hrn_list), 0);
    EXPECT_FALSE(is_managed(wi_del_warning_dlg));
    EXPECT_THAT(count(), Not(HasSubstr("hidden")));
}

// --- the way back ---------------------------------------------------------------------------------------

TEST_F(FilteredDeletion, ComesBackUnderAFilter) {
    make_fonts({"alpha", "beta", "gamma"});
    type("gamma");
    select(wi_hrn_list, {1});
    ask();
    confirm();
    type("beta");
    ASSERT_TRUE(press(undo_button()));
    EXPECT_EQ(main_status(), "1 font brought back.");
    EXPECT_EQ(gw::selected_positions(wi_hrn_list), std::vector<int>{row_of("Gamma")});
    EXPECT_TRUE(lists("Gamma Medium")) << "the filter that would hide it is cleared";
}

TEST_F(FilteredDeletion, AReadOnlyDirectoryIsTold) {
    if (is_root()) GTEST_SKIP() << "the superuser may write";
    make_fonts({"alpha", "beta"});
    remove({1});
    ASSERT_EQ(::chmod(installed().c_str(), 0555), 0);
    ASSERT_TRUE(press(undo_button()));
    EXPECT_EQ(main_status(), "0 fonts brought back.");
    const std::string said = message_of(wi_warning_dlg);
    ::chmod(installed().c_str(), 0755);
    EXPECT_THAT(said, HasSubstr("could not be brought back"));
    EXPECT_THAT(said, HasSubstr("Tools, Deleted Fonts"));
    const auto left = gw::trash_entries(installed().path());
    ASSERT_TRUE(left);
    EXPECT_EQ(left->size(), 1U);
    start_deleted_fonts_dlg();
    select(find(wi_deleted_fonts_dlg, "deleted_list"), {1});
    ASSERT_TRUE(press(find(wi_deleted_fonts_dlg, "bring_back_button")));
    EXPECT_TRUE(installed().exists("alpha.pcf"));
}

TEST_F(FilteredDeletion, AFontOfThatNameInTheMeantimeStays) {
    make_fonts({"alpha", "beta"});
    remove({1});
    installed().dir().write("other.pcf", installed().read("beta.pcf"));
    installed().dir().write("fonts.dir",
                            "2\nbeta.pcf " + face("beta") + "\nother.pcf " + face("alpha") + "\n");
    ASSERT_TRUE(press(undo_button()));
    EXPECT_EQ(main_status(), "0 fonts brought back.");
    EXPECT_THAT(message_of(wi_warning_dlg), HasSubstr("other.pcf"));
    EXPECT_TRUE(installed().exists("other.pcf"));
    EXPECT_FALSE(installed().exists("alpha.pcf"));
    EXPECT_THAT(installed().index(), HasSubstr("other.pcf " + face("alpha")));
}

TEST_F(FilteredDeletion, ComesBackWhenTheDirectoryHasLeftTheFontPath) {
    make_fonts({"alpha", "beta"});
    remove({1});
    own_path().write({});
    read_font_path();
    ASSERT_TRUE(press(undo_button()));
    EXPECT_EQ(main_status(), "1 font brought back.");
    EXPECT_TRUE(installed().exists("alpha.pcf"));
    EXPECT_TRUE(lists("Alpha Medium")) << "the directory is on the font path again";
}

}  // namespace
