// SPDX-License-Identifier: MIT
//
// Decisions about several conflicts, carried out under the user's control, where `gw_modern_windows` is on.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "app/common/problemdlg.h"
#include "app/common/progressdlg.h"
#include "app/conflicts/conflictdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/installing/installdlg.h"
#include "app/kit/toolkit.h"
#include "app/main_window/glyphwardapp.h"
#include "app/program/conflict_lists.h"
#include "app/program/undo_record.h"
#include "app/program/work_record.h"
#include "support/fake_packages.h"

#include "widget/conflicts/conflicts_test_support.h"
#include "widget/slow_disk.h"

namespace {

using namespace gw::test;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

/// Three fonts that are there already, all to be replaced.
class CarryingOut : public ConflictTest {
  protected:
    static void SetUpTestSuite() {
        home();
        start_program(
            {"-xrm", "Glyphward*gw_modern_windows: True", "-xrm", "Glyphward*gw_modern_fonts: True"});
    }
    void SetUp() override {
        ConflictTest::SetUp();
        answer_questions();
    }
    static std::string count() { return label(wi_progress_dlg, "action_label"); }
    static std::string name() { return label(wi_progress_dlg, "name_label"); }
    static std::vector<std::string> told() { return items(find(wi_preconflict_dlg, "failed_list")); }

    void decide_about_three() {
        make_conflicts({"alpha", "beta", "delta"});
        install_source();
        ASSERT_TRUE(press(find(wi_conflict_dlg, "not_keep_all_button")));
    }
    /// A font of this name cannot be put there.
    static void block(const std::string& file) { home().make_dir("glyphwd_fonts/" + file); }
    static bool is_new(const std::string& file) {
        return destination_index().find("\n" + file + " ") != std::string::npos;
    }
    /// Finishes, and answers each question with this button. Returns how many there were.
    static int finish_and_answer(const std::string& button) {
        int asked = 0;
        const When question(
            is_asked,
            [&] {
                ++asked;
                EXPECT_THAT(label(wi_problem_dlg, "reason_label"), HasSubstr("Is a directory"));
                press(find(wi_problem_dlg, button));
            },
            When::Often::EACH_TIME);
        EXPECT_TRUE(finish());
        return asked;
    }
};

TEST_F(CarryingOut, CountsAndNamesTheFonts) {
    decide_about_three();
    std::vector<std::string> seen;
    std::string title;
    {
        const SlowDisk disk([&](const std::string&) {
            sleep_for(10);
            if (!is_managed(wi_progress_dlg)) return;
            seen.push_back(count() + ' ' + name());
            title = title_of(wi_progress_dlg);
        });
        ASSERT_TRUE(finish());
    }
    EXPECT_THAT(seen, Contains("Installing 2 of 3: Beta Medium [Bitmap]"));
    EXPECT_THAT(seen, Contains("Installing 3 of 3: Delta Medium [Bitmap]"));
    EXPECT_EQ(title, "Glyph Warden - Carrying Out Decisions");
    EXPECT_FALSE(is_managed(wi_progress_dlg));
    EXPECT_EQ(summary("success_label"), "0 fonts installed.\n3 fonts replaced.");
    EXPECT_EQ(main_status(), "3 fonts installed.");
}

TEST_F(CarryingOut, CancelKeepsWhatIsWhole) {
    decide_about_three();
    {
        bool is_cancelled = false;
        const SlowDisk disk([&](const std::string&) {
            sleep_for(10);
            if (is_cancelled || !is_managed(wi_progress_dlg) || count() != "Installing 2 of 3:") return;
            is_cancelled = true;
            send_close(wi_progress_dlg);
        });
        ASSERT_TRUE(finish());
        EXPECT_TRUE(is_cancelled);
    }
    EXPECT_EQ(destination_index(), index_of({"alpha.pcf " + face("alpha")}));
    EXPECT_FALSE(installed().exists("old-alpha.pcf"));
    for (const char* old : {"old-beta.pcf", "old-delta.pcf"}) EXPECT_TRUE(installed().exists(old)) << old;
    EXPECT_EQ(installed().index(),
              index_of({"old-beta.pcf " + face("beta"), "old-delta.pcf " + face("delta")}));
    for (const char* file : {"beta.pcf", "delta.pcf"})
        EXPECT_FALSE(std::filesystem::exists(destination() + file)) << file;
    EXPECT_EQ(summary("success_label"), "0 fonts installed.\n1 font replaced.\n2 fonts stay as they were.");
    const std::string given_up = "this was cancelled";
    EXPECT_THAT(told(), Contains(AllOf(HasSubstr("kept"), HasSubstr("Beta"), HasSubstr(given_up))));
    EXPECT_THAT(told(), Contains(AllOf(HasSubstr("kept"), HasSubstr("Delta"), HasSubstr(given_up))));
    EXPECT_THAT(told(), Contains(AllOf(HasSubstr("replaced"), HasSubstr("Alpha"))));
    EXPECT_THAT(told(), IsSupersetOf({"You have stopped this:", "Stopped; 2 fonts were not tried."}));
    EXPECT_EQ(main_status(), "1 font installed.  Stopped; 2 fonts were not tried.");
    EXPECT_THAT(gw::undo_record().entries, SizeIs(1));
    EXPECT_FALSE(the_wp_cl_data.is_in_progress());
    EXPECT_TRUE(is_sensitive(wi_mainwindow, "_install_dlg_button")) << "other work is possible again";
}

TEST_F(CarryingOut, AfterAFailureTheOthersGoOn) {
    decide_about_three();
    block("alpha.pcf");
    EXPECT_EQ(finish_and_answer("skip_button"), 1);
    EXPECT_TRUE(is_new("beta.pcf") && is_new("delta.pcf"));
    EXPECT_TRUE(installed().exists("old-alpha.pcf"));
    EXPECT_EQ(summary("success_label"), "0 fonts installed.\n2 fonts replaced.\n1 failure.");
    EXPECT_EQ(main_status(), "2 fonts installed.");
}

class TwoFailures : public CarryingOut, public testing::WithParamInterface<std::pair<const char*, int>> {};

TEST_P(TwoFailures, AreAskedAboutUntilAllAreSkipped) {
    decide_about_three();
    block("alpha.pcf");
    block("beta.pcf");
    EXPECT_EQ(finish_and_answer(GetParam().first), GetParam().second);
    EXPECT_TRUE(is_new("delta.pcf"));
    EXPECT_EQ(summary("success_label"), "0 fonts installed.\n1 font replaced.\n2 failures.");
}

INSTANTIATE_TEST_SUITE_P(Buttons, TwoFailures,
                         testing::Values(std::pair("skip_button", 2), std::pair("skip_all_button", 1)),
                         [](const auto& button) { return std::string(button.param.first); });

TEST_F(CarryingOut, StopAfterAFailureSaysWhatWasNotTried) {
    decide_about_three();
    block("beta.pcf");
    EXPECT_EQ(finish_and_answer("stop_button"), 1);
    EXPECT_TRUE(is_new("alpha.pcf"));
    EXPECT_FALSE(is_new("beta.pcf") || is_new("delta.pcf"));
    EXPECT_TRUE(installed().exists("old-beta.pcf") && installed().exists("old-delta.pcf"));
    EXPECT_EQ(summary("success_label"),
              "0 fonts installed.\n1 font replaced.\n1 font stays as it was.\n1 failure.");
    EXPECT_THAT(told(), IsSupersetOf({"You have stopped this:", "Stopped; 1 font was not tried."}));
    EXPECT_EQ(main_status(), "1 font installed.  Stopped; 1 font was not tried.");
}

TEST_F(CarryingOut, TheLastFailureIsNoQuestion) {
    decide_about_three();
    block("delta.pcf");
    EXPECT_EQ(finish_and_answer("stop_button"), 0);
    EXPECT_EQ(summary("success_label"), "0 fonts installed.\n2 fonts replaced.\n1 failure.");
    EXPECT_THAT(told(), Not(Contains(StartsWith("Stopped"))));
}

TEST_F(CarryingOut, ADeletionIsStopped) {
    if (!is_root()) GTEST_SKIP() << "to an ordinary user the fonts of packages are read-only";
    for (const char* name : {"alpha", "beta", "delta"})
        installed().add(std::string(name) + ".pcf", face(name));
    show_installed();
    const FakePackages packages(installed().path(), "xfonts-test");
    remove({1, 2, 3});
    ASSERT_TRUE(press(find(wi_conflict_dlg, "not_keep_all_button")));
    std::filesystem::remove(installed().file("beta.pcf"));
    installed().dir().make_dir("beta.pcf");
    EXPECT_EQ(finish_and_answer("stop_button"), 1);
    EXPECT_FALSE(installed().exists("alpha.pcf"));
    EXPECT_TRUE(installed().exists("delta.pcf"));
    EXPECT_EQ(summary("success_label"), "1 font deleted.\n1 font stays as it was.\n1 failure.");
    EXPECT_THAT(told(),
                Contains(AllOf(HasSubstr("kept"), HasSubstr("Delta"), HasSubstr("this was cancelled"))));
    EXPECT_EQ(main_status(), "1 font deleted.  Stopped; 1 font was not tried.");
}

}  // namespace
