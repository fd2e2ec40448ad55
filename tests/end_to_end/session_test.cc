// SPDX-License-Identifier: MIT
//
// glyphward-session as it runs at login: the installed program with the real X server, whose font path is
// checked from outside.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "end_to_end/bitmap_fonts.h"
#include "end_to_end/program_test.h"
#include "platform/shell_command.h"
#include "support/temp_dir.h"

#include "end_to_end/desktop.h"

namespace {

using namespace gw::e2e;
using gw::test::TempDir;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;

using Texts = std::vector<std::string>;

constexpr const char* PROGRAM = "/usr/vantor/bin/glyphward-session";
constexpr const char* CONFIG = "/usr/vantor/server/etc/VTconfig";
constexpr const char* LOGIN_SCRIPT = "/usr/vantor/share/session/60glyphward-session";
constexpr const char* AUTOSTART = "/usr/vantor/share/session/glyphward-session.desktop";
constexpr const char* SAYS = "glyphward-session: ";

Texts lines_of(const std::string& text) {
    Texts lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

/// Variables; one without a value is removed from the environment.
using Environment = std::map<std::string, std::optional<std::string>>;

void replace_all(std::string& text, const std::string& old, const std::string& replacement) {
    for (std::size_t at = 0; (at = text.find(old, at)) != std::string::npos; at += replacement.size())
        text.replace(at, old.size(), replacement);
}

struct Ended {
    std::optional<int> status;  // no value when a signal ended it
    std::string output;
    std::string errors;
};

Texts operator+(Texts first, const Texts& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

class SessionTest : public testing::Test {
  protected:
    SessionTest() : path_before_(desktop_.font_path()) {
        if (is_root()) config_before_ = TempDir::read_bytes(CONFIG);
        std::string value;
        std::istringstream config(TempDir::read_bytes(CONFIG));
        std::getline(config, value, '\t');
        std::getline(config, value);
        std::istringstream elements(value);
        for (std::string element; std::getline(elements, element, ',');) installation_.push_back(element);
    }
    ~SessionTest() override {
        if (is_root()) std::ofstream(CONFIG) << config_before_;
        desktop_.set_font_path(path_before_);
        EXPECT_EQ(server_path(), path_before_);
    }

    /// Runs a line of the shell in the test's home.
    [[nodiscard]] Ended shell(const std::string& command, const Environment& environment = {}) const {
        std::string line = "HOME=" + gw::shell_quoted(home_dir()) + "; export HOME; ";
        for (const auto& [name, value] : environment)
            line += value ? name + '=' + gw::shell_quoted(*value) + "; export " + name + "; "
                          : "unset " + name + "; ";
        const int status = gw::run_shell("exec > %s 2> %s; " + line + command,
                                         {scratch_.file("output"), scratch_.file("errors")});
        return {WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt,
                scratch_.read("output"), scratch_.read("errors")};
    }
    [[nodiscard]] Ended run(const std::string& options = "", const Environment& environment = {}) const {
        return shell("timeout 20 " + std::string(PROGRAM) + ' ' + options, environment);
    }

    /// Starts a session with the login script. The script must leave standard input to the session.
    [[nodiscard]] Ended log_in(const std::string& script = LOGIN_SCRIPT,
                               const Environment& environment = {}) const {
        return shell("echo input | sh -eu -c '. " + script + "; cat; echo session'", environment);
    }
    [[nodiscard]] std::string executable(const std::string& name, const std::string& command) const {
        std::string path = scratch_.write(name, "#!/bin/sh\n" + command + '\n');
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }
    /// Puts directories before the installation's on the configured font path: the superuser in the database,
    /// an ordinary user in the file of the home directory.
    void configure(const Texts& elements) const {
        std::string joined;
        std::string lines = "\n";
        for (const std::string& element : elements) {
            joined += element + ',';
            lines += element + '\n';
        }
        if (!is_root()) {
            home_.write(".VTfontpath", lines);
            return;
        }
        for (const std::string& element : installation_) joined += element + ',';
        std::ofstream(CONFIG) << "XDISPLAY.0.fontpath:\t" << joined << '\n';
    }
    /// A directory with one font; everybody can read it.
    std::string font_dir(const std::string& name, const BitmapFont& font = {"Sessional"}) const {
        font.write_to(home_.file(name));
        index_fonts(home_.file(name));
        return home_.file(name) + '/';
    }
    [[nodiscard]] bool opens(const BitmapFont& font) const {
        XFontStruct* opened = XLoadQueryFont(display_.get(), font.xlfd().c_str());
        if (opened == nullptr) return false;
        XFreeFont(display_.get(), opened);
        return true;
    }
    [[nodiscard]] Texts server_path() const { return desktop_.font_path(); }
    [[nodiscard]] std::string home_dir() const { return home_.path().substr(0, home_.path().size() - 1); }

    struct Closer {
        void operator()(Display* display) const { XCloseDisplay(display); }
    };

    const Desktop desktop_;
    const std::unique_ptr<Display, Closer> display_{XOpenDisplay(nullptr)};
    const TempDir home_;
    const TempDir scratch_;
    Texts installation_;  // the font path of the staged installation

  private:
    Texts path_before_;
    std::string config_before_;
};

TEST_F(SessionTest, AFontThatWasInstalledYesterdayOpensToday) {
    const BitmapFont font{"Yesterday"};
    const std::string dir = font_dir("fonts", font);
    configure({dir});
    desktop_.set_font_path({"built-ins"});
    ASSERT_FALSE(opens(font));

    const Ended login = run();
    EXPECT_EQ(login.status, 0);
    EXPECT_EQ(login.output, "");
    EXPECT_EQ(login.errors, "");
    EXPECT_EQ(server_path(), Texts{dir} + installation_ + Texts{"built-ins"});
    EXPECT_TRUE(opens(font));
}

TEST_F(SessionTest, TheSecondRunLeavesThePathAsItIs) {
    configure({font_dir("fonts")});
    ASSERT_EQ(run().status, 0);
    const Texts path = server_path();
    const Ended second = run();
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.errors, "");
    EXPECT_EQ(server_path(), path);
}

TEST_F(SessionTest, TheSecondRunHasAChangedIndexReread) {
    const BitmapFont late{"Latecomer"};
    const std::string dir = font_dir("fonts");
    configure({dir});
    ASSERT_EQ(run().status, 0);
    ASSERT_FALSE(opens(late));
    late.write_to(dir);
    index_fonts(dir);
    // The server compares whole seconds.
    const auto index = dir + "fonts.dir";
    std::filesystem::last_write_time(index,
                                     std::filesystem::last_write_time(index) + std::chrono::seconds(2));
    EXPECT_EQ(run().status, 0);
    EXPECT_TRUE(opens(late));
}

TEST_F(SessionTest, WhatIsOnTheServerUnderAnotherSpellingIsNotDoubled) {
    const std::string dir = font_dir("fonts");
    configure({dir});
    desktop_.set_font_path({"built-ins", home_.file("fonts")});
    EXPECT_EQ(run().status, 0);
    EXPECT_EQ(server_path(), Texts{dir} + installation_ + Texts{"built-ins"});
}

TEST_F(SessionTest, WhatTheConfigurationDoesNotNameStaysBehind) {
    const std::string configured = font_dir("configured");
    const std::string other = font_dir("other", {"Otherwise"});
    configure({configured});
    desktop_.set_font_path({other, "built-ins"});
    EXPECT_EQ(run().status, 0);
    EXPECT_EQ(server_path(), Texts{configured} + installation_ + Texts({other, "built-ins"}));
}

TEST_F(SessionTest, AMissingDirectoryIsSkippedWithALine) {
    const std::string missing = home_.file("missing/");
    const std::string empty = home_.make_dir("empty");
    const std::string dir = font_dir("fonts");
    configure({missing, empty, dir});
    const Ended login = run();
    EXPECT_EQ(login.status, 0);
    EXPECT_EQ(login.errors,
              SAYS + missing + ": no such directory\n" + SAYS + empty + ": no fonts.dir in it\n");
    EXPECT_EQ(server_path(), Texts{dir} + installation_ + Texts{"built-ins"});
}

TEST_F(SessionTest, ADeadDirectoryOnTheServerIsDroppedWithALine) {
    const std::string dead = font_dir("dead");
    const std::string dir = font_dir("fonts", {"Livefonts"});
    configure({dir});
    desktop_.set_font_path({dead, "built-ins"});
    std::filesystem::remove_all(dead);
    const Ended login = run();
    EXPECT_EQ(login.status, 0);
    EXPECT_EQ(login.errors, SAYS + dead + ": no such directory; dropped from the path of the X server\n");
    EXPECT_EQ(server_path(), Texts{dir} + installation_ + Texts{"built-ins"});
    EXPECT_TRUE(opens({"Livefonts"}));
}

TEST_F(SessionTest, AFontServerThatIsAwayTakesNothingWithIt) {
    const std::string dir = font_dir("fonts");
    configure({"tcp/no.such.host:7100", dir});
    const Ended login = run();
    EXPECT_EQ(login.status, 0);
    EXPECT_EQ(login.errors, std::string(SAYS) + "tcp/no.such.host:7100: the X server refuses it\n");
    EXPECT_EQ(server_path(), Texts{dir} + installation_ + Texts{"built-ins"});
}

TEST_F(SessionTest, ADirectoryThatOnlyTheServerRefusesIsAFailure) {
    const std::string dir = font_dir("fonts");
    const std::string strange = font_dir("strange", {"Strangest"});
    std::ofstream(strange + "fonts.dir") << "not a number\n";
    configure({strange, dir});
    const Ended login = run();
    EXPECT_EQ(login.status, 1);
    EXPECT_EQ(login.errors, SAYS + strange + ": the X server refuses it\n");
    EXPECT_EQ(server_path(), Texts{dir} + installation_ + Texts{"built-ins"});
}

TEST_F(SessionTest, ABlankInADirectorysNameIsPartOfIt) {
    const BitmapFont font{"Blankness"};
    const std::string dir = font_dir("my own fonts", font);
    configure({dir});
    const Ended login = run();
    EXPECT_EQ(login.status, 0);
    EXPECT_EQ(login.errors, "");
    EXPECT_THAT(server_path(), Contains(dir));
    EXPECT_TRUE(opens(font));
}

TEST_F(SessionTest, ADirectoryOfANameTooLongForTheProtocolIsSkipped) {
    const std::string long_name = font_dir(std::string(120, 'a') + '/' + std::string(120, 'b'));
    const std::string dir = font_dir("fonts");
    ASSERT_GT(long_name.size(), 255U);
    configure({long_name, dir});
    const Ended login = run();
    EXPECT_EQ(login.status, 0);
    EXPECT_EQ(login.errors, SAYS + long_name + ": longer than the 255 bytes that the X protocol allows\n");
    EXPECT_EQ(server_path(), Texts{dir} + installation_ + Texts{"built-ins"});
}

TEST_F(SessionTest, AnElementWithAControlCharacterIsStillOneLine) {
    if (!is_root()) GTEST_SKIP() << "a line of a user's file ends at the line feed";
    std::ofstream(CONFIG) << "XDISPLAY.0.fontpath:\t/no\\nwhere/\n";
    EXPECT_EQ(run().errors, std::string(SAYS) + "/no?where/: no such directory\n");
}

// Another process that reads a font path at the same time may own the fixed name.
TEST_F(SessionTest, OnlyAnOrdinaryUsersOwnFileIsRead) {
    const std::string dir = font_dir("fonts");
    home_.write(".VTfontpath", "$HOME/fonts/\n");
    std::filesystem::create_directory("/tmp/.VTfontpath");
    const Ended login = run();
    EXPECT_TRUE(std::filesystem::remove("/tmp/.VTfontpath"));
    EXPECT_EQ(login.status, 0);
    EXPECT_EQ(login.errors, "");
    EXPECT_EQ(server_path(), installation_ + Texts{"built-ins"} + (is_root() ? Texts{} : Texts{dir}));
}

TEST_F(SessionTest, OnlyTheSuperuserNeedsNoHome) {
    desktop_.set_font_path({"built-ins"});
    for (const char* option : {"", "--list", "--dry-run"}) {
        const Ended login = run(option, {{"HOME", std::nullopt}});
        EXPECT_EQ(login.status, is_root() ? 0 : 1);
        EXPECT_EQ(login.errors,
                  is_root() ? "" : std::string(SAYS) + "HOME is not set, so the font path is not known\n");
    }
    EXPECT_EQ(server_path(), (is_root() ? installation_ : Texts{}) + Texts{"built-ins"});
}

TEST_F(SessionTest, ADatabaseThatIsNoneIsReportedAndLeftAlone) {
    if (!is_root()) GTEST_SKIP() << "an ordinary user cannot spoil it";
    const std::string spoilt = "this is no database\n";
    std::ofstream(CONFIG) << spoilt;
    const std::string dir = font_dir("fonts");
    std::filesystem::create_directories("/etc/vantor/server/etc");
    std::ofstream("/etc/vantor/server/etc/VTconfig") << "XDISPLAY.0.fontpath:\t" << dir << '\n';
    const Ended login = run();
    std::filesystem::remove_all("/etc/vantor/server");
    EXPECT_EQ(login.status, 0);
    EXPECT_EQ(login.errors, std::string(SAYS) + CONFIG + ": not a configuration database; it is not used\n");
    EXPECT_EQ(server_path().front(), dir) << "the rest is used";
    EXPECT_EQ(TempDir::read_bytes(CONFIG), spoilt);
}

TEST_F(SessionTest, WithoutAConfigurationTheServerIsLeftAlone) {
    if (!is_root()) GTEST_SKIP() << "the database is the superuser's";
    std::filesystem::remove(CONFIG);
    const Texts path = server_path();
    for (const char* option : {"", "--dry-run", "--list"}) {
        const Ended login = run(option);
        EXPECT_EQ(login.status, 0);
        EXPECT_EQ(login.errors, "");
        EXPECT_EQ(lines_of(login.output), std::string(option) == "--dry-run" ? path : Texts{});
    }
    EXPECT_EQ(server_path(), path);
}

TEST_F(SessionTest, WithoutADisplayThereIsOneLine) {
    const Ended unset = run("", {{"DISPLAY", std::nullopt}});
    EXPECT_EQ(unset.status, 1);
    EXPECT_EQ(unset.errors, std::string(SAYS) + "cannot open display: DISPLAY is not set\n");
    const Ended absent = run("--dry-run", {{"DISPLAY", ":4711"}});
    EXPECT_EQ(absent.status, 1);
    EXPECT_EQ(absent.errors, std::string(SAYS) + "cannot open display :4711\n");
    EXPECT_EQ(absent.output, "");
}

TEST_F(SessionTest, ADryRunSaysAllAndChangesNothing) {
    const std::string dir = font_dir("fonts");
    const std::string dead = font_dir("dead", {"Departure"});
    const std::string missing = home_.file("missing/");
    configure({dir, missing});
    desktop_.set_font_path({dead, "built-ins"});
    std::filesystem::remove_all(dead);
    const Ended dry = run("--dry-run");
    EXPECT_EQ(dry.status, 0);
    EXPECT_EQ(lines_of(dry.output), Texts{dir} + installation_ + Texts{"built-ins"});
    EXPECT_EQ(dry.errors, SAYS + missing + ": no such directory\n" + SAYS + dead +
                              ": no such directory; dropped from the path of the X server\n");
    EXPECT_EQ(server_path(), Texts({dead, "built-ins"}));
}

TEST_F(SessionTest, TheListNeedsNoDisplay) {
    const std::string dir = font_dir("fonts");
    const std::string missing = home_.file("missing/");
    configure({dir, missing, home_.file("fonts"), "tcp/host:7100"});
    const Ended list = run("--list", {{"DISPLAY", std::nullopt}});
    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(list.errors, "");
    EXPECT_EQ(lines_of(list.output), Texts({dir, missing + "\t(no such directory)",
                                            home_.file("fonts") + "\t(named before)", "tcp/host:7100"}) +
                                         installation_);
}

TEST_F(SessionTest, ItsOptionsAreFew) {
    for (const char* wrong : {"--bogus", "fonts/", "-h", "''", "--list --dry-run"}) {
        const Ended refused = run(wrong);
        EXPECT_EQ(refused.status, 2) << wrong;
        EXPECT_EQ(refused.output, "") << wrong;
        EXPECT_EQ(lines_of(refused.errors).size(), 1U) << refused.errors;
        EXPECT_THAT(refused.errors, AllOf(HasSubstr(SAYS), HasSubstr("see glyphward-session --help")));
    }
    const Ended help = run("--help", {{"DISPLAY", std::nullopt}, {"HOME", std::nullopt}});
    EXPECT_EQ(help.status, 0);
    for (const char* option : {"--dry-run", "--list", "--help", "--version"})
        EXPECT_THAT(help.output, HasSubstr(option));
    const Ended version = run("--version", {{"DISPLAY", std::nullopt}});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output, "glyphward-session (Glyph Warden) " GLYPHWARD_VERSION "\n");
    EXPECT_EQ(run("--list >/dev/full").status, 1);
}

// A display manager may have closed them. A file that the program opens must not take their numbers.
TEST_F(SessionTest, ItRunsWithoutStandardDescriptors) {
    const std::string dir = font_dir("fonts");
    configure({home_.file("missing/"), dir});
    EXPECT_EQ(run("<&- >&- 2>&-").status, 0);
    EXPECT_EQ(server_path(), Texts{dir} + installation_ + Texts{"built-ins"});
}

// --- at login ----------------------------------------------------------------

TEST_F(SessionTest, TheLoginScriptSetsThePathAndTheSessionGoesOn) {
    const std::string dir = font_dir("fonts");
    configure({dir});
    const Ended login = log_in();
    EXPECT_EQ(login.status, 0);
    EXPECT_EQ(login.output, "input\nsession\n");
    EXPECT_EQ(login.errors, "");
    EXPECT_EQ(server_path(), Texts{dir} + installation_ + Texts{"built-ins"});
}

TEST_F(SessionTest, WithoutADisplayTheSessionGoesOn) {
    const Ended login = log_in(LOGIN_SCRIPT, {{"DISPLAY", std::nullopt}});
    EXPECT_EQ(login.status, 0);
    EXPECT_EQ(login.output, "input\nsession\n");
    EXPECT_EQ(login.errors, std::string(SAYS) + "cannot open display: DISPLAY is not set\n");
}

TEST_F(SessionTest, TheSessionGoesOnWhateverBecomesOfTheProgram) {
    const std::string programs[] = {
        scratch_.file("missing"),
        executable("fails", "exit 1"),
        executable("crashes", "kill -SEGV $$"),
        executable("hangs", "exec sleep 1000"),
        executable("reads", "exec cat >/dev/null"),
    };
    for (const std::string& program : programs) {
        std::string script = TempDir::read_bytes(LOGIN_SCRIPT);
        replace_all(script, PROGRAM, program);
        replace_all(script, " 10 ", " 1 ");
        const Ended login = log_in(scratch_.write("login", script));
        EXPECT_EQ(login.status, 0) << program;
        EXPECT_EQ(login.output, "input\nsession\n") << program;
    }
}

TEST_F(SessionTest, TheAutostartEntryRunsTheProgram) {
    const std::string dir = font_dir("fonts");
    configure({dir});
    std::map<std::string, std::string> entry;
    for (const std::string& line : lines_of(TempDir::read_bytes(AUTOSTART))) {
        if (const std::size_t equals = line.find('='); equals != std::string::npos && line[0] != '#')
            entry[line.substr(0, equals)] = line.substr(equals + 1);
    }
    EXPECT_EQ(entry["Type"], "Application");
    EXPECT_EQ(entry["TryExec"], PROGRAM);
    ASSERT_NE(entry["Exec"], "");
    EXPECT_EQ(shell(entry["Exec"]).status, 0);
    EXPECT_EQ(server_path(), Texts{dir} + installation_ + Texts{"built-ins"});
}

}  // namespace
