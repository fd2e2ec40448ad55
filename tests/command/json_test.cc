// SPDX-License-Identifier: MIT
//
// What the commands print for other programs is as the schema says. A validator of another's making looks.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "command/fonts_command.h"
#include "command/json_schema.h"

namespace {

using gw::test::complaint_about;
using gw::test::fonts_command;
using gw::test::Ran;
using gw::test::SANS;
using gw::test::TempDir;

TEST(CommandJson, TheValidatorRefusesWhatIsNotAsTheSchemaSays) {
    EXPECT_NE(complaint_about("{}"), "");
    EXPECT_NE(complaint_about(R"({"schema": 2, "command": "undo", "status": 0, "problems": []})"), "");
    EXPECT_EQ(complaint_about(R"({"schema": 1, "command": "undo", "status": 0, "problems": []})"), "");
}

TEST(CommandJson, IsAsTheSchemaSaysForEveryCommand) {
    const gw::test::OwnHome home;
    const std::string to = home.dir().make_dir("to");
    const std::string odd = home.dir().write("\xFF.ttf", "x");
    const std::vector<std::vector<std::string>> commands = {
        {"path", "add", to},
        {"list"},
        {"list", "courier*", "nothing at all"},
        {"list", "--unusable"},
        {"verify", SANS, odd, "/nowhere"},
        {"why", "fixed"},
        {"why", "-nobody-nothing-medium-r-normal--12-120-75-75-p-70-iso8859-1"},
        {"why", "fixed", "--server", ":987"},
        {"fontset", "ja_JP.UTF-8"},
        {"fontset", "xx_YY"},
        {"doctor"},
        {"install", "--dry-run", "--to", to, SANS},
        {"install", "--to", to, SANS, odd},
        {"install", "--to", to, SANS},
        {"install", "--to", "/proc/nowhere", SANS},
        {"delete", "dejavu*"},
        {"delete", "--yes", "dejavu*", "fixed"},
        {"trash"},
        {"undo"},
        {"undo"},
        {"trash", "--empty"},
        {"export", "--me", home.dir().file("exported")},
        {"apply", "--check", home.dir().file("exported/profile.toml")},
        {"apply", home.dir().file("nothing.toml")},
        {"path", "show", "--all"},
        {"path", "move", to, "1"},
        {"path", "remove", to},
        {"path", "remove", "--of", "session", to},
        {"path", "add", "--of", "session", "/nowhere/"},
        {"path", "apply", "--dry-run"},
    };
    for (std::vector<std::string> words : commands) {
        words.emplace_back("--json");
        const Ran ran = fonts_command(words);
        EXPECT_EQ(complaint_about(ran.out), "") << testing::PrintToString(words) << ran.out << ran.err;
        EXPECT_EQ(ran.json()["status"], ran.status);
    }
}

}  // namespace
