// SPDX-License-Identifier: MIT
#include "core/replace_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "core/ref.h"
#include "support/heard_failures.h"
#include "support/temp_dir.h"

namespace {

using gw::Failure;
using gw::test::TempDir;

/// Why it failed, for which file.
Failure why(const gw::Outcome& outcome) {
    return outcome ? Failure{} : outcome.failure();
}

struct stat stat_of(const std::string& path) {
    struct stat info = {};
    EXPECT_EQ(::stat(path.c_str(), &info), 0) << path;
    return info;
}

TEST(ReplaceFile, MakesANewFileWithStandardPermissions) {
    const TempDir dir;
    EXPECT_TRUE(gw::replace_file(dir.file("fonts.dir"), "0\n"));
    EXPECT_EQ(dir.read("fonts.dir"), "0\n");
    EXPECT_EQ(stat_of(dir.file("fonts.dir")).st_mode & 07777, 0644U);
}

TEST(ReplaceFile, KeepsThePermissionsUnlessToldOtherwise) {
    const TempDir dir;
    const std::string path = dir.write("f", "old");
    ::chmod(path.c_str(), 0660);
    EXPECT_TRUE(gw::replace_file(path, "new"));
    EXPECT_EQ(stat_of(path).st_mode & 07777, 0660U);
    EXPECT_TRUE(gw::replace_file(path, "newer", 0644));
    EXPECT_EQ(stat_of(path).st_mode & 07777, 0644U);
    EXPECT_EQ(dir.read("f"), "newer");
}

TEST(ReplaceFile, KeepsTheOwner) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser writes the files of others";
    const TempDir dir;
    const std::string path = dir.write("f", "old");
    ASSERT_EQ(::chown(path.c_str(), 1234, 4321), 0);
    EXPECT_TRUE(gw::replace_file(path, "new"));
    EXPECT_EQ(stat_of(path).st_uid, 1234U);
    EXPECT_EQ(stat_of(path).st_gid, 4321U);
}

// The X server looks at whole seconds only.
TEST(ReplaceFile, MovesTheModificationTimeOnByASecondEveryTime) {
    const TempDir dir;
    const std::string path = dir.write("f", "0");
    time_t before = stat_of(path).st_mtim.tv_sec;
    for (const char* content : {"1", "2", "3"}) {
        ASSERT_TRUE(gw::replace_file(path, content));
        const time_t after = stat_of(path).st_mtim.tv_sec;
        EXPECT_GT(after, before);
        before = after;
    }
}

TEST(ReplaceFile, ReplacesWhatAnInterruptedRunLeftBehind) {
    const TempDir dir;
    dir.write("f", "old");
    dir.write(".f.gwtmp", "half of someth");
    EXPECT_TRUE(gw::replace_file(dir.file("f"), "new"));
    EXPECT_EQ(dir.read("f"), "new");
    EXPECT_FALSE(dir.exists(".f.gwtmp"));
}

TEST(ReplaceFile, KeepsOtherLinksTogether) {
    const TempDir dir;
    dir.write("f", "old and longer");
    std::filesystem::create_hard_link(dir.file("f"), dir.file("other"));
    EXPECT_TRUE(gw::replace_file(dir.file("f"), "new"));
    EXPECT_EQ(dir.read("other"), "new");
}

TEST(ReplaceFile, WritesThroughALink) {
    const TempDir dir;
    dir.write("target", "old");
    std::filesystem::create_symlink("target", dir.file("link"));
    EXPECT_TRUE(gw::replace_file(dir.file("link"), "new"));
    EXPECT_TRUE(std::filesystem::is_symlink(dir.file("link")));
    EXPECT_EQ(dir.read("target"), "new");
}

TEST(ReplaceFile, WritesInPlaceWhereTheDirectoryAllowsNoNewFile) {
    if (::geteuid() == 0) GTEST_SKIP() << "every directory is open to the superuser";
    const TempDir dir;
    dir.write("closed/f", "old and longer");
    ::chmod(dir.file("closed").c_str(), 0555);
    EXPECT_TRUE(gw::replace_file(dir.file("closed/f"), "new"));
    EXPECT_EQ(dir.read("closed/f"), "new");
    EXPECT_EQ(why(gw::replace_file(dir.file("closed/g"), "new")),
              Failure::of_system(dir.file("closed/g"), EACCES));
}

TEST(ReplaceFile, RefusesAFileThatMayNotBeWritten) {
    if (::geteuid() == 0) GTEST_SKIP() << "every file is open to the superuser";
    const TempDir dir;
    const std::string path = dir.write("f", "old");
    ::chmod(path.c_str(), 0444);
    EXPECT_EQ(why(gw::replace_file(path, "new")), Failure::of_system(path, EACCES));
    EXPECT_EQ(dir.read("f"), "old");
}

// Every write to /dev/full fails as on a full disk. A link is written in place, so the write goes there.
TEST(ReplaceFile, ReportsAFullDisk) {
    const TempDir dir;
    std::filesystem::create_symlink("/dev/full", dir.file("f"));
    EXPECT_EQ(why(gw::replace_file(dir.file("f"), "new")), Failure::of_system(dir.file("f"), ENOSPC));
}

TEST(ReplaceFile, SaysThatTheDirectoryIsMissing) {
    EXPECT_EQ(why(gw::replace_file("/nonexistent/f", "new")), Failure::of_system("/nonexistent/f", ENOENT));
}

TEST(ReadFile, GivesEveryByteOrNothing) {
    const TempDir dir;
    const std::string bytes = std::string("a\0b", 3) + std::string(200000, 'x');
    EXPECT_EQ(*gw::read_file(dir.write("f", bytes)), bytes);
    EXPECT_EQ(gw::read_file(dir.file("missing")).failure(), Failure::of_system(dir.file("missing"), ENOENT));
    EXPECT_EQ(gw::read_file(dir.path()).failure(), Failure::of_system(dir.path(), EISDIR));
}

struct Counted : gw::RefCounted {
    explicit Counted(int& gone) : gone_(gone) {}
    ~Counted() { ++gone_; }
    int& gone_;
};

TEST(Ref, TheLastOwnerDeletes) {
    int gone = 0;
    {
        gw::Ref<Counted> one(new Counted(gone));
        gw::Ref<Counted> other = one;
        EXPECT_EQ(one->owners(), 2);
        one = gw::Ref<Counted>();
        EXPECT_EQ(gone, 0);
        gw::Ref<Counted> moved = std::move(other);
        EXPECT_EQ(moved->owners(), 1);
    }
    EXPECT_EQ(gone, 1);
}

TEST(Ref, WhatWasLeftIsAdopted) {
    int gone = 0;
    auto* record = new Counted(gone);
    gw::Ref<Counted>(record).leave();
    EXPECT_EQ(gone, 0);
    EXPECT_EQ(record->owners(), 1);
    static_cast<void>(gw::Ref<Counted>::adopt(record));
    EXPECT_EQ(gone, 1);
}

}  // namespace
