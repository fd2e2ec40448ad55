// SPDX-License-Identifier: MIT
//
// The tool's manual page is installed, gives the formatter nothing to warn about, and names every option and
// every message.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>

#include "platform/host_paths.h"
#include "platform/shell_command.h"
#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;

constexpr const char* SOURCE = GLYPHWARD_TREE "/data/man/makepsres.1";

std::string without_space(std::string text) {
    std::erase_if(text, [](char c) { return c == ' ' || c == '\t' || c == '\n'; });
    return text;
}

TEST(IndexPage, IsInstalledAsItIs) {
    const std::string installed = TempDir::read_bytes(std::string(gw::MANUAL_DIR) + "/man1/makepsres.1");
    ASSERT_FALSE(installed.empty());
    EXPECT_EQ(installed, TempDir::read_bytes(SOURCE));
}

TEST(IndexPage, GivesTheFormatterNothingToWarnAbout) {
    const TempDir dir;
    EXPECT_EQ(gw::run_shell("LC_ALL=C MANWIDTH=78 /bin/man --warnings=w -l %s > %s 2> %s",
                            {SOURCE, dir.file("page"), dir.file("complaints")}),
              0);
    EXPECT_EQ(dir.read("complaints"), "");
    EXPECT_THAT(dir.read("page"), testing::HasSubstr("makepsres - index PostScript resources"));
    std::istringstream lines(TempDir::read_bytes(SOURCE));
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(line.size(), 80U) << line;
        EXPECT_FALSE(line.ends_with(' ')) << line;
    }
}

TEST(IndexPage, NamesOptionsAndMessages) {
    const TempDir dir;
    gw::run_shell("LC_ALL=C /bin/man -l %s > %s 2> /dev/null", {SOURCE, dir.file("page")});
    const std::string page = without_space(dir.read("page"));
    for (const char* text :
         {"-nr", "-q", "-o file", "--help", "--version", "PSres.upr", "there is no option", "-o wants a file",
          "no font name in it; left out", "is in", "this is no plain file; left out",
          "this is no plain file; nothing is written", "nothing is written", "this is a directory, no font",
          "this is no resource file; left out", "this resource file breaks off; its end is left out",
          "is not here; left out", "a resource file cannot hold this name"}) {
        EXPECT_NE(page.find(without_space(text)), std::string::npos) << text;
    }
}

}  // namespace
