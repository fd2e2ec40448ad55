// SPDX-License-Identifier: MIT
//
// Cures on a running X server: what is planned from the state of a broken font path makes it work.
#include <filesystem>
#include <functional>
#include <memory>
#include <ostream>

#include "diagnosis/cure_plan.h"
#include "diagnosis/element_state.h"
#include "fontpath/xlib_server_view.h"
#include "support/bitmap_maker.h"
#include "unit/cures/cure_fixture.h"

namespace {

using gw::diagnosis::Answer;
using gw::diagnosis::Cure;
using gw::diagnosis::ElementReport;
using gw::diagnosis::ElementState;
using gw::diagnosis::Remedy;
using gw::test::BitmapMaker;
using gw::test::Cures;
using testing::Contains;
using testing::Not;

constexpr const char* CROSSES = "-misc-crosses-medium-r-normal--8-80-75-75-c-80-iso10646-1";
constexpr const char* PATTERN = "-nobody-has-bold-r-normal--*-80-*";
constexpr int MOST_CURES = 4;

/// How a directory is broken, and what cures it.
struct Breakage {
    const char* name;
    std::function<void(const std::string& dir)> breaks;
    std::vector<Remedy> cures;
    bool is_for_the_superuser = true;
    friend std::ostream& operator<<(std::ostream& out, const Breakage& breakage) {
        return out << breakage.name;
    }
};

void write_in(const std::string& dir, const std::string& name, const std::string& bytes) {
    gw::test::write(dir + name, bytes);
}

const std::vector<Breakage> BREAKAGES = {
    {"not_served", [](const std::string&) {}, {Remedy::SERVE_DIRECTORY}},
    {"no_index",
     [](const std::string& dir) { std::filesystem::remove(dir + "fonts.dir"); },
     {Remedy::MAKE_INDEX}},
    {"refused_first_line",
     [](const std::string& dir) { write_in(dir, "fonts.dir", "crosses.bdf " + std::string(CROSSES) + '\n'); },
     {Remedy::MAKE_INDEX}},
    {"lone_last_word",
     [](const std::string& dir) {
         write_in(dir, "fonts.dir", "2\ncrosses.bdf " + std::string(CROSSES) + "\nx.bdf\n");
     },
     {Remedy::MAKE_INDEX}},
    {"stale_index",
     [](const std::string& dir) { write_in(dir, "fonts.dir", "1\nold.bdf " + std::string(CROSSES) + '\n'); },
     {Remedy::MAKE_INDEX}},
    {"refused_aliases",
     [](const std::string& dir) { write_in(dir, "fonts.alias", "good fixed\nlone\nself self\n"); },
     {Remedy::COMMENT_OUT}},
    {"unreadable_index",
     [](const std::string& dir) { ::chmod((dir + "fonts.dir").c_str(), 0); },
     {Remedy::MAKE_READABLE},
     false},
    {"unreadable_font",
     [](const std::string& dir) { ::chmod((dir + "crosses.bdf").c_str(), 0); },
     {Remedy::MAKE_READABLE},
     false},
    {"closed_directory",
     [](const std::string& dir) { ::chmod(dir.c_str(), 0600); },
     {Remedy::MAKE_READABLE},
     false},
};

class RealServerCures : public Cures {
  protected:
    RealServerCures() {
        dir = home.make_dir("crosses");
        home.write("crosses/crosses.bdf", BitmapMaker{.family = "Crosses"}.make_bdf());
        home.write("crosses/fonts.dir", "1\ncrosses.bdf " + std::string(CROSSES) + '\n');
    }
    void SetUp() override {
        ASSERT_TRUE(real);
        path_before = real->font_path();
    }
    void TearDown() override { EXPECT_TRUE(!real || real->set_font_path(path_before)); }

    [[nodiscard]] ElementReport report() const {
        for (const ElementReport& report : gw::diagnosis::look_at_path(*real, now()).reports) {
            if (report.element == dir) return report;
        }
        ADD_FAILURE() << "no report on " << dir;
        return {};
    }
    [[nodiscard]] gw::diagnosis::Surroundings now() const {
        gw::diagnosis::Surroundings with_path = surroundings;
        with_path.configured = configured();
        return with_path;
    }
    [[nodiscard]] std::vector<Cure> plan() const {
        Answer answer;
        answer.question = {.wanted = gw::diagnosis::Wanted::DIRECTORY, .name = dir};
        answer.server_user = real->user();
        answer.server_groups = real->groups();
        answer.path = gw::diagnosis::look_at_path(*real, now()).reports;
        return gw::diagnosis::plan_cures(answer, now());
    }

    std::string dir;
    std::vector<std::string> path_before;
    std::unique_ptr<gw::ServerView> real = gw::connect_to_server();
};

class BrokenPath : public RealServerCures, public testing::WithParamInterface<Breakage> {};

TEST_P(BrokenPath, IsMendedByWhatIsPlannedFromItsState) {
    if (gw::test::is_root() && !GetParam().is_for_the_superuser) GTEST_SKIP() << "the superuser reads all";
    configure_before(dir);
    GetParam().breaks(dir);
    ASSERT_FALSE(real->open(CROSSES));
    ASSERT_NE(report().state, ElementState::WORKS);

    std::vector<Remedy> used;
    std::vector<gw::diagnosis::Deed> deeds;
    while (!real->open(CROSSES) && used.size() < MOST_CURES) {
        const std::vector<Cure> cures = plan();
        ASSERT_FALSE(cures.empty());
        used.push_back(cures.front().remedy);
        auto deed = gw::diagnosis::carry_out(cures.front(), *real, now());
        ASSERT_TRUE(deed) << deed.failure().text();
        deeds.push_back(std::move(*deed));
    }
    EXPECT_EQ(used, GetParam().cures);
    EXPECT_TRUE(real->open(CROSSES));
    EXPECT_EQ(report().state, ElementState::WORKS);
    EXPECT_THAT(after_login(), Contains(dir));

    for (auto deed = deeds.rbegin(); deed != deeds.rend(); ++deed) EXPECT_TRUE(deed->undo());
    EXPECT_THAT(real->font_path(), Not(Contains(dir)));
    EXPECT_NE(report().state, ElementState::WORKS);
}

INSTANTIATE_TEST_SUITE_P(All, BrokenPath, testing::ValuesIn(BREAKAGES),
                         [](const auto& param) { return std::string(param.param.name); });

TEST_F(RealServerCures, AStaleIndexThatTheServerHasIsReread) {
    configure_before(dir);
    home.write("crosses/fonts.dir", "0\n");
    std::vector<std::string> path = real->font_path();
    path.push_back(dir);
    ASSERT_TRUE(real->set_font_path(path));
    ASSERT_FALSE(real->open(CROSSES));
    const auto deed = gw::diagnosis::carry_out({.remedy = Remedy::MAKE_INDEX, .element = dir}, *real, now());
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_TRUE(real->open(CROSSES));
    ASSERT_TRUE(deed->undo());
    EXPECT_FALSE(real->open(CROSSES));
}

TEST_F(RealServerCures, TheAliasOfAPatternIsWhatProgramsGet) {
    configure_before(dir);
    std::vector<std::string> path = real->font_path();
    path.push_back(dir);
    ASSERT_TRUE(real->set_font_path(path));
    for (const char* wanted :
         {PATTERN, "*-nobody-*", "plain", "two words", "qu\"o\\te", "!bang", "*no*body*"}) {
        ASSERT_FALSE(real->open(wanted)) << wanted;
        const auto cure = gw::diagnosis::alias_cure(wanted, CROSSES, false, now());
        ASSERT_TRUE(cure) << wanted;
        const auto deed = gw::diagnosis::carry_out(*cure, *real, now());
        ASSERT_TRUE(deed) << deed.failure().text();
        const auto font = real->open(wanted);
        ASSERT_TRUE(font) << wanted << " by " << cure->wanted;
        EXPECT_EQ(font->ascent, 8);
        ASSERT_TRUE(deed->undo());
        EXPECT_FALSE(real->open(wanted)) << wanted;
    }
}

TEST_F(RealServerCures, WithoutAnAliasThatLeadsNowhereTheNextAnswerIsFound) {
    configure_before(dir);
    home.write("crosses/fonts.alias", "fixed -none-*\n");
    std::vector<std::string> path = real->font_path();
    path.insert(path.begin(), dir);
    ASSERT_TRUE(real->set_font_path(path));
    const gw::diagnosis::Question question{.wanted = gw::diagnosis::Wanted::FONT, .name = "fixed"};
    const Answer before = gw::diagnosis::answer(question, *real, now());
    ASSERT_FALSE(before.works);
    const auto cure = std::find_if(before.cures.begin(), before.cures.end(),
                                   [](const Cure& planned) { return planned.remedy == Remedy::COMMENT_OUT; });
    ASSERT_NE(cure, before.cures.end());
    const auto deed = gw::diagnosis::carry_out(*cure, *real, now());
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_TRUE(real->open("fixed"));
    ASSERT_TRUE(deed->undo());
    EXPECT_FALSE(real->open("fixed"));
}

TEST_F(RealServerCures, AnAliasInFrontHidesAnotherAnswer) {
    configure_before(dir);
    std::vector<std::string> path = real->font_path();
    path.push_back(dir);
    ASSERT_TRUE(real->set_font_path(path));
    ASSERT_TRUE(real->open("fixed"));
    ASSERT_NE(real->open("fixed")->ascent, 8);
    const auto cure = gw::diagnosis::alias_cure("fixed", CROSSES, true, now());
    ASSERT_TRUE(cure);
    const auto deed = gw::diagnosis::carry_out(*cure, *real, now());
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_EQ(real->open("fixed")->ascent, 8);
    ASSERT_TRUE(deed->undo());
    EXPECT_NE(real->open("fixed")->ascent, 8);
}

TEST_F(RealServerCures, ADirectoryIsServedAlthoughAnotherElementIsDead) {
    const std::string dying = fonts("dying");
    std::vector<std::string> path = real->font_path();
    path.push_back(dying);
    ASSERT_TRUE(real->set_font_path(path));
    std::filesystem::remove_all(dying);
    const auto deed =
        gw::diagnosis::carry_out({.remedy = Remedy::SERVE_DIRECTORY, .element = dir}, *real, now());
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_TRUE(real->open(CROSSES));
    EXPECT_THAT(real->font_path(), Not(Contains(dying)));
    ASSERT_EQ(deed->remarks.size(), 1U);
    EXPECT_EQ(deed->remarks[0].details, std::vector<std::string>{dying});
}

TEST_F(RealServerCures, ADeadElementIsTakenOffAndOthersCanBeAddedAgain) {
    const std::string dying = fonts("dying");
    configure_before(dying);
    std::vector<std::string> path = real->font_path();
    path.insert(path.begin(), dying);
    ASSERT_TRUE(real->set_font_path(path));
    std::filesystem::remove_all(dying);
    std::vector<std::string> longer = path;
    longer.push_back(dir);
    ASSERT_FALSE(real->set_font_path(longer)) << "this is what the element does to a server";
    const std::vector<Cure> cures = plan();
    const auto off = std::find_if(cures.begin(), cures.end(), [&](const Cure& cure) {
        return cure.remedy == Remedy::TAKE_OFF && cure.element == dying;
    });
    ASSERT_NE(off, cures.end());
    const auto deed = gw::diagnosis::carry_out(*off, *real, now());
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_THAT(configured(), Not(Contains(dying)));
    longer.erase(longer.begin());
    EXPECT_TRUE(real->set_font_path(longer));
    (void)fonts("dying");
    ASSERT_TRUE(deed->undo());
    EXPECT_EQ(real->font_path().front(), dying);
    EXPECT_THAT(configured(), Contains(dying));
}

// --- from the question to the font ---------------------------------------------

class AnsweredCures : public RealServerCures {
  protected:
    [[nodiscard]] Answer answer(const std::string& name) const {
        gw::diagnosis::Surroundings all = now();
        all.other_directories = {dir};
        return gw::diagnosis::answer({.name = name}, *real, all);
    }
    /// Asks, and carries out the first cure, until the font is there. Returns what was done.
    std::vector<Remedy> cure(const std::string& name) {
        std::vector<Remedy> used;
        for (Answer now_known = answer(name); !now_known.works && used.size() < MOST_CURES;
             now_known = answer(name)) {
            if (now_known.cures.empty()) break;
            used.push_back(now_known.cures.front().remedy);
            const auto deed = gw::diagnosis::carry_out(now_known.cures.front(), *real, now());
            EXPECT_TRUE(deed) << deed.failure().text();
            if (!deed) break;
        }
        return used;
    }
    void expect_crosses(const std::string& name) const {
        const Answer known = answer(name);
        EXPECT_TRUE(known.works) << name;
        EXPECT_EQ(known.font.file, dir + "crosses.bdf");
        EXPECT_EQ(real->open(name).value_or(gw::OpenedFont{}).ascent, 8);
    }
};

TEST_F(AnsweredCures, AFontInADirectoryThatNoPathHas) {
    EXPECT_EQ(cure(CROSSES), std::vector{Remedy::SERVE_DIRECTORY});
    expect_crosses(CROSSES);
    EXPECT_THAT(after_login(), Contains(dir));
}

TEST_F(AnsweredCures, APatternForIt) {
    EXPECT_EQ(cure("-*-crosses-medium-*-80-*"), std::vector{Remedy::SERVE_DIRECTORY});
    expect_crosses("-*-crosses-medium-*-80-*");
}

TEST_F(AnsweredCures, AFontOfAConfiguredDirectoryWithoutAnIndex) {
    configure_before(dir);
    std::filesystem::remove(dir + "fonts.dir");
    EXPECT_EQ(cure(CROSSES), std::vector{Remedy::MAKE_INDEX});
    expect_crosses(CROSSES);
}

TEST_F(AnsweredCures, AFontThatOnlyItsOwnerMayNotRead) {
    if (gw::test::is_root()) GTEST_SKIP() << "the superuser reads all";
    configure_before(dir);
    std::vector<std::string> path = real->font_path();
    path.push_back(dir);
    ASSERT_TRUE(real->set_font_path(path));
    ::chmod((dir + "crosses.bdf").c_str(), 0);
    EXPECT_EQ(cure(CROSSES), std::vector{Remedy::MAKE_READABLE});
    expect_crosses(CROSSES);
}

TEST_F(AnsweredCures, ANameThatNoFontHasBecomesAnAliasOfTheOneThatIsChosen) {
    std::vector<std::string> path = real->font_path();
    path.insert(path.begin(), dir);
    ASSERT_TRUE(real->set_font_path(path));
    const Answer before = answer(PATTERN);
    ASSERT_FALSE(before.works);
    const auto chosen = gw::diagnosis::alias_cure(PATTERN, CROSSES, false, now());
    ASSERT_TRUE(chosen);
    ASSERT_TRUE(gw::diagnosis::carry_out(*chosen, *real, now()));
    expect_crosses(PATTERN);
    EXPECT_THAT(answer(PATTERN).font.aliases, Not(testing::IsEmpty()));
    const auto offered = [](const Cure& cure) { return cure.remedy == Remedy::ADD_ALIAS; };
    EXPECT_EQ(std::count_if(before.cures.begin(), before.cures.end(), offered), 1);
}

TEST_F(AnsweredCures, AFontThatHasComeSinceTheServerLookedThere) {
    configure_before(dir);
    std::vector<std::string> path = real->font_path();
    path.push_back(dir);
    const std::string index = home.read("crosses/fonts.dir");
    home.write("crosses/fonts.dir", "0\n");
    ASSERT_TRUE(real->set_font_path(path));
    home.write("crosses/fonts.dir", index);  // in the same second
    EXPECT_EQ(cure(CROSSES), std::vector{Remedy::READ_AGAIN});
    expect_crosses(CROSSES);
    EXPECT_EQ(real->font_path(), path);
}

// Of several fonts that a pattern matches, the first directory of the path decides.
TEST_F(AnsweredCures, WhatComesToTheFrontIsWhatAPatternGives) {
    const std::string pattern = "-misc-crosses-medium-*";
    std::string large = BitmapMaker{.family = "Crosses"}.make_bdf();
    for (const auto& [small, its_size] : {std::pair("--8-80-", "--16-160-"), std::pair("-c-80-", "-c-160-"),
                                          std::pair("PIXEL_SIZE 8", "PIXEL_SIZE 16")})
        large.replace(large.find(small), std::string(small).size(), its_size);
    home.write("large/large.bdf", large);
    home.write("large/fonts.dir",
               "1\nlarge.bdf -misc-crosses-medium-r-normal--16-160-75-75-c-160-iso10646-1\n");
    std::vector<std::string> path = real->font_path();
    path.insert(path.begin(), {dir, home.file("large/")});
    ASSERT_TRUE(real->set_font_path(path));
    ASSERT_EQ(answer(pattern).font.file, dir + "crosses.bdf");
    const auto deed = gw::diagnosis::carry_out(
        {.remedy = Remedy::SERVE_DIRECTORY, .element = home.file("large/"), .in_front = true}, *real, now());
    ASSERT_TRUE(deed) << deed.failure().text();
    EXPECT_EQ(answer(pattern).font.file, home.file("large/large.bdf"));
    EXPECT_EQ(after_login(path).front(), home.file("large/"));
    ASSERT_TRUE(deed->undo());
    EXPECT_EQ(answer(pattern).font.file, dir + "crosses.bdf");
    EXPECT_EQ(real->font_path(), path);
}

TEST_F(AnsweredCures, AskingChangesNothing) {
    home.make_dir("no-index");
    configure_before(home.file("no-index"));
    configure_before("/gone/");
    const auto all = [&] {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(home.path()))
            names.push_back(entry.path().string() + ' ' +
                            std::to_string(entry.last_write_time().time_since_epoch().count()));
        std::sort(names.begin(), names.end());
        return names;
    };
    const std::vector<std::string> before = all();
    const std::string file = path_file();
    const std::vector<std::string> path = real->font_path();
    for (const char* name : {CROSSES, PATTERN, "fixed", "nothing"}) EXPECT_FALSE(answer(name).path.empty());
    EXPECT_EQ(all(), before);
    EXPECT_EQ(path_file(), file);
    EXPECT_EQ(real->font_path(), path);
}

}  // namespace
