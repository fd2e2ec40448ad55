// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "diagnosis/answer.h"
#include "support/bitmap_maker.h"
#include "support/played_server.h"
#include "support/temp_dir.h"

namespace gw::diagnosis {
namespace {

namespace fs = std::filesystem;

constexpr const char* BOX = "-test-box-medium-r-normal--8-80-75-75-c-80-iso8859-1";
constexpr const char* BOLD = "-test-box-bold-r-normal--8-80-75-75-c-80-iso8859-1";

class AnswerTest : public testing::Test {
  protected:
    std::string make(const std::string& name, const std::string& lines, const std::string& aliases = "") {
        root.write(name + "/a.pcf", test::BitmapMaker().make_pcf());
        root.write(name + "/b.pcf", "font");
        root.write(name + "/fonts.dir", "1\n" + lines);
        if (!aliases.empty()) root.write(name + "/fonts.alias", aliases);
        return root.file(name);
    }

    Answer ask(const std::string& name, Wanted wanted = Wanted::FONT, int element = 0) {
        Question question;
        question.wanted = wanted;
        question.name = name;
        question.element = element;
        return answer(question, server, surroundings);
    }

    test::TempDir root;
    test::PlayedServer server;
    Surroundings surroundings;
};

bool says(const Answer& answer, Said said) {
    return std::any_of(answer.verdict.begin(), answer.verdict.end(),
                       [said](const Sentence& sentence) { return sentence.said == said; });
}

std::string useless(const Answer& answer) {
    std::string text;
    for (const UselessAlias& alias : answer.font.useless) text += alias.alias + '=' + alias.font + ';';
    return text;
}

std::string sorted(std::string text) {
    std::sort(text.begin(), text.end());
    return text;
}

std::vector<std::string> asked_twice(const test::PlayedServer& server) {
    std::vector<std::string> asked = server.asked;
    std::sort(asked.begin(), asked.end());
    std::vector<std::string> twice;
    for (std::size_t i = 1; i < asked.size(); ++i)
        if (asked[i] == asked[i - 1]) twice.push_back(asked[i]);
    return twice;
}

TEST_F(AnswerTest, AFontThatWorks) {
    server.path = {make("one", std::string("a.pcf ") + BOX + '\n')};
    server.add(BOX);
    const Answer found = ask("-test-box-*");
    EXPECT_TRUE(found.works);
    EXPECT_EQ(found.font.found, Found::EXACT);
    EXPECT_EQ(found.font.name, BOX);
    EXPECT_EQ(found.font.file, root.file("one/a.pcf"));
    EXPECT_EQ(found.font.element, root.file("one"));
    EXPECT_TRUE(found.font.is_checked);
    EXPECT_TRUE(says(found, Said::FONT_WORKS_FROM));
    EXPECT_TRUE(found.nearest.empty());
    EXPECT_EQ(asked_twice(server), std::vector<std::string>());
}

TEST_F(AnswerTest, AFileThatDoesNotAgreeWithWhatWasOpenedIsNotCertain) {
    server.path = {make("one", std::string("a.pcf ") + BOX + '\n')};
    server.add_alias(BOX, "-other-font-medium-r-normal--8-80-75-75-c-80-iso8859-1");
    const Answer found = ask(BOX);
    EXPECT_TRUE(found.works);
    EXPECT_FALSE(found.font.is_checked);
    EXPECT_TRUE(says(found, Said::FILE_NOT_CERTAIN));
}

TEST_F(AnswerTest, AnAliasLeadsThroughTheWholePath) {
    server.path = {make("one", "", std::string("nice good\n")),
                   make("two", std::string("b.pcf ") + BOX + '\n', std::string("good ") + BOX + '\n')};
    server.add(BOX);
    server.add_alias("nice", BOX);
    const Answer found = ask("nice");
    EXPECT_EQ(found.font.aliases, (std::vector<std::string>{"nice", "good"}));
    EXPECT_EQ(found.font.file, root.file("two/b.pcf"));
    EXPECT_TRUE(says(found, Said::THROUGH_ALIASES));
}

TEST_F(AnswerTest, AnAliasThatLeadsNowhere) {
    server.path = {make("one", std::string("a.pcf ") + BOX + '\n', "nice -none-*\n")};
    server.add(BOX);
    const Answer found = ask("nice");
    EXPECT_FALSE(found.works);
    EXPECT_EQ(found.font.found, Found::NOTHING);
    EXPECT_TRUE(says(found, Said::ALIAS_LEADS_NOWHERE));
    EXPECT_EQ(useless(found), "nice=-none-*;");
    EXPECT_EQ(useless(ask(BOX)), "");
}

TEST_F(AnswerTest, AliasesInACircleAndOfNothingAreNotAskedFor) {
    server.path = {make("one", std::string("a.pcf ") + BOX + '\n', "a b\nb c\nc a\nnothing \"\"\n")};
    EXPECT_TRUE(says(ask("a"), Said::ALIASES_IN_CIRCLE));
    const Answer nothing = ask("nothing");
    EXPECT_TRUE(says(nothing, Said::ALIAS_OF_NOTHING));
    EXPECT_EQ(useless(nothing), "nothing=;");
    root.write("one/fonts.alias", "in a\na b\nb c\nc a\n");
    EXPECT_EQ(sorted(useless(ask("in"))), sorted("a=b;b=c;c=a;")) << "not the one that leads there";
    std::string chain;
    for (int i = 0; i < 30; ++i) chain += "l" + std::to_string(i) + " l" + std::to_string(i + 1) + '\n';
    root.write("one/fonts.alias", chain);
    EXPECT_TRUE(says(ask("l0"), Said::ALIASES_IN_CIRCLE));
    EXPECT_EQ(useless(ask("l0")), "") << "none is worse than the others";
    for (const std::string& question : server.asked) EXPECT_FALSE(question.starts_with("open")) << question;
}

TEST_F(AnswerTest, AFontThatIsConfiguredOnly) {
    server.path = {make("one", std::string("a.pcf ") + BOX + '\n')};
    surroundings.configured = {make("two", std::string("b.pcf ") + BOLD + '\n')};
    server.add(BOX);
    const Answer found = ask(BOLD);
    EXPECT_FALSE(found.works);
    ASSERT_FALSE(found.nearest.empty());
    EXPECT_EQ(found.nearest[0].name, BOLD);
    EXPECT_FALSE(found.nearest[0].is_served);
    EXPECT_TRUE(found.nearest[0].differences.empty());
    EXPECT_EQ(found.nearest[0].element, root.file("two"));
    EXPECT_TRUE(says(found, Said::FONT_IS_UNSERVED));
    EXPECT_FALSE(found.cures.empty());
}

TEST_F(AnswerTest, TheServerIsAskedOnceForEachPattern) {
    server.path = {make("one", std::string("a.pcf ") + BOX + '\n'), "tcp/none:7100"};
    server.add(BOX);
    for (const char* name : {BOLD, BOX, "-none-*", "**"}) {
        server.asked.clear();
        (void)ask(name);
        EXPECT_EQ(asked_twice(server), std::vector<std::string>()) << name;
    }
}

TEST_F(AnswerTest, AFontOfAnotherDirectory) {
    server.path = {make("one", std::string("a.pcf ") + BOX + '\n')};
    surroundings.other_directories = {make("three", std::string("b.pcf ") + BOLD + '\n') + '/',
                                      root.file("one")};
    server.add(BOX);
    const Answer found = ask("-*-box-bold-*");
    ASSERT_FALSE(found.nearest.empty());
    EXPECT_EQ(found.nearest[0].file, root.file("three/b.pcf"));
    EXPECT_EQ(found.nearest[0].element, root.file("three/"));
    const auto from_one = std::count_if(found.nearest.begin(), found.nearest.end(),
                                        [](const NearFont& font) { return font.name == BOX; });
    EXPECT_EQ(from_one, 1) << "a directory that is served is no other one";
}

TEST_F(AnswerTest, AFontWhoseFileIsMissing) {
    const std::string one = make("one", std::string("c.pcf ") + BOX + '\n');
    server.path = {one};
    server.fonts.push_back({.name = BOX, .can_be_opened = false});
    const Answer found = ask(BOX);
    EXPECT_EQ(found.font.found, Found::NOT_OPENED);
    EXPECT_EQ(found.font.file, one + "/c.pcf");
    EXPECT_TRUE(says(found, Said::FONT_CANNOT_BE_OPENED));
    EXPECT_TRUE(says(found, Said::FONT_FILE_MISSING));
}

TEST_F(AnswerTest, AFontOfADirectoryThatIsGone) {
    server.path = {root.file("gone")};
    server.fonts.push_back({.name = BOX, .can_be_opened = false});
    const Answer found = ask(BOX);
    EXPECT_EQ(found.font.found, Found::NOT_OPENED);
    EXPECT_TRUE(says(found, Said::FONT_CANNOT_BE_OPENED));
    EXPECT_TRUE(says(found, Said::PATH_HAS_DEAD_ELEMENTS));
}

TEST_F(AnswerTest, AFontWhoseFileIsNoFont) {
    server.path = {make("one", std::string("a.pcf ") + BOX + '\n')};
    root.write("one/a.pcf", "font");
    server.fonts.push_back({.name = BOX, .can_be_opened = false});
    const Answer found = ask(BOX);
    EXPECT_EQ(found.font.found, Found::NOT_OPENED);
    EXPECT_TRUE(says(found, Said::FONT_FILE_DAMAGED));
}

/// The reason comes at once, not only with the state of the path.
TEST_F(AnswerTest, AFontThatNoIndexNames) {
    server.path = {make("one", "")};
    const char* const boxes = "-misc-boxes-bold-r-normal--8-80-75-75-c-80-iso10646-1";
    const Answer found = ask(boxes);
    ASSERT_GE(found.verdict.size(), 2U);
    EXPECT_EQ(found.verdict[0].said, Said::NO_SUCH_FONT);
    EXPECT_EQ(found.verdict[1].said, Said::FONT_NOT_IN_INDEX);
    EXPECT_EQ(found.verdict[1].details, (std::vector<std::string>{root.file("one/a.pcf"), root.file("one")}));
    fs::last_write_time(root.file("one/a.pcf"), fs::file_time_type::clock::now() + std::chrono::hours(1));
    EXPECT_TRUE(says(ask(boxes), Said::FONT_NEWER_THAN_INDEX));
    EXPECT_FALSE(says(ask("-misc-circles-*"), Said::FONT_NEWER_THAN_INDEX));
    EXPECT_FALSE(says(ask("nonsuch"), Said::FONT_NEWER_THAN_INDEX));
}

TEST_F(AnswerTest, AnIndexThatTheServerHasNotReadAgain) {
    server.path = {make("one", std::string("a.pcf ") + BOX + '\n')};
    server.add(BOLD);
    const Answer found = ask(BOX);
    EXPECT_EQ(found.font.found, Found::NOTHING);
    EXPECT_TRUE(says(found, Said::FONT_NOT_READ_YET));
}

TEST_F(AnswerTest, ASizeThatIsMadeOfABitmap) {
    const char* const larger = "-test-box-medium-r-normal--16-160-75-75-c-160-iso8859-1";
    server.path = {make("one", std::string("a.pcf ") + BOX + '\n')};
    server.add(BOX);
    server.fonts.push_back({.name = larger, .is_listed = false});
    const Answer found = ask(larger);
    EXPECT_EQ(found.font.found, Found::SCALED);
    EXPECT_EQ(found.font.file, root.file("one/a.pcf"));
    EXPECT_TRUE(found.font.is_checked);
    EXPECT_TRUE(says(found, Said::FONT_IS_SCALED));
}

TEST_F(AnswerTest, BadNames) {
    server.path = {make("one", std::string("a.pcf ") + BOX + '\n')};
    server.add(BOX);
    EXPECT_TRUE(says(ask(""), Said::NOTHING_ASKED));
    EXPECT_TRUE(says(ask(std::string(5000, '-')), Said::TOO_LONG_FOR_A_FONT));
    EXPECT_TRUE(says(ask("-none-**-*"), Said::IDLE_ASTERISK));
    EXPECT_TRUE(says(ask("-*-*-*-*-*-*-*-*-*-*-*-*-*-*-none"), Said::NO_SUCH_FONT));
    EXPECT_TRUE(says(ask("\x1b[31m\n\t"), Said::NO_SUCH_FONT));
    EXPECT_TRUE(says(ask("-test-none-medium-r-normal--30-80-75-75-c-80-iso8859-1"), Said::NO_SUCH_FONT));
}

TEST_F(AnswerTest, SizesThatContradictEachOther) {
    server.path = {make("one", std::string("a.pcf ") + BOX + '\n')};
    server.add(BOX);
    EXPECT_TRUE(says(ask("-test-box-medium-r-normal--30-80-75-75-c-80-iso8859-1"), Said::SIZES_DISAGREE));
}

TEST_F(AnswerTest, AServerThatIsElsewhereIsSaidFirst) {
    server.where = ServerPlace::ELSEWHERE;
    server.path = {root.file("not/here")};
    server.add(BOX);
    const Answer found = ask(BOX);
    EXPECT_EQ(found.verdict.at(0).said, Said::SERVER_IS_ELSEWHERE);
    EXPECT_TRUE(found.works);
    EXPECT_TRUE(found.font.file.empty());
    EXPECT_TRUE(says(found, Said::FONT_WORKS));
    const Answer missing = ask(BOLD);
    ASSERT_FALSE(missing.nearest.empty());
    EXPECT_EQ(missing.nearest[0].name, BOX);
}

TEST_F(AnswerTest, AServerThatDiesAtAnyQuestion) {
    server.path = {make("one", std::string("a.pcf ") + BOX + '\n')};
    server.add(BOX);
    for (int questions = 0; questions < 6; ++questions) {
        test::PlayedServer mortal;
        mortal.path = server.path;
        mortal.fonts = server.fonts;
        mortal.lives_for = questions;
        Question question;
        question.name = BOLD;
        const Answer found = answer(question, mortal, surroundings);
        if (mortal.answers()) continue;
        EXPECT_EQ(found.verdict, std::vector<Sentence>{{Said::SERVER_HAS_GONE}});
        EXPECT_FALSE(found.works);
    }
}

TEST_F(AnswerTest, AnIndexOfFiftyThousandLines) {
    std::string lines;
    for (int i = 0; i < 50000; ++i)
        lines += "none" + std::to_string(i) + ".pcf name" + std::to_string(i) + '\n';
    server.path = {make("large", lines)};
    server.add(BOX);
    const Answer found = ask("-*-*-*-*-*-*-*-*-*-*-*-*-*-none");
    EXPECT_TRUE(says(found, Said::NO_SUCH_FONT));
    EXPECT_EQ(found.path.at(0).state, ElementState::WORKS_IN_PART);
}

TEST_F(AnswerTest, IndexesThatAreNoFiles) {
    fs::create_directories(root.file("dir/fonts.dir"));
    fs::create_directories(root.file("pipe"));
    ASSERT_EQ(::mkfifo(root.file("pipe/fonts.dir").c_str(), 0644), 0);
    ASSERT_EQ(::mkfifo(root.file("pipe/fonts.alias").c_str(), 0644), 0);
    server.path = {root.file("dir"), root.file("pipe")};
    surroundings.other_directories = {root.file("dir"), root.file("pipe")};
    server.add(BOX);
    const Answer found = ask(BOLD);
    EXPECT_TRUE(says(found, Said::NO_SUCH_FONT));
    for (const ElementReport& report : found.path) EXPECT_EQ(report.trouble, Trouble::BAD_INDEX);
    EXPECT_FALSE(ask(root.file("pipe/fonts.dir"), Wanted::FILE).works);
}

// --- files, directories and the path ----------------------------------------

TEST_F(AnswerTest, AFileThatTheServerOpens) {
    const std::string one = make("one", std::string("a.pcf ") + BOX + '\n');
    server.path = {one};
    server.add(BOX);
    const Answer found = ask(one + "/a.pcf", Wanted::FILE);
    EXPECT_TRUE(found.works);
    EXPECT_TRUE(says(found, Said::FILE_IS_LISTED));
    EXPECT_EQ(found.font.file, one + "/a.pcf");
    EXPECT_TRUE(says(ask(one + "/b.pcf", Wanted::FILE), Said::FILE_NOT_LISTED));
    EXPECT_TRUE(says(ask(one + "/c.pcf", Wanted::FILE), Said::NO_SUCH_FILE));
    EXPECT_TRUE(says(ask("c.pcf", Wanted::FILE), Said::NO_SUCH_FILE));
}

TEST_F(AnswerTest, AFileBehindAnotherOneAndOneOnNoPath) {
    const std::string one = make("one", std::string("a.pcf ") + BOX + '\n');
    const std::string two = make("two", std::string("b.pcf ") + BOX + '\n');
    server.path = {one, two};
    server.add(BOX);
    const Answer found = ask(two + "/b.pcf", Wanted::FILE);
    EXPECT_FALSE(found.works);
    EXPECT_TRUE(says(found, Said::FILE_IS_HIDDEN));
    server.path = {one};
    EXPECT_TRUE(says(ask(two + "/b.pcf", Wanted::FILE), Said::IS_ON_NO_PATH));
}

TEST_F(AnswerTest, ADirectory) {
    const std::string one = make("one", std::string("a.pcf ") + BOX + '\n');
    const std::string two = make("two", std::string("b.pcf ") + BOX + '\n');
    server.path = {one};
    server.add(BOX);
    EXPECT_TRUE(ask(one + '/', Wanted::DIRECTORY).works);
    const Answer stranger = ask(two, Wanted::DIRECTORY);
    EXPECT_FALSE(stranger.works);
    ASSERT_EQ(stranger.path.size(), 2U);
    EXPECT_EQ(stranger.path[1].state, ElementState::NOT_SERVED);
    EXPECT_TRUE(says(ask(root.file("none"), Wanted::DIRECTORY), Said::NO_SUCH_DIRECTORY));
}

TEST_F(AnswerTest, TheElementThatXsetMeans) {
    const std::string one = make("one", std::string("a.pcf ") + BOX + '\n');
    server.path = {one, root.file("gone")};
    server.add(BOX);
    const Answer dead = ask("", Wanted::PATH, 2);
    EXPECT_EQ(dead.verdict.at(0).said, Said::ELEMENT_AT_PLACE);
    EXPECT_TRUE(says(dead, Said::NO_SUCH_DIRECTORY));
    const Answer other = ask("", Wanted::PATH, 3);
    EXPECT_TRUE(says(other, Said::PATH_HAS_DEAD_ELEMENTS));
    server.path = {one};
    surroundings.configured = {root.file("gone")};
    const Answer gone = ask("", Wanted::PATH, 2);
    EXPECT_TRUE(says(gone, Said::REFUSED_ELEMENT_IS_GONE));
    EXPECT_TRUE(says(gone, Said::CONFIGURED_ELEMENTS_ARE_DEAD));
    surroundings.configured = {};
    EXPECT_TRUE(ask("", Wanted::PATH).works);
}

// --- fontsets ----------------------------------------------------------------

TEST_F(AnswerTest, AFontsetThatLacksCharsets) {
    const char* const kanji = "-test-kanji-medium-r-normal--16-160-75-75-c-160-jisx0208.1983-0";
    server.path = {make("one", std::string("a.pcf ") + BOX + "\nb.pcf " + kanji + '\n')};
    server.add(BOX);
    server.add(kanji);
    server.fontsets["-test-box-*"] = {{{BOX, "ISO8859-1"}}, {"JISX0208.1983-0", "KSC5601.1987-0"}, true};
    const Answer found = ask("-test-box-*", Wanted::FONTSET);
    EXPECT_TRUE(found.works);
    EXPECT_TRUE(says(found, Said::FONTSET_LACKS));
    ASSERT_EQ(found.charsets.size(), 3U);
    EXPECT_EQ(found.charsets[0].font, BOX);
    ASSERT_FALSE(found.charsets[1].nearest.empty());
    EXPECT_EQ(found.charsets[1].nearest[0].name, kanji);
    EXPECT_TRUE(found.charsets[2].nearest.empty());
    EXPECT_EQ(found.base_names, std::string("-test-box-*,") + kanji);
}

TEST_F(AnswerTest, FontsetsThatCannotBeMade) {
    server.path = {make("one", std::string("a.pcf ") + BOX + '\n')};
    EXPECT_TRUE(says(ask(", ,", Wanted::FONTSET), Said::NO_BASE_NAMES));
    std::string many;
    for (int i = 0; i < 200; ++i) many += "-none-" + std::to_string(i) + "-*,";
    const Answer found = ask(many, Wanted::FONTSET);
    EXPECT_FALSE(found.works);
    EXPECT_TRUE(says(found, Said::NO_FONTSET));
}

// --- nothing changes ---------------------------------------------------------

std::string bytes_of(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string tree_of(const std::string& root) {
    std::string text;
    std::vector<fs::path> paths;
    for (const auto& entry : fs::recursive_directory_iterator(root)) paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    for (const fs::path& path : paths) {
        text +=
            path.string() + ' ' + std::to_string(fs::last_write_time(path).time_since_epoch().count()) + '\n';
        if (fs::is_regular_file(path)) text += bytes_of(path) + '\n';
    }
    return text;
}

TEST_F(AnswerTest, AskingChangesNothing) {
    const std::string one = make("one", std::string("a.pcf ") + BOX + '\n', "nice x\n");
    server.path = {one, root.file("gone")};
    server.add(BOX);
    surroundings.configured = {make("two", "broken\n")};
    surroundings.other_directories = {root.path()};
    surroundings.home = root.path();
    surroundings.own_fonts = root.file("own/");
    const std::string before = tree_of(root.path());
    const std::vector<std::string> path_before = server.path;
    for (const Wanted wanted : {Wanted::FONT, Wanted::FONTSET, Wanted::FILE, Wanted::DIRECTORY, Wanted::PATH})
        for (const std::string& name : {std::string(BOLD), std::string("nice"), one, one + "/a.pcf"})
            (void)ask(name, wanted);
    EXPECT_EQ(tree_of(root.path()), before);
    EXPECT_EQ(server.path, path_before);
    EXPECT_EQ(server.path_changes, 0);
}

TEST_F(AnswerTest, TheReportHasItAll) {
    server.path = {make("one", std::string("a.pcf ") + BOX + '\n')};
    server.add(BOX);
    const std::string text = report(ask(BOLD));
    EXPECT_NE(text.find(std::string("> ") + BOLD + '\n'), std::string::npos) << text;
    EXPECT_NE(text.find("The X server has no font " + std::string(BOLD) + ".\n"), std::string::npos) << text;
    EXPECT_NE(text.find("1 " + root.file("one") + "\n    It works. Names in its index: 1.\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find(BOX), std::string::npos) << text;
}

}  // namespace
}  // namespace gw::diagnosis
