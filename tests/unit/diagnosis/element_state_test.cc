// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "core/text.h"
#include "diagnosis/element_state.h"
#include "platform/host_paths.h"
#include "support/access_lists.h"
#include "support/played_server.h"
#include "support/temp_dir.h"

namespace gw::diagnosis {
namespace {

namespace fs = std::filesystem;

constexpr uid_t STRANGER = 54321;
constexpr const char* NAME = "-test-box-medium-r-normal--8-80-75-75-c-80-iso8859-1";
const std::string ENTRY = std::string("a.pcf ") + NAME + "\n";

class ElementStateTest : public testing::Test {
  protected:
    ElementStateTest() { server.add(NAME); }

    /// A directory with a font and an index that names it.
    std::string make(const std::string& name, const std::string& index = "1\n" + ENTRY) const {
        root.write(name + "/a.pcf", "font");
        if (!index.empty()) root.write(name + "/fonts.dir", index);
        return root.file(name);
    }

    ElementReport report_on(const std::string& element) {
        server.path = {element};
        return look_at_path(server, surroundings).reports.at(0);
    }
    ElementReport report_on_configured(const std::string& element) {
        server.path = {"built-ins"};
        surroundings.configured = {element};
        return look_at_path(server, surroundings).reports.at(1);
    }

    test::TempDir root;
    test::PlayedServer server;
    Surroundings surroundings;
};

void expect(const ElementReport& report, ElementState state, Trouble trouble, Said first) {
    EXPECT_EQ(report.state, state) << in_english(report.remarks.at(0));
    EXPECT_EQ(report.trouble, trouble) << in_english(report.remarks.at(0));
    EXPECT_EQ(report.remarks.at(0).said, first) << in_english(report.remarks.at(0));
}

bool has_remark(const ElementReport& report, Said said) {
    return std::any_of(report.remarks.begin(), report.remarks.end(),
                       [said](const Sentence& sentence) { return sentence.said == said; });
}

TEST_F(ElementStateTest, OneThatAnswers) {
    const ElementReport report = report_on(make("good"));
    expect(report, ElementState::WORKS, Trouble::NONE, Said::ELEMENT_ANSWERS);
    EXPECT_EQ(in_english(report.remarks[0]), "It works. Names in its index: 1.");
    EXPECT_EQ(report.place, 1);
    EXPECT_FALSE(report.is_configured);
    EXPECT_EQ(report.remarks.size(), 1U);
}

TEST_F(ElementStateTest, TheServersPathComesFirstThenWhatItLacks) {
    const std::string one = make("one");
    const std::string two = make("two");
    server.path = {two + "/:unscaled", "built-ins", one};
    surroundings.configured = {one + "/", two, root.file("three")};
    const std::vector<ElementReport> reports = look_at_path(server, surroundings).reports;
    ASSERT_EQ(reports.size(), 5U);
    EXPECT_EQ(reports[0].element, two + "/:unscaled");
    EXPECT_EQ(reports[1].element, "built-ins");
    expect(reports[1], ElementState::WORKS, Trouble::NONE, Said::IS_BUILT_IN);
    EXPECT_EQ(reports[2].place, 3);
    EXPECT_TRUE(reports[2].is_configured);
    EXPECT_EQ(reports[3].element, two);
    EXPECT_EQ(reports[3].place, 0);
    expect(reports[3], ElementState::NOT_SERVED, Trouble::NONE, Said::NOT_ON_SERVER);
    expect(reports[4], ElementState::DEAD, Trouble::NO_DIRECTORY, Said::NO_SUCH_DIRECTORY);
}

TEST_F(ElementStateTest, ADirectoryThatIsNotThere) {
    const ElementReport report = report_on(root.file("gone/and/gone"));
    expect(report, ElementState::DEAD, Trouble::NO_DIRECTORY, Said::NO_SUCH_DIRECTORY);
    EXPECT_EQ(report.remarks[0].details, std::vector<std::string>{root.file("gone")});
    EXPECT_TRUE(has_remark(report, Said::SERVER_STILL_HAS_IT));
    root.write("file", "x");
    expect(report_on(root.file("file")), ElementState::DEAD, Trouble::NO_DIRECTORY, Said::NOT_A_DIRECTORY);
}

TEST_F(ElementStateTest, EveryonesDirectoryIsMissingBeforeItsFirstFontOnly) {
    if (fs::exists(SUPERUSER_FONT_DIR)) GTEST_SKIP() << "somebody has installed fonts for everyone";
    server.path = {"built-ins"};
    surroundings.configured = {SUPERUSER_FONT_DIR, root.file("none/")};
    const std::vector<ElementReport> configured = look_at_path(server, surroundings).reports;
    ASSERT_EQ(configured.size(), 2U);
    expect(configured[1], ElementState::DEAD, Trouble::NO_DIRECTORY, Said::NO_SUCH_DIRECTORY);
    expect(report_on(SUPERUSER_FONT_DIR), ElementState::DEAD, Trouble::NO_DIRECTORY, Said::NO_SUCH_DIRECTORY);
}

TEST_F(ElementStateTest, TheFirstLevelThatTheServerMayNotPassIsNamed) {
    const std::string directory = make("closed/inner/fonts");
    fs::permissions(root.path(), fs::perms(0711));
    fs::permissions(root.file("closed"), fs::perms(0700));
    fs::permissions(directory, fs::perms(0700));
    server.runs_as = STRANGER;
    server.its_groups = {STRANGER};
    const ElementReport report = report_on(directory);
    expect(report, ElementState::DEAD, Trouble::UNREADABLE, Said::SERVER_MAY_NOT_ENTER);
    EXPECT_EQ(report.remarks[0].details, (std::vector<std::string>{"54321", root.file("closed")}));
    EXPECT_EQ(report.unreadable, (std::vector<std::string>{root.file("closed"), directory}));
    server.runs_as = {};
    expect(report_on(directory), ElementState::DEAD, Trouble::UNREADABLE, Said::NOT_FOR_EVERYBODY);
    server.runs_as = 0;
    expect(report_on(directory), ElementState::WORKS, Trouble::NONE, Said::ELEMENT_ANSWERS);
}

TEST_F(ElementStateTest, GroupsOfTheServerCount) {
    const std::string directory = make("group");
    fs::permissions(root.path(), fs::perms(0711));
    fs::permissions(directory, fs::perms(0710));
    server.runs_as = STRANGER;
    server.its_groups = {STRANGER, ::getegid()};
    expect(report_on(directory), ElementState::WORKS, Trouble::NONE, Said::ELEMENT_ANSWERS);
}

TEST_F(ElementStateTest, TheWayGoesThroughLinks) {
    fs::permissions(root.path(), fs::perms(0711));
    const std::string directory = make("real/fonts");
    fs::permissions(root.file("real"), fs::perms(0700));
    fs::create_symlink("real/fonts", root.file("link"));
    fs::create_symlink("circle", root.file("circle"));
    server.runs_as = STRANGER;
    server.its_groups = {};
    const ElementReport report = report_on(root.file("link"));
    expect(report, ElementState::DEAD, Trouble::UNREADABLE, Said::SERVER_MAY_NOT_ENTER);
    EXPECT_EQ(report.unreadable, std::vector<std::string>{root.file("real")});
    expect(report_on(root.file("circle")), ElementState::DEAD, Trouble::NO_DIRECTORY,
           Said::NO_SUCH_DIRECTORY);
    fs::remove(root.file("circle"));
}

TEST_F(ElementStateTest, AnIndexAndFontsThatTheServerMayNotRead) {
    fs::permissions(root.path(), fs::perms(0711));
    const std::string directory = make("secret");
    server.runs_as = STRANGER;
    server.its_groups = {};
    fs::permissions(directory + "/a.pcf", fs::perms(0600));
    const ElementReport report = report_on(directory);
    expect(report, ElementState::WORKS_IN_PART, Trouble::UNREADABLE, Said::FILES_UNREADABLE);
    EXPECT_EQ(report.unreadable, std::vector<std::string>{directory + "/a.pcf"});
    fs::permissions(directory + "/fonts.dir", fs::perms(0600));
    expect(report_on(directory), ElementState::DEAD, Trouble::UNREADABLE, Said::SERVER_MAY_NOT_READ);
}

TEST_F(ElementStateTest, AListOfAccessCountsMoreThanTheMode) {
    const std::string directory = make("listed");
    server.runs_as = STRANGER;
    fs::permissions(root.path(), fs::perms(0755));
    fs::permissions(directory, fs::perms(0700));
    expect(report_on(directory), ElementState::DEAD, Trouble::UNREADABLE, Said::SERVER_MAY_NOT_ENTER);
    const auto give = [&](unsigned permissions, unsigned others) {
        ASSERT_TRUE(test::set_access_list(directory, {{ACL_USER_OBJ, 7},
                                                      {ACL_USER, permissions, STRANGER},
                                                      {ACL_GROUP_OBJ, 0},
                                                      {ACL_MASK, 7},
                                                      {ACL_OTHER, others}}));
    };
    give(5, 0);
    expect(report_on(directory), ElementState::WORKS, Trouble::NONE, Said::ELEMENT_ANSWERS);
    give(0, 5);
    const ElementReport report = report_on(directory);
    expect(report, ElementState::DEAD, Trouble::UNREADABLE, Said::SERVER_MAY_NOT_ENTER);
    EXPECT_TRUE(has_remark(report, Said::KEPT_OUT_BY_LIST));
    EXPECT_EQ(report.unreadable, std::vector<std::string>{directory});
}

TEST_F(ElementStateTest, ADirectoryWithoutAnIndex) {
    const std::string directory = make("bare", "");
    expect(report_on(directory), ElementState::DEAD, Trouble::NO_INDEX, Said::NO_INDEX);
    root.write("bare/fonts.alias", std::string("box ") + NAME + "\n");
    expect(report_on(directory), ElementState::WORKS_IN_PART, Trouble::NO_INDEX, Said::ALIASES_BUT_NO_INDEX);
    fs::remove(directory + "/a.pcf");
    expect(report_on(directory), ElementState::WORKS, Trouble::NONE, Said::ELEMENT_ANSWERS);
}

TEST_F(ElementStateTest, AnIndexThatIsNoFile) {
    const std::string directory = make("odd", "");
    fs::create_directory(directory + "/fonts.dir");
    expect(report_on(directory), ElementState::DEAD, Trouble::BAD_INDEX, Said::INDEX_IS_NO_FILE);
    fs::remove(directory + "/fonts.dir");
    ASSERT_EQ(::mkfifo((directory + "/fonts.dir").c_str(), 0644), 0);
    expect(report_on(directory), ElementState::DEAD, Trouble::BAD_INDEX, Said::INDEX_IS_NO_FILE);
    fs::remove(directory + "/fonts.dir");
    root.write("odd/real", "1\n" + ENTRY);
    fs::create_symlink("real", directory + "/fonts.dir");
    expect(report_on(directory), ElementState::DEAD, Trouble::BAD_INDEX, Said::INDEX_IS_NO_FILE);
}

TEST_F(ElementStateTest, AnIndexThatIsTooLargeIsNotForbidden) {
    const std::string directory = make("large", "");
    root.write("large/fonts.dir", "0\n");
    fs::resize_file(directory + "/fonts.dir", (64U << 20U) + 1);
    const ElementReport report = report_on(directory);
    expect(report, ElementState::NOT_KNOWN, Trouble::NONE, Said::FILE_TOO_LARGE);
    EXPECT_EQ(report.remarks[0].details, (std::vector<std::string>{directory + "/fonts.dir", "64"}));
}

TEST_F(ElementStateTest, IndexesThatTheServerRefuses) {
    expect(report_on(make("words", "fonts\n" + ENTRY)), ElementState::DEAD, Trouble::BAD_INDEX,
           Said::BAD_FIRST_LINE);
    expect(report_on(make("nothing", " \n")), ElementState::DEAD, Trouble::BAD_INDEX, Said::BAD_FIRST_LINE);
    const ElementReport report = report_on(make("lonely", "2\n" + ENTRY + "b.pcf\n"));
    expect(report, ElementState::DEAD, Trouble::BAD_INDEX, Said::BAD_INDEX_LINE);
    EXPECT_EQ(report.remarks[0].details, (std::vector<std::string>{"3", "b.pcf"}));
}

TEST_F(ElementStateTest, AliasFilesThatTheServerRefuses) {
    const std::string directory = make("aliases");
    root.write("aliases/fonts.alias", "! comment\nlonely\n");
    const ElementReport report = report_on(directory);
    expect(report, ElementState::DEAD, Trouble::BAD_ALIASES, Said::BAD_ALIAS_LINE);
    EXPECT_EQ(report.remarks[0].details, (std::vector<std::string>{"2", "lonely"}));
    root.write("aliases/fonts.alias", "self SELF\n");
    expect(report_on(directory), ElementState::DEAD, Trouble::BAD_ALIASES, Said::ALIAS_OF_ITSELF);
    root.write("aliases/fonts.alias", std::string(1100, 'x') + " y\n");
    expect(report_on(directory), ElementState::DEAD, Trouble::BAD_ALIASES, Said::LONG_ALIAS_LINE);
}

TEST_F(ElementStateTest, FilesOfTheIndexThatAreMissingAreCounted) {
    std::string index = "5\n" + ENTRY;
    for (const char* file : {"m1.pcf", "m2.pcf", "m3.pcf", "m4.pcf"})
        index += std::string(file) + ' ' + NAME + '\n';
    const ElementReport report = report_on(make("missing", index));
    expect(report, ElementState::WORKS_IN_PART, Trouble::OLD_INDEX, Said::FILES_MISSING);
    EXPECT_EQ(report.remarks[0].details, (std::vector<std::string>{"4", "m1.pcf, m2.pcf, m3.pcf"}));
}

TEST_F(ElementStateTest, FilesThatTheServerCannotUse) {
    const std::string directory =
        make("useless", "4\n" + ENTRY + "empty.pcf x\nlink.pcf y\nreadme.txt z\n:1:a.pcf w\n");
    root.write("useless/empty.pcf", "");
    fs::create_symlink("a.pcf", directory + "/link.pcf");
    for (const char* name : {"x", "y", "w"}) server.add(name);
    const ElementReport report = report_on(directory);
    expect(report, ElementState::WORKS_IN_PART, Trouble::OLD_INDEX, Said::FILES_USELESS);
    EXPECT_TRUE(has_remark(report, Said::FILES_ARE_LINKS));
    EXPECT_TRUE(has_remark(report, Said::FILES_OF_NO_FORMAT));
    EXPECT_FALSE(has_remark(report, Said::FILES_MISSING));
}

TEST_F(ElementStateTest, FontsThatAreNewerThanTheIndex) {
    const std::string directory = make("old");
    root.write("old/new.ttf", "font");
    root.write("old/notes.txt", "text");
    // The disk's clock ticks too slowly to tell which of two files came first.
    fs::last_write_time(directory + "/new.ttf",
                        fs::last_write_time(directory + "/fonts.dir") + std::chrono::seconds(1));
    const ElementReport report = report_on(directory);
    expect(report, ElementState::WORKS_IN_PART, Trouble::OLD_INDEX, Said::INDEX_OLDER);
    EXPECT_EQ(report.remarks[0].details, (std::vector<std::string>{"1", "new.ttf"}));
}

TEST_F(ElementStateTest, AnIndexThatTheServerHasNotReadAgain) {
    const ElementReport report = report_on(make("changed", "2\n" + ENTRY + "a.pcf another\n"));
    expect(report, ElementState::WORKS_IN_PART, Trouble::NONE, Said::INDEX_NOT_READ_AGAIN);
    EXPECT_EQ(report.remarks[0].details, std::vector<std::string>{"1"});
    EXPECT_EQ(report.remarks.size(), 1U);
}

TEST_F(ElementStateTest, CommasAndColonsInTheName) {
    expect(report_on_configured(make("one,two")), ElementState::DEAD, Trouble::BAD_NAME,
           Said::COMMA_IN_ELEMENT);
    expect(report_on(root.file("one,two")), ElementState::WORKS_IN_PART, Trouble::BAD_NAME,
           Said::COMMA_IN_ELEMENT);
    const ElementReport report = report_on_configured(make("a:b"));
    expect(report, ElementState::DEAD, Trouble::BAD_NAME, Said::COLON_IN_ELEMENT);
    EXPECT_EQ(report.remarks[0].details, std::vector<std::string>{root.file("a")});
    expect(report_on_configured('/' + std::string(300, 'x')), ElementState::DEAD, Trouble::BAD_NAME,
           Said::ELEMENT_TOO_LONG);
}

TEST_F(ElementStateTest, ElementsThatAreNoDirectories) {
    expect(report_on("tcp/localhost:7100"), ElementState::WORKS, Trouble::NONE, Said::IS_FONT_SERVER);
    expect(report_on_configured("unix/:7100"), ElementState::NOT_KNOWN, Trouble::NONE, Said::IS_FONT_SERVER);
    expect(report_on_configured("misc"), ElementState::DEAD, Trouble::BAD_NAME, Said::UNKNOWN_ELEMENT);
    server.path = {};
    surroundings.configured = {"built-ins"};
    expect(look_at_path(server, surroundings).reports.at(0), ElementState::NOT_SERVED, Trouble::NONE,
           Said::NOT_ON_SERVER);
}

TEST_F(ElementStateTest, TheLinksOfACatalogue) {
    make("good");
    make("bare", "");
    const std::string catalogue = root.file("cat");
    fs::create_directory(catalogue);
    expect(report_on("catalogue:" + catalogue), ElementState::WORKS_IN_PART, Trouble::NONE,
           Said::CATALOGUE_IS_EMPTY);
    fs::create_symlink(root.file("good"), catalogue + "/good:unscaled:pri=30");
    fs::create_symlink("../good", catalogue + "/relative");
    expect(report_on("catalogue:" + catalogue), ElementState::WORKS, Trouble::NONE, Said::ELEMENT_ANSWERS);
    fs::create_symlink(root.file("bare"), catalogue + "/bare");
    fs::create_symlink("nowhere", catalogue + "/nowhere:pri=10");
    server.path = {"catalogue:" + catalogue};
    const PathState state = look_at_path(server, surroundings);
    expect(state.reports.at(0), ElementState::WORKS_IN_PART, Trouble::NO_DIRECTORY, Said::CATALOGUE_LINK);
    EXPECT_EQ(state.reports[0].remarks[0].details, (std::vector<std::string>{"nowhere:pri=10", "nowhere"}));
    ASSERT_EQ(state.sources.size(), 4U);
    EXPECT_TRUE(state.sources[1].is_unscaled()) << "a link without a priority comes last";
    expect(report_on("catalogue:"), ElementState::DEAD, Trouble::BAD_NAME, Said::NAMES_NO_DIRECTORY);
    expect(report_on("catalogue:cat"), ElementState::NOT_KNOWN, Trouble::BAD_NAME, Said::RELATIVE_CATALOGUE);
    expect(report_on("catalogue:" + root.file("none")), ElementState::DEAD, Trouble::NO_DIRECTORY,
           Said::NO_SUCH_DIRECTORY);
}

TEST_F(ElementStateTest, ManyLinksOfACatalogue) {
    make("bare", "");
    const std::string catalogue = root.file("cat");
    fs::create_directory(catalogue);
    for (int i = 0; i < 30; ++i) {
        const std::string number = std::to_string(i);
        fs::create_symlink(root.file("bare"), catalogue + "/bare" + number);
        fs::create_symlink("/nowhere" + number, catalogue + "/nowhere" + number);
    }
    const ElementReport report = report_on("catalogue:" + catalogue);
    const auto told = std::count_if(report.remarks.begin(), report.remarks.end(), [](const Sentence& remark) {
        return remark.said == Said::CATALOGUE_LINK;
    });
    EXPECT_EQ(told, 10);
    EXPECT_EQ(report.remarks.back().said, Said::MORE_LINKS_AT_FAULT);
    EXPECT_EQ(report.remarks.back().details, std::vector<std::string>{"21"})
        << "one directory is told of once";
}

TEST_F(ElementStateTest, AServerThatIsElsewhere) {
    server.where = ServerPlace::ELSEWHERE;
    expect(report_on(make("good")), ElementState::NOT_KNOWN, Trouble::NONE, Said::ELEMENT_IS_ELSEWHERE);
    server.where = ServerPlace::UNKNOWN;
    expect(report_on(root.file("good")), ElementState::WORKS, Trouble::NONE, Said::ELEMENT_ANSWERS);
    const ElementReport report = report_on(root.file("gone"));
    expect(report, ElementState::NOT_KNOWN, Trouble::NO_DIRECTORY, Said::NO_SUCH_DIRECTORY);
    EXPECT_TRUE(has_remark(report, Said::ELEMENT_MAY_BE_ELSEWHERE));
}

TEST_F(ElementStateTest, WhatThisUserMayNotSeeIsNotKnown) {
    if (::geteuid() == 0) GTEST_SKIP() << "the superuser sees everything";
    const std::string directory = make("hidden/fonts");
    fs::permissions(root.file("hidden"), fs::perms::none);
    expect(report_on(directory), ElementState::NOT_KNOWN, Trouble::NONE, Said::MAY_NOT_LOOK);
}

TEST_F(ElementStateTest, AServerThatDiesLeavesWhatIsConfigured) {
    server.lives_for = 0;
    server.path = {make("good")};
    surroundings.configured = {root.file("good")};
    const std::vector<ElementReport> reports = look_at_path(server, surroundings).reports;
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].place, 0);
}

}  // namespace
}  // namespace gw::diagnosis
