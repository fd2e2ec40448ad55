// SPDX-License-Identifier: MIT
//
// The commands that change fonts: install, delete, undo, trash.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "command/own_fonts.h"
#include "drivers/engine_globals.h"
#include "model/gw_conflict.h"
#include "model/gw_hrn_list.h"
#include "modules/font_modules.h"
#include "store/font_action.h"
#include "support/under_policy.h"

namespace {

namespace fs = std::filesystem;
using namespace gw::test;
using testing::HasSubstr;
using testing::Not;

/// With the X server, which is told of changes.
class CommandChanges : public OwnFonts {
  protected:
    void TearDown() override {
        (void)fonts_command({"path", "remove", "--of", "session", to_});
        OwnFonts::TearDown();
    }

  private:
    gw::test::Variable display_{"DISPLAY", no_display_.before().c_str()};
};

TEST_F(CommandChanges, InstallMakesTheDirectoryThatTheEngineMakes) {
    const Ran ran = install({source_.path()});
    EXPECT_EQ(ran.status, 0) << ran.err;
    EXPECT_THAT(ran.out, HasSubstr("DejaVu Sans Bold [TrueType]: installed\n"));

    const gw::test::UnderPolicy modern(true);
    if (the_fsm_list.is_empty()) gw::append_font_modules(the_fsm_list);
    const std::string other = home_.dir().make_dir("other");
    GW_DIR dir(source_.c_str());
    GW_LIST<GWFont> fonts;
    the_fsm_list.make_font_list(fonts, &dir, 0);
    GWHRNList list(0);
    for (GWFont* font : fonts) list.add_font(font);
    GWHRNList installed(0);
    GW_SORTED_LIST<GWAlias> aliases(0);
    GW_LIST<GWConflict> conflicts;
    gw::FontAction action;
    for (GWHRNElement* element : list)
        EXPECT_EQ(element->install_fonts(other.c_str(), installed, aliases, the_fsm_list, conflicts),
                  GWHRNElement::DONE);
    EXPECT_TRUE(action.commit().empty());

    std::map<std::string, std::string> ours = content(to_);
    ours.erase("glyphwd.upr");  // of a directory that was put on a font path
    EXPECT_EQ(ours, content(other));
    EXPECT_EQ(ours.size(), 4U);
}

TEST_F(CommandChanges, InstallingAgainChangesNothing) {
    ASSERT_EQ(install({SANS}).status, 0);
    const auto before = content(to_);
    const Ran again = install({"--json", SANS});
    EXPECT_EQ(again.status, 3) << again.err;
    EXPECT_EQ(again.json()["changed"], false);
    EXPECT_EQ(again.json()["fonts"][0]["result"], "already there");
    EXPECT_EQ(content(to_), before);
}

// As after a run that was killed when its fonts were there and the font path was not written.
TEST_F(CommandChanges, InstallingAgainPutsTheDirectoryOnThePath) {
    ASSERT_EQ(install({SANS}).status, 0);
    ASSERT_EQ(fonts_command({"path", "remove", "--of", whose(), to_}).status, 0);
    const auto before = content(to_);
    const Ran dry = install({"--json", "--dry-run", SANS});
    EXPECT_EQ(dry.status, 0) << dry.err;
    EXPECT_EQ(dry.json()["changed"], true);
    EXPECT_THAT(fonts_command({"path", "show", "--of", whose()}).out, Not(HasSubstr(to_)));
    const Ran again = install({SANS});
    EXPECT_EQ(again.status, 0) << again.err;
    EXPECT_EQ(again.out, SANS_ROW + std::string(": already there\nfont path: ") + to_ + '\n');
    EXPECT_THAT(fonts_command({"path", "show", "--of", whose()}).out, HasSubstr(to_));
    EXPECT_EQ(content(to_), before);
    EXPECT_EQ(install({SANS}).status, 3);
}

TEST_F(CommandChanges, InstallTakesOnlyTheFilesThatAreNamed) {
    ASSERT_EQ(install({source_.file("DejaVuSans.ttf")}).status, 0);
    EXPECT_TRUE(content(to_).contains("DejaVuSans.ttf"));
    EXPECT_FALSE(content(to_).contains("DejaVuSans-Bold.ttf"));
}

TEST_F(CommandChanges, AllFilesOfOneFontMayBeNamed) {
    const std::string outlines = TempDir::read_bytes("/usr/share/fonts/X11/Type1/C059-Roman.pfb");
    const Ran ran = install({"--json", source_.write("own.pfb", outlines), source_.write("own.pfa", outlines),
                             source_.write("own.afm", "StartFontMetrics 2.0\nEndFontMetrics\n")});
    EXPECT_EQ(ran.status, 0) << ran.err;
    EXPECT_EQ(ran.json()["fonts"].size(), 1U) << ran.out;
    EXPECT_THAT(content(to_), testing::IsSupersetOf({testing::Key("own.pfb"), testing::Key("own.afm")}));
}

TEST_F(CommandChanges, InstallGoesOnAfterWhatIsNoFont) {
    (void)source_.write("broken.ttf", "nothing");
    const Ran ran = install({source_.path(), source_.file("gone.ttf"), "/etc/passwd"});
    EXPECT_EQ(ran.status, 1);
    EXPECT_THAT(ran.err, HasSubstr("gone.ttf: "));
    EXPECT_THAT(ran.err, HasSubstr("/etc/passwd: this is no file of a font"));
    EXPECT_THAT(ran.err, HasSubstr("broken"));
    EXPECT_TRUE(content(to_).contains("DejaVuSans.ttf"));
    EXPECT_FALSE(content(to_).contains("broken.ttf"));
}

TEST_F(CommandChanges, ADryRunChangesNothing) {
    const Ran ran = install({"--dry-run", source_.path()});
    EXPECT_EQ(ran.status, 0) << ran.err;
    EXPECT_THAT(ran.out, HasSubstr("would be installed"));
    EXPECT_TRUE(content(to_).empty());
    ASSERT_EQ(install({SANS}).status, 0);
    const auto before = content(to_);
    const Ran removal = fonts_command({"delete", "--dry-run", "dejavu sans medium*"});
    EXPECT_EQ(removal.status, 0) << removal.err;
    EXPECT_EQ(content(to_), before);
}

TEST_F(CommandChanges, AFontOfTheSameNameIsRefusedKeptOrReplaced) {
    ASSERT_EQ(install({SANS}).status, 0);
    const auto before = content(to_);
    // Another file with the same names inside.
    std::string bytes = TempDir::read_bytes(SANS);
    bytes += std::string(4, '\0');
    const std::string other = source_.write("DejaVuSans.ttf", bytes);
    const Ran refused = install({other});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.err, HasSubstr("(--replace or --keep)"));
    EXPECT_EQ(content(to_), before);
    const Ran kept = install({"--keep", other});
    EXPECT_EQ(kept.status, 3) << kept.err;
    EXPECT_EQ(content(to_), before);
    const Ran replaced = install({"--replace", other});
    EXPECT_EQ(replaced.status, 0) << replaced.err;
    EXPECT_EQ(content(to_).at("DejaVuSans.ttf"), bytes);
    const Ran undone = fonts_command({"undo"});
    EXPECT_EQ(undone.status, 0) << undone.err;
    EXPECT_EQ(content(to_), before);
}

TEST_F(CommandChanges, DeletingAsksOnATerminalOnly) {
    ASSERT_EQ(install({SANS}).status, 0);
    const auto before = content(to_);
    const Ran ran = fonts_command({"delete", "dejavu sans medium*"});
    EXPECT_EQ(ran.status, 4);
    EXPECT_THAT(ran.err, HasSubstr("--yes"));
    EXPECT_EQ(content(to_), before);
}

TEST_F(CommandChanges, WhatIsDeletedComesBackByteForByte) {
    ASSERT_EQ(install({source_.path()}).status, 0);
    const auto before = content(to_);
    const Ran removed = fonts_command({"delete", "--yes", "--json", "dejavu sans*"});
    EXPECT_EQ(removed.status, 0) << removed.err;
    EXPECT_EQ(removed.json()["changed"], true);
    EXPECT_EQ(content(to_).count("DejaVuSans.ttf"), 0U);
    const std::string id = removed.json()["undo"];
    EXPECT_NE(id, "");
    EXPECT_THAT(fonts_command({"trash"}).out, HasSubstr(id));
    const Ran back = fonts_command({"undo", id});
    EXPECT_EQ(back.status, 0) << back.err;
    EXPECT_EQ(content(to_), before);
    EXPECT_EQ(fonts_command({"undo", id}).status, 1);
}

TEST_F(CommandChanges, TheTrashCanBeEmptied) {
    ASSERT_EQ(install({SANS}).status, 0);
    ASSERT_EQ(fonts_command({"delete", "--yes", "dejavu sans medium*"}).status, 0);
    EXPECT_EQ(fonts_command({"trash", "--empty", "--dry-run"}).status, 0);
    EXPECT_NE(fonts_command({"trash"}).out, "");
    EXPECT_EQ(fonts_command({"trash", "--empty"}).status, 0);
    EXPECT_EQ(fonts_command({"trash"}).out, "");
    EXPECT_EQ(fonts_command({"trash", "--empty"}).status, 3);
    EXPECT_EQ(fonts_command({"undo"}).status, 1);
}

TEST_F(CommandChanges, WhatMayNotBeDeletedStays) {
    const Ran alias = fonts_command({"delete", "--yes", "fixed"});
    EXPECT_EQ(alias.status, 1);
    EXPECT_THAT(alias.err, HasSubstr("alias"));
    const Ran nothing = fonts_command({"delete", "--yes", "no such font"});
    EXPECT_EQ(nothing.status, 1);
    if (::geteuid() == 0) return;
    const Ran others = fonts_command({"delete", "--yes", "Courier Bold [[]Bitmap]"});
    EXPECT_EQ(others.status, 1);
    EXPECT_THAT(others.err, HasSubstr("you may not delete it"));
}

TEST_F(CommandChanges, FontsForMeAreOnTheFontPathAfterwards) {
    if (::geteuid() == 0) GTEST_SKIP() << "the superuser's fonts are everybody's";
    const Ran ran = fonts_command({"install", SANS});
    EXPECT_EQ(ran.status, 0) << ran.err;
    const std::string dir = home_.dir().file("glyphwd_fonts/");
    EXPECT_THAT(fonts_command({"path", "show"}).out, HasSubstr(dir));
    EXPECT_THAT(fonts_command({"path", "show", "--of", "session"}).out, HasSubstr(dir));
    EXPECT_EQ(fonts_command({"why", "-misc-dejavu sans-medium-r-normal--0-0-0-0-p-0-iso8859-1"}).status, 0);
    (void)fonts_command({"path", "remove", "--of", "session", dir});
}

TEST_F(CommandChanges, OrdinaryUsersCannotInstallForEveryone) {
    if (::geteuid() == 0) GTEST_SKIP() << "the superuser can";
    const Ran ran = fonts_command({"install", "--everyone", SANS});
    EXPECT_EQ(ran.status, 4);
    EXPECT_THAT(ran.err, HasSubstr("/etc/vantor/glyphwd_fonts/"));
}

TEST_F(CommandChanges, ADirectoryWithACommaIsNoDestination) {
    const Ran ran = fonts_command({"install", SANS, "--to", home_.dir().file("a,b")});
    EXPECT_EQ(ran.status, 4);
    EXPECT_THAT(ran.err, HasSubstr("comma"));
    EXPECT_FALSE(home_.dir().exists("a,b"));
}

}  // namespace
