// SPDX-License-Identifier: MIT
#include "diagnosis/cure_plan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/access_lists.h"
#include "support/temp_dir.h"

namespace {

using namespace gw::diagnosis;
using gw::test::TempDir;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* NEAR = "-b&h-lucida-bold-r-normal-sans-17-120-100-100-p-108-iso8859-1";
constexpr uid_t SERVERS_USER = 65000;

class CurePlan : public testing::Test {
  protected:
    CurePlan() {
        ::chmod(home.c_str(), 0755);
        surroundings.user = ::geteuid();
        surroundings.home = home.file("home");
        surroundings.own_fonts = home.file("home/glyphwd_fonts/");
        answer.question.name = "-adobe-helvetica-bold-*";
        answer.server_user = SERVERS_USER;
    }
    std::string fonts(const std::string& name, const std::string& index = "0\n") const {
        home.write(name + "/fonts.dir", index);
        return home.file(name) + '/';
    }
    static std::vector<Remedy> remedies(const std::vector<Cure>& cures) {
        std::vector<Remedy> all;
        for (const Cure& cure : cures) all.push_back(cure.remedy);
        return all;
    }
    [[nodiscard]] std::vector<Cure> plan() const { return plan_cures(answer, surroundings); }
    ElementReport& report(const std::string& element, int place, ElementState state, Trouble trouble) {
        answer.path.push_back({element, place, true, state, trouble, {}, {}});
        return answer.path.back();
    }

    TempDir home;
    Answer answer;
    Surroundings surroundings;
};

TEST_F(CurePlan, NothingIsDoneWhereAllIsWell) {
    report(fonts("a"), 1, ElementState::WORKS, Trouble::NONE);
    answer.works = true;
    EXPECT_THAT(plan(), IsEmpty());
}

TEST_F(CurePlan, ADirectoryThatHasTheFontIsServed) {
    const std::string dir = fonts("a");
    answer.nearest = {{NEAR, dir + "x.pcf", dir, false, {}}};
    const auto cures = plan();
    ASSERT_THAT(remedies(cures), ElementsAre(Remedy::SERVE_DIRECTORY));
    EXPECT_EQ(cures[0].element, dir);
    EXPECT_FALSE(cures[0].in_front);
    EXPECT_EQ(cures[0].command, "");
    EXPECT_EQ(cures[0].what.details, std::vector<std::string>{dir});
}

TEST_F(CurePlan, OneThatHasNoIndexGetsItFirst) {
    const std::string dir = home.make_dir("a");
    answer.nearest = {{NEAR, dir + "x.pcf", dir, false, {}}};
    EXPECT_THAT(remedies(plan()), ElementsAre(Remedy::MAKE_INDEX, Remedy::SERVE_DIRECTORY));
}

TEST_F(CurePlan, OneBehindAWrongAnswerComesToTheFront) {
    const std::string dir = fonts("a");
    report(dir, 2, ElementState::WORKS, Trouble::NONE);
    answer.font.found = Found::SCALED;
    answer.font.element = "/other/";
    answer.nearest = {{NEAR, dir + "x.pcf", dir, true, {}}};
    const auto cures = plan();
    ASSERT_THAT(remedies(cures), ElementsAre(Remedy::SERVE_DIRECTORY));
    EXPECT_TRUE(cures[0].in_front);
}

TEST_F(CurePlan, ADeadElementIsTakenOffAndTheOneInQuestionFirst) {
    report("/gone/", 1, ElementState::DEAD, Trouble::NO_DIRECTORY);
    report("/gone-too/", 2, ElementState::DEAD, Trouble::NO_DIRECTORY);
    answer.question = {.wanted = Wanted::PATH, .element = 2};
    const auto cures = plan();
    ASSERT_THAT(remedies(cures), ElementsAre(Remedy::TAKE_OFF, Remedy::TAKE_OFF));
    EXPECT_EQ(cures[0].element, "/gone-too/");
    EXPECT_EQ(cures[1].element, "/gone/");
}

TEST_F(CurePlan, WhatIsOnlyConfiguredAndNotThisUsersIsNotTakenOff) {
    report(home.file("nowhere"), 0, ElementState::DEAD, Trouble::NO_DIRECTORY);
    EXPECT_THAT(plan(), IsEmpty());
}

TEST_F(CurePlan, AConfiguredElementComesToTheServer) {
    const std::string dir = fonts("a");
    surroundings.configured = {dir};
    report(dir, 0, ElementState::NOT_SERVED, Trouble::NONE);
    const auto cures = plan();
    ASSERT_THAT(remedies(cures), ElementsAre(Remedy::SERVE_DIRECTORY));
    EXPECT_EQ(cures[0].what.said, Said::CURE_SERVE_NOW);
}

TEST_F(CurePlan, AnIndexIsMadeWhereThisUserMayWrite) {
    const std::string dir = fonts("a", "nonsense\n");
    report(dir, 1, ElementState::DEAD, Trouble::BAD_INDEX);
    EXPECT_THAT(remedies(plan()), ElementsAre(Remedy::MAKE_INDEX, Remedy::TAKE_OFF));
}

TEST_F(CurePlan, TheAdministratorGetsACommandWithQuotedNames) {
    if (::geteuid() == 0) GTEST_SKIP() << "the superuser may write everywhere";
    const std::string dir = fonts("a b;c'$(d)");
    ::chmod(dir.c_str(), 0555);
    report(dir, 1, ElementState::WORKS_IN_PART, Trouble::OLD_INDEX);
    const auto cures = plan();
    ASSERT_THAT(cures, SizeIs(1));
    EXPECT_EQ(cures[0].what.said, Said::COMMAND_MAKE_INDEX);
    const std::string quoted = "'" + home.file("a b;c") + "'\\''$(d)/'";
    EXPECT_EQ(cures[0].command, "mkfontscale " + quoted + " && mkfontdir " + quoted);
}

TEST_F(CurePlan, OwnFilesAreMadeReadableExactlyAsFarAsTheServerNeeds) {
    const std::string dir = fonts("home/private", "1\nx.pcf -x\n");
    home.write("home/private/x.pcf", "");
    home.write("home/private/y.pcf", "");
    ::chmod(home.file("home").c_str(), 0700);
    ::chmod(dir.c_str(), 0700);
    ::chmod((dir + "x.pcf").c_str(), 0600);
    ::chmod((dir + "y.pcf").c_str(), 0600);
    report(dir, 0, ElementState::DEAD, Trouble::UNREADABLE);
    const auto cures = plan();
    ASSERT_THAT(remedies(cures), ElementsAre(Remedy::MAKE_READABLE));
    EXPECT_EQ(cures[0].what.said, Said::CURE_OPEN_HOME);
    const Rights expected = {{home.file("home"), S_IXOTH},
                             {home.file("home/private"), S_IXOTH},
                             {home.file("home/private/x.pcf"), S_IROTH}};
    EXPECT_EQ(cures[0].rights, expected);
    EXPECT_EQ(::access((dir + "x.pcf").c_str(), R_OK), 0);
}

// Somebody else's index could name any file of this user.
TEST_F(CurePlan, NothingIsMadeReadableThatIsOutsideOfTheDirectoryOrNoFont) {
    const std::string dir =
        fonts("theirs", "4\n../secret.pcf -a\nsub/../../secret.pcf -b\nplain -c\nx.pcf -x\n");
    for (const char* name : {"secret.pcf", "theirs/plain", "theirs/x.pcf", "theirs/sub/y.pcf"}) {
        home.write(name, "");
        ::chmod(home.file(name).c_str(), 0600);
    }
    report(dir, 0, ElementState::DEAD, Trouble::UNREADABLE);
    ElementReport& other = report(fonts("other"), 0, ElementState::DEAD, Trouble::UNREADABLE);
    other.unreadable = {home.file("other/../secret.pcf")};
    const auto cures = plan();
    ASSERT_THAT(remedies(cures), ElementsAre(Remedy::MAKE_READABLE));
    EXPECT_EQ(cures[0].rights, (Rights{{dir + "x.pcf", S_IROTH}}));
}

TEST_F(CurePlan, TheServersOwnUserNeedsTheOwnersRights) {
    const std::string dir = fonts("a");
    ::chmod((dir + "fonts.dir").c_str(), 0200);
    answer.server_user = ::geteuid();
    report(dir, 0, ElementState::DEAD, Trouble::UNREADABLE);
    const auto cures = plan();
    if (::geteuid() == 0) {
        EXPECT_THAT(cures, IsEmpty()) << "the superuser reads everything";
        return;
    }
    ASSERT_THAT(cures, SizeIs(1));
    EXPECT_EQ(cures[0].rights, (Rights{{dir + "fonts.dir", S_IRUSR}}));
    EXPECT_EQ(cures[0].what.said, Said::CURE_MAKE_READABLE);
}

TEST_F(CurePlan, OthersFilesGetACommand) {
    report("/etc/fonts/", 0, ElementState::DEAD, Trouble::UNREADABLE).unreadable = {"/proc/1/mem"};
    const auto cures = plan();
    if (::geteuid() == 0) return;
    ASSERT_THAT(cures, SizeIs(1));
    EXPECT_EQ(cures[0].what.said, Said::COMMAND_MAKE_READABLE);
    EXPECT_EQ(cures[0].command, "chmod o+r /proc/1/mem");
}

TEST_F(CurePlan, ALinkIsNotMadeReadable) {
    home.write("file", "");
    ::chmod(home.file("file").c_str(), 0600);
    std::filesystem::create_symlink(home.file("file"), home.file("link"));
    report(fonts("a"), 0, ElementState::DEAD, Trouble::UNREADABLE).unreadable = {home.file("link")};
    for (const Cure& cure : plan()) EXPECT_NE(cure.command, "") << "only a command";
}

TEST_F(CurePlan, TheNearestServedFontGetsAnAlias) {
    answer.nearest = {{NEAR, "/s/x.pcf", "/s/", true, {{Said::NOTHING_ASKED}}},
                      {"another", "/s/y.pcf", "/s/", true, {{Said::NOTHING_ASKED}}}};
    const auto cures = plan();
    ASSERT_THAT(remedies(cures), ElementsAre(Remedy::ADD_ALIAS));
    EXPECT_EQ(cures[0].wanted, "-adobe-helvetica-bold-r-normal-sans-17-120-100-100-p-108-iso8859-1");
    EXPECT_EQ(cures[0].font, NEAR);
    EXPECT_EQ(cures[0].element, surroundings.own_fonts + "aliases/");
    EXPECT_FALSE(cures[0].in_front);
}

TEST_F(CurePlan, AServerThatIsElsewhereOnlyLosesDeadElements) {
    const std::string dir = fonts("a");
    answer.place = gw::ServerPlace::ELSEWHERE;
    answer.nearest = {{NEAR, "", dir, false, {}}};
    report("/gone/", 1, ElementState::DEAD, Trouble::NO_DIRECTORY);
    report(dir, 0, ElementState::NOT_SERVED, Trouble::NONE);
    EXPECT_THAT(remedies(plan()), ElementsAre(Remedy::TAKE_OFF));
}

TEST_F(CurePlan, AFileOutsideTheFontPathIsInstalled) {
    home.write("downloads/x.ttf", "");
    answer.question = {.wanted = Wanted::FILE, .name = home.file("downloads/x.ttf")};
    EXPECT_THAT(remedies(plan()),
                ElementsAre(Remedy::INSTALL_DIRECTORY, Remedy::MAKE_INDEX, Remedy::SERVE_DIRECTORY));
}

TEST_F(CurePlan, LinesThatTheServerRefusesBecomeComments) {
    const std::string dir = fonts("a");
    home.write("a/fonts.alias", "good font\nlone\nself self\n");
    report(dir, 0, ElementState::DEAD, Trouble::BAD_ALIASES).remarks = {
        {Said::BAD_ALIAS_LINE, {"2", "lone"}}};
    const auto cures = plan();
    ASSERT_THAT(remedies(cures), ElementsAre(Remedy::COMMENT_OUT));
    EXPECT_EQ(cures[0].element, dir);
    EXPECT_EQ(cures[0].command, "");
    EXPECT_EQ(cures[0].what, (Sentence{Said::CURE_COMMENT_OUT, {dir + "fonts.alias", "2, 3"}}));
}

TEST_F(CurePlan, InAFileOfSomebodyElseTheAdministratorDoesIt) {
    if (::geteuid() == 0) GTEST_SKIP() << "the superuser writes all";
    const std::string dir = fonts("a dir");
    home.write("a dir/fonts.alias", "good font\nlone\nself self\n");
    ::chmod((dir + "fonts.alias").c_str(), 0444);
    report(dir, 0, ElementState::DEAD, Trouble::BAD_ALIASES).remarks = {
        {Said::ALIAS_OF_ITSELF, {"3", "self"}}};
    const auto cures = plan();
    ASSERT_THAT(remedies(cures), ElementsAre(Remedy::COMMENT_OUT));
    EXPECT_EQ(cures[0].command, "sed -i '2s/^/! /;3s/^/! /' '" + dir + "fonts.alias'");
    EXPECT_EQ(cures[0].what.said, Said::COMMAND_COMMENT_OUT);
    ::chmod((dir + "fonts.alias").c_str(), 0644);
    ASSERT_EQ(std::system(cures[0].command.c_str()), 0);  // NOLINT(cert-env33-c): that is what it is for
    EXPECT_EQ(TempDir::read_bytes(dir + "fonts.alias"), "good font\n! lone\n! self self\n");
}

TEST_F(CurePlan, EachDirectoryOfACircleCanBreakIt) {
    const std::string a = fonts("a");
    const std::string b = fonts("b");
    home.write("a/fonts.alias", "one two\nthree one\n");
    home.write("b/fonts.alias", "two three\n");
    answer.question.name = "one";
    answer.font.useless = {{"one", "two", a + ":unscaled"},
                           {"two", "three", "catalogue:/cat", b},
                           {"three", "one", a + ":unscaled"}};
    const auto cures = plan();
    ASSERT_THAT(remedies(cures), ElementsAre(Remedy::COMMENT_OUT, Remedy::COMMENT_OUT));
    EXPECT_EQ(cures[0].what, (Sentence{Said::CURE_DROP_ALIASES, {a + "fonts.alias", "one, three"}}));
    EXPECT_EQ(cures[1].aliases, (std::vector<gw::AliasOfFont>{{"two", "three"}}));
    answer.works = true;
    EXPECT_THAT(plan(), IsEmpty());
}

TEST_F(CurePlan, WhereAListKeepsTheServerOutNoPermissionsHelp) {
    const std::string dir = fonts("a");
    ::chmod((dir + "fonts.dir").c_str(), 0640);
    report(dir, 0, ElementState::DEAD, Trouble::UNREADABLE).unreadable = {dir + "fonts.dir"};
    ASSERT_THAT(remedies(plan()), ElementsAre(Remedy::MAKE_READABLE));
    ASSERT_TRUE(gw::test::set_access_list(
        dir + "fonts.dir",
        {{ACL_USER_OBJ, 6}, {ACL_USER, 0, SERVERS_USER}, {ACL_GROUP_OBJ, 4}, {ACL_MASK, 4}, {ACL_OTHER, 0}}));
    EXPECT_THAT(plan(), IsEmpty());
}

}  // namespace
