// SPDX-License-Identifier: MIT
//
// The running program, killed at, or denied room by, the n-th of its system calls that change the disk: every
// seventh of them, or each with GLYPHWARD_EVERY_CALL=1 in the environment. strace does both, from the moment
// when the user presses the button.
#include "end_to_end/program_test.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "end_to_end/bitmap_fonts.h"
#include "end_to_end/waiting.h"

#include "end_to_end/install_dialog.h"

namespace {

using namespace gw::e2e;
using gw::test::TempDir;

constexpr const char* WARNING = "Glyph Warden - Deletion Confirmation";
constexpr std::array CALLS = {"mkdir",  "mkdirat",  "renameat2", "rename",    "renameat",  "linkat",
                              "unlink", "unlinkat", "symlinkat", "write",     "pwrite64",  "fsync",
                              "syncfs", "fchmod",   "fchown",    "utimensat", "ftruncate", "fallocate"};
constexpr const char* HINT = "Glyph Warden - Information";
constexpr int STEP = 7;
constexpr const char* NOT_TRACED = "this machine lets no process be traced";
constexpr int NO_COMMAND = 127;
const BitmapFont AARDVARKS{"Aardvarks"};

/// strace, attached to a running process.
class Tracer {
  public:
    Tracer(pid_t process, const std::vector<std::string>& options) {
        pid_ = ::fork();
        if (pid_ == 0) run(process, options);
        // It is attached when the process says so itself.
        (void)wait_until([&] {
            attached_ =
                TempDir::read_bytes("/proc/" + std::to_string(process) + "/status").find("TracerPid:\t0") ==
                std::string::npos;
            return attached_ || has_ended();
        });
    }
    ~Tracer() { detach(); }
    Tracer(const Tracer&) = delete;
    Tracer& operator=(const Tracer&) = delete;

    [[nodiscard]] bool is_attached() const { return attached_; }
    /// Whether the system refuses it.
    [[nodiscard]] bool is_refused() const {
        return dir_.read("errors").find("Operation not permitted") != std::string::npos;
    }
    [[nodiscard]] std::string errors() const { return dir_.read("errors"); }
    void detach() {
        if (pid_ <= 0) return;
        ::kill(pid_, SIGINT);
        ::waitpid(pid_, nullptr, 0);
        pid_ = -1;
    }
    [[nodiscard]] std::string log() const { return dir_.read("log"); }

  private:
    [[noreturn]] void run(pid_t process, std::vector<std::string> options) const {
        options.insert(options.begin(),
                       {"strace", "-qq", "-p", std::to_string(process), "-o", dir_.file("log")});
        std::vector<char*> words;
        for (std::string& option : options) words.push_back(option.data());
        words.push_back(nullptr);
        const int errors = ::open(dir_.file("errors").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        ::dup2(errors, STDERR_FILENO);
        ::execvp("strace", words.data());
        ::dprintf(STDERR_FILENO, "strace: %s", std::strerror(errno));
        ::_exit(NO_COMMAND);
    }
    bool has_ended() {
        if (pid_ <= 0 || ::waitpid(pid_, nullptr, WNOHANG) != pid_) return false;
        pid_ = -1;
        return true;
    }
    TempDir dir_;
    pid_t pid_ = -1;
    bool attached_ = false;
};

/// Where a run goes wrong: at the n-th call of one kind.
struct Place {
    std::string call;
    int number = 0;
};

using Files = std::map<std::string, std::string>;

class Killed : public ProgramTest {
  protected:
    void SetUp() override {
#ifdef GLYPHWARD_SANITIZE
        GTEST_SKIP() << "a program with a sanitizer does not end well while it is traced";
#endif
    }
    /// The fonts and the index of a directory. An index without fonts is as good as none.
    static Files files_in(const std::string& dir) {
        Files files;
        if (!std::filesystem::exists(dir)) return files;
        for (const auto& entry : std::filesystem::directory_iterator(dir)) {
            const std::string name = entry.path().filename();
            if (entry.is_regular_file() && name != "glyphwd.upr")
                files[name] = TempDir::read_bytes(entry.path());
        }
        if (files["fonts.dir"] == "0\n" || files["fonts.dir"].empty()) files.erase("fonts.dir");
        return files;
    }
    /// What has changed: the fonts, and the user's font path.
    [[nodiscard]] Files state(const std::string& dir) const {
        Files files = files_in(dir);
        const std::string path = TempDir::read_bytes(home_path() + ".VTfontpath");
        if (!path.empty()) files[".VTfontpath"] = path;
        return files;
    }
    /// Whether the font is there with its line, or neither, and everything else is as it is to be or missing.
    static bool is_old_or_new(const Files& now, const Files& after) {
        const bool is_right = std::all_of(now.begin(), now.end(), [&](const auto& file) {
            return after.contains(file.first) && after.at(file.first) == file.second;
        });
        return is_right && now.contains("fonts.dir") == now.contains(AARDVARKS.file_name());
    }
    /// Places at every seventh of the calls that the log of a whole run has.
    static std::vector<Place> places(const std::string& log) {
        std::vector<Place> all;
        std::map<std::string, int> counts;
        std::istringstream lines(log);
        for (std::string line; std::getline(lines, line);) {
            const std::string call = line.substr(0, line.find('('));
            if (std::find(CALLS.begin(), CALLS.end(), call) != CALLS.end())
                all.push_back({call, ++counts[call]});
        }
        const bool each = std::getenv("GLYPHWARD_EVERY_CALL") != nullptr;
        std::vector<Place> some;
        for (std::size_t i = 0; i < all.size(); i += each ? 1 : STEP) some.push_back(all[i]);
        return some;
    }
    static std::vector<std::string> watching() {
        std::string calls = "trace=";
        for (const char* call : CALLS) calls.append(call).append(",");
        calls.pop_back();
        return {"-e", calls};
    }
    static std::vector<std::string> going_wrong(const Place& place, const std::string& how) {
        return {"-e", "trace=" + place.call, "-e",
                "inject=" + place.call + how + ":when=" + std::to_string(place.number) +
                    (how.find("error") != std::string::npos ? "+" : "")};
    }
};

class KilledInstalling : public Killed {
  protected:
    /// Starts with the font selected in the dialog, and nothing installed.
    void prepare() {
        // The server takes no new directory as long as one is gone.
        desktop.set_font_path(font_path_);
        std::filesystem::remove_all(default_destination());
        std::filesystem::remove(home_path() + ".VTfontpath");
        start();
        ASSERT_NE(open_by_menu("f", "i", InstallDialog::TITLE), 0U);
        dialog = std::make_unique<InstallDialog>(desktop);
        ASSERT_TRUE(dialog->is_there());
        ASSERT_TRUE(dialog->list_fonts_of(source.path()));
        ASSERT_TRUE(follows([&] { return dialog->sample_is_drawn(); }, [&] { dialog->click_line(0); }));
    }
    void press_install() { desktop.click_middle(dialog->install_button); }
    /// Installs without a fault. Finds out where a run can go wrong, and what a whole one leaves.
    void install_whole() {
        AARDVARKS.write_to(source.path());
        prepare();
        const Files before = state(default_destination());
        Tracer whole(program->pid(), watching());
        if (whole.is_refused()) GTEST_SKIP() << NOT_TRACED;
        ASSERT_TRUE(whole.is_attached()) << whole.errors();
        press_install();
        ASSERT_TRUE(wait_until(
            [&] { return std::filesystem::exists(default_destination() + AARDVARKS.file_name()); }));
        ASSERT_TRUE(hint_comes_and_goes());
        ASSERT_TRUE(is_root() || wait_until([&] { return is_on_font_path(default_destination()); }));
        ASSERT_TRUE(wait_until(
            [&] { return !std::filesystem::exists(default_destination() + ".glyphward/journal"); }));
        whole.detach();
        where = places(whole.log());
        EXPECT_EQ(leave(), 0);
        after = state(default_destination());
        ASSERT_NE(before, after);
        ASSERT_GT(where.size(), 3U);
    }
    std::vector<Place> where;
    Files after;
    TempDir source;
    std::unique_ptr<InstallDialog> dialog;

  private:
    std::vector<std::string> font_path_ = desktop.font_path();
};

TEST_F(KilledInstalling, AtAnyCallTheNextStartFindsTheOldStateOrTheNew) {
    install_whole();
    if (HasFatalFailure() || IsSkipped()) return;
    int killed = 0;
    for (const Place& place : where) {
        SCOPED_TRACE(place.call + " " + std::to_string(place.number));
        prepare();
        const Tracer tracer(program->pid(), going_wrong(place, ":signal=KILL"));
        ASSERT_TRUE(tracer.is_attached());
        press_install();
        // The date of an index may need no call: then it is not killed.
        if (!wait_until([&] { return !program->is_running(); }, 5)) continue;
        ++killed;
        start();
        EXPECT_EQ(leave(), 0);
        const Files now = state(default_destination());
        EXPECT_TRUE(is_old_or_new(now, after)) << testing::PrintToString(now);
    }
    EXPECT_GT(killed, 2);
}

TEST_F(KilledInstalling, WithoutRoomAtAnyCallTheOldStateStaysOrTheNewIsWhole) {
    install_whole();
    if (HasFatalFailure() || IsSkipped()) return;
    int failed = 0;
    for (const Place& place : where) {
        // The destination is made by this one. Without it nothing begins, and the status line says so.
        if (place.call == "mkdir") continue;
        SCOPED_TRACE(place.call + " " + std::to_string(place.number));
        prepare();
        {
            const Tracer tracer(program->pid(), going_wrong(place, ":error=ENOSPC"));
            ASSERT_TRUE(tracer.is_attached());
            press_install();
            ASSERT_TRUE(wait_until([&] {
                return desktop.is_visible(SUMMARY) || desktop.is_visible(HINT) ||
                       is_on_font_path(default_destination());
            }));
        }
        const bool said = desktop.is_visible(SUMMARY);
        ::kill(program->pid(), SIGTERM);
        EXPECT_EQ(program->wait_for_exit(), 0);
        start();
        EXPECT_EQ(leave(), 0);
        const Files now = state(default_destination());
        EXPECT_TRUE(is_old_or_new(now, after)) << testing::PrintToString(now);
        if (now.contains(AARDVARKS.file_name())) continue;
        ++failed;
        EXPECT_TRUE(said) << "the summary names what was left out";
    }
    EXPECT_GT(failed, 0);
}

class KilledDeleting : public Killed {
  protected:
    KilledDeleting() { list_fonts_of(mine.path()); }
    void prepare() {
        AARDVARKS.write_to(mine.path());
        index_fonts(mine.path());
        start();
        desktop.scroll_to_start(main->list_scroll_bar);
        main->click_line(0);
        ASSERT_NE(opens(WARNING, [&] { desktop.click_middle(main->delete_button); }), 0U);
        desktop.key("Left");
    }
    TempDir mine;
};

TEST_F(KilledDeleting, AtAnyCallTheNextStartFindsTheFontWithItsLineOrNeither) {
    prepare();
    const Files before = files_in(mine.path());
    std::vector<Place> where;
    {
        Tracer whole(program->pid(), watching());
        if (whole.is_refused()) GTEST_SKIP() << NOT_TRACED;
        ASSERT_TRUE(whole.is_attached()) << whole.errors();
        desktop.key("space");
        ASSERT_TRUE(wait_until([&] { return !mine.exists(AARDVARKS.file_name()); }));
        ASSERT_TRUE(wait_until([&] { return !mine.exists(".glyphward/journal"); }));
        whole.detach();
        where = places(whole.log());
    }
    EXPECT_EQ(leave(), 0);
    EXPECT_TRUE(files_in(mine.path()).empty());
    ASSERT_GT(where.size(), 2U);
    int killed = 0;
    for (const Place& place : where) {
        SCOPED_TRACE(place.call + " " + std::to_string(place.number));
        prepare();
        const Tracer tracer(program->pid(), going_wrong(place, ":signal=KILL"));
        ASSERT_TRUE(tracer.is_attached());
        desktop.key("space");
        if (!wait_until([&] { return !program->is_running(); }, 5)) continue;
        ++killed;
        start();
        EXPECT_EQ(leave(), 0);
        const Files now = files_in(mine.path());
        EXPECT_TRUE(now.empty() || now == before);
    }
    EXPECT_GT(killed, 2);
}

}  // namespace
