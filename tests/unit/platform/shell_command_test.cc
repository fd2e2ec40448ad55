// SPDX-License-Identifier: MIT
#include "platform/shell_command.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "core/pattern.h"
#include "platform/scratch.h"
#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;

TEST(ShellText, LeavesOrdinaryPathsAsTheyAre) {
    EXPECT_EQ(gw::shell_text("cd %s; rm -rf %s %s~", {"/usr/fonts/75dpi/", "glyphwd.upr", "glyphwd.upr"}),
              "cd /usr/fonts/75dpi/; rm -rf glyphwd.upr glyphwd.upr~");
}

TEST(ShellText, QuotesEverythingElse) {
    EXPECT_EQ(gw::shell_text("x %s", {"a b"}), "x 'a b'");
    EXPECT_EQ(gw::shell_text("x %s", {"it's"}), R"(x 'it'\''s')");
    EXPECT_EQ(gw::shell_text("x %s", {""}), "x ''");
    EXPECT_EQ(gw::shell_text("x %s", {"~"}), "x '~'");
    EXPECT_EQ(gw::shell_text("x %s%s", {"a"}), "x a''");
}

TEST(RunShell, GivesStrangeNamesToTheCommandUnharmed) {
    const TempDir dir;
    for (const char* name : {"x; rm -rf y", "$(touch y)", "`touch y`", "new\nline", "q\"uote", "back\\slash",
                             "\xe9t\xe9", "*"}) {
        EXPECT_EQ(gw::run_shell("cd %s; touch %s", {dir.path(), name}), 0) << name;
        EXPECT_TRUE(dir.exists(name)) << name;
        EXPECT_FALSE(dir.exists("y")) << name;
    }
}

TEST(RunShell, GivesTheCommandsStatus) {
    EXPECT_NE(gw::run_shell("exit 3"), 0);
}

class CommandDir : public testing::Test {
  protected:
    CommandDir() : before_(std::getenv("PATH")) {}
    ~CommandDir() override { ::setenv("PATH", before_.c_str(), 1); }

  private:
    std::string before_;
};

TEST_F(CommandDir, IsTheLastOfThePath) {
    const std::pair<const char*, const char*> cases[] = {
        {"/usr/bin:/bin", "/usr/bin:/bin:/own/bin"},
        {"/own/bin2", "/own/bin2:/own/bin"},
        {"/usr/own/bin", "/usr/own/bin:/own/bin"},
        {"/usr/bin:", "/usr/bin::/own/bin"},
        // The directory is on PATH already.
        {"/own/bin", "/own/bin"},
        {"/own/bin:/usr/bin", "/own/bin:/usr/bin"},
        {"/usr/bin:/own/bin/", "/usr/bin:/own/bin/"},
    };
    for (const auto& [before, after] : cases) {
        ::setenv("PATH", before, 1);
        for (int time = 1; time <= 2; ++time) {
            gw::add_command_dir("/own/bin");
            EXPECT_STREQ(std::getenv("PATH"), after) << time;
        }
    }
}

TEST_F(CommandDir, StandsBehindTheSystemsOwnWhenThereIsNoPath) {
    ::unsetenv("PATH");
    gw::add_command_dir("/own/bin");
    const std::string unset = std::getenv("PATH");
    EXPECT_NE(unset.find("/bin:"), std::string::npos) << unset;
    EXPECT_TRUE(unset.ends_with(":/own/bin")) << unset;
    EXPECT_EQ(unset.find("::"), std::string::npos) << "the current directory is not meant";
    ::setenv("PATH", "", 1);
    gw::add_command_dir("/own/bin");
    EXPECT_EQ(std::getenv("PATH"), unset);
}

TEST_F(CommandDir, IsWhereTheShellFindsItsCommands) {
    const TempDir dir;
    const std::string bin = dir.make_dir("own bin");
    dir.write("own bin/gw-own-command", "#!/bin/sh\nexit 0\n");
    std::filesystem::permissions(bin + "gw-own-command", std::filesystem::perms(0755));
    dir.write("own bin/true", "#!/bin/sh\nexit 1\n");
    std::filesystem::permissions(bin + "true", std::filesystem::perms(0755));
    EXPECT_NE(gw::run_shell("gw-own-command 2> %s", {dir.file("err")}), 0);
    gw::add_command_dir(bin);
    EXPECT_EQ(gw::run_shell("gw-own-command"), 0);
    EXPECT_EQ(gw::run_shell("env true"), 0) << "the system's own go before it";
}

TEST(Pattern, ReportsWhereItMatches) {
    const auto found = gw::Pattern(".pcf.Z$").find("8x13.pcf.Z");
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->start, 4U);
    EXPECT_EQ(found->end, 10U);
    EXPECT_FALSE(gw::Pattern(".pcf$").find("8x13.pcf.gz").has_value());
}

TEST(Pattern, OneThatCannotBeCompiledMatchesNothing) {
    EXPECT_FALSE(gw::Pattern("[").find("[").has_value());
}

TEST(Scratch, AFileIsMadeOnceAndNeverThroughALink) {
    const TempDir dir;
    EXPECT_TRUE(gw::create_scratch_file(dir.file("errors").c_str()));
    EXPECT_FALSE(gw::create_scratch_file(dir.file("errors").c_str()));
    std::filesystem::create_symlink(dir.file("victim"), dir.file("link"));
    EXPECT_FALSE(gw::create_scratch_file(dir.file("link").c_str()));
    EXPECT_FALSE(dir.exists("victim"));
}

TEST(Scratch, ADirectoryMustBeOurOwn) {
    const TempDir dir;
    const std::string own = dir.make_dir("own");
    EXPECT_FALSE(gw::is_foreign_dir(own.c_str()));
    EXPECT_FALSE(gw::is_foreign_dir(dir.file("missing/").c_str()));
    std::filesystem::create_directory_symlink(own, dir.file("link"));
    EXPECT_TRUE(gw::is_foreign_dir(dir.file("link/").c_str()));
    dir.write("file", "x");
    EXPECT_TRUE(gw::is_foreign_dir(dir.file("file").c_str()));
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(own.c_str(), 1234, 1234), 0);
        EXPECT_TRUE(gw::is_foreign_dir(own.c_str()));
    } else {
        EXPECT_TRUE(gw::is_foreign_dir("/usr/share"));
    }
}

}  // namespace
