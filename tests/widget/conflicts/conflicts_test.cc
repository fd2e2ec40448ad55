// SPDX-License-Identifier: MIT
//
// What the user must decide after an installation or a deletion: the summary and the resolution dialog. Tests
// of texts use made-up conflicts, tests with fonts use real ones.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "app/deleting/delwarningdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/installing/font_source.h"
#include "app/installing/installdlg.h"
#include "app/kit/lists.h"
#include "app/program/conflict_lists.h"
#include "app/program/program_objects.h"
#include "app/samples/installed_list.h"

#include "widget/conflicts/conflicts_test_support.h"

#include <Xm/List.h>

namespace {

using namespace gw::test;
using testing::ElementsAre;

constexpr int ORDINARY_UID = 1000;
constexpr std::size_t COLUMN = 46;

std::string at_column(std::string name, const std::string& word) {
    if (name.size() >= COLUMN) return name + "   " + word;
    name.resize(COLUMN, ' ');
    return name + word;
}

class Conflicts : public ConflictTest {
  protected:
    static std::string detail() { return resolve("conflict_detail_label"); }
    static bool can_finish() { return is_sensitive(wi_conflict_dlg, "ok_button"); }
    /// Resolves every conflict by force, and finishes.
    static void force_all() {
        for (std::size_t position = 1; position <= items(conflicts_list()).size(); ++position) {
            pick(conflicts_list(), static_cast<int>(position));
            EXPECT_TRUE(force());
        }
        EXPECT_TRUE(finish());
    }
};

// --- the summary -------------------------------------------------------------

TEST_F(Conflicts, SumUp) {
    constexpr const char* SOME_INSTALLED =
        " fonts on your system have the same name as \n fonts you are installing.\n\nYou can leave the "
        "original "
        "fonts as is or\nyou can choose which fonts to install.";
    constexpr const char* NONE_INSTALLED =
        "You have no naming conflicts.\n\nIf you wish, you can review the list of read-only fonts the "
        "installation did not overwrite.";
    constexpr const char* SOME_DELETED =
        " fonts are either system fonts or\n are part of a package.\n\nYou can leave the fonts as is or\nyou "
        "can "
        "choose which fonts to delete.";
    constexpr const char* NONE_DELETED =
        "You have no deletion conflicts.\n\nIf you wish, you can review the list of read-only fonts that "
        "cannot "
        "be deleted.";
    const struct {
        GWConflict::TYPE type;
        unsigned read_only, others;
        std::string success, unchanged, conflicts, detail, ok, resolve;
    } cases[] = {
        {GWConflict::INSTALL, 2, 0, "Fonts Successfully Installed:       5",
         "Read-Only Fonts (Cannot Overwrite): 2", "Fonts with Naming Conflicts:     0 *", NONE_INSTALLED,
         "Ok", "Review..."},
        {GWConflict::INSTALL, 1, 3, "Fonts Successfully Installed:       5",
         "Read-Only Fonts (Cannot Overwrite): 1", "Fonts with Naming Conflicts:     3 *",
         std::string("* 3") + SOME_INSTALLED, "Leave Originals", "Choose..."},
        {GWConflict::DELETE, 1, 0, "Fonts Successfully Deleted:       5",
         "Read-Only Fonts (Cannot Delete): 1", "Deletions needing confirmation: 0 *", NONE_DELETED, "Ok",
         "Review..."},
        {GWConflict::DELETE, 0, 1, "Fonts Successfully Deleted:       5",
         "Read-Only Fonts (Cannot Delete): 0", "Deletions needing confirmation: 1 *",
         std::string("* 1") + SOME_DELETED, "Leave Originals", "Choose..."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.detail);
        gw::clear_conflict_list();
        for (unsigned i = 0; i < c.read_only; ++i) add_conflict(c.type, "alpha", {GWConflict::READ_ONLY});
        for (unsigned i = 0; i < c.others; ++i) {
            add_conflict(c.type, "beta",
                         {c.type == GWConflict::INSTALL ? GWConflict::SAME_NAME : GWConflict::SYSTEM_FONT});
        }
        start_preconflict_dlg(5, &the_conflict_list);
        EXPECT_TRUE(is_managed(wi_preconflict_dlg));
        EXPECT_EQ(summary("success_label"), c.success);
        EXPECT_EQ(summary("read_only_label"), c.unchanged);
        EXPECT_EQ(summary("conflict_label"), c.conflicts);
        EXPECT_EQ(summary("detail_label"), c.detail);
        EXPECT_EQ(summary("ok_button"), c.ok);
        EXPECT_EQ(summary("resolve_button"), c.resolve);
        EXPECT_EQ(summary("help_dlg_button"), "Help...");
        EXPECT_EQ(summary("msg_label"), " ");
        EXPECT_EQ(title_of(wi_preconflict_dlg), "Glyph Warden - Conflicts");
        // The help button does nothing.
        EXPECT_TRUE(press(find(wi_preconflict_dlg, "help_dlg_button")));
        EXPECT_TRUE(is_managed(wi_preconflict_dlg));

        EXPECT_TRUE(press(find(wi_preconflict_dlg, "ok_button")));
        EXPECT_FALSE(is_managed(wi_preconflict_dlg));
        EXPECT_EQ(main_status(), c.type == GWConflict::INSTALL ? "5 fonts successfully installed."
                                                               : "5 fonts successfully deleted.");
        EXPECT_EQ(is_managed(wi_fp_info_dlg), uid == 0);
        stop_fp_info_dlg();
    }
}

// This is shown after deletions too.
TEST_F(Conflicts, EndForTheSuperuserWithTheAdviceAboutTheFontPath) {
    for (const GWConflict::TYPE type : {GWConflict::INSTALL, GWConflict::DELETE}) {
        for (const int user : {0, ORDINARY_UID}) {
            const ActingAs acting(user);
            gw::clear_conflict_list();
            add_conflict(type, "alpha", {GWConflict::READ_ONLY});
            start_preconflict_dlg(0, &the_conflict_list);
            press(find(wi_preconflict_dlg, "ok_button"));
            EXPECT_EQ(is_managed(wi_fp_info_dlg), user == 0) << user;
            stop_fp_info_dlg();
        }
    }
}

TEST_F(Conflicts, AreLeftByTheCloseBox) {
    add_conflict(GWConflict::INSTALL, "alpha", {GWConflict::SAME_NAME});
    start_preconflict_dlg(3, &the_conflict_list);
    ASSERT_TRUE(pump_until([] { return is_viewable(wi_preconflict_dlg); }));
    close_box(wi_preconflict_dlg);
    EXPECT_FALSE(is_managed(wi_preconflict_dlg));
    EXPECT_EQ(main_status(), "3 fonts successfully installed.");
}

TEST_F(Conflicts, OfNothingAreNotShown) {
    start_preconflict_dlg(1, &the_conflict_list);
    start_conflict_dlg(1, &the_conflict_list);
    EXPECT_FALSE(is_managed(wi_preconflict_dlg));
    EXPECT_FALSE(is_managed(wi_conflict_dlg));
}

// --- the resolution ----------------------------------------------------------

TEST_F(Conflicts, HaveTheirTexts) {
    const struct {
        GWConflict::TYPE type;
        const char *finish, *keep, *not_keep;
    } cases[] = {{GWConflict::INSTALL, "Finish Installation", "Keep Old", "Install New"},
                 {GWConflict::DELETE, "Finish Deletion", "Keep", "Delete"}};
    for (const auto& c : cases) {
        gw::clear_conflict_list();
        add_conflict(c.type, "alpha", {GWConflict::SYSTEM_FONT});
        start_preconflict_dlg(2, &the_conflict_list);
        ASSERT_TRUE(choose_resolutions());
        EXPECT_FALSE(is_managed(wi_preconflict_dlg));
        EXPECT_TRUE(is_managed(wi_conflict_dlg));
        EXPECT_EQ(main_status(), c.type == GWConflict::INSTALL ? "2 fonts successfully installed."
                                                               : "2 fonts successfully deleted.");
        EXPECT_EQ(title_of(wi_conflict_dlg), "Glyph Warden - Resolve Conflicts");
        EXPECT_EQ(resolve("list_label"), "Select a Font:                          Resolution");
        EXPECT_EQ(resolve("resolve_label"), "Choose a Resolution:");
        EXPECT_EQ(resolve("button_rowcol.keep_button"), c.keep);
        EXPECT_EQ(resolve("button_rowcol.not_keep_button"), c.not_keep);
        EXPECT_EQ(resolve("ok_button"), c.finish);
        EXPECT_EQ(resolve("cancel_button"), "Cancel");
        EXPECT_EQ(resolve("help_dlg_button"), "Help...");
        EXPECT_EQ(resolve("msg_label"), " ");
        EXPECT_EQ(detail(), "\n\n\n\n\n\n\n\n");
        EXPECT_NE(find(wi_conflict_dlg, "separator"), nullptr);
        unsigned char policy = 0;
        XtVaGetValues(conflicts_list(), XmNselectionPolicy, &policy, nullptr);
        EXPECT_EQ(policy, XmSINGLE_SELECT);
        EXPECT_THAT(items(conflicts_list()), ElementsAre(at_column(listed("Alpha"), "")));
        EXPECT_EQ(gw::selected_count(conflicts_list()), 0);
        EXPECT_FALSE(can_resolve());
        EXPECT_FALSE(can_finish());
        EXPECT_TRUE(press(find(wi_conflict_dlg, "help_dlg_button")));
        EXPECT_TRUE(is_managed(wi_conflict_dlg));
        press(find(wi_conflict_dlg, "cancel_button"));
        press(find(wi_preconflict_dlg, "ok_button"));
    }
}

TEST_F(Conflicts, AreExplained) {
    using C = GWConflict;
    constexpr const char* READ_ONLY = "\nIt is a read-only font and cannot be removed or replaced.";
    const struct {
        C::TYPE type;
        std::initializer_list<C::INFO> reasons;
        std::string text;
    } cases[] = {
        {C::INSTALL, {C::SAME_NAME}, "This font already exists in the directory:\n/fonts/in/the/way/"},
        {C::INSTALL,
         {C::SAME_NAME, C::READ_ONLY},
         std::string("This font already exists in the directory:\n/fonts/in/the/way/") + READ_ONLY},
        {C::INSTALL, {C::READ_ONLY}, READ_ONLY},
        {C::DELETE, {C::SAME_NAME}, ""},
        {C::DELETE, {C::SYSTEM_FONT}, "\nIt is a system font."},
        {C::DELETE,
         {C::READ_ONLY, C::SYSTEM_FONT, C::PACKAGE, C::ALIAS},
         READ_ONLY + std::string("\nIt is a system font.\nIt is part of a package.\nIt is an alias.")},
        {C::DELETE, {C::PACKAGE}, "\nIt is part of a package."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        gw::clear_conflict_list();
        add_conflict(c.type, "alpha", c.reasons);
        start_conflict_dlg(0, &the_conflict_list);
        pick(conflicts_list(), 1);
        EXPECT_EQ(detail(), c.text);
        EXPECT_EQ(can_resolve(), c.text.find("read-only") == std::string::npos);
        stop_conflict_dlg();
    }
}

TEST_F(Conflicts, CanBeFinishedWhenEveryOneIsDecided) {
    add_conflict(GWConflict::INSTALL, "alpha", {GWConflict::SAME_NAME});
    add_conflict(GWConflict::INSTALL, "beta", {GWConflict::READ_ONLY});
    add_conflict(GWConflict::INSTALL, "gamma", {GWConflict::SAME_NAME});
    start_conflict_dlg(1, &the_conflict_list);
    EXPECT_FALSE(can_finish());
    pick(conflicts_list(), 2);
    EXPECT_FALSE(can_resolve());
    EXPECT_FALSE(force());
    pick(conflicts_list(), 1);
    EXPECT_TRUE(force());
    EXPECT_FALSE(can_finish());
    EXPECT_EQ(items(conflicts_list())[0], at_column(listed("Alpha"), "Install New"));
    EXPECT_EQ(gw::selected_count(conflicts_list()), 1) << "it can be changed at once";
    EXPECT_TRUE(keep());
    EXPECT_EQ(items(conflicts_list())[0], at_column(listed("Alpha"), "Keep Old"));
    EXPECT_FALSE(can_finish());
    pick(conflicts_list(), 3);
    EXPECT_TRUE(keep());
    EXPECT_TRUE(can_finish());
    EXPECT_THAT(items(conflicts_list()),
                ElementsAre(at_column(listed("Alpha"), "Keep Old"), at_column(listed("Beta"), ""),
                            at_column(listed("Gamma"), "Keep Old")));
    EXPECT_TRUE(finish());
    EXPECT_EQ(main_status(), "1 fonts successfully installed.");
    EXPECT_FALSE(is_managed(wi_conflict_dlg));
    EXPECT_FALSE(is_managed(wi_preconflict_dlg));
    EXPECT_EQ(is_managed(wi_fp_info_dlg), uid == 0);

    // Without conflicts the button keeps its state.
    gw::clear_conflict_list();
    add_conflict(GWConflict::INSTALL, "beta", {GWConflict::READ_ONLY});
    start_conflict_dlg(4, &the_conflict_list);
    EXPECT_TRUE(can_finish());
    EXPECT_TRUE(finish());
    EXPECT_EQ(main_status(), "4 fonts successfully installed.");
}

TEST_F(Conflicts, KeepTheButtonInsensitiveWhenTheLastOnesWereLeftUndecided) {
    add_conflict(GWConflict::DELETE, "alpha", {GWConflict::SYSTEM_FONT});
    start_conflict_dlg(0, &the_conflict_list);
    press(find(wi_conflict_dlg, "cancel_button"));
    press(find(wi_preconflict_dlg, "ok_button"));
    gw::clear_conflict_list();
    add_conflict(GWConflict::DELETE, "beta", {GWConflict::READ_ONLY});
    start_conflict_dlg(0, &the_conflict_list);
    EXPECT_FALSE(can_finish());
    press(find(wi_conflict_dlg, "cancel_button"));
    EXPECT_TRUE(is_managed(wi_preconflict_dlg));
}

TEST_F(Conflicts, OfLongNamesHaveTheWordBehindThreeBlanks) {
    // " Medium [Bitmap]" takes sixteen characters.
    const struct {
        std::size_t length;
        std::string gap;
    } cases[] = {{44, "  "}, {45, " "}, {46, "   "}, {50, "   "}};
    for (const auto& c : cases) {
        gw::clear_conflict_list();
        const std::string family(c.length - listed("").size(), 'x');
        add_conflict(GWConflict::DELETE, family, {GWConflict::PACKAGE});
        start_conflict_dlg(0, &the_conflict_list);
        pick(conflicts_list(), 1);
        EXPECT_TRUE(force());
        const std::string name = 'X' + family.substr(1) + " Medium [Bitmap]";
        ASSERT_EQ(name.size(), c.length);
        EXPECT_THAT(items(conflicts_list()), ElementsAre(name + c.gap + "Delete"));
        EXPECT_TRUE(keep());
        EXPECT_THAT(items(conflicts_list()), ElementsAre(name + c.gap + "Keep"));
        stop_conflict_dlg();
    }
}

TEST_F(Conflicts, ComeBackToTheSummaryUndecided) {
    add_conflict(GWConflict::INSTALL, "alpha", {GWConflict::SAME_NAME});
    add_conflict(GWConflict::INSTALL, "beta", {GWConflict::READ_ONLY});
    start_preconflict_dlg(5, &the_conflict_list);
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(choose_resolutions());
        EXPECT_THAT(items(conflicts_list()),
                    ElementsAre(at_column(listed("Alpha"), ""), at_column(listed("Beta"), "")));
        pick(conflicts_list(), 1);
        EXPECT_TRUE(force());
        EXPECT_TRUE(can_finish());
        if (round == 0) {
            press(find(wi_conflict_dlg, "cancel_button"));
        } else {
            ASSERT_TRUE(pump_until([] { return is_viewable(wi_conflict_dlg); }));
            close_box(wi_conflict_dlg);
        }
        EXPECT_FALSE(is_managed(wi_conflict_dlg));
        EXPECT_TRUE(is_managed(wi_preconflict_dlg));
        EXPECT_EQ(summary("success_label"), "Fonts Successfully Installed:       5");
        EXPECT_EQ(summary("read_only_label"), "Read-Only Fonts (Cannot Overwrite): 1");
        EXPECT_EQ(summary("conflict_label"), "Fonts with Naming Conflicts:     1 *");
    }
}

// --- with fonts --------------------------------------------------------------

class FontConflicts : public Conflicts {
  protected:
    void install_all() {
        install_source();
        ASSERT_TRUE(is_managed(wi_preconflict_dlg));
    }
};

TEST_F(FontConflicts, InstallTheNewFonts) {
    make_conflicts({"alpha", "beta"});
    for (const char* name : {"five", "four", "one", "three", "two"})
        fonts_.add(std::string(name) + ".pcf", face(name));
    install_all();
    EXPECT_EQ(main_status(), "5 fonts successfully installed.");
    ASSERT_TRUE(choose_resolutions());
    pick(conflicts_list(), 1);
    EXPECT_EQ(detail(), "This font already exists in the directory:\n" + installed().path());
    force_all();
    EXPECT_EQ(main_status(), "7 fonts successfully installed.");
    EXPECT_EQ(is_managed(wi_fp_info_dlg), uid == 0);
    EXPECT_EQ(installed().index(), "0\n");
    EXPECT_FALSE(installed().exists("old-alpha.pcf"));
    EXPECT_TRUE(home().read("glyphwd_fonts/alpha.pcf") == fonts_.read("alpha.pcf"));
    EXPECT_TRUE(home().read("glyphwd_fonts/beta.pcf") == fonts_.read("beta.pcf"));
    EXPECT_NE(destination_index().find("\nbeta.pcf " + face("beta") + '\n'), std::string::npos);
    EXPECT_EQ(the_installed_hrn_count, 7);
    EXPECT_EQ(items(wi_hrn_list).size(), 8U);
    gw::stop_source_preview();
    EXPECT_EQ(server_has(face("alpha")), uid != 0);
}

TEST_F(FontConflicts, KeepTheOldFonts) {
    make_conflicts({"alpha", "beta"});
    install_all();
    ASSERT_TRUE(choose_resolutions());
    pick(conflicts_list(), 1);
    EXPECT_TRUE(keep());
    pick(conflicts_list(), 2);
    EXPECT_TRUE(force());
    EXPECT_TRUE(finish());
    EXPECT_EQ(main_status(), "1 fonts successfully installed.");
    EXPECT_EQ(installed().index(), index_of({"old-alpha.pcf " + face("alpha")}));
    EXPECT_EQ(destination_index(), index_of({"beta.pcf " + face("beta")}));
    EXPECT_EQ(the_installed_hrn_count, 2);
}

TEST_F(FontConflicts, CountEveryDecisionEvenIfItFails) {
    make_conflicts({"alpha"});
    const std::string before = installed().index();
    install_all();
    ASSERT_TRUE(choose_resolutions());
    home().make_dir("glyphwd_fonts/alpha.pcf");  // so that the copy fails
    force_all();
    EXPECT_EQ(main_status(), "1 fonts successfully installed.");
    EXPECT_EQ(installed().index(), before);
    EXPECT_TRUE(installed().exists("old-alpha.pcf"));
}

TEST_F(FontConflicts, LeaveTheOriginals) {
    make_conflicts({"alpha", "beta"});
    const std::string before = installed().index();
    install_all();
    EXPECT_TRUE(press(find(wi_preconflict_dlg, "ok_button")));
    EXPECT_EQ(installed().index(), before);
    EXPECT_EQ(destination_index(), "");
    EXPECT_EQ(main_status(), "0 fonts successfully installed.");
}

// The new source has another font in a file of the same name.
TEST_F(FontConflicts, InstallWhatWasChosenFromASourceThatIsNoMore) {
    make_conflicts({"alpha"});
    install_all();
    FontDirectory other;
    other.add("alpha.pcf", face("other"), 900);
    choose_source(other);
    ASSERT_TRUE(choose_resolutions());
    force_all();
    EXPECT_EQ(main_status(), "1 fonts successfully installed.");
    EXPECT_TRUE(home().read("glyphwd_fonts/alpha.pcf") == fonts_.read("alpha.pcf"));
    EXPECT_EQ(destination_index(), index_of({"alpha.pcf " + face("alpha")}));
    EXPECT_EQ(the_installed_hrn_count, 1);
}

TEST_F(FontConflicts, OutliveADeletionOfWhatIsInTheWay) {
    make_conflicts({"alpha", "beta"});
    install_all();
    ASSERT_TRUE(choose_resolutions());
    remove({1});
    EXPECT_EQ(main_status(), "1 fonts successfully deleted.");
    EXPECT_EQ(the_installed_hrn_count, 1);
    EXPECT_TRUE(is_managed(wi_conflict_dlg));
    force_all();
    EXPECT_EQ(the_installed_hrn_count, 2);
    EXPECT_EQ(installed().index(), "0\n");
    EXPECT_TRUE(home().read("glyphwd_fonts/alpha.pcf") == fonts_.read("alpha.pcf"));
    EXPECT_TRUE(home().read("glyphwd_fonts/beta.pcf") == fonts_.read("beta.pcf"));
    EXPECT_EQ(items(wi_hrn_list).size(), 3U);
    EXPECT_EQ(items(wi_hrn_list)[0], listed("Alpha"));
    EXPECT_EQ(items(wi_hrn_list)[1], listed("Beta"));
}

// The second installation makes new conflicts. The summary shows these, the resolution dialog still shows the
// old ones.
TEST_F(FontConflicts, OutliveAnotherInstallation) {
    make_conflicts({"alpha", "beta"});
    install_all();
    ASSERT_TRUE(choose_resolutions());
    open_install_dialog();
    select(source_list(), {2});
    ASSERT_TRUE(press(find(wi_install_dlg, "_install_button")));
    ASSERT_TRUE(wait_for_work());
    EXPECT_TRUE(is_managed(wi_conflict_dlg));
    EXPECT_TRUE(is_managed(wi_preconflict_dlg));
    EXPECT_EQ(summary("conflict_label"), "Fonts with Naming Conflicts:     1 *");
    EXPECT_EQ(items(conflicts_list()).size(), 2U);
    force_all();
    EXPECT_EQ(main_status(), "2 fonts successfully installed.");
    EXPECT_EQ(the_installed_hrn_count, 2);

    ASSERT_TRUE(choose_resolutions());
    EXPECT_THAT(items(conflicts_list()), ElementsAre(at_column(listed("Beta"), "")));
    force_all();
    EXPECT_EQ(the_installed_hrn_count, 2);
    EXPECT_EQ(installed().index(), "0\n");
    EXPECT_TRUE(home().read("glyphwd_fonts/beta.pcf") == fonts_.read("beta.pcf"));
    EXPECT_NE(destination_index().find("beta.pcf " + face("beta") + '\n'), std::string::npos);
}

TEST_F(FontConflicts, OutliveTheAliasesTheyAreAbout) {
    make_conflicts({"alpha"});
    remove({2});
    ASSERT_TRUE(is_managed(wi_preconflict_dlg));
    ASSERT_TRUE(choose_resolutions());
    show_installed();
    pick(conflicts_list(), 1);
    EXPECT_EQ(detail(), "\nIt is a read-only font and cannot be removed or replaced.\nIt is an alias.");
    press(find(wi_conflict_dlg, "cancel_button"));
    EXPECT_EQ(summary("read_only_label"), "Read-Only Fonts (Cannot Delete): 1");
}

}  // namespace
