// SPDX-License-Identifier: MIT
//
// An ordinary user installs fonts for everyone, on a throw-away machine on which programs can change their
// user: with a system bus and a polkit service of the test's own, whose rules say yes, say no, or ask for an
// administrator's password on the user's terminal.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "package/package_machine.h"

namespace {

using namespace gw::test::package;
using gw::test::TempDir;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

constexpr const char* SANS = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
constexpr const char* BOLD = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
constexpr const char* RULES = "/etc/polkit-1/rules.d/00-test.rules";
constexpr const char* AS_USER =
    "setpriv --reuid glyph --regid glyph --clear-groups "
    "env -i PATH=/usr/bin:/bin HOME=/home/glyph LC_ALL=C.UTF-8 ";
const std::string DESTINATION = gw::SUPERUSER_FONT_DIR;

/// The rules of the polkit service: what it answers for our action.
std::string rule(const char* result) {
    return std::string(
               "polkit.addRule(function(action, subject) {\n"
               "  if (action.id == \"local.glyphward.install-for-everyone\") return polkit.Result.") +
           result + ";\n});\n";
}
/// The administrator is root.
constexpr const char* ASKS_ROOT =
    "polkit.addAdminRule(function(action, subject) { return [\"unix-user:root\"]; });\n";

bool wait_until_succeeds(const std::string& command) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (run(command).status != 0) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

class ForEveryone : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        ASSERT_TRUE(succeeds(CMAKE_INSTALL));
        ASSERT_TRUE(succeeds(SETUP));
        ASSERT_TRUE(succeeds(
            "chown glyph:glyph /home/glyph; mkdir -p /run/dbus; dbus-daemon --system --fork --nopidfile"));
    }
    ~ForEveryone() override {
        if (service_ > 0) {
            ::kill(service_, SIGTERM);
            ::waitpid(service_, nullptr, 0);
        }
        fs::remove_all(DESTINATION);
        fs::remove(RULES);
    }
    /// Starts the polkit service with these rules.
    void ask_under(const std::string& rules) {
        write(RULES, rules);
        ASSERT_TRUE(succeeds("chown -R polkitd /etc/polkit-1/rules.d"));
        service_ = ::fork();
        if (service_ == 0) {
            const int null = ::open("/dev/null", O_RDWR);
            for (int fd = 0; fd <= 2; ++fd) ::dup2(null, fd);
            ::execl("/usr/lib/polkit-1/polkitd", "polkitd", "--no-debug", nullptr);
            ::_exit(127);
        }
        ASSERT_TRUE(
            wait_until_succeeds("dbus-send --system --print-reply --dest=org.freedesktop.DBus / "
                                "org.freedesktop.DBus.NameHasOwner "
                                "string:org.freedesktop.PolicyKit1 | grep -q true"));
    }
    static Outcome install(const std::string& words) {
        return run(AS_USER + std::string("glyphward-fonts install --everyone ") + words);
    }
    /// Whether this test of the window passes in a session of the user.
    static testing::AssertionResult window_passes(const std::string& test) {
        const Home home;
        const Outcome outcome = run(session(("SessionForEveryone." + test).c_str()));
        const bool has_passed =
            outcome.status == 0 && outcome.text.find("[  PASSED  ] 1 test.") != std::string::npos;
        return has_passed ? testing::AssertionSuccess() : testing::AssertionFailure() << outcome.text;
    }
    static std::set<std::string> installed() {
        std::set<std::string> names;
        std::error_code gone;
        for (const auto& entry : fs::directory_iterator(DESTINATION, gone))
            names.insert(entry.path().filename());
        return names;
    }

    pid_t service_ = -1;
};

TEST_F(ForEveryone, ARuleSaysYes) {
    ask_under(rule("YES"));
    const Outcome done = install(std::string(SANS) + ' ' + BOLD);
    EXPECT_EQ(done.status, 0) << done.text;
    EXPECT_THAT(done.text, HasSubstr("DejaVu Sans Bold [TrueType]: installed\n"));
    EXPECT_TRUE(read(DESTINATION + "DejaVuSans.ttf") == read(SANS));
    struct stat info = {};
    ASSERT_EQ(::stat((DESTINATION + "DejaVuSans.ttf").c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, 0U);
    EXPECT_EQ(info.st_mode & 0777U, 0644U);
    // It is on everybody's font path, and the list of every user has it.
    EXPECT_THAT(read(CONFIG), HasSubstr(DESTINATION));
    EXPECT_THAT(run(std::string(AS_USER) + "glyphward-fonts list").text,
                HasSubstr("Dejavu Sans Bold [TrueType]"));
    EXPECT_EQ(install(SANS).status, 3) << "it is there already";
}

TEST_F(ForEveryone, ARuleSaysNo) {
    ask_under(rule("NO"));
    const Outcome done = install(SANS);
    EXPECT_EQ(done.status, 4);
    EXPECT_THAT(done.text, HasSubstr("you may not do this"));
    EXPECT_THAT(installed(), Not(Contains("DejaVuSans.ttf")));
}

TEST_F(ForEveryone, TheWindowInstallsWhereARuleSaysYes) {
    ask_under(rule("YES"));
    ASSERT_TRUE(window_passes("InstallsTheFontWhereTheRuleSaysYes"));
    EXPECT_THAT(installed(), Contains("aardvarks24.pcf.gz"));
    EXPECT_THAT(read(DESTINATION + "fonts.dir"), HasSubstr("aardvarks24.pcf.gz -"));
    EXPECT_THAT(read(CONFIG), HasSubstr(DESTINATION));
    EXPECT_THAT(run(std::string(AS_USER) + "glyphward-fonts list").text, HasSubstr("Aardvarks"));
}

TEST_F(ForEveryone, TheWindowReplacesAFontWhoseNameIsTaken) {
    ask_under(rule("YES"));
    ASSERT_TRUE(window_passes("ReplacesAFontWhoseNameIsTakenWhereTheRuleSaysYes"));
}

TEST_F(ForEveryone, TheWindowSaysWhyNotWhereARuleSaysNo) {
    ask_under(rule("NO"));
    const std::string before = read(CONFIG);
    ASSERT_TRUE(window_passes("SaysWhyNothingIsInstalledWhereTheRuleSaysNo"));
    EXPECT_FALSE(is_there(DESTINATION));
    EXPECT_EQ(read(CONFIG), before);
}

TEST_F(ForEveryone, WithoutARuleAPasswordIsNeededAndNobodyAsksForIt) {
    ask_under("");
    EXPECT_THAT(run("pkaction --verbose --action-id local.glyphward.install-for-everyone").text,
                testing::AllOf(HasSubstr("implicit any:      auth_admin\n"),
                               HasSubstr("implicit inactive: auth_admin\n"),
                               HasSubstr("implicit active:   auth_admin\n")));
    const Outcome done =
        run(std::string("setsid --wait ") + AS_USER + "glyphward-fonts install --everyone " + SANS);
    EXPECT_EQ(done.status, 4);
    EXPECT_THAT(done.text, HasSubstr("nothing here can ask for the password"));
    EXPECT_THAT(installed(), Not(Contains("DejaVuSans.ttf")));
}

TEST_F(ForEveryone, ADamagedFontFailsAlone) {
    ask_under(rule("YES"));
    write("/home/glyph/cut.ttf", read(BOLD).substr(0, 100000));
    const Outcome done = install(std::string(SANS) + " /home/glyph/cut.ttf --json");
    fs::remove("/home/glyph/cut.ttf");
    EXPECT_EQ(done.status, 1);
    EXPECT_THAT(done.text, HasSubstr("\"failed\""));
    EXPECT_THAT(installed(), Contains("DejaVuSans.ttf"));
    EXPECT_THAT(installed(), Not(Contains("cut.ttf")));
}

TEST_F(ForEveryone, AFileThatOnlyTheSuperuserCanReadIsNotRead) {
    ask_under(rule("YES"));
    write("/home/glyph/secret.ttf", read(BOLD));
    fs::permissions("/home/glyph/secret.ttf", fs::perms::owner_read);
    const Outcome done = install("/home/glyph/secret.ttf");
    fs::remove("/home/glyph/secret.ttf");
    EXPECT_EQ(done.status, 1) << done.text;
    EXPECT_THAT(installed(), Not(Contains("secret.ttf")));
}

TEST_F(ForEveryone, WithoutThePolicyTheCommandSaysWhatAnAdministratorWouldType) {
    const TempDir aside;
    ASSERT_TRUE(succeeds(std::string("mv ") + gw::EVERYONES_POLICY + ' ' + aside.path()));
    const Outcome done = install(SANS);
    ASSERT_TRUE(succeeds("mv " + aside.path() + "/* " + gw::EVERYONES_POLICY));
    EXPECT_EQ(done.status, 4);
    EXPECT_THAT(
        done.text,
        HasSubstr(std::string("an administrator would type: glyphward-fonts install --everyone ") + SANS));
}

/// Waits until what is typed on the terminal is not shown. What was typed before that would be thrown away.
bool waits_for_password(int controller) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    struct termios settings = {};
    while (::tcgetattr(controller, &settings) == 0 && (settings.c_lflag & ECHO) != 0) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

/// What the user sees on the terminal of a command, and its exit status; `password` is typed when the
/// terminal asks for it.
Outcome on_terminal(const std::string& command, const std::string& password) {
    const int controller = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_TRUE(controller >= 0 && ::grantpt(controller) == 0 && ::unlockpt(controller) == 0);
    const std::string name = ::ptsname(controller);
    const pid_t child = ::fork();
    if (child == 0) {
        ::setsid();
        const int terminal = ::open(name.c_str(), O_RDWR);
        ::ioctl(terminal, TIOCSCTTY, 0);
        for (int fd = 0; fd <= 2; ++fd) ::dup2(terminal, fd);
        ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        ::_exit(127);
    }
    Outcome outcome;
    bool is_typed = false;
    std::array<char, 1000> piece{};
    for (;;) {
        pollfd ready = {controller, POLLIN, 0};
        if (::poll(&ready, 1, 60000) <= 0) break;
        const ssize_t count = ::read(controller, piece.data(), piece.size());
        if (count <= 0) break;
        outcome.text.append(piece.data(), static_cast<std::size_t>(count));
        if (!is_typed && outcome.text.find("assword: ") != std::string::npos) {
            is_typed = true;
            EXPECT_TRUE(waits_for_password(controller));
            const std::string line = password + '\n';
            EXPECT_EQ(::write(controller, line.data(), line.size()), static_cast<ssize_t>(line.size()));
        }
    }
    ::close(controller);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFEXITED(status)) outcome.status = WEXITSTATUS(status);
    return outcome;
}

TEST_F(ForEveryone, ThePasswordIsAskedForOnTheTerminalEachTime) {
    ask_under(ASKS_ROOT);
    ASSERT_TRUE(succeeds("echo root:right | chpasswd"));
    const std::string command = AS_USER + std::string("glyphward-fonts install --everyone ");
    const Outcome wrong = on_terminal(command + SANS, "wrong");
    EXPECT_EQ(wrong.status, 4) << wrong.text;
    EXPECT_THAT(wrong.text, HasSubstr("Installing fonts for all users of this computer needs"));
    EXPECT_THAT(installed(), Not(Contains("DejaVuSans.ttf")));
    const Outcome right = on_terminal(command + SANS, "right");
    EXPECT_EQ(right.status, 0) << right.text;
    EXPECT_THAT(installed(), Contains("DejaVuSans.ttf"));
    EXPECT_THAT(on_terminal(command + BOLD, "wrong").text, HasSubstr("assword: ")) << "nothing is kept";
    EXPECT_THAT(installed(), Not(Contains("DejaVuSans-Bold.ttf")));
}

TEST_F(ForEveryone, ThePolicySpeaksTheLanguagesOfTheProgram) {
    const std::string policy = read(gw::EVERYONES_POLICY);
    for (const char* tag :
         {"<message xml:lang=\"de\">", "<message xml:lang=\"fr\">", "<message xml:lang=\"es\">",
          "<message xml:lang=\"ja\">", "<description xml:lang=\"ja\">"})
        EXPECT_THAT(policy, HasSubstr(tag));
    EXPECT_THAT(policy, HasSubstr(std::string(">") + gw::EVERYONES_INSTALLER + "<"));
    struct stat info = {};
    ASSERT_EQ(::stat(gw::EVERYONES_INSTALLER, &info), 0);
    EXPECT_EQ(info.st_mode & 07777U, 0755U) << "it is not setuid itself";
}

}  // namespace
