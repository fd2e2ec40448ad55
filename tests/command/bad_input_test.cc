// SPDX-License-Identifier: MIT
//
// What scripts give to the command by mistake: nothing where names should be, odd names, places that are not
// what they should be. Nothing is changed then that was not meant, and the status says so.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "command/json_schema.h"
#include "command/own_fonts.h"
#include "fontfiles/unicode_text.h"

namespace {

namespace fs = std::filesystem;
using gw::test::BOLD_ROW;
using gw::test::complaint_about;
using gw::test::content;
using gw::test::fonts_command;
using gw::test::Json;
using gw::test::Ran;
using gw::test::SANS;
using gw::test::SANS_ROW;
using gw::test::TempDir;
using testing::HasSubstr;
using testing::Not;

class CommandBadInput : public gw::test::OwnFonts {};

// `find ... | glyphward-fonts delete --yes -` deleted all fonts when nothing was found.
TEST_F(CommandBadInput, NoNamesOnStandardInputAreNotAllFonts) {
    ASSERT_EQ(install({source_.path()}).status, 0);
    const auto before = content(to_);
    for (const std::string& input : {std::string(), std::string(2, '\n'), std::string(2, '\0')}) {
        for (const std::vector<std::string>& words :
             std::vector<std::vector<std::string>>{{"delete", "--yes", "-"},
                                                   {"delete", "--yes", "--force", "-0", "-"},
                                                   {"list", "-"},
                                                   {"install", "--to", to_, "-"},
                                                   {"verify", "-"},
                                                   {"path", "add", "-"}}) {
            const bool are_nul = std::find(words.begin(), words.end(), "-0") != words.end();
            if (!input.empty() && (input.front() == '\0') != are_nul) continue;
            const Ran ran = fonts_command(words, input);
            EXPECT_EQ(ran.status, 1) << testing::PrintToString(words);
            EXPECT_EQ(ran.out, "");
            EXPECT_EQ(ran.err, "glyphward-fonts: standard input: there are no names on it\n");
        }
    }
    EXPECT_EQ(content(to_), before);
    EXPECT_EQ(fonts_command({"delete", "--yes", "-"}, "dejavu sans bold*\n").status, 0);
    EXPECT_FALSE(fs::exists(to_ + "DejaVuSans-Bold.ttf"));
    EXPECT_TRUE(fs::exists(to_ + "DejaVuSans.ttf"));
}

// `--root "$IMAGE"` worked on the running system where the variable was not set.
TEST_F(CommandBadInput, AnEmptyDirectoryIsNotTheOneWithoutTheOption) {
    const auto before = content(home_.dir().path());
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{"list", "--root", ""},
                                               {"list", "--root="},
                                               {"install", "--to", "", SANS},
                                               {"export", "--from", "", home_.dir().file("out")},
                                               {"export", ""}}) {
        const Ran ran = fonts_command(words);
        EXPECT_EQ(ran.status, 2) << testing::PrintToString(words);
        EXPECT_EQ(ran.out, "");
    }
    EXPECT_EQ(content(home_.dir().path()), before);
}

TEST_F(CommandBadInput, APatternThatMatchesNothingIsToldOnce) {
    for (const char* command : {"list", "delete"}) {
        std::vector<std::string> words = {command, "no such font", "dejavu*x"};
        if (words.front() == "delete") words.emplace_back("--yes");
        const Ran ran = fonts_command(words);
        EXPECT_EQ(ran.status, 1);
        EXPECT_EQ(ran.err,
                  "glyphward-fonts: no such font: no font has this name\n"
                  "glyphward-fonts: dejavu*x: no font has this name\n");
    }
}

TEST_F(CommandBadInput, NamesHaveNoMarksOfLists) {
    ASSERT_EQ(install({SANS}).status, 0);
    fs::permissions(to_, fs::perms::owner_read | fs::perms::owner_exec);
    const Ran ran = install({"--json", SANS});
    const Json mine = fonts_command({"list", "--json", "dejavu*", "fixed*"}).json();
    fs::permissions(to_, fs::perms::owner_all);
    for (const Json& font : mine["fonts"]) EXPECT_THAT(font["name"].dump(), Not(HasSubstr("[Read Only]")));
    EXPECT_EQ(install({SANS}).out, std::string(SANS_ROW) + ": already there\n");
}

TEST_F(CommandBadInput, NamesOfAllBytesAreEscapedEncodedOrGivenAsTheyAre) {
    const std::string newline = "a\nb.ttf";
    const std::string quoted = "it's \"$(x)\" \\.ttf";
    const std::string bytes = "\xC3(\xFF\x1B[31m.ttf";
    for (const std::string& name : {newline, quoted, bytes}) fs::copy_file(SANS, source_.file(name));
    for (const char* gone : {"DejaVuSans.ttf", "DejaVuSans-Bold.ttf"}) fs::remove(source_.file(gone));
    const Ran text = fonts_command({"verify", source_.path()});
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_EQ(text.lines().size(), 3U) << text.out;
    EXPECT_THAT(text.out, HasSubstr("a\\x0Ab.ttf: good\n"));
    EXPECT_THAT(text.out, HasSubstr("\\x1B[31m.ttf: good\n"));
    EXPECT_THAT(text.out, HasSubstr("it's \"$(x)\" "));
    const Ran raw = fonts_command({"verify", "-0", source_.path()});
    for (const std::string& name : {newline, quoted, bytes})
        EXPECT_THAT(raw.out, HasSubstr(source_.file(name) + std::string(1, '\0')));
    // What it has printed it takes again.
    EXPECT_EQ(fonts_command({"verify", "-0", "-"}, raw.out).out, raw.out);
    const Ran json = fonts_command({"verify", "--json", source_.path()});
    EXPECT_EQ(complaint_about(json.out), "");
    ASSERT_EQ(json.json()["files"].size(), 3U);
    for (const std::string command : {"install", "why"}) {
        for (const std::string& name : {newline, quoted, bytes}) {
            std::vector<std::string> words = {command, source_.file(name), "--json"};
            if (command == "install") words.insert(words.end(), {"--dry-run", "--to", to_});
            const Ran ran = fonts_command(words);
            EXPECT_EQ(complaint_about(ran.out), "") << ran.out;
            EXPECT_THAT(ran.err, Not(HasSubstr("\x1B"))) << name;
        }
    }
}

TEST_F(CommandBadInput, ATerminalGetsCharactersOfTheLocaleOnly) {
    const std::string latin = "caf\xE9.ttf";
    const std::string unicode = "caf\xC3\xA9.ttf";
    const std::string control =
        "\xC2\x9B"
        "31m.ttf";
    const std::string reversed = "a\xE2\x80\xAE.ttf";
    for (const std::string& name : {latin, unicode, control, reversed})
        fs::copy_file(SANS, source_.file(name));
    for (const char* locale : {"de_DE.UTF-8", "C"}) {
        const gw::test::Variable spoken("LC_ALL", locale);
        const Ran ran = fonts_command({"verify", source_.path(), source_.file("no\xFF.ttf"), "--quie\xFF"});
        EXPECT_TRUE(gw::is_utf8(ran.err)) << locale << ran.err;
        const Ran text = fonts_command({"verify", source_.path(), source_.file("no\xFF.ttf")});
        EXPECT_TRUE(gw::is_utf8(text.out + text.err)) << locale << text.out << text.err;
        for (const char* shown : {"caf\\xE9.ttf: ", "caf\xC3\xA9.ttf: ",
                                  "\\xC2\\x9B"
                                  "31m.ttf: ",
                                  "a\\xE2\\x80\\xAE.ttf: "})
            EXPECT_THAT(text.out, HasSubstr(shown)) << locale;
    }
    const gw::test::Variable spoken("LC_ALL", "de_DE.ISO-8859-1");
    const Ran text = fonts_command({"verify", source_.path()});
    for (const char* shown : {"caf\xE9.ttf: ", "caf\xC3\xA9.ttf: ",
                              "\xC2\\x9B"
                              "31m.ttf: "})
        EXPECT_THAT(text.out, HasSubstr(shown));
}

TEST_F(CommandBadInput, LongNamesAreRefusedLikeOthers) {
    const std::string name(10000, 'x');
    EXPECT_EQ(fonts_command({"list", name}).status, 1);
    EXPECT_EQ(fonts_command({"delete", "--yes", name}).status, 1);
    EXPECT_EQ(fonts_command({"verify", '/' + name}).status, 1);
    EXPECT_EQ(install({'/' + name}).status, 1);
    EXPECT_EQ(fonts_command({"install", "--to", '/' + name, SANS}).status, 4);
    EXPECT_EQ(fonts_command({"apply", '/' + name}).status, 4);
    EXPECT_EQ(fonts_command({"undo", name}).status, 1);
    EXPECT_EQ(fonts_command({"export", '/' + name}).status, 4);
}

TEST_F(CommandBadInput, WhatIsNoOrdinaryFileIsNotWaitedFor) {
    ASSERT_EQ(::mkfifo(source_.file("pipe.ttf").c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", source_.file("zero.ttf"));
    fs::create_symlink("circle.ttf", source_.file("circle.ttf"));
    const std::vector<std::string> names = {source_.file("pipe.ttf"), source_.file("zero.ttf"),
                                            source_.file("circle.ttf")};
    for (const std::string& name : names) {
        EXPECT_EQ(fonts_command({"verify", name}).status, 1) << name;
        EXPECT_EQ(install({name}).status, 1) << name;
        EXPECT_EQ(fonts_command({"apply", name}).status, 4) << name;
    }
    EXPECT_TRUE(content(to_).empty());
    fs::remove(source_.file("circle.ttf"));
}

// A directory that could not be looked into ended the search, and the status was 0.
TEST_F(CommandBadInput, WhatCannotBeLookedIntoIsNotGood) {
    if (::geteuid() == 0) GTEST_SKIP() << "the superuser looks into everything";
    for (const char* dir : {"a", "b", "c"}) {
        fs::create_directory(source_.file(dir));
        fs::copy_file(SANS, source_.file(std::string(dir) + "/font.ttf"));
    }
    fs::permissions(source_.file("b"), fs::perms::none);
    const Ran ran = fonts_command({"verify", source_.path()});
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(ran.lines().size(), 4U) << ran.out;
    EXPECT_THAT(ran.err, HasSubstr(source_.file("b") + ": "));
}

TEST_F(CommandBadInput, ElementsThatNoFontPathCanHaveAreRefused) {
    const std::vector<std::string> before = fonts_command({"path", "show", "--of", whose()}).lines();
    for (const std::string element : {"", "/a\nb/", "/a,b/"}) {
        const Ran ran = fonts_command({"path", "add", "--json", "--of", whose(), element});
        EXPECT_EQ(ran.status, 1) << element;
        EXPECT_EQ(ran.json()["changed"], false) << ran.out;
        EXPECT_EQ(ran.json()["path"].size(), before.size());
    }
    EXPECT_EQ(fonts_command({"path", "show", "--of", whose()}).lines(), before);
}

TEST_F(CommandBadInput, AFontPathThatCannotBeReadIsNotReplaced) {
    if (::geteuid() == 0) GTEST_SKIP() << "the superuser reads everything, and has no such file";
    const std::string file = home_.dir().file(".VTfontpath");
    fs::permissions(file, fs::perms::owner_write);
    const Ran ran = fonts_command({"path", "add", "/elsewhere/"});
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(ran.status, 4);
    EXPECT_EQ(TempDir::read_bytes(file), to_ + '\n');
}

TEST_F(CommandBadInput, ADryDeletionSaysWhatARealOneDoes) {
    ASSERT_EQ(install({SANS}).status, 0);
    for (const char* pattern : {"dejavu*", "courier bold*", "fixed*"}) {
        const Ran dry = fonts_command({"delete", "--dry-run", "--json", pattern});
        const Ran real = fonts_command({"delete", "--yes", "--json", pattern});
        EXPECT_EQ(dry.status, real.status) << pattern << dry.out << real.out;
        EXPECT_EQ(dry.json()["changed"], real.json()["changed"]) << pattern;
        ASSERT_EQ(dry.json()["fonts"].size(), real.json()["fonts"].size());
        (void)fonts_command({"undo"});
    }
}

/// Runs the command with a script's words around it, in `dir`.
int in_shell(const std::string& script, const std::string& dir) {
    const int status = gw::run_shell("cd %s && " + script + " >/dev/null 2>&1 </dev/null", {dir});
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(CommandBadInput, AWorkingDirectoryThatIsGoneDoesNotMatter) {
    const TempDir dir;
    const std::string command =
        std::string("mkdir gone && cd gone && rmdir ../gone && ") + gw::test::FONTS_COMMAND;
    EXPECT_EQ(in_shell(command + " list -q", dir.path()), 0);
    EXPECT_EQ(in_shell(command + " verify x.ttf", dir.path()), 1);
    EXPECT_EQ(in_shell(command + " install --to x " + SANS, dir.path()), 4);
    EXPECT_EQ(in_shell(command + " install --to " + to_ + " x.ttf", dir.path()), 1);
    EXPECT_EQ(in_shell(command + " export x", dir.path()), 4);
    EXPECT_EQ(in_shell(command + " apply x.toml", dir.path()), 4);
    EXPECT_TRUE(content(to_).empty());
}

TEST_F(CommandBadInput, WithoutAHomeThereAreEverybodysFontsOnly) {
    const gw::test::Variable no_home("HOME", nullptr);
    EXPECT_EQ(fonts_command({"list", "-q"}).status, 0);
    EXPECT_EQ(fonts_command({"trash"}).status, 0);
    EXPECT_EQ(fonts_command({"path", "show", "--all", "--json"}).status, 4) << "there is no server";
    if (::geteuid() == 0) return;
    EXPECT_EQ(fonts_command({"install", SANS}).status, 4);
    EXPECT_EQ(fonts_command({"path", "add", to_}).status, 1);
}

TEST_F(CommandBadInput, DocumentsOfFailuresAreAsTheSchemaSays) {
    const std::vector<std::vector<std::string>> commands = {
        {"list", "-"},
        {"list", "--root", "/nowhere"},
        {"verify", "--root", "/nowhere", SANS},
        {"verify", "-"},
        {"why", "fixed"},
        {"fontset", "ja_JP.UTF-8"},
        {"fontset", "\xFF"},
        {"doctor"},
        {"install", "--to", to_, "-"},
        {"install", "--to", "/nowhere/at/all", SANS},
        {"install", "--to", to_, "/nowhere"},
        {"delete", "-"},
        {"delete", "\xFF*"},
        {"undo", "\xFF"},
        {"export", "/proc/x"},
        {"apply", "/nowhere"},
        {"path", "show", "--of", "session"},
        {"path", "save"},
        {"path", "apply"},
        {"path", "move", "/nowhere/", "1"},
        {"path", "add", "-"},
        {"path", "remove", "--of", "session", "/x/"},
    };
    for (std::vector<std::string> words : commands) {
        words.emplace_back("--json");
        const Ran ran = fonts_command(words);
        EXPECT_EQ(complaint_about(ran.out), "") << testing::PrintToString(words) << ran.out << ran.err;
        EXPECT_EQ(ran.json()["status"], ran.status);
        EXPECT_EQ(ran.json()["problems"].empty(), ran.err.empty()) << ran.out << ran.err;
    }
    // What is asked is in no text: that is a command line which is wrong, and those have no document.
    const Ran ran = fonts_command({"why", "--json", ""});
    EXPECT_EQ(ran.status, 2);
    EXPECT_EQ(ran.out, "");
}

}  // namespace
