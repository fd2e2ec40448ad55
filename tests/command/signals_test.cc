// SPDX-License-Identifier: MIT
//
// Signals in the middle of commands, and several commands at once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <sstream>

#include "command/own_fonts.h"
#include "support/processes.h"
#include "support/sfnt_maker.h"

namespace {

namespace fs = std::filesystem;
using gw::test::content;
using gw::test::fonts_command;
using gw::test::TempDir;
using testing::HasSubstr;

constexpr int MANY = 300;

/// The installed program while it runs.
class Running {
  public:
    explicit Running(std::vector<std::string> words) {
        words.insert(words.begin(), gw::test::FONTS_COMMAND);
        std::vector<char*> arguments;
        for (std::string& word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        child_ = ::fork();
        if (child_ != 0) return;
        gw::test::redirect(STDIN_FILENO, "/dev/null", O_RDONLY);
        gw::test::redirect(STDOUT_FILENO, dir_.file("out"), O_WRONLY | O_CREAT);
        gw::test::redirect(STDERR_FILENO, dir_.file("err"), O_WRONLY | O_CREAT);
        ::execv(gw::test::FONTS_COMMAND, arguments.data());
        ::_exit(127);
    }
    ~Running() { (void)wait(); }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    void send(int signal) const {
        if (!status_) ::kill(child_, signal);
    }
    [[nodiscard]] bool has_ended() {
        int status = 0;
        if (!status_ && ::waitpid(child_, &status, WNOHANG) == child_) status_ = status;
        return status_.has_value();
    }
    /// The exit status, or minus the signal that has ended it.
    int wait() {
        int status = 0;
        if (!status_ && ::waitpid(child_, &status, 0) == child_) status_ = status;
        return WIFEXITED(*status_) ? WEXITSTATUS(*status_) : -WTERMSIG(*status_);
    }
    [[nodiscard]] std::string err() const { return dir_.read("err"); }
    /// Waits until it has the file open; false when it ends before.
    [[nodiscard]] bool comes_to_have_open(const std::string& path) {
        const std::string process = std::to_string(child_);
        // Until it has become the program, it has what the test has open.
        while (!gw::test::processes_called("glyphward-fonts").contains(process) ||
               !gw::test::has_open(process, path)) {
            if (has_ended()) return false;
            ::usleep(500);
        }
        return true;
    }

  private:
    TempDir dir_;
    pid_t child_ = -1;
    std::optional<int> status_;
};

class CommandSignals : public gw::test::OwnFonts {
  protected:
    CommandSignals() {
        for (int i = 0; i < MANY; ++i) add_font("font" + std::to_string(i));
    }
    void add_font(const std::string& name) const {
        gw::test::SfntMaker maker;
        maker.names = gw::test::windows_names(name);
        maker.charmap = 1;
        maker.characters.clear();
        for (char32_t code = 0x20; code < 0x7F; ++code) maker.characters += code;
        (void)many_.write(name + ".ttf", maker.make());
    }
    [[nodiscard]] std::set<std::string> fonts() const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(to_))
            if (entry.path().extension() == ".ttf") names.insert(entry.path().filename());
        return names;
    }
    [[nodiscard]] std::set<std::string> fonts_in_index() const {
        std::set<std::string> names;
        std::istringstream index(TempDir::read_bytes(to_ + "fonts.dir"));
        std::string line;
        for (std::getline(index, line); std::getline(index, line);)
            names.insert(line.substr(0, line.find(' ')));
        return names;
    }
    /// Starts the command, and sends the signals when its first fonts are there. Now and then the machine is
    /// so busy that it is done before; then it is tried again.
    void interrupt(const std::vector<std::string>& words, const std::vector<int>& signals,
                   const std::function<void(Running&, int)>& judge) {
        constexpr int TRIES = 8;
        for (int tried = 0; tried < TRIES; ++tried) {
            Running command(words);
            while (!command.has_ended() && fonts().size() < 3) ::usleep(500);
            for (const int signal : signals) command.send(signal);
            const int status = command.wait();
            if (status == 0) {
                fs::remove_all(to_);
                fs::create_directory(to_);
                continue;
            }
            judge(command, status);
            return;
        }
        FAIL() << "it was always done before the signal came";
    }

    /// The command is sent the signal while FontForge works for it, and ends it.
    void expect_end_of_conversion(const std::string& fonts, int signal) const {
        const std::string converter = "fontforge";
        Running command({"install", "--to", to_, fonts});
        std::set<std::string> converters;
        while (!command.has_ended() && converters.empty()) {
            converters = gw::test::processes_called(converter);
            ::usleep(500);
        }
        ASSERT_FALSE(converters.empty()) << command.err();
        command.send(signal);
        EXPECT_EQ(command.wait(), 1) << command.err();
        EXPECT_THAT(command.err(), HasSubstr("it was interrupted"));
        for (const std::string& process : converters)
            EXPECT_TRUE(gw::test::goes(converter, process)) << process;
    }

    TempDir many_;
};

TEST_F(CommandSignals, LeaveTheWholeFontsOfAnInstallation) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        interrupt({"install", "--to", to_, many_.path()}, {signal}, [&](Running& command, int status) {
            EXPECT_EQ(status, 1) << command.err();
            EXPECT_THAT(command.err(), HasSubstr("it was interrupted"));
        });
        EXPECT_GE(fonts().size(), 2U);
        EXPECT_LT(fonts().size(), static_cast<std::size_t>(MANY));
        EXPECT_EQ(fonts(), fonts_in_index());
        EXPECT_EQ(fonts_command({"install", "--to", to_, many_.path()}).status, 0);
        EXPECT_EQ(fonts().size(), static_cast<std::size_t>(MANY));
        fs::remove_all(to_);
        fs::create_directory(to_);
    }
}

TEST_F(CommandSignals, TwoEndItAtOnceAndLeaveNothing) {
    interrupt({"install", "--to", to_, many_.path()}, {SIGINT, SIGINT}, [&](Running&, int status) {
        EXPECT_TRUE(status == -SIGINT || status == 1) << status;
        EXPECT_EQ(fonts_command({"list", "-q"}).status, 0);
        EXPECT_TRUE(status == 1 || fonts().empty());
        EXPECT_EQ(fonts(), fonts_in_index());
    });
}

TEST_F(CommandSignals, LeaveADirectoryThatAProfileIsAppliedToAsItWas) {
    const std::string profile =
        many_.write("p.toml", "profile = 1\n[fonts]\nto = \"" + to_ +
                                  "\"\nfiles = [\".\"]\n[[alias]]\nname = \"x\"\nfont = \"fixed\"\n");
    interrupt({"apply", profile}, {SIGTERM}, [&](Running& command, int status) {
        EXPECT_EQ(status, 1) << command.err();
        EXPECT_TRUE(fonts().empty());
        EXPECT_TRUE(fonts_in_index().empty());
        EXPECT_FALSE(fs::exists(to_ + "fonts.alias")) << "what is behind the fonts is left alone";
    });
    EXPECT_EQ(fonts_command({"apply", profile}).status, 0);
    EXPECT_EQ(fonts().size(), static_cast<std::size_t>(MANY));
}

TEST_F(CommandSignals, LeaveFontsWholeWhoseDeletionHasBegun) {
    ASSERT_EQ(fonts_command({"install", "--to", to_, many_.path()}).status, 0);
    Running command({"delete", "--yes", "font*"});
    while (!command.has_ended() && !fs::exists(to_ + ".glyphward/journal")) ::usleep(500);
    command.send(SIGINT);
    const int status = command.wait();
    EXPECT_TRUE(status == 0 || status == 1) << status << command.err();
    EXPECT_EQ(fonts(), fonts_in_index());
    EXPECT_EQ(fonts().empty(), status == 0);
    const bool has_deleted = fonts().size() < static_cast<std::size_t>(MANY);
    EXPECT_EQ(fonts_command({"undo"}).status, has_deleted ? 0 : 1);
    EXPECT_EQ(fonts().size(), static_cast<std::size_t>(MANY));
}

/// What is in the directories for scratch files.
std::set<std::string> scratch() {
    std::set<std::string> names;
    for (const char* dir : {"/tmp", "/dev/shm"})
        for (const auto& entry : fs::directory_iterator(dir)) names.insert(entry.path());
    return names;
}

// FontForge works for seconds on each of these fonts.
TEST_F(CommandSignals, EndAConversionAndWhatItHasBegun) {
    const TempDir fonts;
    for (const char* name : {"lmroman10-regular.otf", "lmroman10-bold.otf"})
        fs::copy_file(std::string("/usr/share/texmf/fonts/opentype/public/lm/") + name, fonts.file(name));
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const std::set<std::string> before = scratch();
        expect_end_of_conversion(fonts.path(), signal);
        EXPECT_EQ(scratch(), before);
        EXPECT_THAT(content(to_), testing::IsEmpty());
    }
    EXPECT_EQ(fonts_command({"install", "--to", to_, fonts.path()}).status, 0);
}

TEST_F(CommandSignals, EndTheSearchForNamesOfTheFonts) {
    const TempDir tools;
    const std::string started = tools.file("started");
    ::chmod(tools.write("mkfontscale", "#!/bin/sh\n: > " + started + "\nexec sleep 600\n").c_str(), 0755);
    const std::string path = std::getenv("PATH");
    const auto interrupted_search = [&](int signal) {
        ::setenv("PATH", (tools.path() + ':' + path).c_str(), 1);
        Running command({"install", "--to", to_, many_.path()});
        ::setenv("PATH", path.c_str(), 1);
        while (!command.has_ended() && !fs::exists(started)) ::usleep(500);
        command.send(signal);
        EXPECT_EQ(command.wait(), 1) << command.err();
        return command.err();
    };
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        fs::remove(started);
        const std::set<std::string> before = scratch();
        const std::string said = interrupted_search(signal);
        EXPECT_THAT(said, HasSubstr("it was interrupted"));
        EXPECT_THAT(said, testing::Not(HasSubstr("mkfontscale")));
        EXPECT_EQ(scratch(), before);
        EXPECT_THAT(content(to_), testing::IsEmpty());
    }
}

/// Another process changes the directory, as long as this exists.
class Locked {
  public:
    explicit Locked(const std::string& dir)
        : fd_(::open((dir + ".glyphward/lock").c_str(), O_RDWR | O_CLOEXEC)) {
        EXPECT_EQ(::flock(fd_, LOCK_EX | LOCK_NB), 0);
    }
    ~Locked() { ::close(fd_); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

  private:
    int fd_;
};

TEST_F(CommandSignals, AndALockThatIsKeptTheyCannotBegin) {
    ASSERT_EQ(install({source_.path()}).status, 0);
    ASSERT_EQ(fonts_command({"delete", "--yes", "dejavu sans bold*"}).status, 0);
    const auto before = content(to_);
    const std::string profile = source_.write(
        "p.toml", "profile = 1\n[fonts]\nto = \"" + to_ + "\"\nfiles = [\"DejaVuSans-Bold.ttf\"]\n");
    const Locked lock(to_);
    std::vector<std::unique_ptr<Running>> all;
    for (const std::vector<std::string>& words :
         std::vector<std::vector<std::string>>{{"install", "--to", to_, gw::test::BOLD},
                                               {"delete", "--yes", "dejavu*"},
                                               {"undo"},
                                               {"trash", "--empty"},
                                               {"apply", profile},
                                               {"install", "--to", to_, many_.path()}})
        all.push_back(std::make_unique<Running>(words));
    for (const auto& command : all) {
        EXPECT_EQ(command->wait(), 4) << command->err();
        EXPECT_THAT(command->err(), HasSubstr("is changing this directory"));
        EXPECT_THAT(command->err(), HasSubstr(home_.dir().file("fonts")));
    }
    EXPECT_EQ(content(to_), before);
}

/// A command waits for the lock of a directory that then goes, as one goes that another command has made and
/// into which it could install nothing.
class DirectoryGone : public gw::test::OwnFonts {
  protected:
    void SetUp() override { ASSERT_EQ(install({gw::test::SANS}).status, 0); }
    /// Returns the exit status.
    int run(const std::vector<std::string>& words, std::string* err = nullptr) const {
        std::optional<Locked> lock(to_);
        Running command(words);
        EXPECT_TRUE(command.comes_to_have_open(to_ + ".glyphward/lock")) << command.err();
        fs::remove_all(to_);
        lock.reset();
        const int status = command.wait();
        if (err != nullptr) *err = command.err();
        return status;
    }
};

TEST_F(DirectoryGone, AnInstallationMakesItAnew) {
    EXPECT_EQ(run({"install", "--to", to_, gw::test::BOLD}), 0);
    EXPECT_TRUE(content(to_).contains("DejaVuSans-Bold.ttf"));
    EXPECT_THAT(content(to_)["fonts.dir"], testing::Not(HasSubstr("DejaVuSans.ttf")));
    EXPECT_EQ(install({gw::test::SANS}).status, 0);
}

TEST_F(DirectoryGone, AProfileMakesItAnew) {
    const std::string profile = source_.write(
        "p.toml", "profile = 1\n[fonts]\nto = \"" + to_ + "\"\nfiles = [\"DejaVuSans-Bold.ttf\"]\n");
    EXPECT_EQ(run({"apply", profile}), 0);
    EXPECT_TRUE(content(to_).contains("DejaVuSans-Bold.ttf"));
}

TEST_F(DirectoryGone, ADeletionSaysThatThereIsNothingToDelete) {
    std::string said;
    EXPECT_EQ(run({"delete", "--yes", gw::test::SANS_ROW}, &said), 1);
    EXPECT_THAT(said, HasSubstr(to_ + " is gone, so there is nothing to delete"));
    EXPECT_FALSE(fs::exists(to_));
}

// One finds no font to install, and removes the directory that it has made.
TEST_F(DirectoryGone, OfTwoInstallationsOneThatFailsDoesNotHarmTheOther) {
    const std::string fresh = home_.dir().file("fresh/");
    const std::string bad = source_.write("bad.ttf", "nothing");
    constexpr int TIMES = 20;
    for (int i = 0; i < TIMES; ++i) {
        Running failing({"install", "--to", fresh, bad});
        Running other({"install", "--to", fresh, gw::test::BOLD});
        EXPECT_EQ(failing.wait(), 1) << failing.err();
        EXPECT_EQ(other.wait(), 0) << other.err();
        EXPECT_TRUE(content(fresh).contains("DejaVuSans-Bold.ttf"));
        fs::remove_all(fresh);
    }
    (void)fonts_command({"path", "remove", "--of", whose(), fresh});
}

TEST_F(CommandSignals, NorDoCommandsThatRunAtOnceLoseAnything) {
    constexpr int AT_ONCE = 4;
    std::vector<std::unique_ptr<Running>> all;
    for (int i = 0; i < AT_ONCE; ++i) {
        std::vector<std::string> words = {"install", "--to", to_};
        for (int j = i; j < MANY; j += 10 * AT_ONCE)
            words.push_back(many_.file("font" + std::to_string(j) + ".ttf"));
        all.push_back(std::make_unique<Running>(words));
        all.push_back(std::make_unique<Running>(
            std::vector<std::string>{"path", "add", "--of", whose(), "/at/once/" + std::to_string(i) + '/'}));
    }
    std::size_t expected = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const int status = all[i]->wait();
        EXPECT_TRUE(status == 0 || (status == 4 && i % 2 == 0)) << status << all[i]->err();
        if (i % 2 != 0 || status != 0) continue;
        for (int j = static_cast<int>(i) / 2; j < MANY; j += 10 * AT_ONCE) ++expected;
    }
    EXPECT_EQ(fonts().size(), expected);
    EXPECT_EQ(fonts(), fonts_in_index());
    const std::string path = fonts_command({"path", "show", "--of", whose()}).out;
    for (int i = 0; i < AT_ONCE; ++i) {
        const std::string element = "/at/once/" + std::to_string(i) + '/';
        EXPECT_THAT(path, HasSubstr(element));
        EXPECT_EQ(fonts_command({"path", "remove", "--of", whose(), element}).status, 0);
    }
}

}  // namespace
