// SPDX-License-Identifier: MIT
#include "store/own_directory.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>

#include "core/file_calls.h"
#include "store/directory_change.h"
#include "store/font_action.h"
#include "support/another_run.h"
#include "support/file_faults.h"
#include "support/giving_up.h"
#include "support/processes.h"
#include "support/put_file.h"
#include "support/temp_dir.h"

namespace {

using gw::DirectoryChange;
using gw::test::FileFaults;
using gw::test::TempDir;

class OwnDirectory : public testing::Test {
  protected:
    OwnDirectory() {
        dir.write("a.pcf", "A");
        dir.write("fonts.dir", "2\na.pcf -a\nb.pcf -b\n");
    }
    [[nodiscard]] gw::Outcome delete_a() const {
        auto change = DirectoryChange::begin(dir.path());
        if (!change) return change.failure();
        (*change)->strike_out("a.pcf", 1);
        (void)(*change)->take_out("a.pcf", false);
        return (*change)->commit();
    }
    [[nodiscard]] std::set<std::string> names() const {
        std::set<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(dir.path()))
            found.insert(entry.path().filename().string());
        return found;
    }
    TempDir dir;
};

TEST_F(OwnDirectory, IsTheOnlyThingThatIsMade) {
    { ASSERT_TRUE(DirectoryChange::begin(dir.path())); }
    EXPECT_EQ(names(), (std::set<std::string>{".glyphward", "a.pcf", "fonts.dir"}));
}

/// The number of a process that has ended.
std::string ended_process() {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(0);
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) continue;
    return std::to_string(child);
}

TEST_F(OwnDirectory, TakesAwayWhatAKilledOneHasBegun) {
    dir.write(".glyphward-" + ended_process() + "/lock", "");
    dir.make_dir(".glyphward-" + ended_process());
    dir.write(".glyphward-" + std::to_string(::getpid()) + "/lock", "");  // the number has come round again
    { ASSERT_TRUE(DirectoryChange::begin(dir.path())); }
    EXPECT_EQ(names(), (std::set<std::string>{".glyphward", "a.pcf", "fonts.dir"}));
}

// It might just get its name, and lose the lock that its process is about to take.
TEST_F(OwnDirectory, LeavesWhatALivingProcessHasBegun) {
    const gw::test::AnotherRun other([] { return std::to_string(::getpid()); });
    const std::string begun = ".glyphward-" + other.answer();
    dir.write(begun + "/lock", "");
    dir.make_dir(".glyphward-theirs");
    { ASSERT_TRUE(DirectoryChange::begin(dir.path())); }
    EXPECT_EQ(names(),
              (std::set<std::string>{".glyphward", begun, ".glyphward-theirs", "a.pcf", "fonts.dir"}));
    EXPECT_TRUE(dir.exists(begun + "/lock"));
}

/// A process that begins a change when it is told to, and ends with 0 if it could.
class Beginner {
  public:
    explicit Beginner(const std::string& dir) {
        int pipe[2];
        if (::pipe(pipe) != 0) throw std::runtime_error("pipe");
        child_ = ::fork();
        if (child_ == 0) {
            ::close(pipe[1]);
            char byte = 0;
            if (::read(pipe[0], &byte, 1) != 1) ::_exit(2);
            ::_exit(DirectoryChange::begin(dir) ? 0 : 1);
        }
        ::close(pipe[0]);
        go_ = gw::Descriptor(pipe[1]);
    }
    ~Beginner() { (void)status(); }
    Beginner(const Beginner&) = delete;
    Beginner& operator=(const Beginner&) = delete;

    void start() const { ASSERT_EQ(::write(go_.get(), "x", 1), 1); }
    /// Waits until it has the file open; false when it ends before.
    [[nodiscard]] bool comes_to_have_open(const std::string& path) {
        while (!gw::test::has_open(std::to_string(child_), path)) {
            if (::waitpid(child_, &status_, WNOHANG) == child_) {
                child_ = 0;
                return false;
            }
            ::sched_yield();
        }
        return true;
    }
    [[nodiscard]] int status() {
        while (child_ > 0 && ::waitpid(child_, &status_, 0) < 0 && errno == EINTR) continue;
        child_ = 0;
        return status_;
    }

  private:
    pid_t child_ = 0;
    int status_ = -1;
    gw::Descriptor go_;
};

TEST_F(OwnDirectory, IsLockedByTheFileThatHasTheNameOfTheLock) {
    { ASSERT_TRUE(DirectoryChange::begin(dir.path())); }
    const std::string path = dir.file(".glyphward/lock");
    Beginner beginner(dir.path());
    gw::Descriptor old_lock(::open(path.c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_EQ(::flock(old_lock.get(), LOCK_EX | LOCK_NB), 0);
    beginner.start();
    ASSERT_TRUE(beginner.comes_to_have_open(path));
    std::filesystem::remove(path);
    gw::Descriptor new_lock(::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    ASSERT_EQ(::flock(new_lock.get(), LOCK_EX | LOCK_NB), 0);
    old_lock = gw::Descriptor();
    EXPECT_TRUE(beginner.comes_to_have_open(path)) << "it has another file's lock";
    new_lock = gw::Descriptor();
    EXPECT_EQ(beginner.status(), 0);
}

/// A process that waits for the lock until `step` has removed something.
int status_of_who_waits(const TempDir& dir, const std::function<void()>& step) {
    { EXPECT_TRUE(DirectoryChange::begin(dir.path())); }
    const std::string path = dir.file(".glyphward/lock");
    Beginner beginner(dir.path());
    gw::Descriptor lock(::open(path.c_str(), O_RDWR | O_CLOEXEC));
    EXPECT_EQ(::flock(lock.get(), LOCK_EX | LOCK_NB), 0);
    beginner.start();
    EXPECT_TRUE(beginner.comes_to_have_open(path));
    step();
    lock = gw::Descriptor();
    return beginner.status();
}

TEST_F(OwnDirectory, IsMadeAnewWhereTheOneThatWasWaitedForHasGone) {
    const auto remove = [&] { std::filesystem::remove_all(dir.file(".glyphward")); };
    EXPECT_EQ(status_of_who_waits(dir, remove), 0);
    EXPECT_TRUE(dir.exists(".glyphward/lock"));
    EXPECT_EQ(names(), (std::set<std::string>{".glyphward", "a.pcf", "fonts.dir"}));
}

TEST_F(OwnDirectory, IsLookedForInTheDirectoryThatHasTheNameNow) {
    const TempDir other;
    const auto exchange = [&] {
        std::filesystem::rename(dir.path(), other.file("old"));
        std::filesystem::create_directory(dir.path());
        std::filesystem::remove_all(other.file("old"));
    };
    EXPECT_EQ(status_of_who_waits(dir, exchange), 0);
    EXPECT_EQ(names(), (std::set<std::string>{".glyphward"}));
}

TEST_F(OwnDirectory, IsNotMadeWhereTheWholeDirectoryHasGone) {
    const auto remove = [&] { std::filesystem::remove_all(dir.path()); };
    EXPECT_NE(status_of_who_waits(dir, remove), 0);
    EXPECT_FALSE(std::filesystem::exists(dir.path()));
}

/// Installs a font in a directory that the action makes if it is missing.
bool install_in_missing(const std::string& dir) {
    gw::FontAction action;
    action.make_missing_directories([](const std::string& missing) {
        if (gw::file_calls().make_dir(AT_FDCWD, missing.c_str(), 0755) == 0) return gw::done();
        return gw::Outcome(gw::Failure::of_system(missing, errno));
    });
    const auto put = [](DirectoryChange& change) {
        if (gw::Outcome made = change.make_index(); !made || change.will_have("a.pcf")) return made;
        return gw::test::put_font(change, "a.pcf", "A", "-a");
    };
    if (!gw::in_change(dir, put, gw::IfMissing::MAKE)) return false;
    return action.commit().empty();
}

// Also where that process is killed, and where anything fails.
TEST(MissingDirectory, IsMadeByTheActionThatKnowsHow) {
    for (const FileFaults::Fault fault : {FileFaults::Fault::FAIL_ONCE, FileFaults::Fault::KILL}) {
        int calls = 0;
        for (int at = 0; at <= calls; ++at) {  // at 0 nothing goes wrong
            const TempDir home;
            const std::string dir = home.file("fonts/");
            const pid_t child = ::fork();
            if (child == 0) {
                const FileFaults faults(at == 0 ? FileFaults::Fault::NONE : fault, at);
                const bool is_done = install_in_missing(dir);
                if (at == 0) (void)home.write("calls", std::to_string(FileFaults::calls()));
                ::_exit(is_done ? 0 : 1);
            }
            int status = 0;
            while (::waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
            if (at == 0) {
                ASSERT_EQ(status, 0);
                calls = std::stoi(home.read("calls"));
            }
            EXPECT_TRUE(install_in_missing(dir)) << at;
            EXPECT_EQ(home.read("fonts/fonts.dir"), "1\na.pcf -a\n") << at;
            EXPECT_EQ(home.read("fonts/a.pcf"), "A") << at;
        }
    }
}

TEST_F(OwnDirectory, IsNotWaitedForWhenTheWorkIsGivenUp) {
    const auto other = DirectoryChange::begin(dir.path());
    ASSERT_TRUE(other);
    int asked = 0;
    const gw::test::GivingUp user([&] { return ++asked == 2; });
    const gw::Outcome refused = delete_a();
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.failure().reason, gw::Reason::GIVEN_UP);
    EXPECT_EQ(asked, 2);
}

TEST_F(OwnDirectory, WithSomebodysDirectoriesInItIsInNobodysWay) {
    { ASSERT_TRUE(DirectoryChange::begin(dir.path())); }
    for (const char* name : {"new/0", "new/fonts.dir", "old/0", "old/1", "old/fonts.dir", "journal"})
        dir.write(std::string(".glyphward/") + name + "/theirs", "precious");
    std::filesystem::rename(dir.file(".glyphward/journal"), dir.file(".glyphward/new/7"));
    EXPECT_TRUE(delete_a());
    EXPECT_EQ(dir.read("fonts.dir"), "1\nb.pcf -b\n");
    EXPECT_FALSE(dir.exists("a.pcf"));
    int kept = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(dir.file(".glyphward")))
        kept += entry.path().filename() == "theirs" ? 1 : 0;
    EXPECT_EQ(kept, 6);
    EXPECT_TRUE(std::filesystem::is_empty(dir.file(".glyphward/new")));
}

TEST_F(OwnDirectory, GivesOnlySoManyDirectoriesAnotherName) {
    { ASSERT_TRUE(DirectoryChange::begin(dir.path())); }
    for (int i = 0; i < 1100; ++i) dir.make_dir(".glyphward/new/theirs" + std::to_string(i));
    dir.make_dir(".glyphward/left-7/before");
    EXPECT_TRUE(delete_a());
    const auto entries = [&](const char* name) {
        const std::filesystem::directory_iterator all(dir.file(name));
        return std::distance(begin(all), end(all));
    };
    EXPECT_EQ(entries(".glyphward/new"), 101);
    EXPECT_TRUE(dir.exists(".glyphward/left-0"));
    EXPECT_TRUE(dir.exists(".glyphward/left-999"));
    EXPECT_TRUE(dir.exists(".glyphward/left-7/before"));
    EXPECT_FALSE(dir.exists(".glyphward/left-1000"));
    EXPECT_EQ(dir.read("fonts.dir"), "1\nb.pcf -b\n");
}

// There is no room for a directory of ours, but what goes makes room.
TEST_F(OwnDirectory, IsNotNeededForDeletingOnAFullDisk) {
    int at = 1;
    for (;; ++at) {
        const TempDir fresh;
        fresh.write("a.pcf", "A");
        fresh.write("fonts.dir", "2\na.pcf -a\nb.pcf -b\n");
        int calls = 0;
        gw::Outcome outcome;
        {
            const FileFaults faults(FileFaults::Fault::FAIL_ONCE, at, ENOSPC);
            auto change = DirectoryChange::begin(fresh.path());
            ASSERT_TRUE(change) << at;
            (*change)->strike_out("a.pcf", 1);
            EXPECT_TRUE((*change)->take_out("a.pcf", false));
            outcome = (*change)->commit();
            calls = FileFaults::calls();
        }
        if (calls < at) break;
        EXPECT_TRUE(outcome) << at << ": " << (outcome ? "" : outcome.failure().text());
        EXPECT_EQ(fresh.read("fonts.dir"), "1\nb.pcf -b\n") << at;
        EXPECT_FALSE(fresh.exists("a.pcf")) << at;
    }
    EXPECT_GT(at, 15);
}

// Whatever fails, in our directory or beside it.
TEST_F(OwnDirectory, IsInNoMessage) {
    std::set<std::string> subjects;
    int calls = 0;
    for (int at = 0; at <= calls; ++at) {  // at 0 nothing fails
        const TempDir fresh;
        fresh.write("fonts.dir", "1\na.pcf -a\n");
        fresh.write("a.pcf", "A");
        const FileFaults faults(FileFaults::Fault::FAIL_ONCE, at, EIO);
        const gw::Outcome outcome = gw::test::bring_font(fresh.path(), "c.pcf", "C", "-c");
        if (at == 0) calls = FileFaults::calls();
        if (outcome) continue;
        ASSERT_TRUE(outcome.failure().subject.starts_with(fresh.path())) << outcome.failure().text();
        subjects.insert(outcome.failure().subject.substr(fresh.path().size()));
    }
    EXPECT_EQ(subjects, (std::set<std::string>{"", "c.pcf", "fonts.dir"}));
}

TEST_F(OwnDirectory, ThatThereIsNoRoomForMakesInstallingFail) {
    const FileFaults faults(FileFaults::Fault::FAIL_ONCE, 1, ENOSPC);
    const auto change = DirectoryChange::begin(dir.path());
    ASSERT_TRUE(change);
    const auto file = (*change)->stage("c.pcf");
    ASSERT_FALSE(file);
    EXPECT_EQ(file.failure().error, ENOSPC);
    EXPECT_FALSE((*change)->make_metrics_dir());
    (*change)->enter("c.pcf -c\n");
    EXPECT_FALSE((*change)->commit());
    EXPECT_EQ(dir.read("fonts.dir"), "2\na.pcf -a\nb.pcf -b\n");
}

}  // namespace
