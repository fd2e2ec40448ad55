// SPDX-License-Identifier: MIT
//
// Which font path a session should have. A function plays the X server: it refuses the whole path because of
// one bad element, as the real server does.
#include "fontpath/session_path.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "support/temp_dir.h"

namespace {

using namespace gw::session;
using gw::PathHost;
using gw::test::TempDir;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

bool is_root() {
    return ::geteuid() == 0;
}

class SessionPathTest : public testing::Test {
  protected:
    /// A directory that a server would accept, ending in "/".
    [[nodiscard]] std::string font_dir(const std::string& name) const {
        dir.write(name + "/fonts.dir", "0\n");
        return dir.file(name) + '/';
    }
    [[nodiscard]] std::string missing() const { return dir.file("missing/"); }
    [[nodiscard]] std::string config(const std::string& bytes) const {
        dir.write("root/server/etc/VTconfig", bytes);
        return dir.file("root");
    }

    /// The file in which the set-up keeps what it has written.
    [[nodiscard]] std::string record() const { return dir.file("record"); }

    const TempDir dir;
};

// --- what an element is ------------------------------------------------------

TEST_F(SessionPathTest, AFontDirectoryIsUsableWhateverItsName) {
    for (const char* name : {"plain", "with blanks", "a,b", "it's $HOME"}) {
        EXPECT_EQ(judge(font_dir(name)).condition, Condition::USABLE) << name;
        EXPECT_EQ(judge(dir.file(name)).why, "") << name;
    }
    EXPECT_EQ(judge(font_dir("plain") + ":unscaled").condition, Condition::USABLE);
}

TEST_F(SessionPathTest, WhatIsNoFontDirectoryIsGone) {
    EXPECT_EQ(judge(missing()).condition, Condition::GONE);
    EXPECT_EQ(judge(missing()).why, "no such directory");
    EXPECT_EQ(judge(dir.write("file", "x")).why, "not a directory");
    EXPECT_EQ(judge(dir.file("file/below")).why, "no such directory");
    EXPECT_EQ(judge(dir.make_dir("empty")).condition, Condition::GONE);
    EXPECT_EQ(judge(dir.make_dir("empty")).why, "no fonts.dir in it");
    std::filesystem::create_symlink(dir.file("nowhere"), dir.file("dangling"));
    EXPECT_EQ(judge(dir.file("dangling")).why, "no such directory");
}

TEST_F(SessionPathTest, TheProtocolHasRoomFor255Bytes) {
    const std::string parent = font_dir(std::string(100, 'a'));
    std::string element = parent + std::string(255 - parent.size(), '/');
    EXPECT_EQ(judge(element).condition, Condition::USABLE);
    element += '/';
    EXPECT_EQ(judge(element).condition, Condition::GONE);
    EXPECT_EQ(judge(element).why, "longer than the 255 bytes that the X protocol allows");
    EXPECT_EQ(judge(std::string(256, 'x')).condition, Condition::GONE) << "font servers too";
}

TEST_F(SessionPathTest, WhatIsClosedMayBeOpenToTheServer) {
    if (is_root()) GTEST_SKIP() << "nothing is closed to the superuser";
    const std::string closed = font_dir("closed");
    ::chmod(closed.c_str(), 0);
    EXPECT_EQ(judge(closed).condition, Condition::UNREADABLE);
    EXPECT_EQ(judge(closed).why, "cannot be read");
    EXPECT_EQ(judge(closed + "below/").condition, Condition::UNREADABLE);
    EXPECT_NE(judge(closed + "below/").why, "");
    const std::string index = font_dir("index");
    ::chmod((index + "fonts.dir").c_str(), 0);
    EXPECT_EQ(judge(index).condition, Condition::UNREADABLE);
    EXPECT_EQ(judge(index).why, "its fonts.dir cannot be read");
}

TEST_F(SessionPathTest, ACatalogueNeedsItsDirectoryOnly) {
    dir.make_dir("links");
    const std::string catalogue = "catalogue:" + dir.file("links");
    std::filesystem::create_symlink(missing(), dir.file("links/dead"));
    EXPECT_EQ(judge(catalogue).condition, Condition::USABLE);
    EXPECT_EQ(judge(catalogue + '/').condition, Condition::USABLE);
    EXPECT_EQ(judge(catalogue + ":unscaled").condition, Condition::GONE);
    EXPECT_EQ(judge("catalogue:" + missing()).why, "no such directory");
    EXPECT_EQ(judge("catalogue:" + dir.write("file", "x")).why, "not a directory");
    EXPECT_EQ(judge("catalogue:links").condition, Condition::USABLE) << "the server's, from where it is";
    if (is_root()) return;
    ::chmod(dir.file("links").c_str(), 0);
    EXPECT_EQ(judge(catalogue).why, "cannot be read");
    ::chmod(dir.file("links").c_str(), 0755);
}

TEST_F(SessionPathTest, OnlyTheServerKnowsOtherElements) {
    for (const char* element : {"built-ins", "tcp/nowhere:7100", "unix/:7100", "relative/dir/"})
        EXPECT_EQ(judge(element).condition, Condition::USABLE) << element;
}

// --- the plan ----------------------------------------------------------------

/// A configuration whose whole order somebody has chosen.
Configuration chosen(const Elements& elements) {
    return {elements, elements.size(), {}};
}
/// One whose order nobody has chosen.
Configuration plain(const Elements& elements) {
    return {elements, 0, {}};
}

TEST_F(SessionPathTest, WhatTheServerHasKeepsItsPlaceAndWhatIsMissingComesBehind) {
    const std::string a = font_dir("a"), b = font_dir("b"), c = font_dir("c");
    const Plan plan = make_plan(plain({b, a, c}), {"tcp/host:7100", c, a, "built-ins"}, PathHost::THIS);
    EXPECT_THAT(plan.path, ElementsAre("tcp/host:7100", c, a, "built-ins", b));
    EXPECT_THAT(plan.configured, ElementsAre(c, a, b));
    EXPECT_THAT(plan.skipped, IsEmpty());
    EXPECT_THAT(plan.dropped, IsEmpty());
}

TEST_F(SessionPathTest, ACatalogueIsPutTogetherLikeADirectory) {
    const std::string a = font_dir("a");
    dir.make_dir("links");
    const std::string catalogue = "catalogue:" + dir.file("links");
    const std::string gone = "catalogue:" + missing();
    const Plan plan = make_plan(plain({catalogue, gone, a}), {"built-ins", catalogue + '/'}, PathHost::THIS);
    EXPECT_THAT(plan.path, ElementsAre("built-ins", catalogue + '/', a));
    EXPECT_THAT(plan.skipped, ElementsAre(Remark{gone, "no such directory"}));
    EXPECT_THAT(make_plan(plain({a}), {gone}, PathHost::THIS).dropped,
                ElementsAre(Remark{gone, "no such directory"}));
    EXPECT_THAT(make_plan(plain({a}), {gone}, PathHost::ANOTHER).path, ElementsAre(gone, a));
}

TEST_F(SessionPathTest, AnOrderThatSomebodyHasChosenComesFirst) {
    const std::string a = font_dir("a"), b = font_dir("b"), c = font_dir("c"), d = font_dir("d");
    const Configuration both{{b, a, d, c}, 2, {}};
    const Plan plan = make_plan(both, {c, a, "built-ins"}, PathHost::THIS);
    EXPECT_THAT(plan.path, ElementsAre(b, a, c, "built-ins", d));
    EXPECT_THAT(plan.configured, ElementsAre(b, a, c, d));
}

TEST_F(SessionPathTest, LinksToWhatTheServerHasChangeNothing) {
    const std::string a = font_dir("a"), b = font_dir("b");
    dir.make_dir("links");
    std::filesystem::create_directory_symlink(dir.file("a"), dir.file("links/a"));
    std::filesystem::create_directory_symlink(dir.file("b"), dir.file("links/b"));
    const std::string link_a = dir.file("links/a/"), link_b = dir.file("links/b/");
    const std::string catalogue = "catalogue:" + dir.file("links");
    const Elements server = {dir.file("b"), a + ":unscaled", catalogue, dir.file("a"), "built-ins"};
    EXPECT_EQ(make_plan(plain({link_a, link_b, link_a + ":unscaled"}), server, PathHost::THIS).path, server);
    EXPECT_THAT(make_plan(plain({link_b + ":unscaled", link_a}), server, PathHost::THIS).path,
                ElementsAre(dir.file("b"), a + ":unscaled", catalogue, dir.file("a"), "built-ins",
                            link_b + ":unscaled"));
    // On another host they may be other directories.
    EXPECT_EQ(make_plan(plain({link_a}), server, PathHost::ANOTHER).path.size(), server.size() + 1);
}

TEST_F(SessionPathTest, EachElementComesOnceAsItIsConfigured) {
    const std::string a = font_dir("a"), b = font_dir("b");
    const std::string bare_a = dir.file("a");
    const Plan plan =
        make_plan(chosen({a, b, bare_a, a}), {"built-ins", bare_a, "built-ins", b}, PathHost::THIS);
    EXPECT_THAT(plan.path, ElementsAre(a, b, "built-ins"));
    EXPECT_THAT(plan.skipped, IsEmpty());
    EXPECT_THAT(plan.dropped, IsEmpty());
}

TEST_F(SessionPathTest, AttributesMakeAnotherElement) {
    const std::string a = font_dir("a");
    EXPECT_THAT(make_plan(chosen({a}), {a + ":unscaled"}, PathHost::THIS).path,
                ElementsAre(a, a + ":unscaled"));
    EXPECT_THAT(make_plan(plain({a}), {a + ":unscaled"}, PathHost::THIS).path,
                ElementsAre(a + ":unscaled", a));
}

TEST_F(SessionPathTest, APlanThatIsCarriedOutStaysTheSame) {
    const std::string a = font_dir("a"), b = font_dir("b"), c = font_dir("c"), d = font_dir("d");
    for (const std::size_t front : {std::size_t{0}, std::size_t{2}, std::size_t{4}}) {
        const Configuration configured{{b, missing(), a, d}, front, {}};
        const Plan first = make_plan(configured, {a, c, "built-ins"}, PathHost::THIS);
        EXPECT_EQ(make_plan(configured, first.path, PathHost::THIS).path, first.path) << front;
    }
}

TEST_F(SessionPathTest, AConfiguredDirectoryThatIsGoneIsSkipped) {
    const std::string a = font_dir("a");
    const Plan plan = make_plan(chosen({missing(), a}), {"built-ins"}, PathHost::THIS);
    EXPECT_THAT(plan.path, ElementsAre(a, "built-ins"));
    EXPECT_THAT(plan.configured, ElementsAre(a));
    EXPECT_THAT(plan.skipped, ElementsAre(Remark{missing(), "no such directory"}));
}

// It is on the path from the start, and the first installation makes it.
TEST_F(SessionPathTest, NothingIsSaidOfTheSuperusersDirectoryThatIsNotThereYet) {
    ASSERT_FALSE(std::filesystem::exists("/etc/vantor/glyphwd_fonts"));
    const Plan plan = make_plan(plain({"/etc/vantor/glyphwd_fonts/"}), {"built-ins"}, PathHost::THIS);
    EXPECT_THAT(plan.path, ElementsAre("built-ins"));
    EXPECT_THAT(plan.skipped, IsEmpty());
    EXPECT_THAT(reasons_to_skip({"/etc/vantor/glyphwd_fonts/"}), ElementsAre("no such directory"));
}

TEST_F(SessionPathTest, WhatTheServerHasAndIsGoneIsDropped) {
    const std::string a = font_dir("a");
    const Plan plan = make_plan(plain({a}), {missing(), "built-ins"}, PathHost::THIS);
    EXPECT_THAT(plan.path, ElementsAre("built-ins", a));
    EXPECT_THAT(plan.dropped, ElementsAre(Remark{missing(), "no such directory"}));
}

TEST_F(SessionPathTest, WhatIsGoneIsSaidOnce) {
    const Plan first = make_plan(chosen({missing(), missing()}), {missing(), "built-ins"}, PathHost::THIS);
    EXPECT_THAT(first.path, ElementsAre("built-ins"));
    EXPECT_EQ(first.skipped.size(), 1U);
    EXPECT_THAT(first.dropped, IsEmpty());
    const Plan behind = make_plan(plain({missing(), missing()}), {missing(), "built-ins"}, PathHost::THIS);
    EXPECT_THAT(behind.path, ElementsAre("built-ins"));
    EXPECT_THAT(behind.skipped, IsEmpty());
    EXPECT_EQ(behind.dropped.size(), 1U);
}

TEST_F(SessionPathTest, ADistantServersDirectoriesAreItsOwnAffair) {
    const std::string a = font_dir("a");
    const Plan plan = make_plan(plain({a}), {missing(), "built-ins"}, PathHost::ANOTHER);
    EXPECT_THAT(plan.path, ElementsAre(missing(), "built-ins", a));
    EXPECT_THAT(plan.dropped, IsEmpty());
}

TEST_F(SessionPathTest, AClosedDirectoryStaysWhereTheServerHasIt) {
    if (is_root()) GTEST_SKIP() << "nothing is closed to the superuser";
    const std::string a = font_dir("a"), closed = font_dir("closed");
    ::chmod(closed.c_str(), 0);
    const Plan had = make_plan(chosen({closed, a}), {closed, "built-ins"}, PathHost::THIS);
    EXPECT_THAT(had.path, ElementsAre(a, closed, "built-ins"));
    EXPECT_THAT(had.skipped, IsEmpty());
    for (const Configuration& configured : {chosen({closed, a}), plain({closed, a})}) {
        const Plan had_not = make_plan(configured, {"built-ins"}, PathHost::THIS);
        EXPECT_THAT(had_not.path, UnorderedElementsAre(a, "built-ins"));
        EXPECT_THAT(had_not.skipped, ElementsAre(Remark{closed, "cannot be read"}));
    }
}

TEST_F(SessionPathTest, EveryConfiguredElementHasItsReason) {
    const std::string a = font_dir("a");
    std::filesystem::create_directory_symlink(dir.file("a"), dir.file("link"));
    EXPECT_THAT(
        reasons_to_skip({a, missing(), dir.file("a"), dir.file("link/"), a + ":unscaled", "tcp/host:7100"}),
        ElementsAre("", "no such directory", "named before", "named before", "", ""));
}

// --- a server ----------------------------------------------------------------

class PlayedServer {
  public:
    PlayedServer(Elements path, std::set<std::string> impossible)
        : path_(std::move(path)), impossible_(std::move(impossible)) {}

    bool set(const Elements& path) {
        ++requests_;
        EXPECT_FALSE(path.empty()) << "an empty path is the default one";
        if (std::any_of(path.begin(), path.end(), [&](const auto& e) { return impossible_.contains(e); }))
            return false;
        path_ = path;
        history_.push_back(path);
        return true;
    }
    Outcome put(const Elements& wanted) {
        return gw::session::put(wanted, path_, PathHost::THIS,
                                [this](const Elements& path) { return set(path); });
    }
    [[nodiscard]] const Elements& path() const { return path_; }
    [[nodiscard]] const std::vector<Elements>& history() const { return history_; }
    [[nodiscard]] int requests() const { return requests_; }

  private:
    Elements path_;
    std::set<std::string> impossible_;
    std::vector<Elements> history_;
    int requests_ = 0;
};

TEST(PutTest, APathThatIsTakenCostsOneRequest) {
    PlayedServer server({"built-ins"}, {});
    const Outcome outcome = server.put({"/a/", "built-ins"});
    EXPECT_EQ(server.requests(), 1);
    EXPECT_THAT(server.path(), ElementsAre("/a/", "built-ins"));
    EXPECT_EQ(outcome.path, server.path());
    EXPECT_THAT(outcome.refused, IsEmpty());
}

// Setting the path makes the server reread its directories.
TEST(PutTest, ThePathThatIsThereIsSetAgain) {
    PlayedServer server({"/a/", "built-ins"}, {});
    EXPECT_THAT(server.put({"/a/", "built-ins"}).path, ElementsAre("/a/", "built-ins"));
    EXPECT_EQ(server.requests(), 1);
}

TEST(PutTest, WhatIsRefusedTakesNothingElseWithIt) {
    PlayedServer server({"/had/", "built-ins"}, {"tcp/away:7100", "/strange/"});
    const Outcome outcome =
        server.put({"/a/", "tcp/away:7100", "/b/", "/strange/", "/c/", "/had/", "built-ins"});
    EXPECT_THAT(server.path(), ElementsAre("/a/", "/b/", "/c/", "/had/", "built-ins"));
    EXPECT_EQ(outcome.path, server.path());
    EXPECT_THAT(outcome.refused, ElementsAre("tcp/away:7100", "/strange/"));
}

// A program that asks for a font at the same time must find it.
TEST(PutTest, WhatTheServerHadStaysAllTheTime) {
    PlayedServer server({"/had", "built-ins"}, {"tcp/away:7100"});
    EXPECT_THAT(server.put({"tcp/away:7100", "/a/", "/had/", "built-ins"}).refused,
                ElementsAre("tcp/away:7100"));
    ASSERT_FALSE(server.history().empty());
    for (const Elements& path : server.history()) {
        EXPECT_THAT(path, testing::Contains("/had/"));
        EXPECT_THAT(path, testing::Contains("built-ins"));
    }
}

TEST(PutTest, AnElementThatDiedOnTheServerIsFoundToo) {
    PlayedServer server({"/dead/", "built-ins"}, {"/dead/"});
    const Outcome outcome = server.put({"/a/", "/dead/", "built-ins"});
    EXPECT_THAT(server.path(), ElementsAre("/a/", "built-ins"));
    EXPECT_THAT(outcome.refused, ElementsAre("/dead/"));
}

TEST(PutTest, AServerThatTakesNothingKeepsWhatItHas) {
    PlayedServer server({"built-ins"}, {"/a/", "/b/"});
    const Outcome outcome = server.put({"/a/", "/b/"});
    EXPECT_THAT(server.path(), ElementsAre("built-ins"));
    EXPECT_THAT(outcome.path, IsEmpty());
    EXPECT_THAT(outcome.refused, ElementsAre("/a/", "/b/"));
}

TEST(PutTest, AnEmptyPathIsNotSet) {
    PlayedServer server({"built-ins"}, {});
    EXPECT_THAT(server.put({}).path, IsEmpty());
    EXPECT_EQ(server.requests(), 0);
}

// --- the configuration -------------------------------------------------------

TEST_F(SessionPathTest, TheConfigurationIsTheEffectiveFontPath) {
    const Configuration read =
        read_configuration(config("XDISPLAY.0.fontpath:\t/a/,/with blank/,tcp/h:7100\n"), record());
    EXPECT_THAT(read.elements, ElementsAre("/a/", "/with blank/", "tcp/h:7100"));
    EXPECT_THAT(read.unread, IsEmpty());
}

TEST_F(SessionPathTest, ADatabaseAsTheSetUpHasWrittenItIsNobodysChoice) {
    const std::string bytes = "XDISPLAY.0.fontpath:\t/a/,/b/\n";
    const std::string root = config(bytes);
    EXPECT_EQ(read_configuration(root, record()).chosen, 2U) << "the set-up has written none";
    dir.write("record", bytes);
    EXPECT_EQ(read_configuration(root, record()).chosen, 0U);
    EXPECT_THAT(read_configuration(root, record()).elements, ElementsAre("/a/", "/b/"));
    dir.write("record", "XDISPLAY.0.fontpath:\t/a/,/b/,\n");
    EXPECT_EQ(read_configuration(root, record()).chosen, 2U) << "byte for byte";
}

// The front part of a locale's file is a choice too. A user's file is read for ordinary users only, and only
// the superuser can write one of a locale.
TEST_F(SessionPathTest, TheFrontPartOfAFontPathFileIsAChoice) {
    const std::string bytes = TempDir::read_bytes("/usr/vantor/server/etc/VTconfig");
    dir.write("record", bytes);
    const std::string file =
        is_root() ? "/usr/vantor/lib/locale/C/VTfontpath" : dir.write("home/.VTfontpath", "");
    ::setenv("HOME", dir.make_dir("home").c_str(), 1);
    const Configuration without = read_configuration("/usr/vantor", record());
    EXPECT_EQ(without.chosen, 0U);
    std::filesystem::create_directories(std::filesystem::path(file).parent_path());
    std::ofstream(file) << "/behind/\n\n/front/\n/second/\n";
    const Configuration with = read_configuration("/usr/vantor", record());
    const Configuration all = read_configuration("/usr/vantor", dir.file("no record"));
    std::filesystem::remove(file);
    EXPECT_EQ(with.chosen, 2U);
    Elements expected = without.elements;
    expected.insert(expected.begin(), {"/front/", "/second/"});
    expected.emplace_back("/behind/");
    EXPECT_EQ(with.elements, expected);
    EXPECT_EQ(all.chosen, expected.size() - 1);
}

TEST_F(SessionPathTest, ADatabaseThatIsNoneIsReportedAndLeftAlone) {
    for (const std::string& bytes : {std::string("this is no database\n"), std::string("a: b\n\0", 6)}) {
        const std::string root = config(bytes);
        const Configuration read = read_configuration(root, record());
        EXPECT_THAT(read.elements, IsEmpty());
        EXPECT_THAT(read.unread, ElementsAre(Remark{root + "/server/etc/VTconfig",
                                                    "not a configuration database; it is not used"}));
        EXPECT_EQ(dir.read("root/server/etc/VTconfig"), bytes);
    }
}

TEST_F(SessionPathTest, ADatabaseThatIsClosedIsReported) {
    if (is_root()) GTEST_SKIP() << "nothing is closed to the superuser";
    const std::string root = config("XDISPLAY.0.fontpath:\t/a/\n");
    ::chmod((root + "/server/etc/VTconfig").c_str(), 0);
    EXPECT_THAT(read_configuration(root, record()).unread,
                ElementsAre(Remark{root + "/server/etc/VTconfig", "cannot be read; it is not used"}));
}

TEST_F(SessionPathTest, NoDatabaseIsNothingToReport) {
    const Configuration none = read_configuration(dir.file("no root"), record());
    EXPECT_THAT(none.elements, IsEmpty());
    EXPECT_THAT(none.unread, IsEmpty());
    EXPECT_THAT(read_configuration(config(""), record()).unread, IsEmpty());
}

TEST(PrintableTest, ALineStaysALine) {
    EXPECT_EQ(printable("/a b/c,d/\xC3\xA4"), "/a b/c,d/\xC3\xA4");
    EXPECT_EQ(printable("/a\nb\t\x1B[31m\x7F"), "/a?b??[31m?");
}

}  // namespace
