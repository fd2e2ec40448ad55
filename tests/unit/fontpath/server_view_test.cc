// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <clocale>
#include <memory>
#include <string>
#include <vector>

#include "fontpath/server_place.h"
#include "fontpath/xlib_server_view.h"
#include "support/temp_dir.h"

#include "support/own_server.h"
#include "support/session.h"

namespace gw {
namespace {

constexpr std::chrono::milliseconds SHORT(300);
constexpr const char* FIXED = "-misc-fixed-medium-r-semicondensed--13-120-75-75-c-60-iso8859-1";
constexpr int MANY = 10000;

class ServerViewTest : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(server); }
    test::Session session;
    std::unique_ptr<ServerView> server = connect_to_server();
};

TEST_F(ServerViewTest, TellsTheFontPathOfTheServer) {
    EXPECT_TRUE(server->answers());
    EXPECT_EQ(server->font_path(), session.font_path());
    EXPECT_FALSE(server->font_path().empty());
}

TEST_F(ServerViewTest, TellsWhoTheServerIsAndThatItIsHere) {
    EXPECT_EQ(server->user(), ::geteuid());
    const std::vector<gid_t> groups = server->groups();
    EXPECT_NE(std::find(groups.begin(), groups.end(), ::getegid()), groups.end());
    EXPECT_EQ(server->place(), ServerPlace::HERE);
}

TEST_F(ServerViewTest, ListsNoMoreNamesThanWanted) {
    const std::vector<std::string> names = server->names(FIXED, MANY);
    EXPECT_FALSE(names.empty());
    EXPECT_EQ(std::count(names.begin(), names.end(), FIXED), static_cast<std::ptrdiff_t>(names.size()));
    EXPECT_EQ(server->names("*", 3).size(), 3U);
    EXPECT_TRUE(server->names("*", 0).empty());
    EXPECT_TRUE(server->names("no such font", MANY).empty());
}

TEST_F(ServerViewTest, OpensAFont) {
    const std::optional<OpenedFont> font = server->open(FIXED);
    ASSERT_TRUE(font);
    EXPECT_EQ(strcasecmp(font->name.c_str(), FIXED), 0) << font->name;
    EXPECT_EQ(font->ascent, 11);
    EXPECT_EQ(font->descent, 2);
    EXPECT_EQ(font->max_width, 6);
    EXPECT_EQ(font->characters, 256);
    EXPECT_TRUE(font->has_letters);
}

TEST_F(ServerViewTest, OpensAnAliasAndAPattern) {
    ASSERT_TRUE(server->open("fixed"));
    EXPECT_EQ(strcasecmp(server->open("fixed")->name.c_str(), FIXED), 0);
    const std::optional<OpenedFont> cursor = server->open("cursor");
    ASSERT_TRUE(cursor);
    EXPECT_FALSE(cursor->has_letters && cursor->name == FIXED);
    EXPECT_TRUE(server->open("-misc-fixed-*"));
}

TEST_F(ServerViewTest, SurvivesNamesThatNoServerTakes) {
    for (const std::string& name :
         {std::string(), std::string("no such font"), std::string(5000, 'a'), std::string(70000, '*'),
          std::string("**************"), std::string("-*-*-*-*-*-*-*-*-*-*-*-*-*-*-*-*"),
          std::string("\n\t\x1b"), std::string("-misc-\xff\xfe-*")}) {
        (void)server->open(name);
        (void)server->names(name, MANY);
        EXPECT_TRUE(server->answers()) << name.substr(0, 30);
    }
    EXPECT_FALSE(server->open("no such font"));
    EXPECT_FALSE(server->open(std::string(5000, 'a')));
}

TEST_F(ServerViewTest, AFontThatTheServerCannotReadIsNoFont) {
    test::TempDir dir;
    const std::string name = "-cut-off-medium-r-normal--8-80-75-75-c-80-iso8859-1";
    dir.write("fonts.dir", "1\ncut.pcf " + name + "\n");
    dir.write("cut.pcf", std::string("\1fcp\5\0\0\0", 8));
    std::vector<std::string> path = server->font_path();
    path.insert(path.begin(), dir.path());
    ASSERT_TRUE(server->set_font_path(path));
    EXPECT_FALSE(server->names(name, MANY).empty());
    EXPECT_FALSE(server->open(name));
    EXPECT_TRUE(server->open(FIXED));
}

TEST_F(ServerViewTest, LeavesTheErrorHandlersAsTheyWere) {
    const auto ours = [](Display*, XErrorEvent*) { return 0; };
    const auto our_break = [](Display*) { return 0; };
    const XErrorHandler before = XSetErrorHandler(ours);
    const XIOErrorHandler break_before = XSetIOErrorHandler(our_break);
    (void)server->open("no such font");
    (void)server->open_fontset("no such font");
    EXPECT_EQ(XSetErrorHandler(before), static_cast<XErrorHandler>(ours));
    EXPECT_EQ(XSetIOErrorHandler(break_before), static_cast<XIOErrorHandler>(our_break));
}

TEST_F(ServerViewTest, SetsTheFontPathOrLeavesIt) {
    const std::vector<std::string> before = server->font_path();
    const Outcome refused = server->set_font_path({before.front(), "/no/such/directory"});
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.failure().reason, Reason::REFUSED_BY_SERVER);
    EXPECT_EQ(server->font_path(), before);
    EXPECT_FALSE(server->set_font_path({std::string(256, '/')}));
    EXPECT_FALSE(server->set_font_path({""}));
    EXPECT_TRUE(server->set_font_path({before.front()}));
    EXPECT_EQ(server->font_path(), std::vector<std::string>{before.front()});
}

class FontsetViewTest : public ServerViewTest {
  protected:
    void SetUp() override {
        ServerViewTest::SetUp();
        ASSERT_NE(std::setlocale(LC_CTYPE, "ja_JP.UTF-8"), nullptr);
    }
    void TearDown() override { std::setlocale(LC_CTYPE, "C"); }
};

TEST_F(FontsetViewTest, TellsMembersAndMissingCharsets) {
    const OpenedFontset set = server->open_fontset(FIXED);
    EXPECT_TRUE(set.is_usable);
    ASSERT_FALSE(set.members.empty());
    EXPECT_EQ(set.members.front().charset, "iso8859-1");
    EXPECT_FALSE(set.missing_charsets.empty());
}

TEST_F(FontsetViewTest, SurvivesSetsThatCannotBeMade) {
    EXPECT_FALSE(server->open_fontset("").is_usable);
    EXPECT_FALSE(server->open_fontset(" \t").is_usable);
    EXPECT_FALSE(server->open_fontset(" , ,").is_usable);
    EXPECT_FALSE(server->open_fontset("no such font").is_usable);
    EXPECT_FALSE(server->open_fontset(std::string(5000, '-')).is_usable);
    std::string many;
    for (int i = 0; i < 200; ++i) many += "-none-" + std::to_string(i) + "-*,";
    EXPECT_TRUE(server->open_fontset(many + FIXED).is_usable);
    EXPECT_TRUE(server->answers());
}

class EndingServerTest : public testing::Test {
  protected:
    static constexpr int RESOLUTION = 75;
    std::unique_ptr<test::Session> session = std::make_unique<test::Session>();
    std::string display = std::getenv("DISPLAY");
    std::unique_ptr<test::OwnServer> own = std::make_unique<test::OwnServer>(200, 100, RESOLUTION);

    void TearDown() override {
        ::kill(own->process(), SIGCONT);
        own.reset();
        ::setenv("DISPLAY", display.c_str(), 1);
    }
};

void expect_no_answers(ServerView& server) {
    EXPECT_FALSE(server.answers());
    EXPECT_TRUE(server.font_path().empty());
    EXPECT_TRUE(server.names("*", MANY).empty());
    EXPECT_FALSE(server.open(FIXED));
    EXPECT_FALSE(server.open_fontset(FIXED).is_usable);
    const Outcome set = server.set_font_path({"built-ins"});
    ASSERT_FALSE(set);
    EXPECT_EQ(set.failure().reason, Reason::NO_X_SERVER);
}

TEST_F(EndingServerTest, AServerThatDiesDoesNotEndTheProgram) {
    const std::unique_ptr<ServerView> server = connect_to_server();
    ASSERT_TRUE(server);
    EXPECT_TRUE(server->open(FIXED));
    ::kill(own->process(), SIGKILL);
    expect_no_answers(*server);
    EXPECT_EQ(session->font_path().empty(), false) << "the other server is still there";
}

TEST_F(EndingServerTest, AServerThatIsStoppedIsGivenUp) {
    for (int first_question = 0; first_question < 5; ++first_question) {
        const std::unique_ptr<ServerView> server = connect_to_server("", SHORT);
        ASSERT_TRUE(server);
        ::kill(own->process(), SIGSTOP);
        const auto start = std::chrono::steady_clock::now();
        switch (first_question) {
            case 0:
                EXPECT_FALSE(server->answers());
                break;
            case 1:
                EXPECT_TRUE(server->font_path().empty());
                break;
            case 2:
                EXPECT_TRUE(server->names("*", MANY).empty());
                break;
            case 3:
                EXPECT_FALSE(server->open(FIXED));
                break;
            default:
                EXPECT_FALSE(server->open_fontset(FIXED).is_usable);
                break;
        }
        expect_no_answers(*server);
        EXPECT_LT(std::chrono::steady_clock::now() - start, 20 * SHORT);
        ::kill(own->process(), SIGCONT);
    }
}

TEST_F(EndingServerTest, NobodyConnectsToAStoppedServer) {
    ::kill(own->process(), SIGSTOP);
    EXPECT_FALSE(connect_to_server("", SHORT));
}

TEST(ServerConnectionTest, ThereIsNoViewOfAServerThatIsNotThere) {
    EXPECT_FALSE(connect_to_server(":987"));
    EXPECT_FALSE(connect_to_server("no display"));
}

TEST(ServerPlaceTest, ThisProcessIsHereAndAnUnknownOneMayBeAnywhere) {
    EXPECT_EQ(place_of(::getpid()).place, ServerPlace::HERE);
    EXPECT_TRUE(place_of(::getpid()).is_certain);
    EXPECT_EQ(place_of(0).place, ServerPlace::UNKNOWN);
    EXPECT_FALSE(place_of(0).is_certain);
    EXPECT_TRUE(groups_of(0).empty());
}

}  // namespace
}  // namespace gw
