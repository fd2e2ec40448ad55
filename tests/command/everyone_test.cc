// SPDX-License-Identifier: MIT
//
// The program that installs for everyone, as the superuser, with good streams and with bad ones; and the
// command of an ordinary user on a machine that cannot ask for a password.
#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <thread>
#include <utility>

#include "command/fonts_command.h"
#include "command/json_schema.h"
#include "platform/font_stream.h"
#include "platform/host_paths.h"

namespace {

namespace fs = std::filesystem;
namespace stream = gw::font_stream;
using gw::NameTaken;
using gw::test::fonts_command;
using gw::test::Json;
using gw::test::Ran;
using gw::test::SANS;
using gw::test::TempDir;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

constexpr const char* BOLD = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
const std::string DESTINATION = gw::SUPERUSER_FONT_DIR;
const std::string CONFIG = std::string(gw::INSTALLATION_ROOT) + gw::INSTALLATION_CONFIG;

/// The program, started with a pipe on standard input.
class Helper {
  public:
    explicit Helper(
        std::vector<std::string> words = {}, const std::vector<std::string>& environment = {},
        const std::function<void()>& before = [] {}) {
        words.insert(words.begin(), gw::EVERYONES_INSTALLER);
        std::array<int, 2> pipe{};
        if (::pipe2(pipe.data(), O_CLOEXEC) != 0) std::abort();
        child_ = ::fork();
        if (child_ == 0) {
            ::dup2(pipe[0], STDIN_FILENO);
            before();
            become(words, environment);
        }
        ::close(pipe[0]);
        to_ = pipe[1];
    }
    ~Helper() {
        close();
        if (child_ > 0) (void)end();
    }
    Helper(const Helper&) = delete;
    Helper& operator=(const Helper&) = delete;

    /// False when it reads no more.
    bool send(std::string_view bytes) const {
        const auto before = ::signal(SIGPIPE, SIG_IGN);
        bool is_read = true;
        while (!bytes.empty() && is_read) {
            const ssize_t count = ::write(to_, bytes.data(), bytes.size());
            is_read = count > 0;
            if (is_read) bytes.remove_prefix(static_cast<std::size_t>(count));
        }
        (void)::signal(SIGPIPE, before);
        return is_read;
    }
    void close() {
        if (to_ >= 0) ::close(to_);
        to_ = -1;
    }
    [[nodiscard]] pid_t process() const { return child_; }
    [[nodiscard]] std::string out() const { return dir_.read("out"); }
    Ran end() {
        int status = 0;
        ::waitpid(child_, &status, 0);
        child_ = -1;
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, dir_.read("out"), dir_.read("err")};
    }

  private:
    void become(std::vector<std::string>& words, const std::vector<std::string>& environment) const {
        gw::test::redirect(STDOUT_FILENO, dir_.file("out"), O_WRONLY | O_CREAT);
        gw::test::redirect(STDERR_FILENO, dir_.file("err"), O_WRONLY | O_CREAT);
        for (const std::string& variable : environment) ::putenv(::strdup(variable.c_str()));
        std::vector<char*> arguments;
        for (std::string& word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        ::execv(gw::EVERYONES_INSTALLER, arguments.data());
        ::_exit(99);
    }

    TempDir dir_;
    pid_t child_ = -1;
    int to_ = -1;
};

void put(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string file(const std::string& name, const std::string& content) {
    return stream::before_file(name, content.size()) + content + std::string(stream::BEHIND_FILE);
}

std::string font(const char* path) {
    return file(fs::path(path).filename(), TempDir::read_bytes(path));
}

const std::string BEGINNING = stream::beginning(NameTaken::REFUSE);
const std::string END{stream::END};

/// The answer to a stream; its end stays open, as the program's users hold it.
Ran answer_to(const std::string& bytes) {
    Helper helper;
    (void)helper.send(bytes);
    return helper.end();
}

/// The answer to a stream that ends there.
Ran answer_to_cut(const std::string& bytes) {
    Helper helper;
    (void)helper.send(bytes);
    helper.close();
    return helper.end();
}

std::vector<std::string> results(const Ran& ran) {
    std::vector<std::string> lines;
    const Json document = ran.json();
    for (const Json& font : document["fonts"])
        lines.push_back(font["font"].get<std::string>() + ": " + font["result"].get<std::string>());
    return lines;
}

std::string problem(const Ran& ran) {
    const Json problems = ran.json()["problems"];
    return problems.empty() ? "" : problems[0]["reason"].get<std::string>();
}

std::set<std::string> files_in(const std::string& dir) {
    std::set<std::string> names;
    std::error_code gone;
    for (const auto& entry : fs::directory_iterator(dir, gone)) names.insert(entry.path().filename());
    return names;
}

/// Scratch directories that somebody has left.
std::vector<std::string> left_in_scratch() {
    std::vector<std::string> left;
    for (const std::string& name : files_in("/tmp")) {
        if (name.starts_with("glyphward-") && !name.starts_with("glyphward-test-")) left.push_back(name);
    }
    return left;
}

/// Ends with the installation as it was.
class ForEveryone : public testing::Test {
  protected:
    void SetUp() override {
        if (::geteuid() != 0) GTEST_SKIP() << "only the superuser installs for everyone";
        scratch_ = left_in_scratch();
    }
    ~ForEveryone() override {
        if (::geteuid() != 0) return;
        fs::remove_all(DESTINATION);
        put(CONFIG, config_);
    }
    /// Nothing was installed, and no scratch directory is left.
    void expect_nothing() const {
        EXPECT_THAT(files_in(DESTINATION), Not(Contains(testing::EndsWith(".ttf"))));
        EXPECT_EQ(left_in_scratch(), scratch_);
    }

    std::string config_ = TempDir::read_bytes(CONFIG);
    std::vector<std::string> scratch_;
};

TEST_F(ForEveryone, InstallsWhatTheCommandOfTheSuperuserInstalls) {
    const Ran ran = answer_to(BEGINNING + font(SANS) + font(BOLD) + END);
    EXPECT_EQ(ran.status, 0) << ran.out << ran.err;
    EXPECT_THAT(results(ran), testing::UnorderedElementsAre("DejaVu Sans Medium [TrueType]: installed",
                                                            "DejaVu Sans Bold [TrueType]: installed"));
    EXPECT_TRUE(ran.json()["changed"].get<bool>());
    EXPECT_EQ(ran.err, "");
    EXPECT_TRUE(TempDir::read_bytes(DESTINATION + "DejaVuSans.ttf") == TempDir::read_bytes(SANS));
    struct stat info = {};
    ASSERT_EQ(::stat((DESTINATION + "DejaVuSans.ttf").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0644U) << "everybody reads it, whatever the caller's umask is";
    const std::string index = TempDir::read_bytes(DESTINATION + "fonts.dir");
    const std::set<std::string> names = files_in(DESTINATION);
    fs::remove_all(DESTINATION);
    put(CONFIG, config_);

    EXPECT_EQ(fonts_command({"install", "--everyone", SANS, BOLD}).status, 0);
    EXPECT_EQ(TempDir::read_bytes(DESTINATION + "fonts.dir"), index);
    EXPECT_EQ(files_in(DESTINATION), names);
    EXPECT_EQ(left_in_scratch(), scratch_);
}

TEST_F(ForEveryone, AFontWithItsMetrics) {
    const std::string outlines = "/usr/share/fonts/X11/Type1/C059-Roman.pfb";
    const std::string metrics = "StartFontMetrics 2.0\nFontName C059-Roman\nEndFontMetrics\n";
    const Ran ran =
        answer_to(stream::beginning(NameTaken::REPLACE) + file("own.pfb", TempDir::read_bytes(outlines)) +
                  file("own.afm", metrics) + END);
    EXPECT_EQ(ran.status, 0) << ran.out;
    EXPECT_EQ(TempDir::read_bytes(DESTINATION + "own.afm"), metrics);
}

TEST_F(ForEveryone, MetricsWithoutTheirFontAreNoFont) {
    const Ran ran = answer_to(BEGINNING + file("alone.afm", "StartFontMetrics 2.0\n") + END);
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(problem(ran), "this is no file of a font");
}

TEST_F(ForEveryone, ABadFontFailsAloneAndIsCalledByItsName) {
    std::string cut = TempDir::read_bytes(BOLD);
    cut.resize(cut.size() / 2);
    const Ran ran = answer_to(BEGINNING + font(SANS) + file("cut.ttf", cut) + file("text.ttf", "hello") +
                              file("empty.ttf", "") + file("readme.txt", "hello") + END);
    EXPECT_EQ(ran.status, 1);
    EXPECT_THAT(results(ran), Contains("DejaVu Sans Medium [TrueType]: installed"));
    EXPECT_THAT(files_in(DESTINATION), Contains("DejaVuSans.ttf"));
    EXPECT_THAT(files_in(DESTINATION), Not(Contains("cut.ttf")));
    EXPECT_THAT(files_in(DESTINATION), Not(Contains("text.ttf")));
    EXPECT_THAT(files_in(DESTINATION), Not(Contains("readme.txt")));
    EXPECT_THAT(ran.out, HasSubstr("\"code\": "));
    EXPECT_THAT(ran.out, Not(HasSubstr("/tmp/"))) << "where it was meanwhile is nothing to the user";
}

TEST_F(ForEveryone, EachFontHasTheNamesUnderWhichItsFilesWereSent) {
    const std::string outlines = "/usr/share/fonts/X11/Type1/C059-Roman.pfb";
    std::string cut = TempDir::read_bytes(BOLD);
    cut.resize(cut.size() / 2);
    const Ran ran =
        answer_to(BEGINNING + file("own.pfb", TempDir::read_bytes(outlines)) +
                  file("own.afm", "StartFontMetrics 2.0\nEndFontMetrics\n") + font(SANS) +
                  file("same.ttf", TempDir::read_bytes(SANS) + '\0') + file("cut.ttf", cut) + END);
    std::map<std::string, std::string> became;
    const Json document = ran.json();
    for (const Json& each : document["fonts"]) became[each["files"].dump()] = each["result"];
    EXPECT_EQ(became, (std::map<std::string, std::string>{{R"(["own.pfb","own.afm"])", "installed"},
                                                          {R"(["DejaVuSans.ttf"])", "installed"},
                                                          {R"(["same.ttf"])", "failed"},
                                                          {R"(["cut.ttf"])", "failed"}}))
        << ran.out;
    EXPECT_EQ(gw::test::complaint_about(ran.out), "");
}

TEST_F(ForEveryone, AFontOfThatNameIsRefusedKeptOrReplaced) {
    ASSERT_EQ(answer_to(BEGINNING + font(SANS) + END).status, 0);
    EXPECT_EQ(answer_to(BEGINNING + font(SANS) + END).status, 3) << "the same bytes are there already";
    // Another version of it: a byte of its checksum differs.
    std::string other = TempDir::read_bytes(SANS);
    other += '\0';
    const auto sent = [&](NameTaken decision) {
        return answer_to(stream::beginning(decision) + file("DejaVuSans.ttf", other) + END);
    };
    const Ran refused = sent(NameTaken::REFUSE);
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.json()["fonts"][0]["code"], "NAME_TAKEN");
    EXPECT_EQ(refused.json()["fonts"][0]["detail"], DESTINATION + "DejaVuSans.ttf");
    EXPECT_EQ(sent(NameTaken::KEEP).status, 3);
    EXPECT_TRUE(TempDir::read_bytes(DESTINATION + "DejaVuSans.ttf") == TempDir::read_bytes(SANS));
    const Ran replaced = sent(NameTaken::REPLACE);
    EXPECT_EQ(replaced.status, 0) << replaced.out;
    EXPECT_TRUE(TempDir::read_bytes(DESTINATION + "DejaVuSans.ttf") == other);
}

TEST_F(ForEveryone, AStreamThatIsWrongInstallsNothingOfIt) {
    const std::string good = BEGINNING + font(SANS);
    const std::vector<std::pair<std::string, std::string>> bad = {
        {"", "its end is missing"},
        {"hello\n", "this is no stream of fonts"},
        {good, "its end is missing"},
        {good + "5:b.ttf,100:x", "its end is missing"},
        {good + stream::before_file("../b.ttf", 1), "a name is not one that a font file can have"},
        {good + stream::before_file("a\nb.ttf", 1), "a name is not one that a font file can have"},
        {good + stream::before_file("b.ttf", stream::FILE_LIMIT + 1), "a file is larger than 64 MB"},
        {good + font(SANS) + END, "two files have one name"},
        {good + END + "more", "something follows its end"},
    };
    for (const auto& [bytes, why] : bad) {
        const Ran ran = answer_to_cut(bytes);
        EXPECT_EQ(ran.status, 4) << why;
        EXPECT_EQ(problem(ran), why);
        EXPECT_FALSE(ran.json()["changed"].get<bool>());
        expect_nothing();
    }
}

TEST_F(ForEveryone, TakesNoArgument) {
    for (const char* word : {"--help", SANS, "-", ""}) {
        Helper helper({word});
        const Ran ran = helper.end();
        EXPECT_EQ(ran.status, 2) << word;
        EXPECT_EQ(ran.out, "");
        EXPECT_THAT(ran.err, HasSubstr("it takes no arguments"));
    }
}

TEST_F(ForEveryone, ATerminalIsNoStream) {
    const int controller = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (controller < 0 || ::grantpt(controller) != 0 || ::unlockpt(controller) != 0)
        GTEST_SKIP() << "no terminal can be made here";
    const TempDir dir;
    const std::string command =
        std::string(gw::EVERYONES_INSTALLER) + " <" + ::ptsname(controller) + " >" + dir.file("out");
    const int status = std::system(command.c_str());
    ::close(controller);
    EXPECT_EQ(WEXITSTATUS(status), 4);
    EXPECT_THAT(dir.read("out"), HasSubstr("a terminal is no stream of fonts"));
}

// The user's environment, umask and open files are nothing to it.
TEST_F(ForEveryone, WhatTheUserHasSetUpHasNoEffect) {
    const TempDir dir;
    const std::string trap = dir.write("mkfontscale", "#!/bin/sh\ntouch " + dir.file("trapped") + "\n");
    fs::permissions(trap, fs::perms::all);
    fs::copy_file(trap, dir.file("mkfontdir"));
    fs::copy_file(trap, dir.file("makepsres"));
    const mode_t before = ::umask(0);
    Helper helper({}, {"PATH=" + dir.path(), "HOME=" + dir.path(), "TMPDIR=" + dir.path(), "NLSPATH=/%N",
                       "VANTORHOME=" + dir.path(), "DISPLAY=:77", "LANG=ja_JP.UTF-8", "LC_ALL=ja_JP.UTF-8"});
    ::umask(before);
    (void)helper.send(BEGINNING + font(SANS) + END);
    const Ran ran = helper.end();
    EXPECT_EQ(ran.status, 0) << ran.out;
    EXPECT_FALSE(fs::exists(dir.file("trapped")));
    struct stat info = {};
    ASSERT_EQ(::stat(DESTINATION.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0755U);
    EXPECT_EQ(files_in(dir.path()), (std::set<std::string>{"mkfontscale", "mkfontdir", "makepsres"}));
}

/// Waits until the program has done so much that the condition holds.
template <class Condition>
bool wait_for(Condition holds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!holds()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

TEST_F(ForEveryone, NorHaveTheUsersLimitsAndSignals) {
    Helper helper({}, {}, [] {
        for (const auto& [what, most] : {std::pair(RLIMIT_NOFILE, rlim_t{8}), {RLIMIT_FSIZE, rlim_t{1000}}}) {
            struct rlimit limits = {};
            ::getrlimit(what, &limits);
            limits.rlim_cur = most;
            ::setrlimit(what, &limits);
        }
        sigset_t all;
        ::sigfillset(&all);
        ::sigprocmask(SIG_BLOCK, &all, nullptr);
        ::signal(SIGCHLD, SIG_IGN);
        ::signal(SIGTERM, SIG_IGN);
        ::alarm(1);
    });
    // The alarm would come while it waits for the rest.
    ASSERT_TRUE(helper.send(BEGINNING));
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    (void)helper.send(font(SANS) + END);
    const Ran ran = helper.end();
    EXPECT_EQ(ran.status, 0) << ran.out;
    EXPECT_THAT(files_in(DESTINATION), Contains("DejaVuSans.ttf"));
}

TEST_F(ForEveryone, TheUsersTerminalCannotStopIt) {
    Helper helper;
    ASSERT_TRUE(helper.send(BEGINNING + "5:b.ttf,100:x"));
    ASSERT_TRUE(wait_for([&] { return left_in_scratch().size() > scratch_.size(); }));
    ::kill(helper.process(), SIGTSTP);
    helper.close();
    EXPECT_EQ(helper.end().status, 4) << "it goes on, and sees the end";
}

TEST_F(ForEveryone, ASignalWhileItReceivesInstallsNothing) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        Helper helper;
        ASSERT_TRUE(helper.send(BEGINNING + font(SANS) + "5:b.ttf,100:x"));
        ASSERT_TRUE(wait_for([&] { return left_in_scratch().size() > scratch_.size(); }));
        ::kill(helper.process(), signal);
        const Ran ran = helper.end();
        EXPECT_EQ(ran.status, 4);
        EXPECT_EQ(problem(ran), "it was interrupted");
        expect_nothing();
    }
}

TEST_F(ForEveryone, WhatAKilledOneHasLeftGoesWithTheNext) {
    Helper helper;
    ASSERT_TRUE(helper.send(BEGINNING + "5:b.ttf,100:x"));
    ASSERT_TRUE(wait_for([&] { return left_in_scratch().size() > scratch_.size(); }));
    ::kill(helper.process(), SIGKILL);
    EXPECT_EQ(helper.end().status, -1);
    ASSERT_EQ(left_in_scratch().size(), scratch_.size() + 1);
    // What is younger than a minute may be in use.
    for (const std::string& name : left_in_scratch())
        fs::last_write_time("/tmp/" + name, fs::file_time_type::clock::now() - std::chrono::minutes(2));
    EXPECT_EQ(answer_to_cut("").status, 4);
    expect_nothing();
}

/// A stream of many good fonts with names and bytes of their own.
std::string many_fonts() {
    std::string bytes = BEGINNING;
    for (const auto& entry : fs::directory_iterator("/usr/share/fonts/truetype/noto")) {
        if (entry.path().extension() == ".ttf" && entry.file_size() < 200000 && bytes.size() < 8000000)
            bytes += font(entry.path().c_str());
    }
    return bytes + END;
}

std::size_t fonts_in_destination() {
    std::size_t count = 0;
    for (const std::string& name : files_in(DESTINATION)) count += name.ends_with(".ttf") ? 1U : 0U;
    return count;
}

// Whoever has sent the fonts cancels by closing the pipe; an administrator may send a signal.
TEST_F(ForEveryone, InTheMiddleOfItWholeFontsStay) {
    const std::string bytes = many_fonts();
    ASSERT_GT(bytes.size(), 1000000U);
    for (const bool closes : {true, false}) {
        Helper helper;
        ASSERT_TRUE(helper.send(bytes));
        ASSERT_TRUE(wait_for([&] { return fs::exists(DESTINATION + ".glyphward/journal"); }));
        if (closes) helper.close();
        if (!closes) ::kill(helper.process(), SIGTERM);
        const Ran ran = helper.end();
        EXPECT_EQ(ran.status, 1) << ran.out.substr(0, 2000);
        EXPECT_THAT(ran.out, HasSubstr("it was interrupted; fonts that are whole stay"));
        // Each font that is there is in the index, and each line has its font.
        std::set<std::string> indexed;
        std::istringstream index(TempDir::read_bytes(DESTINATION + "fonts.dir"));
        std::string name;
        std::string rest;
        std::getline(index, rest);
        while (index >> name && std::getline(index, rest)) indexed.insert(name.substr(name.rfind(':') + 1));
        EXPECT_EQ(indexed.size(), fonts_in_destination());
        EXPECT_EQ(left_in_scratch(), scratch_);
        fs::remove_all(DESTINATION);
        put(CONFIG, config_);
    }
}

TEST_F(ForEveryone, TwoAtOnceTakeTurns) {
    Helper one;
    Helper other;
    ASSERT_TRUE(one.send(BEGINNING + font(SANS)));
    ASSERT_TRUE(other.send(BEGINNING + font(BOLD)));
    ASSERT_TRUE(one.send(END));
    ASSERT_TRUE(other.send(END));
    EXPECT_EQ(one.end().status, 0);
    EXPECT_EQ(other.end().status, 0);
    EXPECT_THAT(files_in(DESTINATION), testing::IsSupersetOf({"DejaVuSans.ttf", "DejaVuSans-Bold.ttf"}));
    const std::string index = TempDir::read_bytes(DESTINATION + "fonts.dir");
    EXPECT_THAT(index, HasSubstr("DejaVuSans.ttf "));
    EXPECT_THAT(index, HasSubstr("DejaVuSans-Bold.ttf "));
}

TEST_F(ForEveryone, AnAnswerThatNobodyReadsIsNotMissed) {
    const TempDir dir;
    (void)dir.write("stream", BEGINNING + font(SANS) + END);
    const std::string command =
        std::string(gw::EVERYONES_INSTALLER) + " <" + dir.file("stream") + " >/dev/full";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1) << "there was no room for the answer";
    EXPECT_THAT(files_in(DESTINATION), Contains("DejaVuSans.ttf"));
}

// --- as an ordinary user -----------------------------------------------------------

TEST(ForEveryoneAsAUser, TheProgramRefuses) {
    if (::geteuid() == 0) GTEST_SKIP() << "for the ordinary user";
    Helper helper;
    const Ran ran = helper.end();
    EXPECT_EQ(ran.status, 2);
    EXPECT_EQ(ran.out, "");
    EXPECT_THAT(ran.err, HasSubstr("as the superuser"));
}

TEST(ForEveryoneAsAUser, WithoutPolkitTheCommandSaysWhatAnAdministratorWouldType) {
    if (::geteuid() == 0) GTEST_SKIP() << "for the ordinary user";
    ASSERT_FALSE(fs::exists(gw::EVERYONES_POLICY)) << "this machine can ask for a password";
    const Ran ran = fonts_command({"install", "--everyone", SANS, "/a b"});
    EXPECT_EQ(ran.status, 4);
    EXPECT_THAT(ran.err, HasSubstr("an administrator would type: glyphward-fonts install --everyone " +
                                   std::string(SANS) + " '/a b'"));
}

}  // namespace
