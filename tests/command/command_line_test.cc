// SPDX-License-Identifier: MIT
//
// The command line itself: help, version, what is wrong with it, and where the output goes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iterator>
#include <regex>
#include <set>

#include "command/fonts_command.h"
#include "platform/shell_command.h"

namespace {

using gw::test::fonts_command;
using gw::test::Ran;
using gw::test::TempDir;
using gw::test::Variable;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const std::vector<std::string> COMMANDS = {"list",   "verify", "why",   "fontset", "doctor", "install",
                                           "delete", "undo",   "trash", "apply",   "export", "path"};

TEST(CommandLine, SaysItsVersionAndHelpWithoutADisplay) {
    const Variable no_display("DISPLAY", nullptr);
    EXPECT_EQ(fonts_command({"--version"}).out, "glyphward-fonts " GLYPHWARD_VERSION "\n");
    const Ran help = fonts_command({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.err, "");
    for (const std::string& command : COMMANDS) {
        EXPECT_THAT(help.out, HasSubstr("\n  " + command + ' '));
        const Ran of_command = fonts_command({command, "--help"});
        EXPECT_EQ(of_command.status, 0) << command;
        EXPECT_NE(of_command.out, "") << command;
    }
}

TEST(CommandLine, OfTheWindowsAnswersWithoutADisplayToo) {
    const Variable no_display("DISPLAY", nullptr);
    const TempDir dir;
    ASSERT_EQ(gw::run_shell("/usr/vantor/bin/glyphward --version > %s 2>&1", {dir.file("said")}), 0);
    EXPECT_EQ(dir.read("said"), "glyphward " GLYPHWARD_VERSION "\n");
    ASSERT_EQ(gw::run_shell("/usr/vantor/bin/glyphward --help > %s 2>&1", {dir.file("said")}), 0);
    EXPECT_THAT(dir.read("said"), HasSubstr("Usage: glyphward "));
}

std::set<std::string> options_in(const std::string& text) {
    static const std::regex OPTION("--[a-z][-a-z]*");
    return {std::sregex_token_iterator(text.begin(), text.end(), OPTION), std::sregex_token_iterator()};
}

TEST(CommandLine, SaysWhatIsMeantAndNotOfWhichKindItIs) {
    const std::string install = fonts_command({"install", "--help"}).out;
    EXPECT_THAT(install, ContainsRegex("\n  FILE \\.\\.\\. REQUIRED +font files"));
    EXPECT_THAT(fonts_command({"list", "--help"}).out, HasSubstr("--format FORMAT:{type1,"));
    for (const std::string& command : COMMANDS)
        EXPECT_THAT(fonts_command({command, "--help"}).out, Not(ContainsRegex("( INT |[A-Z] TEXT |TEXT:)")))
            << command;
}

/// What the help of all commands names.
std::set<std::string> all_options() {
    std::set<std::string> all;
    std::vector<std::vector<std::string>> commands;
    for (const std::string& command : COMMANDS) commands.push_back({command});
    for (const char* command : {"show", "add", "remove", "move", "apply", "save"})
        commands.push_back({"path", command});
    for (std::vector<std::string>& command : commands) {
        command.emplace_back("--help");
        all.merge(options_in(fonts_command(command).out));
    }
    return all;
}

TEST(CommandLine, ManualAndShellsKnowEveryCommandAndOption) {
    const std::set<std::string> options = all_options();
    ASSERT_GT(options.size(), 20U);
    for (const char* name : {"/data/man/glyphward-fonts.1", "/data/completion/glyphward-fonts.bash",
                             "/data/completion/_glyphward-fonts"}) {
        std::string text = TempDir::read_bytes(std::string(GLYPHWARD_TREE) + name);
        std::erase(text, '\\');
        for (const std::string& option : options) EXPECT_THAT(text, HasSubstr(option)) << name;
        for (const std::string& command : COMMANDS) EXPECT_THAT(text, HasSubstr(command)) << name;
        // And offer none that there is not.
        for (const std::string& option : options_in(text)) {
            if (option != "--version" && option != "--help") {
                EXPECT_TRUE(options.contains(option)) << option << " in " << name;
            }
        }
    }
}

/// What bash offers behind these words, the last of which is not finished.
std::vector<std::string> offered_by_bash(const std::string& words) {
    const TempDir dir;
    const std::string script = dir.write("ask", R"(
        . "$1"
        read -ra COMP_WORDS <<<"$2"
        [[ $2 != *' ' ]] || COMP_WORDS+=('')
        COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
        _glyphward_fonts
        printf '%s\n' "${COMPREPLY[@]}")");
    EXPECT_EQ(gw::run_shell(
                  "bash %s %s %s > %s 2>&1",
                  {script, GLYPHWARD_TREE "/data/completion/glyphward-fonts.bash", words, dir.file("said")}),
              0);
    std::istringstream said(dir.read("said"));
    return {std::istream_iterator<std::string>(said), std::istream_iterator<std::string>()};
}

TEST(CommandLine, BashOffersWhatFits) {
    EXPECT_THAT(offered_by_bash("glyphward-fonts un"), ElementsAre("undo"));
    EXPECT_THAT(offered_by_bash("glyphward-fonts path s"), ElementsAre("show", "save"));
    EXPECT_THAT(offered_by_bash("glyphward-fonts list --format b"), ElementsAre("bitmap"));
    EXPECT_THAT(offered_by_bash("glyphward-fonts install --re"), ElementsAre("--replace"));
    EXPECT_THAT(offered_by_bash("glyphward-fonts install --ev"), ElementsAre("--everyone"));
    EXPECT_THAT(offered_by_bash("glyphward-fonts path add --f"), ElementsAre("--front"));
    EXPECT_THAT(offered_by_bash("glyphward-fonts verify /etc/passw"), testing::Contains("/etc/passwd"));
}

TEST(CommandLine, AnswersWhatIsWrongWithItInOneLineAndTwo) {
    const std::vector<std::vector<std::string>> wrong = {{},
                                                         {"nonsense"},
                                                         {"list", "--nonsense"},
                                                         {"list", "--format", "nonsense"},
                                                         {"verify"},
                                                         {"why"},
                                                         {"why", "fixed", "--cure", "0"},
                                                         {"path"},
                                                         {"path", "show", "--of", "nobody"},
                                                         {"install"},
                                                         {"install", "x", "--me", "--everyone"},
                                                         {"install", "x", "--replace", "--keep"},
                                                         {"delete"}};
    for (const std::vector<std::string>& words : wrong) {
        const Ran ran = fonts_command(words);
        EXPECT_EQ(ran.status, 2) << ran.err;
        EXPECT_EQ(ran.out, "");
        EXPECT_TRUE(ran.err.starts_with("glyphward-fonts: ")) << ran.err;
    }
}

TEST(CommandLine, DoesNotMindAPipeThatNobodyReads) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    ::close(ends[0]);
    const gw::test::TempDir dir;
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(ends[1], STDOUT_FILENO);
        gw::test::redirect(STDERR_FILENO, dir.file("err"), O_WRONLY | O_CREAT);
        ::execl(gw::test::FONTS_COMMAND, gw::test::FONTS_COMMAND, "list", nullptr);
        ::_exit(127);
    }
    ::close(ends[1]);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(dir.read("err"), "");
}

/// The exit status of the program in a shell, with these words behind it.
int status_in_shell(const std::string& words, const std::string& errors = "/dev/null") {
    const int status = gw::run_shell(std::string(gw::test::FONTS_COMMAND) + ' ' + words + " 2>%s", {errors});
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(CommandLine, FailsWhenThereIsNoRoomForItsOutput) {
    const TempDir dir;
    for (const char* words : {"list", "list --json", "list -0", "--help", "--version", "install --help"}) {
        EXPECT_EQ(status_in_shell(std::string(words) + " >/dev/full", dir.file("err")), 1) << words;
        EXPECT_THAT(dir.read("err"), HasSubstr("standard output: ")) << words;
    }
}

TEST(CommandLine, DoesNotNeedTheStandardDescriptors) {
    EXPECT_EQ(status_in_shell("list <&- >&-"), 0);
    EXPECT_EQ(status_in_shell("list nothing <&- >&- 2>&-"), 1);
    EXPECT_EQ(status_in_shell("--help <&- >&- 2>&-"), 0);
    EXPECT_EQ(status_in_shell("--help | true"), 0);
}

TEST(CommandLine, CannotAskWhereThereIsNoServer) {
    const Variable no_display("DISPLAY", nullptr);
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{"why", "fixed"},
                                               {"doctor"},
                                               {"path", "show", "--of", "session"},
                                               {"path", "apply"},
                                               {"path", "save"}}) {
        const Ran ran = fonts_command(words);
        EXPECT_EQ(ran.status, 4) << words.front();
        EXPECT_EQ(ran.err, "glyphward-fonts: DISPLAY: it is not set\n");
    }
    const Ran other = fonts_command({"why", "fixed", "--server", ":987"});
    EXPECT_EQ(other.status, 4);
    EXPECT_EQ(other.err, "glyphward-fonts: :987: no X server answers there\n");
}

TEST(CommandLine, SaysWhereItCannotBegin) {
    const Ran ran = fonts_command({"list", "--root", "/nowhere/at/all"});
    EXPECT_EQ(ran.status, 4);
    EXPECT_EQ(ran.out, "");
    EXPECT_THAT(ran.err, HasSubstr("/nowhere/at/all: "));
}

}  // namespace
