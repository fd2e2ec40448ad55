// SPDX-License-Identifier: MIT
//
// An ordinary user installs for everyone in the window, with commands in the place of pkexec: what is sent,
// what is told afterwards, and that the windows stay alive meanwhile.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/common/progressdlg.h"
#include "app/common/warningdlg.h"
#include "app/conflicts/conflictdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/installing/installdlg.h"
#include "app/kit/lists.h"
#include "app/kit/widgets.h"
#include "app/program/program_objects.h"
#include "app/program/work_record.h"
#include "platform/everyone_request.h"
#include "platform/host_paths.h"

#include "widget/installing/install_test_support.h"

#include <Xm/ToggleB.h>

namespace {

using namespace gw::test;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class ForEveryone : public TwoFontsTest {
  protected:
    static void SetUpTestSuite() {
        home();
        start_program({"-xrm", "Glyphward*gw_modern_windows: True"});
    }
    void TearDown() override {
        gw::set_everyones_command({});
        XtUnmanageChild(wi_warning_dlg);
        stop_preconflict_dlg();
        choose_destination(scratch.path());
        WorkTest::TearDown();
    }
    /// From now on this is the command that installs for everyone.
    static void everyones_command(const std::string& script) {
        gw::set_everyones_command({"/bin/sh", "-c", script});
    }
    void choose_everyone() {
        open_install_dialog();
        choose_source(source);
        XmToggleButtonSetState(for_everyone(), True, True);
    }
    void begin(std::initializer_list<int> positions) {
        choose_everyone();
        select(source_list(), positions);
        ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    }
    static std::string progress() { return label(wi_progress_dlg, "name_label"); }
    static std::string summary() {
        std::string all;
        for (const std::string& line : items(find(wi_preconflict_dlg, "failed_list"))) all += line + '\n';
        return all;
    }

    ActingAs user{1000};
    TempDir scratch;
};

TEST_F(ForEveryone, TheChoiceSaysThatAPasswordIsNeeded) {
    everyones_command("exit 0");
    choose_everyone();
    EXPECT_EQ(gw::label_of(for_everyone()), "For Everyone (password)");
    EXPECT_NE(XmToggleButtonGetState(for_everyone()), False);
    EXPECT_THAT(label(wi_install_dlg, "_dest_label"), HasSubstr(gw::SUPERUSER_FONT_DIR));
}

TEST_F(ForEveryone, WithoutPolkitTheWindowSaysWhatAnAdministratorWouldType) {
    choose_everyone();
    EXPECT_EQ(XmToggleButtonGetState(for_everyone()), False);
    ASSERT_TRUE(is_managed(wi_warning_dlg));
    const std::string words = message_of(wi_warning_dlg);
    EXPECT_THAT(words, HasSubstr("glyphward-fonts install --everyone " +
                                 source.path().substr(0, source.path().size() - 1)));
    // Also when the directory was found in the chooser.
    XtUnmanageChild(wi_warning_dlg);
    choose_destination(gw::SUPERUSER_FONT_DIR);
    select(source_list(), {1});
    EXPECT_TRUE(press(find(wi_install_dlg, "_install_button")));
    EXPECT_TRUE(is_managed(wi_warning_dlg));
    EXPECT_FALSE(the_wp_cl_data.is_in_progress());
}

TEST_F(ForEveryone, TheSelectedFontsAreSentAndWhatFailedIsTold) {
    const std::string sent = scratch.file("sent");
    everyones_command("head -c 60 >" + sent + R"(; cat <<'END'
{"changed": false, "fonts": [{"font": "Alpha", "result": "failed", "reason": "x", "code": "DAMAGED_FONT"},
 {"font": "Gamma", "result": "failed", "reason": "x", "code": "NAME_TAKEN"}],
 "problems": [{"subject": "a", "reason": "b"}]}
END
exit 1)");
    begin({2});
    ASSERT_TRUE(wait_for_work());
    EXPECT_THAT(scratch.read("sent"), StartsWith("glyphward-everyone 1\nrefuse\n8:beta.pcf,"));
    EXPECT_THAT(summary(), HasSubstr("Alpha"));
    EXPECT_THAT(summary(), HasSubstr("this font is damaged"));
    EXPECT_THAT(summary(), HasSubstr("a font with this name is there already"));
    EXPECT_THAT(main_status(), HasSubstr("0 fonts installed."));
}

TEST_F(ForEveryone, WhatPkexecRefusesIsSaid) {
    everyones_command("exit 126");
    begin({1});
    ASSERT_TRUE(wait_for_work());
    EXPECT_THAT(main_status(), HasSubstr("no password was given"));
    EXPECT_FALSE(is_managed(wi_warning_dlg)) << "the user has dismissed the question";
    everyones_command("exit 127");
    begin({1});
    ASSERT_TRUE(wait_for_work());
    EXPECT_THAT(main_status(), HasSubstr("nothing here can ask for the password"));
    EXPECT_TRUE(is_managed(wi_warning_dlg));
    EXPECT_THAT(message_of(wi_warning_dlg), HasSubstr("Nothing was installed: you may not"));
    XtUnmanageChild(wi_warning_dlg);
    everyones_command("echo nonsense");
    begin({1});
    ASSERT_TRUE(wait_for_work());
    EXPECT_THAT(main_status(), HasSubstr("did not answer"));
    EXPECT_THAT(message_of(wi_warning_dlg), HasSubstr("did not answer"));
}

TEST_F(ForEveryone, TheWindowsLiveWhileThePasswordIsAskedForAndCancelEndsIt) {
    everyones_command("exec sleep 1000");
    begin({1, 2});
    ASSERT_TRUE(is_managed(wi_progress_dlg));
    EXPECT_THAT(progress(), HasSubstr("Waiting for an administrator's password"));
    EXPECT_TRUE(the_wp_cl_data.is_in_progress());
    int timers = 0;
    XtAppAddTimeOut(
        app, 20, [](XtPointer count, XtIntervalId*) { ++*static_cast<int*>(count); }, &timers);
    ASSERT_TRUE(pump_until([&] { return timers == 1; }));
    EXPECT_TRUE(press(find(wi_progress_dlg, "cancel_button")));
    ASSERT_TRUE(wait_for_work());
    EXPECT_THAT(main_status(), HasSubstr("it was cancelled"));
    EXPECT_FALSE(the_wp_cl_data.is_in_progress());
}

TEST_F(ForEveryone, WhileItInstallsTheWindowSaysSo) {
    everyones_command("exec 3<&0; cat <&3 >/dev/null & while [ ! -e " + scratch.file("go") +
                      " ]; do sleep 0.02; done; " + R"(echo '{"fonts": [], "problems": []}')");
    begin({1});
    ASSERT_TRUE(pump_until([] { return progress().find("are being installed") != std::string::npos; }));
    (void)scratch.write("go", "");
    ASSERT_TRUE(wait_for_work());
    EXPECT_THAT(main_status(), HasSubstr("0 fonts installed."));
}

class NamesTaken : public ForEveryone {
  protected:
    /// The names of both fonts are taken, and then this is answered to the second request.
    void taken(const std::string& second_answer, const std::string& file_of_beta = "") {
        for (const char* name : {"alpha", "beta"})
            installed().add(std::string("old-") + name + ".pcf", face(name));
        show_installed();
        const std::string beta = file_of_beta.empty() ? installed().file("old-beta.pcf") : file_of_beta;
        const std::string first_answer = R"({"changed": false, "fonts": [)" +
                                         refusal("Alpha", installed().file("old-alpha.pcf")) + ", " +
                                         refusal("Beta", beta) + "]}";
        const std::string second = "head -c 60 >" + scratch.file("second") + "; " + second_answer;
        everyones_command("if [ -e " + scratch.file("first") + " ]; then " + second +
                          "; exit; fi; head -c 60 >" + scratch.file("first") + "; echo '" + first_answer +
                          "'; exit 1");
        begin({1, 2});
        ASSERT_TRUE(wait_for_work());
    }
    static std::string refusal(const std::string& family, const std::string& file) {
        return R"({"font": ")" + family + R"( Medium [Bitmap]", "result": "failed", "reason": "x", )" +
               R"("code": "NAME_TAKEN", "detail": ")" + file + R"("})";
    }
    static void decide(int row, const char* button) {
        pick(conflicts_list(), row);
        ASSERT_TRUE(press(find(wi_conflict_dlg, button)));
    }
    static bool finish() { return press(find(wi_conflict_dlg, "ok_button")) && wait_for_work(); }
    [[nodiscard]] bool has_asked_again() const { return scratch.exists("second"); }
};

TEST_F(NamesTaken, TheFontsAreComparedAndThoseThatAreChosenAreSentAgain) {
    taken(R"(echo '{"fonts": [{"font": "Alpha Medium [Bitmap]", "result": "replaced"}]}')");
    ASSERT_TRUE(is_managed(wi_conflict_dlg));
    EXPECT_FALSE(is_managed(wi_preconflict_dlg)) << "it comes when all is decided";
    EXPECT_THAT(items(conflicts_list()), ElementsAre(HasSubstr("Alpha Medium"), HasSubstr("Beta Medium")));
    EXPECT_EQ(shown_text(find(wi_conflict_dlg, "old_file")), "old-alpha.pcf");
    EXPECT_EQ(shown_text(find(wi_conflict_dlg, "new_file")), "alpha.pcf");
    decide(1, "not_keep_button");
    decide(2, "keep_button");
    ASSERT_TRUE(finish());
    EXPECT_THAT(scratch.read("first"), StartsWith("glyphward-everyone 1\nrefuse\n9:alpha.pcf,"));
    EXPECT_THAT(scratch.read("second"), StartsWith("glyphward-everyone 1\nreplace\n9:alpha.pcf,"));
    EXPECT_FALSE(is_managed(wi_conflict_dlg));
    ASSERT_TRUE(is_managed(wi_preconflict_dlg));
    EXPECT_THAT(items(find(wi_preconflict_dlg, "failed_list")),
                ElementsAre(AllOf(StartsWith("kept"), HasSubstr("Beta Medium"), HasSubstr("as you decided")),
                            AllOf(StartsWith("replaced"), HasSubstr("Alpha Medium"))));
    EXPECT_TRUE(installed().exists("old-alpha.pcf")) << "this program itself does nothing to it";
}

TEST_F(NamesTaken, WhatWasChosenStaysWhereNoPasswordIsGiven) {
    taken("exit 126");
    decide(1, "not_keep_all_button");
    ASSERT_TRUE(finish());
    EXPECT_TRUE(has_asked_again());
    EXPECT_THAT(summary(), AllOf(HasSubstr("Alpha Medium [Bitmap]"), HasSubstr("Beta Medium [Bitmap]"),
                                 HasSubstr("no password was given"), Not(HasSubstr("replaced"))));
    EXPECT_THAT(main_status(), HasSubstr("no password was given"));
}

TEST_F(NamesTaken, NobodyIsAskedForAPasswordWhenAllOldOnesAreKept) {
    taken("exit 126");
    decide(1, "keep_all_button");
    ASSERT_TRUE(finish());
    EXPECT_FALSE(has_asked_again());
    EXPECT_THAT(summary(), AllOf(HasSubstr("as you decided"), Not(HasSubstr("password"))));
}

TEST_F(NamesTaken, AFontThatIsInTheWayUnseenIsToldWithItsFile) {
    taken("exit 126", "/of/another/b.pcf");
    EXPECT_THAT(items(conflicts_list()), ElementsAre(HasSubstr("Alpha Medium")));
    decide(1, "keep_button");
    ASSERT_TRUE(finish());
    EXPECT_THAT(summary(), HasSubstr("there is a font of its name: /of/another/b.pcf"));
}

TEST_F(NamesTaken, AFontIsKnownWhateverTellsItFromOthersInTheAnswer) {
    taken(R"(echo '{"fonts": [{"font": "Alpha Medium (iso8859-1) [Bitmap]", "result": "replaced"},
              {"font": "Beta Medium (test) [Bitmap]", "result": "failed", "reason": "no room"}]}')");
    decide(1, "not_keep_all_button");
    ASSERT_TRUE(finish());
    EXPECT_THAT(items(find(wi_preconflict_dlg, "failed_list")),
                ElementsAre(AllOf(HasSubstr("Beta Medium"), HasSubstr("no room")),
                            AllOf(StartsWith("replaced"), HasSubstr("Alpha Medium"))));
}

/// Two fonts of the source read alike, and the answer calls them so.
class NamesAlike : public NamesTaken {
  protected:
    void SetUp() override {
        NamesTaken::SetUp();
        source.add("other.pcf", other());
        installed().add("old-alpha.pcf", face("alpha"));
    }
    static std::string other() { return "-other" + face("alpha").substr(std::string("-test").size()); }
    /// This is answered to the first request, and that to the second.
    void answer(const std::string& first, const std::string& second = "") {
        show_installed();
        const std::string mark = scratch.file("first");
        everyones_command("if [ -e " + mark + " ]; then echo '" + second + "'; else echo '" + first +
                          "'; touch " + mark + "; fi");
        begin({1, 2, 3});
        ASSERT_THAT(items(source_list()),
                    ElementsAre(HasSubstr("(Other)"), HasSubstr("(Test)"), HasSubstr("Beta")));
        ASSERT_TRUE(wait_for_work());
    }
    static std::string taken(const std::string& sent, const std::string& there) {
        return result("failed", sent) + R"(, "reason": "x", "code": "NAME_TAKEN", "detail": ")" + there +
               "\"}";
    }
    static std::string result(const std::string& result, const std::string& sent) {
        return R"({"font": "Alpha Medium [Bitmap]", "files": [")" + sent + R"("], "result": ")" + result +
               '"';
    }
    static std::string fonts(const std::string& one, const std::string& other) {
        return R"({"fonts": [)" + one + ", " + other + "]}";
    }
};

TEST_F(NamesAlike, OneThatIsInTheWayUnseenIsToldThoughTheUserIsAskedAboutTheOther) {
    answer(fonts(taken("alpha.pcf", installed().file("old-alpha.pcf")), taken("other.pcf", "/unseen/o.pcf")));
    EXPECT_THAT(items(conflicts_list()), ElementsAre(HasSubstr("Alpha Medium")));
    EXPECT_EQ(shown_text(find(wi_conflict_dlg, "new_file")), "alpha.pcf");
    decide(1, "keep_button");
    ASSERT_TRUE(finish());
    EXPECT_THAT(items(find(wi_preconflict_dlg, "failed_list")),
                ElementsAre(AllOf(HasSubstr("Alpha Medium (Other)"), HasSubstr("/unseen/o.pcf")),
                            AllOf(StartsWith("kept"), HasSubstr("as you decided"))));
}

TEST_F(NamesAlike, OneThatFailsIsToldThoughTheUserIsAskedAboutTheOther) {
    answer(fonts(taken("alpha.pcf", installed().file("old-alpha.pcf")),
                 result("failed", "other.pcf") + R"(, "reason": "x", "code": "DAMAGED_FONT"})"));
    EXPECT_THAT(items(conflicts_list()), ElementsAre(HasSubstr("Alpha Medium")));
    decide(1, "keep_button");
    ASSERT_TRUE(finish());
    EXPECT_THAT(items(find(wi_preconflict_dlg, "failed_list")),
                ElementsAre(AllOf(HasSubstr("Alpha Medium (Other)"), HasSubstr("this font is damaged")),
                            AllOf(StartsWith("kept"), HasSubstr("as you decided"))));
}

TEST_F(NamesAlike, OneIsReplacedAndTheOtherIsNot) {
    installed().add("old-other.pcf", other());
    answer(fonts(taken("alpha.pcf", installed().file("old-alpha.pcf")),
                 taken("other.pcf", installed().file("old-other.pcf"))),
           fonts(result("failed", "other.pcf") + R"(, "reason": "no room"})",
                 result("replaced", "alpha.pcf") + '}'));
    EXPECT_THAT(items(conflicts_list()), ElementsAre(HasSubstr("Alpha Medium"), HasSubstr("Alpha Medium")));
    decide(1, "not_keep_all_button");
    ASSERT_TRUE(finish());
    EXPECT_THAT(items(find(wi_preconflict_dlg, "failed_list")),
                ElementsAre(AllOf(StartsWith("failed"), HasSubstr("no room")),
                            AllOf(StartsWith("replaced"), HasSubstr(installed().path()))));
}

TEST_F(NamesTaken, TheDecisionCanBePutOff) {
    taken(R"(echo '{"fonts": [{"font": "Beta Medium [Bitmap]", "result": "failed", "reason": "no room"}]}')");
    ASSERT_TRUE(press(find(wi_conflict_dlg, "cancel_button")));
    ASSERT_TRUE(is_managed(wi_preconflict_dlg));
    EXPECT_FALSE(has_asked_again());
    ASSERT_TRUE(press(find(wi_preconflict_dlg, "resolve_button")));
    decide(2, "not_keep_button");
    ASSERT_TRUE(finish());
    EXPECT_THAT(scratch.read("second"), StartsWith("glyphward-everyone 1\nreplace\n8:beta.pcf,"));
    EXPECT_THAT(summary(), AllOf(HasSubstr("no room"), HasSubstr("not decided")));
}

}  // namespace
