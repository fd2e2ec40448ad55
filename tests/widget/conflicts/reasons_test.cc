// SPDX-License-Identifier: MIT
//
// What was not done is shown in a window, with its reason, where `gw_modern_windows` is on.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "app/conflicts/conflictdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/deleting/delwarningdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/installing/installdlg.h"
#include "app/kit/lists.h"
#include "app/main_window/propsdlg.h"
#include "app/program/failures.h"
#include "app/samples/installed_list.h"
#include "app/samples/sample_text.h"
#include "support/small_disk.h"
#include "texts/messages.h"

#include "support/xlib_leaks.h"
#include "widget/work_test_support.h"

namespace {

using namespace gw::test;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* FULL = "No space left on device";

class Reasons : public WorkTest {
  protected:
    static void SetUpTestSuite() {
        home();
        start_program({"-xrm", "Glyphward*gw_modern_windows: True"});
    }
    static std::vector<std::string> failed() { return items(find(wi_preconflict_dlg, "failed_list")); }
    static std::string summary(const std::string& name) { return label(wi_preconflict_dlg, name); }
    static bool shows_failures() {
        return is_managed(wi_preconflict_dlg) && XtIsManaged(find(wi_preconflict_dlg, "failed_label")) &&
               is_viewable(find(wi_preconflict_dlg, "failed_list"));
    }
    /// Lists the fonts of the source and installs the first one into `destination`.
    void install_first(const std::string& destination) {
        open_install_dialog();
        choose_source(source);
        choose_destination(destination);
        install({1});
    }
    FontDirectory source;
};

TEST_F(Reasons, AFontWhoseFileNameNoIndexCanHoldIsNamed) {
    show_installed();
    TempDir plain;
    source.add("a.pcf", face("alpha"));
    std::filesystem::rename(source.file("a.pcf"), source.file("my font.pcf"));
    source.dir().write("fonts.dir", "1\nmy\\ font.pcf " + face("alpha") + "\n");
    const std::string too_long(90, 'n');
    std::filesystem::rename(source.file("my font.pcf"), source.file(too_long + ".pcf"));
    source.dir().write("fonts.dir", "1\n" + too_long + ".pcf " + face("a") + "\n");
    install_first(plain.path());
    ASSERT_TRUE(shows_failures());
    EXPECT_THAT(failed(), ElementsAre(HasSubstr("this name does not fit into a font index; " + too_long)));
    EXPECT_EQ(summary("success_label"), "0 fonts installed.\n1 failure.");
    EXPECT_FALSE(is_sensitive(wi_preconflict_dlg, "resolve_button")) << "there is nothing to decide";
    EXPECT_EQ(main_status(), "0 fonts installed.");
}

TEST_F(Reasons, AFullDiskIsTheReason) {
    show_installed();
    const SmallDisk disk;
    source.add("a.pcf", face("alpha"), 40);
    disk.leave_blocks(2);
    install_first(disk.path());
    ASSERT_TRUE(shows_failures());
    EXPECT_THAT(failed(), ElementsAre(AllOf(HasSubstr("failed"), HasSubstr("Alpha Medium [Bitmap]"),
                                            HasSubstr(FULL + ("; " + disk.file("a.pcf"))))));
    EXPECT_TRUE(press(find(wi_preconflict_dlg, "ok_button")));
    EXPECT_FALSE(is_managed(wi_preconflict_dlg));
}

TEST_F(Reasons, WhatIsDoneNeedsNoWindow) {
    show_installed();
    const TempDir plain;
    source.add("a.pcf", face("alpha"));
    install_first(plain.path());
    EXPECT_FALSE(is_managed(wi_preconflict_dlg));
    EXPECT_TRUE(plain.exists("a.pcf"));
}

TEST_F(Reasons, AFontPathFileThatMayNotBeWrittenIsNamed) {
    if (is_root()) GTEST_SKIP() << "the superuser has no such file";
    show_installed();
    const TempDir plain;
    source.add("a.pcf", face("alpha"));
    const std::string file = home().write(".VTfontpath", "");
    ::chmod(file.c_str(), 0444);
    install_first(plain.path());
    ::chmod(file.c_str(), 0644);
    ASSERT_TRUE(shows_failures());
    EXPECT_THAT(failed(),
                ElementsAre(AllOf(HasSubstr(file), HasSubstr("this user may not change it; the fonts in " +
                                                             plain.path() + " will not be listed")),
                            AllOf(HasSubstr("installed"), HasSubstr("Alpha Medium [Bitmap]"))));
    EXPECT_EQ(summary("success_label"), "1 font installed.\n1 failure.");
}

TEST_F(Reasons, AFontThatCannotBeDeletedStaysAndIsNamed) {
    installed().add("a.pcf", face("alpha"));
    installed().add("b.pcf", face("beta"));
    show_installed();
    std::filesystem::remove(installed().file("a.pcf"));
    std::filesystem::create_directory(installed().file("a.pcf"));
    remove({1, 2});
    ASSERT_TRUE(shows_failures());
    EXPECT_THAT(failed(), ElementsAre(AllOf(HasSubstr("Alpha Medium [Bitmap]"),
                                            HasSubstr("Is a directory; " + installed().file("a.pcf"))),
                                      AllOf(HasSubstr("deleted"), HasSubstr("Beta Medium [Bitmap]"))));
    EXPECT_EQ(summary("success_label"), "1 font deleted.\n1 failure.");
    EXPECT_THAT(items(wi_hrn_list), ElementsAre(HasSubstr("Alpha")));
}

// An earlier summary's lines once stayed in view for the next one.
TEST_F(Reasons, OfTheNextWorkAreItsOwn) {
    installed().add("a.pcf", face("alpha"));
    show_installed();
    std::filesystem::remove(installed().file("a.pcf"));
    std::filesystem::create_directory(installed().file("a.pcf"));
    for (int i = 0; i < 2; ++i) {
        remove({1});
        EXPECT_THAT(failed(), testing::SizeIs(1)) << i;
        EXPECT_TRUE(press(find(wi_preconflict_dlg, "ok_button")));
    }
    start_summary({GWConflict::DELETE, 0, nullptr, {}});
    EXPECT_FALSE(is_managed(wi_preconflict_dlg));
}

TEST_F(Reasons, JoinASummaryOfConflictsThatAreStillToBeDecided) {
    installed().add("a.pcf", face("alpha"));
    installed().add("b.pcf", face("beta"));
    show_installed();
    source.add("a.pcf", face("alpha"));
    const TempDir plain;
    install_first(plain.path());
    ASSERT_TRUE(press(find(wi_conflict_dlg, "cancel_button")));
    ASSERT_TRUE(is_managed(wi_preconflict_dlg));
    std::filesystem::remove(installed().file("b.pcf"));
    std::filesystem::create_directory(installed().file("b.pcf"));
    remove({2});
    ASSERT_TRUE(shows_failures());
    EXPECT_THAT(failed(), ElementsAre(HasSubstr("Is a directory"), HasSubstr("not decided")));
    EXPECT_TRUE(is_sensitive(wi_preconflict_dlg, "resolve_button")) << "the conflict can still be decided";
    ASSERT_TRUE(press(find(wi_preconflict_dlg, "resolve_button")));
    ASSERT_TRUE(press(find(wi_conflict_dlg, "cancel_button")));
    EXPECT_THAT(failed(), testing::SizeIs(2)) << "the reasons are still there after a look at the conflicts";
    EXPECT_TRUE(press(find(wi_preconflict_dlg, "ok_button")));
}

TEST_F(Reasons, GoWithTheNextWork) {
    installed().add("a.pcf", face("alpha"));
    installed().add("b.pcf", face("beta"));
    show_installed();
    std::filesystem::remove(installed().file("a.pcf"));
    std::filesystem::create_directory(installed().file("a.pcf"));
    remove({1});
    ASSERT_TRUE(shows_failures());
    remove({2});
    EXPECT_FALSE(is_managed(wi_preconflict_dlg)) << "what it says is of the work before";
}

TEST_F(Reasons, ANameWithANewlineStaysInItsLine) {
    gw::forget_failures();
    gw::tell(gw::Failure::of_system("/fonts/a\nb.pcf", EIO));
    EXPECT_THAT(gw::gathered_failures(), ElementsAre("/fonts/a\\x0Ab.pcf: Input/output error"));
}

TEST_F(Reasons, ASampleTextThatCannotBeKeptIsSaidInItsDialog) {
    start_props_dlg();
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_props_dlg); }));
    const std::string before = sample_text;
    const std::string file = home().path() + ".glyphwdrc";
    std::filesystem::remove_all(file);
    std::filesystem::create_directory(file);
    type_into(find(wi_props_dlg, "sample_textField"), "never kept");
    ASSERT_TRUE(press(find(wi_props_dlg, "ok_button")));
    EXPECT_EQ(is_managed(wi_props_dlg), !is_root())
        << "it stays to say why, but the superuser cannot mend it";
    const std::string why = is_root() ? "this user may not change it" : "Is a directory";
    EXPECT_EQ(label(wi_props_dlg, "msg_label"), file + ": " + why);
    EXPECT_EQ(sample_text, before);
    std::filesystem::remove(file);
    press(find(wi_props_dlg, "cancel_button"));
}

TEST(FailureLines, SpeakTheUsersLanguageForEveryReason) {
#define REASON(name, words) \
    EXPECT_EQ(gw::failure_line({"x", gw::Reason::name}), "x: " + gw::Failure{}.with_detail(words));
#include "core/failures.def"
    EXPECT_EQ(gw::failure_line(gw::Failure::of_system("/a", EIO)), "/a: Input/output error");
}

}  // namespace
