// SPDX-License-Identifier: MIT
//
// The font path, from the command line.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "command/fonts_command.h"

namespace {

using gw::test::fonts_command;
using gw::test::Ran;
using gw::test::SANS;
using gw::test::TempDir;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char* FONTS = "/usr/vantor/lib/X11/fonts/75dpi/";

/// An ordinary user's own path; the superuser has none.
class CommandPath : public testing::Test {
  protected:
    void SetUp() override {
        if (::geteuid() == 0) GTEST_SKIP() << "the superuser has no font path of his own";
    }
    static std::vector<std::string> own_path() { return fonts_command({"path", "show"}).lines(); }

    gw::test::OwnHome home_;
    std::string one_ = home_.dir().make_dir("one");
    std::string two_ = home_.dir().make_dir("two");
};

TEST_F(CommandPath, IsEditedElementByElement) {
    EXPECT_EQ(fonts_command({"path", "add", one_, two_}).status, 0);
    EXPECT_THAT(own_path(), ElementsAre(one_, two_));
    EXPECT_EQ(fonts_command({"path", "add", two_}).status, 3);
    EXPECT_EQ(fonts_command({"path", "move", two_, "1"}).status, 0);
    EXPECT_THAT(own_path(), ElementsAre(two_, one_));
    EXPECT_EQ(fonts_command({"path", "move", two_, "1"}).status, 3);
    EXPECT_EQ(fonts_command({"path", "add", "--front", FONTS}).status, 0);
    EXPECT_THAT(own_path(), ElementsAre(FONTS, two_, one_));
    EXPECT_EQ(fonts_command({"path", "remove", one_}).status, 0);
    EXPECT_EQ(fonts_command({"path", "remove", one_}).status, 3);
    EXPECT_EQ(fonts_command({"path", "move", one_, "1"}).status, 1);
    EXPECT_THAT(own_path(), ElementsAre(FONTS, two_));
}

/// The fonts of a catalogue are listed from where its links lead, and the server gets it as one element.
TEST_F(CommandPath, MayHaveACatalogue) {
    const TempDir dir;
    const std::string catalogue = "catalogue:" + dir.path();
    std::filesystem::permissions(dir.path(), std::filesystem::perms(0755));
    dir.write("box/fonts.dir", "1\nbox.pcf -test-box-medium-r-normal--8-80-75-75-c-80-iso8859-1\n");
    dir.write("box/box.pcf", "no font; nobody opens it");
    std::filesystem::create_symlink("box", dir.file("box:unscaled:pri=10"));
    std::filesystem::create_symlink("none", dir.file("none:pri=1"));
    ASSERT_EQ(fonts_command({"path", "add", catalogue}).status, 0);
    EXPECT_EQ(fonts_command({"path", "add", catalogue + '/'}).status, 3);
    const Ran listed = fonts_command({"list", "--long", "*test-box*", "*est*box*"});
    EXPECT_THAT(listed.out, HasSubstr(std::filesystem::canonical(dir.path()).string() + "/box/box.pcf"));
    ASSERT_EQ(fonts_command({"path", "add", "--of", "session", catalogue}).status, 0);
    const std::vector<std::string> served = fonts_command({"path", "show", "--of", "session"}).lines();
    EXPECT_THAT(fonts_command({"install", "--to", dir.file("box"), SANS}).err, testing::IsEmpty());
    EXPECT_THAT(own_path(), ElementsAre(catalogue)) << "the catalogue has the directory";
    EXPECT_EQ(fonts_command({"path", "show", "--of", "session"}).lines(), served);
    EXPECT_EQ(fonts_command({"path", "remove", "--of", "session", catalogue}).status, 0);
    EXPECT_EQ(fonts_command({"path", "remove", catalogue}).status, 0);
}

TEST_F(CommandPath, ADryRunChangesNothing) {
    EXPECT_EQ(fonts_command({"path", "add", "--dry-run", one_}).status, 0);
    EXPECT_THAT(own_path(), ElementsAre());
}

TEST_F(CommandPath, OthersPathsAreNotHisToChange) {
    const Ran ran = fonts_command({"path", "add", "--of", "installation", one_});
    EXPECT_EQ(ran.status, 1);
    EXPECT_NE(ran.err, "");
}

TEST_F(CommandPath, OfTheRunningServerIsAppliedAndSaved) {
    const std::vector<std::string> before = fonts_command({"path", "show", "--of", "session"}).lines();
    EXPECT_EQ(fonts_command({"path", "save"}).status, 0);
    EXPECT_EQ(own_path(), before);
    EXPECT_EQ(fonts_command({"path", "save"}).status, 3);
    ASSERT_EQ(fonts_command({"path", "remove", "--of", "session", FONTS}).status, 0);
    EXPECT_EQ(fonts_command({"path", "apply", "--dry-run"}).status, 0);
    EXPECT_NE(fonts_command({"path", "show", "--of", "session"}).lines(), before);
    const Ran applied = fonts_command({"path", "apply", "--json"});
    EXPECT_EQ(applied.json()["changed"], true) << applied.err;
    EXPECT_THAT(fonts_command({"path", "show", "--of", "session"}).out, HasSubstr(FONTS));
    EXPECT_EQ(fonts_command({"path", "apply"}).status, 3);
    while (fonts_command({"path", "show", "--of", "session"}).lines() != before) {
        std::size_t place = 0;
        for (const std::string& element : before)
            ASSERT_LE(
                fonts_command({"path", "move", "--of", "session", element, std::to_string(++place)}).status,
                3);
    }
}

TEST_F(CommandPath, WhatTheServerRefusesIsTold) {
    const Ran ran = fonts_command({"path", "add", "--of", "session", "/nowhere/at/all/"});
    EXPECT_EQ(ran.status, 1);
    EXPECT_THAT(ran.err, HasSubstr("/nowhere/at/all/"));
}

/// A session whose server has a directory on its font path that has gone since.
class CommandPathWithoutDirectory : public testing::Test {
  protected:
    CommandPathWithoutDirectory() {
        for (const char* name : {"gone/fonts.dir", "stays/fonts.dir"}) (void)home_.dir().write(name, "0\n");
        EXPECT_EQ(fonts_command({"path", "add", "--of", "session", gone_, stays_}).status, 0);
        std::filesystem::remove_all(gone_);
    }
    static std::string sessions_path() { return fonts_command({"path", "show", "--of", "session"}).out; }

    gw::test::OwnHome home_;
    std::string gone_ = home_.dir().make_dir("gone");
    std::string stays_ = home_.dir().make_dir("stays");
};

TEST_F(CommandPathWithoutDirectory, OthersAreTakenOffAndPutOn) {
    const Ran removed = fonts_command({"path", "remove", "--of", "session", stays_});
    EXPECT_EQ(removed.status, 0);
    EXPECT_THAT(removed.err, HasSubstr(gone_ + ": the X server refuses it"));
    EXPECT_THAT(sessions_path(), Not(HasSubstr(home_.dir().path())));
    EXPECT_EQ(fonts_command({"path", "add", "--of", "session", stays_}).status, 0);
    EXPECT_THAT(sessions_path(), HasSubstr(stays_));
}

TEST_F(CommandPathWithoutDirectory, FontsAreInstalledThatProgramsFind) {
    const std::string to = home_.dir().make_dir("to");
    const Ran ran = fonts_command({"install", gw::test::SANS, "--to", to});
    EXPECT_EQ(ran.status, 0) << ran.err;
    EXPECT_THAT(ran.err, HasSubstr(gone_));
    EXPECT_EQ(fonts_command({"why", "-misc-dejavu sans-medium-r-normal--0-0-0-0-p-0-iso8859-1"}).status, 0);
}

TEST(CommandPathOfSession, KeepsItsLastElement) {
    std::vector<std::string> all = fonts_command({"path", "show", "--of", "session"}).lines();
    ASSERT_FALSE(all.empty());
    all.insert(all.begin(), {"path", "remove", "--of", "session"});
    const Ran ran = fonts_command(all);
    EXPECT_EQ(ran.status, 1);
    EXPECT_THAT(ran.err, HasSubstr("a path of its own"));
}

TEST(CommandPathOfAll, HasHeadings) {
    const Ran ran = fonts_command({"path", "show", "--all"});
    EXPECT_EQ(ran.status, 0) << ran.err;
    for (const char* heading : {"me:\n", "host:\n", "installation:\n", "session:\n"})
        EXPECT_THAT(ran.out, HasSubstr(heading));
}

}  // namespace
