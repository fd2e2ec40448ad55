// SPDX-License-Identifier: MIT
//
// Files that are dropped on the windows, and arguments of the command.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "app/installing/font_source.h"
#include "app/installing/given_files.h"
#include "app/installing/installdlg.h"
#include "app/installing/not_offered.h"
#include "app/installing/nottakendlg.h"
#include "app/kit/dialogs.h"
#include "app/kit/drop_target.h"
#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/program/work_record.h"
#include "core/uri_list.h"
#include "drivers/recent_sources.h"
#include "platform/shell_command.h"

#include "support/drag_source.h"
#include "widget/work_test_support.h"

namespace {

using namespace gw::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using Texts = std::vector<std::string>;

class GivenFiles : public WorkTest {
  protected:
    static void SetUpTestSuite() {
        home();
        start_program({"-xrm", "Glyphward*gw_modern_windows: True"});
        XtAppSetSelectionTimeout(app, SHORT_TIMEOUT);
    }
    void SetUp() override {
        WorkTest::SetUp();
        for (const char* family : {"alpha", "beta", "gamma"})
            source.add(std::string(family) + ".pcf", face(family));
    }
    void TearDown() override {
        stop_not_taken_dlg();
        WorkTest::TearDown();
    }
    static Window main_window() { return XtWindow(wi_toplevel); }
    static Texts problems() { return items(find(wi_not_taken_dlg, "lines_list")); }
    /// Drags it over the window and drops it there. Whether the window took it; nothing when it is silent.
    static std::optional<bool> drop_on(Window window, DragSource& from) {
        from.enter(window);
        EXPECT_TRUE(pump_until([&] {
            from.serve();
            return from.is_welcome().has_value();
        }));
        from.drop();
        EXPECT_TRUE(pump_until([&] {
            from.serve();
            return from.was_taken().has_value();
        }));
        EXPECT_TRUE(pump_until([] { return !gw::is_lookup_pending(); }));
        return from.was_taken();
    }

    static constexpr unsigned long SHORT_TIMEOUT = 300;
    FontDirectory source;
};

TEST_F(GivenFiles, TheWindowsSayThatThingsCanBeDropped) {
    open_install_dialog();
    const DragSource other("");
    for (Widget shell : {wi_toplevel, XtParent(wi_install_dlg)})
        EXPECT_TRUE(pump_until([&] { return other.awareness_of(XtWindow(shell)) == 5; })) << XtName(shell);
}

TEST_F(GivenFiles, DroppedFilesAreTheSource) {
    DragSource other(uri_list_of({source.file("alpha.pcf"), source.file("gamma.pcf")}));
    EXPECT_EQ(drop_on(main_window(), other), true);
    EXPECT_TRUE(is_managed(wi_install_dlg));
    EXPECT_THAT(items(source_list()), SizeIs(2));
    EXPECT_EQ(label(wi_install_dlg, "_avail_font_list._fontlist_label"),
              "Fonts From " + source.file("alpha.pcf") + " and 1 more");
    EXPECT_FALSE(is_managed(wi_not_taken_dlg));
    const gw::NotOffered rest = gw::find_not_offered();
    EXPECT_EQ(rest.files, 2) << "the other file of the directory was not chosen";
    EXPECT_EQ(rest.count(), 0);
}

TEST_F(GivenFiles, TheyAreInstalled) {
    const TempDir destination;
    choose_destination(destination.path());
    DragSource other(uri_list_of({source.file("beta.pcf"), source.file("gamma.pcf")}));
    ASSERT_EQ(drop_on(main_window(), other), true);
    install({2});
    EXPECT_TRUE(destination.exists("gamma.pcf"));
    EXPECT_FALSE(destination.exists("beta.pcf"));
    EXPECT_EQ(source.read("gamma.pcf"), destination.read("gamma.pcf"));
}

TEST_F(GivenFiles, ADroppedDirectoryIsAsIfItWasChosen) {
    open_install_dialog();
    DragSource other("file://" + gw::host_name() + source.path() + "\r\n",
                     {"a/b", "c/d", "e/f", "text/uri-list"});
    EXPECT_EQ(drop_on(XtWindow(XtParent(wi_install_dlg)), other), true);
    EXPECT_EQ(install_from, FROM_DIRECTORY);
    EXPECT_EQ(current_dir, source.path());
    EXPECT_THAT(items(source_list()), SizeIs(3));
}

// The fonts of a tree that somebody has unpacked are below its top.
TEST_F(GivenFiles, ADroppedTreeOffersTheFontsBelowIt) {
    const auto add_below = [&](const std::string& dir, const std::string& family) {
        source.dir().make_dir(dir);
        std::filesystem::copy_file(source.file("alpha.pcf"), source.file(dir + "/" + family + ".pcf"));
        source.dir().write(dir + "/fonts.dir", index_of({family + ".pcf " + face(family)}));
    };
    add_below("more", "delta");
    add_below("more/deep", "epsilon");
    std::filesystem::create_directory_symlink(source.path(), source.file("more/circle"));
    const TempDir destination;
    choose_destination(destination.path());
    DragSource drag(uri_list_of({source.path()}));
    ASSERT_EQ(drop_on(main_window(), drag), true);
    EXPECT_EQ(install_from, FROM_FILES);
    EXPECT_THAT(items(source_list()), SizeIs(5));
    EXPECT_FALSE(is_managed(wi_not_taken_dlg));
    EXPECT_EQ(label(wi_install_dlg, "_avail_font_list._fontlist_label"),
              "Fonts From " + source.path() + " and 2 more");
    EXPECT_EQ(gw::recent_sources().front() + '/', source.path());
    EXPECT_TRUE(gw::find_not_offered().lines.empty());
    install({1, 2, 3, 4, 5});
    EXPECT_TRUE(destination.exists("alpha.pcf") && destination.exists("delta.pcf"));
    EXPECT_EQ(destination.read("epsilon.pcf"), source.read("more/deep/epsilon.pcf"));
}

TEST_F(GivenFiles, WhatIsNoFileIsToldAndTheRestGoesOn) {
    ::mkfifo(source.file("pipe").c_str(), 0600);
    DragSource other(uri_list_of({source.file("gone.pcf"), source.file("pipe"), source.file("beta.pcf")}) +
                     "http://tulip/a.ttf\r\n");
    EXPECT_EQ(drop_on(main_window(), other), true);
    EXPECT_THAT(items(source_list()), SizeIs(1));
    ASSERT_TRUE(is_managed(wi_not_taken_dlg));
    EXPECT_THAT(problems(),
                ElementsAre(HasSubstr("gone.pcf"), HasSubstr("pipe"), HasSubstr("http://tulip/a.ttf")));
    EXPECT_EQ(label(wi_not_taken_dlg, "count_label"), "These 3 things cannot be used:");
}

TEST_F(GivenFiles, OtherTypesAreNotWelcome) {
    DragSource other("text", {"text/plain", "UTF8_STRING"});
    EXPECT_EQ(drop_on(main_window(), other), false);
    EXPECT_EQ(other.is_welcome(), false);
    EXPECT_FALSE(is_managed(wi_install_dlg));
}

TEST_F(GivenFiles, AnOldVersionIsNotWelcome) {
    DragSource other(uri_list_of({source.path()}));
    other.set_version(2);
    EXPECT_EQ(drop_on(main_window(), other), false);
}

TEST_F(GivenFiles, NothingIsTakenWhileAQuestionWaits) {
    Widget question = gw::message_dialog(wi_toplevel, "question", XmDIALOG_QUESTION, "", "?", {});
    XtVaSetValues(question, XmNdialogStyle, XmDIALOG_FULL_APPLICATION_MODAL, nullptr);
    XtManageChild(question);
    pump();
    DragSource other(uri_list_of({source.path()}));
    EXPECT_EQ(drop_on(main_window(), other), false);
    XtUnmanageChild(question);
    pump();
    EXPECT_EQ(drop_on(main_window(), other), true);
}

TEST_F(GivenFiles, ALargeListComesInPieces) {
    Texts paths;
    for (int i = 0; i < 5000; ++i) {
        const std::string name = "many " + std::to_string(i) + ".pcf";
        std::filesystem::create_hard_link(source.file("alpha.pcf"), source.file(name));
        paths.push_back(source.file(name));
    }
    paths.push_back(source.file("beta.pcf"));
    DragSource other(uri_list_of(paths));
    other.give_in_pieces(60000);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(drop_on(main_window(), other), true);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    RecordProperty("milliseconds", static_cast<int>(taken.count() * 1000));
    EXPECT_EQ(install_from, FROM_FILES);
    ASSERT_NE(current_files_driver, nullptr);
    ASSERT_THAT(current_files_driver->get_places(), SizeIs(1));
    EXPECT_THAT(*current_files_driver->get_places()[0].names, SizeIs(5001));
    EXPECT_EQ(gw::find_not_offered().files, 5001);
}

TEST_F(GivenFiles, ASourceThatStopsInTheMiddleIsTold) {
    DragSource other(uri_list_of({source.path(), source.file("alpha.pcf")}));
    other.give_in_pieces(10, 2);
    EXPECT_EQ(drop_on(main_window(), other), false);
    ASSERT_TRUE(is_managed(wi_not_taken_dlg));
    EXPECT_THAT(problems(), ElementsAre("What was dropped did not arrive."));
    EXPECT_FALSE(is_managed(wi_install_dlg));
}

TEST_F(GivenFiles, ASourceThatSendsTooMuchIsCutOff) {
    DragSource other(std::string(gw::MOST_DROPPED + 1, 'a'));
    other.give_in_pieces(4UL * 1024 * 1024);
    EXPECT_EQ(drop_on(main_window(), other), false);
    EXPECT_THAT(problems(), ElementsAre("What was dropped did not arrive."));
    DragSource next(uri_list_of({source.path()}));
    EXPECT_EQ(drop_on(main_window(), next), true);
}

TEST_F(GivenFiles, ASourceThatDiesCostsNothing) {
    {
        DragSource dead(uri_list_of({source.path()}), {"a/b", "c/d", "e/f", "text/uri-list"});
        dead.enter(main_window());
        dead.die();
        pump();
    }
    DragSource dying(uri_list_of({source.path()}));
    dying.enter(main_window());
    ASSERT_TRUE(pump_until([&] {
        dying.serve();
        return dying.is_welcome() == true;
    }));
    dying.drop();
    dying.die();
    EXPECT_TRUE(pump_until([] { return is_managed(wi_not_taken_dlg); })) << "after the drop it is told";
    DragSource other(uri_list_of({source.path()}));
    EXPECT_EQ(drop_on(main_window(), other), true);
}

TEST_F(GivenFiles, MessagesOutOfOrderAreIgnored) {
    DragSource other(uri_list_of({source.path()}), {"text/plain"});
    other.enter(main_window());
    ASSERT_TRUE(pump_until([&] {
        other.serve();
        return other.is_welcome().has_value();
    }));
    other.leave();
    DragSource stranger(uri_list_of({source.path()}));
    stranger.enter(main_window());
    stranger.leave();
    stranger.drop();
    other.drop();
    stranger.send("XdndEnter", -1, -1, -1, -1);
    stranger.send("XdndPosition", -1, -1, -1, -1);
    stranger.send("XdndLeave", -1, -1, -1, -1);
    stranger.send("XdndSomething", -1);
    pump();
    other.serve();
    EXPECT_FALSE(other.was_taken().has_value());
    EXPECT_FALSE(is_managed(wi_install_dlg));
    DragSource good(uri_list_of({source.path()}));
    EXPECT_EQ(drop_on(main_window(), good), true);
}

TEST_F(GivenFiles, ArgumentsAreMadeAbsolute) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(source.path());
    const gw::GivenFiles given =
        gw::read_arguments({"--", "alpha.pcf", "./beta.pcf", "file:" + source.file("gamma.pcf"), "alpha.pcf",
                            "--", "", "file://rose/x"});
    std::filesystem::current_path(before);
    EXPECT_THAT(given.paths, ElementsAre(source.file("alpha.pcf"), source.path() + "./beta.pcf",
                                         source.file("gamma.pcf")));
    EXPECT_THAT(given.problems, ElementsAre(HasSubstr("--"), testing::_, HasSubstr("file://rose/x")));
}

TEST_F(GivenFiles, NamesAreOnlyNames) {
    Texts paths;
    for (const char* name :
         {"a b.pcf", "100%.pcf", "$(touch oops).pcf", "a;b.pcf", "caf\xe9.pcf", "a\nb.pcf"}) {
        std::filesystem::copy_file(source.file("alpha.pcf"), source.file(name));
        paths.push_back(source.file(name));
    }
    const TempDir work;
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(work.path());
    DragSource other(uri_list_of(paths));
    EXPECT_EQ(drop_on(main_window(), other), true);
    std::filesystem::current_path(before);
    ASSERT_NE(current_files_driver, nullptr);
    EXPECT_THAT(*current_files_driver->get_places().at(0).names, SizeIs(paths.size()));
    EXPECT_FALSE(is_managed(wi_not_taken_dlg)) << "all of them are there";
    EXPECT_FALSE(work.exists("oops"));
}

}  // namespace
