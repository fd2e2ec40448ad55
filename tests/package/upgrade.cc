// SPDX-License-Identifier: MIT
//
// The program on a machine that was upgraded from the first release. This program is not started as a suite:
// the package's test prepares the machine, and starts each test in a session, in this order.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

#include "end_to_end/program.h"
#include "end_to_end/program_test.h"

#include "end_to_end/main_window.h"

namespace {

using namespace gw::e2e;
using testing::AllOf;
using testing::HasSubstr;

constexpr const char* LOGIN = "set -e; . /etc/X11/Xsession.d/60glyphward-session";
constexpr const char* SUPERUSERS_FONTS = "/etc/vantor/glyphwd_fonts/";
constexpr const char* USERS_FONTS = "/home/glyph/glyphwd_fonts/";

/// Starts the program, leaves it, and returns what it has written to standard error.
std::string told_at_a_start() {
    Desktop desktop;
    const std::map<std::string, std::optional<std::string>> environment{
        {"HOME", is_root() ? "/root" : "/home/glyph"}};
    Program program(environment);
    desktop.attend_to(program.pid());
    const MainWindow window(desktop);
    EXPECT_TRUE(window.is_there()) << program.errors();
    window.take_keyboard();
    window.choose("f", "e");
    EXPECT_EQ(program.wait_for_exit(), 0);
    desktop.attend_to_nothing();
    return program.errors();
}

/// Whether the server has a font of this name.
bool has_font(const std::string& name) {
    return std::system(("xlsfonts -fn '" + name + "' 2>/dev/null | grep -q .").c_str()) == 0;
}

std::string brought_back(const std::string& dir) {
    return "glyphward: " + dir +
           ".old.pcf.gz.gwkept: a run that was killed had set this aside; it is old.pcf.gz again\n";
}
std::string taken_away(const std::string& dir) {
    return "glyphward: " + dir +
           ".helvB24-ISO8859-1.pcf.gz.gwold: a run that was killed had left this; it is taken away\n";
}

TEST(Upgrade, BringsTheUsersFontsBack) {
    ASSERT_FALSE(is_root());
    ASSERT_EQ(std::system(LOGIN), 0);
    EXPECT_FALSE(has_font("-adobe-userfonts-*"));
    const std::string told = told_at_a_start();
    EXPECT_THAT(told, AllOf(HasSubstr(brought_back(USERS_FONTS)), HasSubstr(taken_away(USERS_FONTS)),
                            HasSubstr(std::string(SUPERUSERS_FONTS) +
                                      ": a change of this directory was not finished")));
}

TEST(Upgrade, BringsTheSuperusersFontsBack) {
    ASSERT_TRUE(is_root());
    const std::string told = told_at_a_start();
    EXPECT_THAT(told,
                AllOf(HasSubstr(brought_back(SUPERUSERS_FONTS)), HasSubstr(taken_away(SUPERUSERS_FONTS))));
    EXPECT_EQ(told_at_a_start(), "") << "the second time";
}

TEST(Upgrade, HasAllFontsTheNextDay) {
    EXPECT_FALSE(has_font("-adobe-userfonts-*"));
    ASSERT_EQ(std::system(LOGIN), 0);
    for (const char* font :
         {"-adobe-userfonts-*", "-adobe-superuser-*", "-own-userfonts-*", "-own-superuser-*"})
        EXPECT_TRUE(has_font(font)) << font;
    EXPECT_EQ(told_at_a_start(), "");
}

}  // namespace
