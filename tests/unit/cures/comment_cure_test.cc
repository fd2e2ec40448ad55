// SPDX-License-Identifier: MIT
#include "diagnosis/comment_cure.h"

#include <filesystem>

#include "support/heard_failures.h"
#include "unit/cures/cure_fixture.h"

namespace {

using gw::Reason;
using gw::diagnosis::Cure;
using gw::diagnosis::Remedy;
using gw::diagnosis::Said;
using gw::diagnosis::Sentence;
using gw::test::Cures;

class CommentCure : public Cures {
  protected:
    [[nodiscard]] Cure cure(const std::vector<gw::AliasOfFont>& aliases = {}) const {
        return {.remedy = Remedy::COMMENT_OUT, .element = dir, .aliases = aliases};
    }
    void write_aliases(const std::string& text) const { home.write("fonts/fonts.alias", text); }
    [[nodiscard]] std::string aliases() const { return gw::test::TempDir::read_bytes(file); }

    std::string dir = fonts("fonts");
    std::string file = dir + "fonts.alias";
};

TEST_F(CommentCure, ExactlyTheLinesAtFaultBecomeComments) {
    const std::string text = "good font\n\tlone ! why\n! self self\nself SELF\nlast font";
    write_aliases(text);
    ::chmod(file.c_str(), 0640);
    const auto deed = carry_out(cure());
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_EQ(deed->what, (Sentence{Said::DONE_COMMENTED, {file, "2, 4"}}));
    EXPECT_EQ(aliases(), "good font\n! \tlone ! why\n! self self\n! self SELF\nlast font");
    struct stat info = {};
    ASSERT_EQ(::stat(file.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777U, 0640U);
    ASSERT_TRUE(deed->undo());
    EXPECT_EQ(aliases(), text);
    EXPECT_EQ(deed->undo().failure().reason, Reason::UNDONE_ALREADY);
}

TEST_F(CommentCure, AliasesThatLeadNowhereGoToo) {
    write_aliases("fancy -none-*\nFancy other\na b Fancy -NONE-* c d\n");
    ASSERT_TRUE(carry_out(cure({{"fancy", "-none-*"}})));
    EXPECT_EQ(aliases(), "! fancy -none-*\nFancy other\na b c d\n! a b Fancy -NONE-* c d\n");
}

TEST_F(CommentCure, WhereNothingIsAtFaultNothingIsWritten) {
    write_aliases("good font\n");
    const auto deed = carry_out(cure());
    ASSERT_TRUE(deed);
    EXPECT_EQ(deed->what.said, Said::NO_LINE_AT_FAULT);
    EXPECT_EQ(aliases(), "good font\n");
    EXPECT_TRUE(deed->undo());
    std::filesystem::remove(file);
    EXPECT_TRUE(carry_out(cure()));
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(CommentCure, WhatSomebodyHasWrittenSinceStays) {
    write_aliases("lone\n");
    const auto deed = carry_out(cure());
    ASSERT_TRUE(deed);
    write_aliases("! lone\nnew font\n");
    EXPECT_EQ(deed->undo().failure().reason, Reason::CHANGED_SINCE);
    EXPECT_EQ(aliases(), "! lone\nnew font\n");
}

TEST_F(CommentCure, ALinkIsNotFollowed) {
    const gw::test::HeardFailures heard;
    home.write("elsewhere", "lone\n");
    std::filesystem::create_symlink(home.file("elsewhere"), file);
    const auto deed = carry_out(cure());
    ASSERT_FALSE(deed);
    EXPECT_EQ(deed.failure().reason, Reason::NOT_OURS);
    EXPECT_EQ(gw::test::TempDir::read_bytes(home.file("elsewhere")), "lone\n");
}

TEST(LineNumbers, OfManyOnlyTheFirstAreSaid) {
    EXPECT_EQ(gw::diagnosis::line_numbers({3, 7}), "3, 7");
    EXPECT_EQ(gw::diagnosis::line_numbers({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}),
              "1, 2, 3, 4, 5, 6, 7, 8, 9, 10, ...");
}

}  // namespace
