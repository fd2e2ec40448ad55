// SPDX-License-Identifier: MIT
#include <filesystem>

#include "support/heard_failures.h"
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
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class PathCures : public Cures {
  protected:
    static Cure serving(const std::string& element, bool in_front = false) {
        return {.remedy = Remedy::SERVE_DIRECTORY, .element = element, .in_front = in_front};
    }
    static Cure taking_off(const std::string& element) {
        return {.remedy = Remedy::TAKE_OFF, .element = element};
    }
    /// Carries the cure out, which must fail for this reason and change nothing.
    void expect_refusal(const Cure& cure, Reason reason) {
        const std::string file = path_file();
        const Texts path = server.path;
        const auto deed = carry_out(cure);
        ASSERT_FALSE(deed) << cure.element;
        EXPECT_EQ(deed.failure().reason, reason) << deed.failure().text();
        EXPECT_EQ(path_file(), file);
        EXPECT_EQ(server.path, path);
    }
};

TEST_F(PathCures, ADirectoryIsServedNowAndAfterTheNextLoginAndNotAnyMoreWhenThatIsUndone) {
    const std::string dir = fonts("mine");
    const Texts before = configured();
    const auto deed = carry_out(serving(dir));
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_EQ(deed->what.said, Said::DONE_SERVED);
    EXPECT_THAT(deed->remarks, IsEmpty());
    EXPECT_THAT(server.path, ElementsAre("built-ins", dir));
    EXPECT_EQ(configured().back(), dir);
    EXPECT_THAT(after_login(), Contains(dir));

    ASSERT_TRUE(deed->undo());
    EXPECT_THAT(server.path, ElementsAre("built-ins"));
    EXPECT_EQ(configured(), before);
    EXPECT_THAT(after_login(), Not(Contains(dir)));
    EXPECT_EQ(deed->undo().failure().reason, Reason::UNDONE_ALREADY);
}

TEST_F(PathCures, InFrontItIsBeforeEverythingElse) {
    const std::string dir = fonts("mine");
    const Texts before = configured();
    const auto deed = carry_out(serving(dir, true));
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_THAT(server.path, ElementsAre(dir, "built-ins"));
    EXPECT_EQ(configured().front(), dir);
    EXPECT_EQ(after_login().front(), dir);
    ASSERT_TRUE(deed->undo());
    EXPECT_THAT(server.path, ElementsAre("built-ins"));
    EXPECT_EQ(configured(), before);
}

TEST_F(PathCures, AServedElementComesToTheFrontAndBackToItsPlace) {
    const std::string first = fonts("first");
    const std::string second = fonts("second");
    configure_before(first);
    configure_before(second);
    server.path = {"built-ins", first, second};
    const auto deed = carry_out(serving(second, true));
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_THAT(server.path, ElementsAre(second, "built-ins", first));
    EXPECT_EQ(after_login().front(), second);
    ASSERT_TRUE(deed->undo());
    EXPECT_THAT(server.path, ElementsAre("built-ins", first, second));
    EXPECT_NE(after_login().front(), second);
}

TEST_F(PathCures, AConfiguredElementComesOnlyToTheServer) {
    const std::string dir = fonts("mine");
    configure_before(dir);
    const std::string file = path_file();
    const auto deed = carry_out(serving(dir));
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_THAT(server.path, ElementsAre("built-ins", dir));
    EXPECT_EQ(path_file(), file);
    ASSERT_TRUE(deed->undo());
    EXPECT_THAT(server.path, ElementsAre("built-ins"));
    EXPECT_EQ(path_file(), file);
}

TEST_F(PathCures, AnElementWithAttributesIsServedWithThem) {
    const std::string element = fonts("mine") + ":unscaled";
    ASSERT_TRUE(carry_out(serving(element)));
    EXPECT_THAT(server.path, ElementsAre("built-ins", element));
    EXPECT_THAT(after_login(), Contains(element));
}

TEST_F(PathCures, WhatNoPathCanHaveIsRefused) {
    expect_refusal(serving(fonts("a,b")), Reason::COMMA_IN_NAME);
    expect_refusal(serving(fonts("a\nb")), Reason::NAME_UNFIT_FOR_PATH);
    expect_refusal(serving(home.file("missing")), Reason::SYSTEM);
    expect_refusal(serving(home.make_dir("no-index")), Reason::SYSTEM);
    home.write("file", "");
    expect_refusal(serving(home.file("file")), Reason::SYSTEM);
    expect_refusal(serving("tcp/host:7100"), Reason::NO_SUCH_ELEMENT);
    expect_refusal(serving(""), Reason::NO_SUCH_ELEMENT);
}

TEST_F(PathCures, ADuplicateByAnotherNameIsRefused) {
    const std::string dir = fonts("mine");
    ASSERT_TRUE(carry_out(serving(dir)));
    expect_refusal(serving(dir), Reason::ALREADY_ON_PATH);
    std::filesystem::create_symlink(dir, home.file("link"));
    expect_refusal(serving(home.file("link")), Reason::ALREADY_ON_PATH);
    EXPECT_TRUE(carry_out(serving(dir + ":unscaled"))) << "other attributes make another element";
}

TEST_F(PathCures, AServerThatSeesOtherFilesGetsNone) {
    server.where = gw::ServerPlace::ELSEWHERE;
    expect_refusal(serving(fonts("mine")), Reason::SEES_OTHER_FILES);
}

TEST_F(PathCures, WhatTheServerRefusesIsNotConfiguredEither) {
    const std::string dir = fonts("mine");
    server.refused = {dir};
    expect_refusal(serving(dir), Reason::REFUSED_BY_SERVER);
}

TEST_F(PathCures, AServerThatHasGoneLeavesTheConfigurationAsItWas) {
    const std::string dir = fonts("mine");
    for (int questions = 0; questions < 6; ++questions) {
        gw::test::ReadingServer dying;
        dying.path = {"built-ins"};
        dying.lives_for = questions;
        const std::string file = path_file();
        const auto deed = gw::diagnosis::carry_out(serving(dir), dying, surroundings);
        if (deed) {
            EXPECT_THAT(dying.path, Contains(dir)) << questions;
            EXPECT_TRUE(deed->undo()) << questions;
        } else {
            EXPECT_EQ(path_file(), file) << questions;
        }
    }
}

TEST_F(PathCures, AnotherDeadElementIsDroppedByTheServerAndThatIsSaid) {
    const std::string dir = fonts("mine");
    server.path = {"built-ins", "/gone/"};
    const auto deed = carry_out(serving(dir));
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_THAT(server.path, ElementsAre("built-ins", dir));
    ASSERT_THAT(deed->remarks, SizeIs(1));
    EXPECT_EQ(deed->remarks[0].said, Said::SERVER_DROPPED);
    EXPECT_THAT(deed->remarks[0].details, ElementsAre("/gone/"));
    ASSERT_TRUE(deed->undo());
    EXPECT_THAT(server.path, ElementsAre("built-ins"));
}

TEST_F(PathCures, ADirectoryThatGoesMeanwhileIsStillTakenOff) {
    const std::string dir = fonts("mine");
    const Texts before = configured();
    const auto deed = carry_out(serving(dir));
    ASSERT_TRUE(deed);
    std::filesystem::remove_all(dir);
    ASSERT_TRUE(deed->undo());
    EXPECT_THAT(server.path, ElementsAre("built-ins"));
    EXPECT_EQ(configured(), before);
}

TEST_F(PathCures, WhatSomebodyElseHasTakenOffMeanwhileIsNotUndone) {
    const std::string dir = fonts("mine");
    const auto deed = carry_out(serving(dir));
    ASSERT_TRUE(deed);
    {
        const auto other = main_store();
        const auto type = is_root() ? GWFontPath::INSTALLATION_FP : GWFontPath::USER_APPEND_FP;
        ASSERT_TRUE(other->remove(type, -1));
        ASSERT_TRUE(other->insert(type, GW_STRING("/theirs/"), -1));
    }
    EXPECT_EQ(deed->undo().failure().reason, Reason::CHANGED_SINCE);
    EXPECT_EQ(configured().back(), "/theirs/");
}

TEST_F(PathCures, WhatSomebodyElseHasAddedMeanwhileStays) {
    const std::string dir = fonts("mine");
    const auto deed = carry_out(serving(dir));
    ASSERT_TRUE(deed);
    configure_before("/theirs/");
    ASSERT_TRUE(deed->undo());
    EXPECT_THAT(configured(), Contains("/theirs/"));
    EXPECT_THAT(configured(), Not(Contains(dir)));
}

TEST_F(PathCures, ADeadElementLeavesAllPathsAndComesBackToItsPlaces) {
    const std::string dir = fonts("mine");
    const std::string dying = fonts("dying");
    for (const std::string& element : {dying, dir, std::string("/last/")}) configure_before(element);
    server.path = {dying, "built-ins", dir};
    std::filesystem::remove_all(dying);
    const Texts before = configured();
    const auto deed = carry_out(taking_off(dying));
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_EQ(deed->what.said, Said::DONE_TAKEN_OFF);
    EXPECT_THAT(server.path, ElementsAre("built-ins", dir));
    EXPECT_THAT(configured(), Not(Contains(dying)));
    EXPECT_THAT(after_login({dying, "built-ins"}), Not(Contains(dying)));

    (void)fonts("dying");
    ASSERT_TRUE(deed->undo());
    EXPECT_EQ(configured(), before);
    EXPECT_THAT(server.path, ElementsAre(dying, "built-ins", dir));
    EXPECT_EQ(deed->undo().failure().reason, Reason::UNDONE_ALREADY);
}

// The shell expands the lines of a user's file, and the program writes what it has got.
TEST_F(PathCures, EveryByteOfAUsersFileComesBack) {
    if (is_root()) GTEST_SKIP() << "the superuser has no such file";
    const std::string theirs = "$HOME/one\n/gone/\n${HOME}/two/\n\n~/three";
    home.write(".VTfontpath", theirs);
    const auto served = carry_out(serving(fonts("mine")));
    ASSERT_TRUE(served) << served.failure().text();
    ASSERT_NE(path_file(), theirs);
    ASSERT_TRUE(served->undo());
    EXPECT_EQ(path_file(), theirs);
    const auto taken = carry_out(taking_off("/gone/"));
    ASSERT_TRUE(taken);
    ASSERT_NE(path_file(), theirs);
    ASSERT_TRUE(taken->undo());
    EXPECT_EQ(path_file(), theirs);
    std::filesystem::remove(home.file(".VTfontpath"));
    const auto first = carry_out(serving(fonts("mine")));
    ASSERT_TRUE(first);
    ASSERT_TRUE(first->undo());
    EXPECT_FALSE(home.exists(".VTfontpath"));
}

TEST_F(PathCures, AnElementThatIsThereTwiceComesBackTwice) {
    for (const char* element : {"/gone/", "/stays/", "/gone"}) configure_before(element);
    const Texts before = configured();
    server.path = {"built-ins", "/stays/"};
    const auto deed = carry_out(taking_off("/gone/"));
    ASSERT_TRUE(deed);
    EXPECT_THAT(configured(), Not(Contains("/gone")));
    configure_before("/theirs/");
    ASSERT_TRUE(deed->undo());
    Texts after = configured();
    EXPECT_EQ(after.back(), "/theirs/");
    after.pop_back();
    EXPECT_EQ(after, before);
}

TEST_F(PathCures, OneThatIsStillDeadComesBackToTheConfiguredPathOnly) {
    configure_before("/gone/");
    server.path = {"/gone/", "built-ins"};
    const Texts before = configured();
    const auto deed = carry_out(taking_off("/gone/"));
    ASSERT_TRUE(deed);
    EXPECT_THAT(server.path, ElementsAre("built-ins"));
    ASSERT_TRUE(deed->undo());
    EXPECT_EQ(configured(), before);
    EXPECT_THAT(server.path, ElementsAre("built-ins"));
}

TEST_F(PathCures, OneThatIsOnlyOnTheServerIsTakenOffThere) {
    server.path = {"/gone/", "built-ins"};
    const std::string file = path_file();
    ASSERT_TRUE(carry_out(taking_off("/gone")));
    EXPECT_THAT(server.path, ElementsAre("built-ins"));
    EXPECT_EQ(path_file(), file);
}

TEST_F(PathCures, ADirectoryThatIsReadAgainKeepsItsPlace) {
    const std::string dir = fonts("mine");
    server.path = {dir, "built-ins"};
    const Cure again{.remedy = Remedy::READ_AGAIN, .element = dir};
    const auto deed = carry_out(again);
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_THAT(server.path, ElementsAre(dir, "built-ins"));
    EXPECT_EQ(server.path_changes, 2);
    EXPECT_TRUE(deed->undo());
    server.path = {dir};
    EXPECT_TRUE(carry_out(again)) << "the only one";
    EXPECT_THAT(server.path, ElementsAre(dir));
    server.path = {"built-ins"};
    expect_refusal(again, Reason::NO_SUCH_ELEMENT);
}

TEST_F(PathCures, OneThatIsNowhereIsRefused) {
    expect_refusal(taking_off("/nowhere/"), Reason::NO_SUCH_ELEMENT);
}

TEST_F(PathCures, TheOnlyElementOfAServerStays) {
    configure_before("/gone/");
    server.path = {"/gone/"};
    expect_refusal(taking_off("/gone/"), Reason::REFUSED_BY_SERVER);
}

TEST_F(PathCures, AFullOrReadOnlyPathFileChangesNothing) {
    const gw::test::HeardFailures heard;
    const std::string dir = fonts("mine");
    for (const char* element : {"/gone/", "/stays/"}) configure_before(element);
    server.path = {"/gone/", "built-ins"};
    const std::string file = path_file();
    {
        const gw::test::SmallFiles full(2);
        EXPECT_FALSE(carry_out(serving(dir)));
        EXPECT_FALSE(carry_out(taking_off("/gone/")));
    }
    EXPECT_EQ(path_file(), file);
    EXPECT_THAT(server.path, ElementsAre("/gone/", "built-ins"));
    if (is_root()) return;
    ::chmod(home.file(".VTfontpath").c_str(), 0444);
    expect_refusal(serving(dir), Reason::NOT_ALLOWED);
    expect_refusal(taking_off("/gone/"), Reason::NOT_ALLOWED);
}

TEST_F(PathCures, WithoutAHomeThereIsNoFontPath) {
    if (is_root()) GTEST_SKIP() << "the superuser's is the installation's";
    const std::string dir = fonts("mine");
    ::unsetenv("HOME");
    EXPECT_EQ(carry_out(serving(dir)).failure().reason, Reason::NOT_ALLOWED);
    EXPECT_THAT(server.path, ElementsAre("built-ins"));
}

TEST_F(PathCures, WhatIsForTheAdministratorOrTheCallerIsNotCarriedOut) {
    Cure cure = serving(fonts("mine"));
    cure.command = "true";
    expect_refusal(cure, Reason::NOT_ALLOWED);
    expect_refusal({.remedy = Remedy::INSTALL_DIRECTORY, .element = home.path()}, Reason::NOT_ALLOWED);
    expect_refusal({.remedy = Remedy::BRING_BACK, .element = home.path()}, Reason::NOT_IN_TRASH);
}

}  // namespace
