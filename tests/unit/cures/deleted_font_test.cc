// SPDX-License-Identifier: MIT
#include "diagnosis/deleted_font.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>

#include "platform/user_name.h"
#include "store/trash.h"
#include "support/changed_directory.h"
#include "support/trash_on.h"
#include "unit/cures/cure_fixture.h"

namespace {

using gw::DirectoryChange;
using gw::Reason;
using gw::diagnosis::Answer;
using gw::diagnosis::Remedy;
using gw::diagnosis::Said;
using gw::diagnosis::Wanted;
using gw::test::Cures;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* BITMAP = "-own-aardvark-medium-r-normal--12-120-75-75-c-60-iso8859-1";
constexpr const char* OUTLINE = "-own-aardwolf-medium-r-normal--0-0-0-0-p-0-iso8859-1";

class DeletedFont : public Cures {
  protected:
    DeletedFont() {
        home.write("fonts/a.pcf", "A");
        home.write("fonts/w.ttf", "W");
        surroundings.configured = {dir};
        remove("a.pcf");
        gw::test::TrashOn::pass(60);
        remove("w.ttf");
    }
    void remove(const std::string& file) const {
        EXPECT_TRUE(gw::in_change(dir, [&](DirectoryChange& change) {
            change.strike_out(file, 9);
            (void)change.take_out(file, false);
            return gw::done();
        }));
    }
    [[nodiscard]] Answer ask(const std::string& name, Wanted wanted = Wanted::FONT) const {
        Answer answer;
        answer.question.wanted = wanted;
        answer.question.name = name;
        add_deleted_fonts(answer, surroundings);
        return answer;
    }

    const gw::test::TrashOn on;
    std::string dir = fonts("fonts", std::string("2\na.pcf ") + BITMAP + "\nw.ttf " + OUTLINE + '\n');
};

TEST_F(DeletedFont, IsNamedWithTimeAndUserAndCanComeBack) {
    for (const char* name : {BITMAP, "-own-AARDVARK-*-iso8859-1", "-*-aardvark-medium-r-*-*-12-*"}) {
        const Answer answer = ask(name);
        ASSERT_THAT(answer.verdict, SizeIs(1)) << name;
        EXPECT_EQ(answer.verdict[0].said, Said::WAS_DELETED);
        EXPECT_EQ(answer.verdict[0].details.at(0), "Aardvark Medium [Bitmap]");
        EXPECT_EQ(answer.verdict[0].details.at(1), dir);
        EXPECT_THAT(answer.verdict[0].details.at(2), testing::MatchesRegex("20..-..-.. ..:.."));
        EXPECT_EQ(answer.verdict[0].details.at(3), gw::user_name(::geteuid()));
        ASSERT_THAT(answer.cures, SizeIs(1));
        EXPECT_EQ(answer.cures[0].remedy, Remedy::BRING_BACK);
        EXPECT_EQ(answer.cures[0].element, dir);
    }
}

TEST_F(DeletedFont, OutlinesHaveEverySize) {
    EXPECT_THAT(ask("-own-aardwolf-medium-r-normal--17-*-*-*-p-*-iso8859-1").cures, SizeIs(1));
    EXPECT_THAT(ask("-own-aardwolf-bold-r-normal--17-*-*-*-p-*-iso8859-1").cures, IsEmpty());
    EXPECT_THAT(ask("-own-aardvark-medium-r-normal--17-*-*-*-c-*-iso8859-1").cures, IsEmpty())
        << "a bitmap has one size";
}

TEST_F(DeletedFont, IsFoundByItsFileAndByWhatAnAliasStandsFor) {
    EXPECT_THAT(ask(dir + "a.pcf", Wanted::FILE).cures, SizeIs(1));
    EXPECT_THAT(ask(dir + "b.pcf", Wanted::FILE).cures, IsEmpty());
    Answer answer;
    answer.question.name = "our-font";
    answer.font.useless = {{"our-font", BITMAP, dir}};
    add_deleted_fonts(answer, surroundings);
    EXPECT_THAT(answer.cures, SizeIs(1));
}

TEST_F(DeletedFont, IsNoTopicWhereProgramsGetTheFontOrFilesAreElsewhere) {
    Answer works;
    works.question.name = BITMAP;
    works.works = true;
    add_deleted_fonts(works, surroundings);
    EXPECT_THAT(works.verdict, IsEmpty());
    Answer elsewhere;
    elsewhere.question.name = BITMAP;
    elsewhere.place = gw::ServerPlace::ELSEWHERE;
    add_deleted_fonts(elsewhere, surroundings);
    EXPECT_THAT(elsewhere.verdict, IsEmpty());
    EXPECT_THAT(ask(dir, Wanted::DIRECTORY).verdict, IsEmpty());
}

TEST_F(DeletedFont, ThatThisUserCannotBringBackHasNoCure) {
    if (::geteuid() == 0) GTEST_SKIP() << "the superuser may write everywhere";
    ::chmod(dir.c_str(), 0555);
    const Answer answer = ask(BITMAP);
    ::chmod(dir.c_str(), 0755);
    EXPECT_THAT(answer.verdict, SizeIs(1));
    EXPECT_THAT(answer.cures, IsEmpty());
}

TEST_F(DeletedFont, IsNotTouchedByTheQuestion) {
    home.write("fonts/.glyphward/journal", "glyphward-journal 2\n");
    const auto before = gw::test::files_in(home.path());
    EXPECT_THAT(ask(BITMAP).cures, SizeIs(1));
    EXPECT_EQ(gw::test::files_in(home.path()), before) << "not even a journal is settled";
}

TEST_F(DeletedFont, ComesBackAndGoesAgain) {
    const Answer answer = ask(BITMAP);
    ASSERT_THAT(answer.cures, SizeIs(1));
    server.path = {dir, "built-ins"};
    const int changes = server.path_changes;
    auto deed = carry_out(answer.cures[0]);
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_EQ(deed->what.said, Said::DONE_BROUGHT_BACK);
    EXPECT_EQ(home.read("fonts/a.pcf"), "A");
    EXPECT_EQ(home.read("fonts/fonts.dir"), std::string("1\na.pcf ") + BITMAP + '\n');
    EXPECT_GT(server.path_changes, changes) << "the server reads it again";
    EXPECT_EQ(carry_out(answer.cures[0]).failure().reason, Reason::NOT_IN_TRASH) << "somebody was faster";

    ASSERT_TRUE(deed->undo());
    EXPECT_FALSE(std::filesystem::exists(dir + "a.pcf"));
    EXPECT_EQ(home.read("fonts/fonts.dir"), "0\n");
    surroundings.configured = {dir};
    EXPECT_THAT(ask(BITMAP).cures, SizeIs(1)) << "it can come back again";
    EXPECT_EQ(deed->undo().failure().reason, Reason::UNDONE_ALREADY);
}

TEST_F(DeletedFont, WhatIsInItsWayIsTold) {
    const Answer answer = ask(BITMAP);
    ASSERT_THAT(answer.cures, SizeIs(1));
    home.write("fonts/a.pcf", "somebody else's");
    const auto deed = carry_out(answer.cures[0]);
    ASSERT_FALSE(deed);
    EXPECT_EQ(deed.failure(), (gw::Failure{dir + "a.pcf", Reason::FILE_IN_THE_WAY}));
    EXPECT_EQ(home.read("fonts/a.pcf"), "somebody else's");
}

}  // namespace
