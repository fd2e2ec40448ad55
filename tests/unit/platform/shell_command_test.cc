// SPDX-License-Identifier: MIT
#include "platform/shell_command.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "core/pattern.h"
#include "core/replace_file.h"
#include "support/giving_up.h"
#include "support/heard_failures.h"
#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;

/// Whether the process comes to its end. It is gone when its parent has collected it; until then it is a
/// zombie, and at the very end dead.
bool dies(pid_t process) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    const auto is_alive = [&] {
        const gw::Result<std::string> state = gw::read_file("/proc/" + std::to_string(process) + "/stat");
        return state && state->find(") Z ") == std::string::npos && state->find(") X ") == std::string::npos;
    };
    while (is_alive() && std::chrono::steady_clock::now() < end) std::this_thread::yield();
    return !is_alive();
}

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

TEST(RunCommand, TellsHowACommandFailed) {
    using gw::test::text_of;
    EXPECT_EQ(text_of(gw::run_command("true", {}, gw::MOMENTS)), "");
    EXPECT_EQ(text_of(gw::run_command("exit %s", {"3"}, gw::MOMENTS)),
              "exit 3: this command failed with status 3");
    EXPECT_EQ(text_of(gw::run_command("kill -9 $$", {}, gw::MOMENTS)),
              "kill -9 $$: this command failed with status 137");
}

TEST(RunCommand, IsStoppedAtOnceWhenTheWorkIsGivenUp) {
    using gw::test::text_of;
    const auto start = std::chrono::steady_clock::now();
    int asked = 0;
    const gw::test::GivingUp user([&] { return ++asked == 3; });
    EXPECT_EQ(text_of(gw::run_command("sleep 20", {}, gw::LONG_WORK)), "sleep 20: this was cancelled");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(asked, 3);
}

TEST(RunningCommand, GoesOnWhileItsOwnerDoesSomethingElse) {
    const TempDir dir;
    ASSERT_EQ(gw::run_shell("mkfifo %s %s", {dir.file("here"), dir.file("there")}), 0);
    gw::RunningCommand command(gw::shell_text("echo hello > %s; read answer < %s; exit \"$answer\"",
                                              {dir.file("here"), dir.file("there")}));
    EXPECT_EQ(gw::run_shell("read word < %s; test \"$word\" = hello", {dir.file("here")}), 0);
    EXPECT_EQ(gw::run_shell("echo 7 > %s", {dir.file("there")}), 0);
    const gw::Result<int> number = command.number(gw::MOMENTS);
    ASSERT_TRUE(number) << number.failure().text();
    EXPECT_EQ(*number, 7);
}

TEST(RunningCommand, OneWhoseEndNobodyWantsIsStopped) {
    const TempDir dir;
    {
        const gw::RunningCommand command(
            gw::shell_text("echo $$ > %s; exec sleep 1000", {dir.file("started")}));
        while (!dir.read("started").ends_with('\n')) std::this_thread::yield();
    }
    EXPECT_TRUE(dies(static_cast<pid_t>(std::stol(dir.read("started")))));
}

TEST(RunCommand, ACommandHasNothingToRead) {
    EXPECT_TRUE(gw::run_command("test -z \"$(cat)\"", {}, gw::MOMENTS));
}

TEST(RunCommand, OneThatHangsIsStoppedWithAllThatItStarted) {
    const TempDir dir;
    const gw::Outcome run = gw::run_command("sleep 1000 & echo $! > %s; wait", {dir.file("started")},
                                            std::chrono::milliseconds(300));
    ASSERT_FALSE(run);
    EXPECT_EQ(run.failure().reason, gw::Reason::NO_ANSWER);
    const auto started = static_cast<pid_t>(std::stol(dir.read("started")));
    EXPECT_TRUE(dies(started));
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

}  // namespace
