// SPDX-License-Identifier: MIT
//
// The question before a deletion, and the button that undoes a deletion or a replacement, where
// `gw_modern_windows` is on.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "app/common/warningdlg.h"
#include "app/conflicts/conflictdlg.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/deleting/deletion.h"
#include "app/deleting/delwarningdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/installing/installdlg.h"
#include "app/kit/lists.h"
#include "app/main_window/glyphwardapp.h"
#include "app/program/program_objects.h"
#include "app/samples/installed_list.h"
#include "platform/user_name.h"
#include "store/trash.h"
#include "store/trash_policy.h"
#include "support/small_disk.h"
#include "support/xlib_leaks.h"

#include "widget/deleting/undo_test_support.h"

#include <Xm/List.h>

namespace {

using namespace gw::test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

std::string me() {
    return gw::user_name(::geteuid());
}

class Undo : public UndoTest {
  protected:
    static std::string question(std::initializer_list<int> positions) {
        select(wi_hrn_list, positions);
        EXPECT_TRUE(press(find(wi_mainwindow, "_command_form._delete_button")));
        return message_of(wi_del_warning_dlg);
    }
    static bool offers_undo() { return XtIsSensitive(undo_button()) != False && is_viewable(undo_button()); }
    static std::string said() { return message_of(wi_warning_dlg); }
};

// --- the question ------------------------------------------------------------

TEST_F(Undo, TheQuestionNamesOneFont) {
    make_fonts({"alpha", "beta"});
    EXPECT_EQ(question({1}), "Delete this font?\n    Alpha Medium [Bitmap]\n \n1 file of " + me() +
                                 "\nWhat is deleted can be brought back for 30 days.");
    EXPECT_TRUE(press(find(wi_del_warning_dlg, "Cancel")));
    EXPECT_TRUE(installed().exists("alpha.pcf"));
}

TEST_F(Undo, TheQuestionNamesTheFirstTenFonts) {
    make_fonts({"a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k", "l"});
    const std::string text = question({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    EXPECT_TRUE(text.starts_with("Delete these 12 fonts?\n    A Medium [Bitmap]\n    B Medium [Bitmap]\n"));
    EXPECT_THAT(text, HasSubstr("\n    J Medium [Bitmap]\n    and 2 more\n \n12 files of " + me() + "\n"));
    EXPECT_THAT(text, Not(HasSubstr("K Medium")));
    EXPECT_TRUE(press(find(wi_del_warning_dlg, "Cancel")));
}

TEST_F(Undo, TheQuestionCountsWhatStays) {
    make_fonts({"alpha"});
    EXPECT_TRUE(question({1, 2}).ends_with("\n1 selected entry cannot be deleted and stays."));
    EXPECT_TRUE(press(find(wi_del_warning_dlg, "Cancel")));
    EXPECT_EQ(question({2}), "1 selected entry cannot be deleted and stays.");
    EXPECT_TRUE(press(find(wi_del_warning_dlg, "Cancel")));
}

TEST_F(Undo, TheQuestionNamesAllOwners) {
    if (!is_root()) GTEST_SKIP() << "only the superuser can give files to others";
    make_fonts({"alpha", "beta"});
    ASSERT_EQ(::chown(installed().file("beta.pcf").c_str(), 54321, 54321), 0);
    // What belongs to a stranger is not kept.
    EXPECT_THAT(question({1, 2}),
                HasSubstr("\n \n1 file of 54321\n1 file of root\nWhat is deleted can be brought back for 30 "
                          "days.\nFor 1 of them this cannot be undone."));
    EXPECT_TRUE(press(find(wi_del_warning_dlg, "Cancel")));
}

// Two windows: what is selected while the question is there is what will be deleted.
TEST_F(Undo, TheQuestionFollowsTheSelection) {
    make_fonts({"alpha", "beta"});
    EXPECT_THAT(question({1}), HasSubstr("Alpha"));
    select(wi_hrn_list, {2});
    EXPECT_THAT(message_of(wi_del_warning_dlg), HasSubstr("    Beta Medium"));
    EXPECT_THAT(message_of(wi_del_warning_dlg), Not(HasSubstr("Alpha")));
    forget_selection();
    EXPECT_FALSE(is_managed(wi_del_warning_dlg)) << "there is nothing to ask about";
}

TEST_F(Undo, IsSaidToBeImpossibleOnlyWhereItIs) {
    make_fonts({"alpha", "beta"});
    gw::TrashLimits limits;
    limits.most_bytes = 10;
    gw::set_trash_limits(limits);
    EXPECT_TRUE(question({1}).ends_with("\nThis cannot be undone."));
    EXPECT_TRUE(press(find(wi_del_warning_dlg, "Cancel")));
    gw::set_trash_limits({});
    EXPECT_THAT(question({1}), Not(HasSubstr("cannot be undone")));
    EXPECT_TRUE(press(find(wi_del_warning_dlg, "Cancel")));
    gw::set_keeps_what_is_taken_out(false);
    EXPECT_TRUE(question({1}).ends_with("\nThis cannot be undone."));
    EXPECT_TRUE(press(find(wi_del_warning_dlg, "Cancel")));
    gw::set_keeps_what_is_taken_out(true);
}

TEST_F(Undo, IsImpossibleForSomeWhereAnotherHasTheTrash) {
    make_fonts({"alpha"});
    FontDirectory other;
    other.add("omega.pcf", face("omega"));
    // Something is where the trash would be.
    other.dir().write(".glyphward/trash", "in the way");
    ::chmod(other.file(".glyphward").c_str(), 0700);
    list_own({other.path()});
    fill_program_lists();
    update_wi_installed_hrn_list();
    const std::vector<std::string> rows = items(wi_hrn_list);
    int alpha = 0;
    int omega = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].starts_with("Alpha ")) alpha = static_cast<int>(i) + 1;
        if (rows[i].starts_with("Omega ")) omega = static_cast<int>(i) + 1;
    }
    ASSERT_GT(alpha * omega, 0);
    EXPECT_TRUE(
        question({alpha, omega})
            .ends_with("\nWhat is deleted can be brought back for 30 days.\nFor 1 of them this cannot be "
                       "undone."));
    EXPECT_TRUE(press(find(wi_del_warning_dlg, "Cancel")));
}

TEST_F(Undo, IsImpossibleOnAFullDisk) {
    const SmallDisk disk;
    disk.write("beta.pcf", "B");
    disk.write("fonts.dir", "1\nbeta.pcf " + face("beta") + "\n");
    EXPECT_THAT(gw::would_be_lost(disk.path(), {"beta.pcf"}), testing::IsEmpty());
    disk.leave_blocks(1);
    EXPECT_THAT(gw::would_be_lost(disk.path(), {"beta.pcf"}), ElementsAre("beta.pcf"));
}

// --- the way back ------------------------------------------------------------

TEST_F(Undo, BringsADeletedFontBack) {
    make_fonts({"alpha", "beta", "gamma"});
    const std::string bytes = installed().read("beta.pcf");
    EXPECT_FALSE(offers_undo());
    remove({2});
    EXPECT_EQ(main_status(), "1 font deleted.");
    EXPECT_FALSE(installed().exists("beta.pcf"));
    EXPECT_FALSE(server_has(face("beta")));
    ASSERT_TRUE(pump_until(offers_undo));
    EXPECT_EQ(label(wi_mainwindow, "_undo_button"), "Undo Deletion");
    ASSERT_TRUE(press(undo_button()));
    EXPECT_EQ(main_status(), "1 font brought back.");
    EXPECT_EQ(installed().read("beta.pcf"), bytes);
    EXPECT_THAT(installed().index(), HasSubstr("beta.pcf " + face("beta") + "\n"));
    EXPECT_TRUE(server_has(face("beta")));
    EXPECT_TRUE(lists("Beta Medium [Bitmap]"));
    EXPECT_TRUE(lists("Alpha Medium [Bitmap]"));
    EXPECT_TRUE(pump_until([] { return !offers_undo(); })) << "it is undone";
    EXPECT_FALSE(is_managed(wi_warning_dlg));
}

TEST_F(Undo, BringsAllDirectoriesBack) {
    FontDirectory other;
    for (const char* name : {"omega", "psi"}) other.add(std::string(name) + ".pcf", face(name));
    for (const char* name : {"alpha", "beta"}) installed().add(std::string(name) + ".pcf", face(name));
    list_own({other.path()});
    fill_program_lists();
    update_wi_installed_hrn_list();
    std::vector<int> positions;
    const std::vector<std::string> rows = items(wi_hrn_list);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (const char* name : {"Alpha ", "Beta ", "Omega ", "Psi "}) {
            if (rows[i].starts_with(name)) positions.push_back(static_cast<int>(i) + 1);
        }
    }
    ASSERT_EQ(positions.size(), 4U);
    remove({positions[0], positions[1], positions[2], positions[3]});
    EXPECT_EQ(main_status(), "4 fonts deleted.");
    EXPECT_EQ(other.index(), "0\n");
    EXPECT_EQ(installed().index(), "0\n");
    ASSERT_TRUE(press(undo_button()));
    EXPECT_EQ(main_status(), "4 fonts brought back.");
    EXPECT_TRUE(other.exists("psi.pcf"));
    EXPECT_TRUE(installed().exists("alpha.pcf"));
    EXPECT_TRUE(lists("Psi Medium"));
    EXPECT_TRUE(server_has(face("alpha")));
}

TEST_F(Undo, AllSizesOfAFaceAreOneFont) {
    installed().add("a10.pcf", face("alpha", "100"));
    installed().add("a12.pcf", face("alpha", "120"));
    list_own();
    remove({1});
    EXPECT_EQ(main_status(), "1 font deleted.");
    EXPECT_FALSE(installed().exists("a10.pcf"));
    ASSERT_TRUE(press(undo_button()));
    EXPECT_EQ(main_status(), "1 font brought back.");
    EXPECT_TRUE(installed().exists("a10.pcf"));
    EXPECT_TRUE(installed().exists("a12.pcf"));
}

TEST_F(Undo, IsForTheLastWorkOnly) {
    make_fonts({"alpha", "beta"});
    remove({1});
    remove({1});
    EXPECT_EQ(main_status(), "1 font deleted.");
    ASSERT_TRUE(press(undo_button()));
    EXPECT_TRUE(installed().exists("beta.pcf"));
    EXPECT_FALSE(installed().exists("alpha.pcf"));
    EXPECT_FALSE(press(undo_button()));
}

// --- what is in the way ------------------------------------------------------

TEST_F(Undo, AFileInTheWayIsToldAndTheOthersComeBack) {
    make_fonts({"alpha", "beta"});
    remove({1, 2});
    installed().dir().write("alpha.pcf", "somebody else's");
    ASSERT_TRUE(press(undo_button()));
    EXPECT_EQ(main_status(), "1 font brought back.");
    EXPECT_TRUE(installed().exists("beta.pcf"));
    EXPECT_EQ(installed().read("alpha.pcf"), "somebody else's");
    ASSERT_TRUE(is_managed(wi_warning_dlg));
    EXPECT_EQ(title_of(wi_warning_dlg), "Glyph Warden - Not Brought Back");
    EXPECT_EQ(said(),
              "1 font could not be brought back:\nAlpha Medium [Bitmap]: " + installed().file("alpha.pcf") +
                  ": there is a file of this name now\n\nWhat you can do:\n"
                  "Move the file that is there now away, or give it another name.\n"
                  "Then bring it back with \"Tools, Deleted Fonts...\", where it stays until then.");
    const auto left = gw::trash_entries(installed().path());
    ASSERT_TRUE(left);
    EXPECT_EQ(left->size(), 1U) << "it is kept";
}

// Another instance has undone it, or somebody has emptied the trash.
TEST_F(Undo, WhatIsNotThereAnyMoreIsTold) {
    make_fonts({"alpha", "beta"});
    remove({1});
    ASSERT_TRUE(gw::empty_trash(installed().path()));
    ASSERT_TRUE(press(undo_button()));
    EXPECT_EQ(main_status(), "0 fonts brought back.");
    EXPECT_EQ(said(), "1 font could not be brought back:\n" + installed().path() +
                          ": this is not in the trash any more\n\nWhat you can do:\n"
                          "Look whether the font is in the list: another program may have brought it back.\n"
                          "If not, the trash was emptied, and the font has to be installed again.");
    EXPECT_FALSE(installed().exists("alpha.pcf"));
    EXPECT_TRUE(pump_until([] { return !offers_undo(); }));
}

TEST_F(Undo, ADirectoryThatIsGoneIsTold) {
    make_fonts({"alpha"});
    remove({1});
    const std::string moved = installed().path().substr(0, installed().path().size() - 1) + "-moved";
    std::filesystem::rename(installed().path(), moved);
    ASSERT_TRUE(press(undo_button()));
    std::filesystem::rename(moved, installed().path());
    EXPECT_EQ(main_status(), "0 fonts brought back.");
    EXPECT_THAT(said(), HasSubstr(installed().path()));
}

// --- replacements ------------------------------------------------------------

class UndoReplacement : public Undo {
  protected:
    void replace(const std::string& destination) {
        choose_source(fonts_);
        choose_destination(destination);
        install({1});
        ASSERT_TRUE(is_managed(wi_conflict_dlg));
        pick(conflicts_list(), 1);
        ASSERT_TRUE(press(find(wi_conflict_dlg, "not_keep_button")));
        ASSERT_TRUE(press(find(wi_conflict_dlg, "ok_button")));
        ASSERT_TRUE(press(find(wi_preconflict_dlg, "ok_button")));
        stop_fp_info_dlg();
        EXPECT_EQ(main_status(), "1 font installed.");
        EXPECT_EQ(label(wi_mainwindow, "_undo_button"), "Undo Replacement");
    }
    FontDirectory fonts_;
};

TEST_F(UndoReplacement, BringsTheOldFontBackInItsDirectory) {
    make_fonts({"alpha"});
    const std::string bytes = installed().read("alpha.pcf");
    fonts_.add("new.pcf", face("alpha"), 30);
    replace(installed().path());
    EXPECT_FALSE(installed().exists("alpha.pcf"));
    ASSERT_TRUE(press(undo_button()));
    EXPECT_EQ(main_status(), "1 font brought back.");
    EXPECT_EQ(installed().index(), index_of({"alpha.pcf " + face("alpha")}));
    EXPECT_EQ(installed().read("alpha.pcf"), bytes);
    EXPECT_FALSE(installed().exists("new.pcf"));
}

// The new font went into another directory than the old one.
TEST_F(UndoReplacement, TakesTheNewFontOutOfItsDirectory) {
    make_fonts({"alpha"});
    TempDir plain;
    fonts_.add("new.pcf", face("alpha"), 30);
    replace(plain.path());
    EXPECT_FALSE(installed().exists("alpha.pcf"));
    EXPECT_TRUE(plain.exists("new.pcf"));
    ASSERT_TRUE(press(undo_button()));
    EXPECT_EQ(main_status(), "1 font brought back.");
    EXPECT_EQ(installed().index(), index_of({"alpha.pcf " + face("alpha")}));
    EXPECT_TRUE(installed().exists("alpha.pcf"));
    EXPECT_FALSE(plain.exists("new.pcf"));
    EXPECT_EQ(plain.read("fonts.dir"), "0\n");
}

}  // namespace
