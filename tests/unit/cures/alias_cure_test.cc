// SPDX-License-Identifier: MIT
#include <filesystem>

#include "support/heard_failures.h"
#include "support/small_disk.h"
#include "unit/cures/cure_fixture.h"

namespace {

using gw::Reason;
using gw::diagnosis::Cure;
using gw::diagnosis::Remedy;
using gw::diagnosis::Said;
using gw::test::Cures;
using gw::test::is_root;
using gw::test::Texts;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

constexpr const char* WANTED = "-adobe-helvetica-bold-r-normal--17-120-100-100-p-108-iso8859-1";
constexpr const char* FONT = "-b&h-lucida-bold-r-normal-sans-17-120-100-100-p-108-iso8859-1";
constexpr const char* OTHER = "-b&h-luxi-bold-r-normal-sans-17-120-100-100-p-108-iso8859-1";

std::string ours(const std::string& alias, const std::string& font) {
    return "! Made by Glyph Warden\n" + alias + ' ' + font + '\n';
}

class AliasCure : public Cures {
  protected:
    static Cure naming(const std::string& wanted, const std::string& font, bool in_front = false) {
        return {.remedy = Remedy::ADD_ALIAS, .wanted = wanted, .font = font, .in_front = in_front};
    }
    [[nodiscard]] std::string dir() const { return surroundings.own_fonts + "aliases/"; }
    [[nodiscard]] std::string aliases() const { return gw::test::TempDir::read_bytes(dir() + "fonts.alias"); }
    void write_aliases(const std::string& text) const {
        home.write("glyphwd_fonts/aliases/fonts.alias", text);
        home.write("glyphwd_fonts/aliases/fonts.dir", "0\n");
    }
    Reason reason_of(const Cure& cure) {
        const auto deed = carry_out(cure);
        return deed ? Reason::NO_FILE : deed.failure().reason;
    }
};

TEST_F(AliasCure, TheAliasIsInADirectoryOfItsOwnNowAndAfterTheNextLogin) {
    const Texts before = configured();
    const auto deed = carry_out(naming(WANTED, FONT));
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_EQ(deed->what.said, Said::DONE_ADDED_ALIAS);
    EXPECT_EQ(aliases(), ours(WANTED, FONT));
    EXPECT_EQ(gw::test::TempDir::read_bytes(dir() + "fonts.dir"), "0\n");
    EXPECT_THAT(server.path, ElementsAre("built-ins", dir()));
    EXPECT_THAT(after_login(), Contains(dir()));

    ASSERT_TRUE(deed->undo());
    EXPECT_FALSE(home.exists("glyphwd_fonts")) << "what was made for it goes with it";
    EXPECT_THAT(server.path, ElementsAre("built-ins"));
    EXPECT_EQ(configured(), before);
    EXPECT_EQ(deed->undo().failure().reason, Reason::UNDONE_ALREADY);
}

TEST_F(AliasCure, OneThatHidesSomethingComesBeforeEverything) {
    ASSERT_TRUE(carry_out(naming("fancy", FONT, true)));
    EXPECT_THAT(server.path, ElementsAre(dir(), "built-ins"));
    EXPECT_EQ(after_login().front(), dir());
}

TEST_F(AliasCure, EverybodyMayReadItWhateverTheUsersUmask) {
    const mode_t old = ::umask(077);
    EXPECT_TRUE(carry_out(naming("fancy", FONT)));
    ::umask(old);
    for (const char* name : {"", "aliases", "aliases/fonts.dir", "aliases/fonts.alias"}) {
        struct stat info = {};
        ASSERT_EQ(::stat((surroundings.own_fonts + name).c_str(), &info), 0) << name;
        EXPECT_NE(info.st_mode & S_IROTH, 0U) << name;
    }
}

TEST_F(AliasCure, EveryByteOfTheUsersOwnStays) {
    const std::string theirs = "! mine\n\"two words\"   fixed  ! why\n\n\tx\\ y z";
    write_aliases(theirs);
    const auto deed = carry_out(naming("fancy", FONT));
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_EQ(aliases(), theirs + '\n' + ours("fancy", FONT));
    ASSERT_TRUE(deed->undo());
    EXPECT_EQ(aliases(), theirs + '\n');
    EXPECT_TRUE(home.exists("glyphwd_fonts/aliases/fonts.dir"));
}

TEST_F(AliasCure, AnAliasOfOursIsReplacedAndComesBack) {
    write_aliases("a b\n" + ours("fancy", OTHER) + "c d\n");
    const auto deed = carry_out(naming("fancy", FONT));
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_EQ(aliases(), "a b\n" + ours("fancy", FONT) + "c d\n");
    ASSERT_TRUE(deed->undo());
    EXPECT_EQ(aliases(), "a b\n" + ours("fancy", OTHER) + "c d\n");
}

TEST_F(AliasCure, AnAliasThatWasThereGetsItsIndexAndStays) {
    home.write("glyphwd_fonts/aliases/fonts.alias", ours("fancy", FONT));
    const auto deed = carry_out(naming("fancy", FONT));
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_EQ(gw::test::TempDir::read_bytes(dir() + "fonts.dir"), "0\n");
    EXPECT_THAT(server.path, ElementsAre("built-ins", dir()));
    ASSERT_TRUE(deed->undo());
    EXPECT_EQ(aliases(), ours("fancy", FONT));
}

TEST_F(AliasCure, OneOfTheUsersOwnIsNot) {
    write_aliases("Fancy " + std::string(OTHER) + '\n');
    EXPECT_EQ(reason_of(naming("fancy", FONT)), Reason::IS_AN_ALIAS);
    EXPECT_EQ(aliases(), "Fancy " + std::string(OTHER) + '\n');
    const auto deed = carry_out(naming("fancy", OTHER));
    ASSERT_TRUE(deed) << "it says just that, and only has to be served";
    ASSERT_TRUE(deed->undo());
    EXPECT_EQ(aliases(), "Fancy " + std::string(OTHER) + '\n');
    EXPECT_THAT(server.path, Not(Contains(dir())));
}

TEST_F(AliasCure, TheDirectoryIsServedAsLongAsOneAliasNeedsIt) {
    const auto first = carry_out(naming("one", FONT));
    const auto second = carry_out(naming("two", FONT));
    ASSERT_TRUE(first);
    ASSERT_TRUE(second) << second.failure().text();
    ASSERT_TRUE(first->undo());
    EXPECT_EQ(aliases(), ours("two", FONT));
    EXPECT_THAT(server.path, Contains(dir()));
    EXPECT_THAT(after_login(), Contains(dir()));
    ASSERT_TRUE(second->undo());
    EXPECT_EQ(aliases(), "");
}

TEST_F(AliasCure, ACircleIsRefused) {
    server.path = {fonts("served"), "built-ins"};
    home.write("served/fonts.alias", std::string(FONT) + " second\nsecond third\nThird Fancy\n");
    EXPECT_EQ(reason_of(naming("fancy", FONT)), Reason::LEADS_BACK);
    EXPECT_EQ(reason_of(naming("second", FONT)), Reason::LEADS_BACK);
    EXPECT_FALSE(home.exists("glyphwd_fonts"));
    home.write("served/fonts.alias", "a b\nb a\n");
    EXPECT_EQ(reason_of(naming("fancy", "a")), Reason::LEADS_BACK) << "it never ends";
    home.write("served/fonts.alias", std::string(FONT) + " -*-helvetica-*\n");
    EXPECT_EQ(reason_of(naming(WANTED, FONT)), Reason::LEADS_BACK) << "the pattern finds the new alias";
    EXPECT_TRUE(carry_out(naming("fancy", FONT)));
}

TEST_F(AliasCure, ANameThatNoAliasCanHaveIsRefused) {
    for (const std::string& wanted :
         {std::string(), std::string("a\nb"), std::string(256, 'x'), std::string("-adobe-*"),
          std::string("FILE_NAMES_ALIASES"), std::string(FONT)})
        EXPECT_EQ(reason_of(naming(wanted, FONT)), Reason::NAME_UNFIT_FOR_ALIAS) << wanted;
    EXPECT_EQ(reason_of(naming("fancy", "-b&h-*")), Reason::NAME_UNFIT_FOR_ALIAS);
    EXPECT_EQ(reason_of(naming("fancy", "two\nlines")), Reason::NAME_UNFIT_FOR_ALIAS);
    EXPECT_FALSE(home.exists("glyphwd_fonts"));
}

TEST_F(AliasCure, AFileThatServersRefuseIsNotWritten) {
    write_aliases("alone\n");
    EXPECT_EQ(reason_of(naming("fancy", FONT)), Reason::NOT_READ_BEFORE);
    EXPECT_EQ(aliases(), "alone\n");
}

TEST_F(AliasCure, ALinkIsNotFollowed) {
    home.write("theirs", "a b\n");
    home.make_dir("glyphwd_fonts/aliases");
    std::filesystem::create_symlink(home.file("theirs"), dir() + "fonts.alias");
    EXPECT_EQ(reason_of(naming("fancy", FONT)), Reason::NOT_OURS);
    EXPECT_EQ(home.read("theirs"), "a b\n");
}

TEST_F(AliasCure, WhatTheServerRefusesLeavesNothing) {
    server.refused = {dir()};
    EXPECT_EQ(reason_of(naming("fancy", FONT)), Reason::REFUSED_BY_SERVER);
    EXPECT_FALSE(home.exists("glyphwd_fonts"));
    EXPECT_THAT(configured(), Not(Contains(dir())));
    EXPECT_THAT(server.path, ElementsAre("built-ins"));
}

TEST_F(AliasCure, WhatSomebodyElseHasChangedMeanwhileStays) {
    const auto deed = carry_out(naming("fancy", FONT));
    ASSERT_TRUE(deed);
    const std::string theirs = "fancy " + std::string(OTHER) + "\nmore " + OTHER + '\n';
    write_aliases(theirs);
    EXPECT_EQ(deed->undo().failure().reason, Reason::CHANGED_SINCE);
    EXPECT_EQ(aliases(), theirs);
    EXPECT_THAT(server.path, Contains(dir()));
}

TEST_F(AliasCure, WhatSomebodyElseHasAddedMeanwhileIsKept) {
    const auto deed = carry_out(naming("fancy", FONT));
    ASSERT_TRUE(deed);
    write_aliases(aliases() + "more " + OTHER + '\n');
    home.write("glyphwd_fonts/aliases/theirs", "x");
    ASSERT_TRUE(deed->undo());
    EXPECT_EQ(aliases(), "more " + std::string(OTHER) + '\n');
    EXPECT_THAT(server.path, Contains(dir())) << "for the alias that is left";
    EXPECT_EQ(home.read("glyphwd_fonts/aliases/theirs"), "x");
}

TEST_F(AliasCure, ADirectoryThatHasGoneIsSaid) {
    const auto deed = carry_out(naming("fancy", FONT));
    ASSERT_TRUE(deed);
    std::filesystem::remove_all(surroundings.own_fonts);
    EXPECT_EQ(deed->undo().failure().reason, Reason::CHANGED_SINCE);
}

TEST_F(AliasCure, AServerThatSeesOtherFilesGetsNone) {
    server.where = gw::ServerPlace::ELSEWHERE;
    EXPECT_EQ(reason_of(naming("fancy", FONT)), Reason::SEES_OTHER_FILES);
    EXPECT_FALSE(home.exists("glyphwd_fonts"));
}

TEST_F(AliasCure, ADirectoryThatMayNotBeWrittenStaysAsItIs) {
    if (is_root()) GTEST_SKIP() << "the superuser may write everywhere";
    write_aliases("a b\n");
    ::chmod((dir() + "fonts.alias").c_str(), 0444);
    EXPECT_EQ(reason_of(naming("fancy", FONT)), Reason::SYSTEM);
    EXPECT_EQ(aliases(), "a b\n");
    ::chmod(home.c_str(), 0555);
    surroundings.own_fonts = home.file("no/");
    EXPECT_EQ(reason_of(naming("fancy", FONT)), Reason::SYSTEM);
    ::chmod(home.c_str(), 0755);
}

TEST_F(AliasCure, OnAFullDiskNothingIsLeft) {
    const gw::test::SmallDisk disk;
    for (const unsigned long blocks : {0UL, 1UL, 2UL, 3UL, 5UL}) {
        surroundings.own_fonts = disk.file("fonts/");
        disk.leave_blocks(blocks);
        const auto deed = carry_out(naming("fancy", FONT));
        if (deed) {
            EXPECT_TRUE(deed->undo());
        } else {
            EXPECT_TRUE(deed.failure().is_lack_of_room()) << deed.failure().text();
        }
        EXPECT_EQ(disk.entries(), 0) << blocks;
        std::filesystem::remove("/small/filler");
    }
}

}  // namespace
