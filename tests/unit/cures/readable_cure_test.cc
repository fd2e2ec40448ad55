// SPDX-License-Identifier: MIT
#include <filesystem>

#include "unit/cures/cure_fixture.h"

namespace {

using gw::Reason;
using gw::diagnosis::Cure;
using gw::diagnosis::Remedy;
using gw::diagnosis::Rights;
using gw::diagnosis::Said;
using gw::test::Cures;
using gw::test::is_root;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ReadableCure : public Cures {
  protected:
    ReadableCure() {
        dir = fonts("private", "1\nx.pcf -x\n");
        home.write("private/x.pcf", "font");
        ::chmod((dir + "x.pcf").c_str(), 0600);
        ::chmod((dir + "fonts.dir").c_str(), 0640);
        ::chmod(dir.c_str(), 0700);
    }
    [[nodiscard]] Cure reading(const Rights& rights) const {
        return {.remedy = Remedy::MAKE_READABLE, .element = dir, .rights = rights};
    }
    [[nodiscard]] Cure reading_all() const {
        return reading(
            {{dir + "x.pcf", S_IROTH}, {dir + "fonts.dir", S_IROTH}, {home.file("private"), S_IXOTH}});
    }
    static mode_t mode_of(const std::string& path) {
        struct stat info = {};
        return ::lstat(path.c_str(), &info) == 0 ? info.st_mode & 07777 : 0;
    }
    void expect_modes(mode_t directory, mode_t index, mode_t font) const {
        EXPECT_EQ(mode_of(dir), directory);
        EXPECT_EQ(mode_of(dir + "fonts.dir"), index);
        EXPECT_EQ(mode_of(dir + "x.pcf"), font);
    }

    std::string dir;
};

TEST_F(ReadableCure, OnlyTheNamedBitsAreAddedAndTheOldModesComeBack) {
    const auto deed = carry_out(reading_all());
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_EQ(deed->what.said, Said::DONE_MADE_READABLE);
    expect_modes(0701, 0644, 0604);
    ASSERT_TRUE(deed->undo());
    expect_modes(0700, 0640, 0600);
    EXPECT_EQ(deed->undo().failure().reason, Reason::UNDONE_ALREADY);
}

TEST_F(ReadableCure, AFileThatNotEvenItsOwnerMayReadIsMadeReadable) {
    ::chmod((dir + "x.pcf").c_str(), 0);
    const auto deed = carry_out(reading({{dir + "x.pcf", S_IRUSR}}));
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_EQ(mode_of(dir + "x.pcf"), 0400U);
    ASSERT_TRUE(deed->undo());
    EXPECT_EQ(mode_of(dir + "x.pcf"), 0U);
}

TEST_F(ReadableCure, AConfiguredDirectoryComesToTheServerAsAtTheNextLogin) {
    configure_before(dir);
    const auto deed = carry_out(reading_all());
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_THAT(server.path, ElementsAre("built-ins", dir));
    EXPECT_THAT(after_login(), Contains(dir));
    ASSERT_TRUE(deed->undo());
    EXPECT_THAT(server.path, ElementsAre("built-ins"));
}

TEST_F(ReadableCure, OneThatTheServerHasIsReread) {
    server.path = {"built-ins", dir};
    const auto deed = carry_out(reading_all());
    ASSERT_TRUE(deed);
    EXPECT_EQ(server.path_changes, 1);
    EXPECT_THAT(deed->remarks, IsEmpty());
}

TEST_F(ReadableCure, ThatTheServerStillRefusesItIsSaid) {
    configure_before(dir);
    server.refused = {dir};
    const auto deed = carry_out(reading_all());
    ASSERT_TRUE(deed);
    ASSERT_THAT(deed->remarks, SizeIs(1));
    EXPECT_EQ(deed->remarks[0].said, Said::SERVER_STILL_REFUSES);
    expect_modes(0701, 0644, 0604);
}

TEST_F(ReadableCure, NeitherALinkNorItsTargetGetsAnything) {
    home.write("secret", "");
    ::chmod(home.file("secret").c_str(), 0600);
    std::filesystem::create_symlink(home.file("secret"), dir + "link.pcf");
    const auto deed = carry_out(reading({{dir + "x.pcf", S_IROTH}, {dir + "link.pcf", S_IROTH}}));
    ASSERT_FALSE(deed);
    EXPECT_EQ(deed.failure().reason, Reason::NOT_OURS);
    EXPECT_EQ(mode_of(home.file("secret")), 0600U);
    expect_modes(0700, 0640, 0600);
}

TEST_F(ReadableCure, AFileWithASecondNameGetsNothing) {
    home.write("secret", "");
    ::chmod(home.file("secret").c_str(), 0600);
    std::filesystem::create_hard_link(home.file("secret"), dir + "y.pcf");
    EXPECT_EQ(carry_out(reading({{dir + "y.pcf", S_IROTH}})).failure().reason, Reason::NOT_OURS);
    EXPECT_EQ(mode_of(home.file("secret")), 0600U);
}

TEST_F(ReadableCure, WhatIsOutsideOfTheDirectoryGetsNothing) {
    home.write("secret.pcf", "");
    ::chmod(home.file("secret.pcf").c_str(), 0600);
    EXPECT_EQ(carry_out(reading({{dir + "../secret.pcf", S_IROTH}})).failure().reason, Reason::NOT_OURS);
    EXPECT_EQ(mode_of(home.file("secret.pcf")), 0600U);
}

TEST_F(ReadableCure, WhatBelongsToSomebodyElseGetsNothing) {
    std::string theirs = "/etc/passwd";
    if (is_root()) {
        theirs = dir + "x.pcf";
        ASSERT_EQ(::chown(theirs.c_str(), 1000, 1000), 0);
    }
    const mode_t before = mode_of(theirs);
    EXPECT_EQ(carry_out(reading({{theirs, S_IRGRP}})).failure().reason, Reason::NOT_OURS);
    EXPECT_EQ(mode_of(theirs), before);
}

TEST_F(ReadableCure, NothingGetsMoreThanReadingAndPassing) {
    ASSERT_TRUE(carry_out(reading({{dir + "x.pcf", 07777}, {home.file("private"), 07777}})));
    expect_modes(0711, 0640, 0644);
}

TEST_F(ReadableCure, AfterAFailureAllModesAreAsTheyWere) {
    Cure cure = reading_all();
    cure.rights.emplace_back(dir + "zzz-missing", S_IROTH);
    const auto deed = carry_out(cure);
    ASSERT_FALSE(deed);
    EXPECT_TRUE(deed.failure().is_absence());
    expect_modes(0700, 0640, 0600);
}

TEST_F(ReadableCure, WhatSomebodyElseHasChangedMeanwhileStays) {
    const auto deed = carry_out(reading_all());
    ASSERT_TRUE(deed);
    ::chmod((dir + "x.pcf").c_str(), 0666);
    EXPECT_EQ(deed->undo().failure().reason, Reason::CHANGED_SINCE);
    expect_modes(0700, 0640, 0666);
}

TEST_F(ReadableCure, ADirectoryThatHasGoneNeedsNoUndoing) {
    const auto deed = carry_out(reading_all());
    ASSERT_TRUE(deed);
    std::filesystem::remove_all(dir);
    EXPECT_TRUE(deed->undo());
}

}  // namespace
