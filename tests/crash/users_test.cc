// SPDX-License-Identifier: MIT
//
// Several users of one font directory: who was killed there locks nobody out who may write it.
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>

#include "store/directory_change.h"
#include "support/file_faults.h"
#include "support/put_file.h"
#include "support/temp_dir.h"

namespace {

using gw::DirectoryChange;
using gw::test::FileFaults;
using gw::test::TempDir;

constexpr uid_t ALICE = 1000;
constexpr uid_t BOB = 1001;
constexpr gid_t GROUP = 2000;
constexpr int NO_SUCH_USER = 9;

/// The status of a process of that user's, a member of GROUP too, which is killed at its `at`-th change of
/// the disk, if not 0.
int status_as(uid_t user, gid_t group, int at, const std::function<bool()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::umask(002);
        if (::setgroups(1, &GROUP) != 0 || ::setgid(group) != 0 || ::setuid(user) != 0) ::_exit(NO_SUCH_USER);
        const FileFaults faults(at != 0 ? FileFaults::Fault::KILL : FileFaults::Fault::NONE, at);
        ::_exit(work() ? 0 : 1);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
    return status;
}

bool as(uid_t user, gid_t group, const std::function<bool()>& work) {
    return status_as(user, group, 0, work) == 0;
}

bool install(const TempDir& dir, const std::string& name) {
    auto change = DirectoryChange::begin(dir.path());
    if (!change || !(*change)->make_index()) return false;
    return gw::test::put_font(**change, name, name, "-x") && (*change)->commit();
}

class Users : public testing::Test {
  protected:
    void SetUp() override {
        if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can be several users";
        if (!as(ALICE, GROUP, [] { return true; })) GTEST_SKIP() << "there are no other users here";
    }
    static void give(const TempDir& dir, uid_t owner, gid_t group, mode_t mode) {
        dir.write("fonts.dir", "0\n");
        ASSERT_EQ(::chown(dir.c_str(), owner, group), 0);
        ASSERT_EQ(::chmod(dir.c_str(), mode), 0);
        ASSERT_EQ(::chown(dir.file("fonts.dir").c_str(), owner, group), 0);
        ASSERT_EQ(::chmod(dir.file("fonts.dir").c_str(), mode & 0666U), 0);
    }
    static void expect_installed(const TempDir& dir, const std::string& name, int at) {
        EXPECT_EQ(dir.read("fonts.dir"), "1\n" + name + " -x\n") << at;
        EXPECT_FALSE(dir.exists(".glyphward/journal")) << at;
        for (const auto& entry : std::filesystem::directory_iterator(dir.path()))
            EXPECT_NE(entry.path().filename().string().substr(0, 11), ".glyphward-") << at;
    }
};

TEST_F(Users, TheSuperuserWhoIsKilledDoesNotLockTheOwnerOut) {
    int at = 1;
    for (;; ++at) {
        ASSERT_LT(at, gw::test::MOST_CALLS);
        const TempDir dir;
        give(dir, ALICE, ALICE, 0755);
        const int status = status_as(0, 0, at, [&] { return install(dir, "c.pcf"); });
        if (status == 0) {
            expect_installed(dir, "c.pcf", at);
            break;
        }
        ASSERT_TRUE(WIFSIGNALED(status)) << at;
        EXPECT_TRUE(as(ALICE, ALICE, [&] {
            std::filesystem::remove(dir.file("fonts.dir"));
            return gw::settle(dir.path()) && install(dir, "d.pcf");
        })) << at;
        expect_installed(dir, "d.pcf", at);
    }
    EXPECT_GT(at, 15);
}

TEST_F(Users, AMemberOfTheGroupTakesBackWhatAnotherHasBegun) {
    int at = 1;
    for (;; ++at) {
        ASSERT_LT(at, gw::test::MOST_CALLS);
        const TempDir dir;
        give(dir, 0, GROUP, 02775);
        const int status = status_as(ALICE, GROUP, at, [&] { return install(dir, "c.pcf"); });
        if (status == 0) {
            expect_installed(dir, "c.pcf", at);
            break;
        }
        ASSERT_TRUE(WIFSIGNALED(status)) << at;
        EXPECT_TRUE(as(BOB, GROUP, [&] { return install(dir, "d.pcf"); })) << at;
        const std::string both = "2\nc.pcf -x\nd.pcf -x\n";
        if (dir.read("fonts.dir") != both) expect_installed(dir, "d.pcf", at);
    }
    EXPECT_GT(at, 15);
}

// Without the set-group-ID bit of the directory it would have the group that the user has otherwise.
TEST_F(Users, OfOneGroupGiveItTheirFirstIndex) {
    for (const bool begins_empty : {true, false}) {
        const TempDir dir;
        give(dir, 0, GROUP, 0775);
        std::filesystem::remove(dir.file("fonts.dir"));
        EXPECT_TRUE(as(ALICE, ALICE, [&] {
            if (begins_empty) return install(dir, "c.pcf");
            return static_cast<bool>(gw::test::bring_font(dir.path(), "c.pcf", "C", "-x"));
        }));
        struct stat info = {};
        ASSERT_EQ(::stat(dir.file("fonts.dir").c_str(), &info), 0);
        EXPECT_EQ(info.st_uid, ALICE);
        EXPECT_EQ(info.st_gid, GROUP) << (begins_empty ? "made empty" : "made with a line");
    }
}

// In a sticky directory nobody can replace the index of another; it is overwritten.
TEST_F(Users, OfAStickyDirectoryWriteOneIndex) {
    for (const mode_t mode : {02775U, 03775U}) {
        const TempDir dir;
        give(dir, 0, GROUP, mode);
        EXPECT_TRUE(as(ALICE, GROUP, [&] { return install(dir, "c.pcf"); })) << std::oct << mode;
        EXPECT_TRUE(as(BOB, GROUP, [&] { return install(dir, "d.pcf"); })) << std::oct << mode;
        EXPECT_EQ(dir.read("fonts.dir"), "2\nc.pcf -x\nd.pcf -x\n") << std::oct << mode;
    }
}

TEST_F(Users, OfADirectoryThatIsOpenToAllHearWhyTheyAreRefused) {
    const TempDir dir;
    give(dir, ALICE, ALICE, 02777);
    ASSERT_TRUE(as(BOB, GROUP, [&] { return install(dir, "c.pcf"); }));
    const auto is_refused = [&] {
        const auto change = DirectoryChange::begin(dir.path());
        return !change && change.failure().reason == gw::Reason::OPEN_TO_ALL;
    };
    EXPECT_TRUE(as(ALICE, ALICE, is_refused));
    EXPECT_TRUE(is_refused()) << "the superuser trusts nobody there";
    // The set-group-ID bit gives all files the group of the directory.
    dir.write(".glyphward/journal", "glyphward-journal 1\nout 0 fonts.dir\n");
    ASSERT_EQ(::chown(dir.file(".glyphward").c_str(), 0, ALICE), 0);
    ASSERT_EQ(::chown(dir.file(".glyphward/lock").c_str(), 0, ALICE), 0);
    ASSERT_EQ(::chown(dir.file(".glyphward/journal").c_str(), BOB, ALICE), 0);
    EXPECT_FALSE(DirectoryChange::begin(dir.path()));
    EXPECT_TRUE(dir.exists(".glyphward/journal")) << "left alone";
}

// The owner of the directory could give any directory of the superuser's our name.
TEST_F(Users, TheSuperuserGivesNothingAwayButWhatIsNew) {
    const TempDir dir;
    give(dir, ALICE, ALICE, 0755);
    dir.write(".glyphward/secret", "root's");
    dir.write(".glyphward/lock", "root's");
    (void)DirectoryChange::begin(dir.path());
    for (const char* name : {".glyphward", ".glyphward/secret", ".glyphward/lock"}) {
        struct stat info = {};
        ASSERT_EQ(::lstat(dir.file(name).c_str(), &info), 0);
        EXPECT_EQ(info.st_uid, 0U) << name;
    }
}

}  // namespace
