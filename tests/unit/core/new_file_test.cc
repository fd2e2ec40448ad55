// SPDX-License-Identifier: MIT
#include "core/new_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <utility>

#include "core/gw_buf_file.h"
#include "core/gw_dir.h"
#include "support/small_disk.h"
#include "support/temp_dir.h"

namespace {

using gw::NewFile;
using gw::test::SmallDisk;
using gw::test::TempDir;

std::ptrdiff_t entries_of(const TempDir& dir) {
    return std::distance(std::filesystem::directory_iterator(dir.path()), {});
}

TEST(NewFile, AppearsWholeWithStandardPermissions) {
    const TempDir dir;
    const mode_t before = ::umask(077);
    NewFile file(dir.file("f"));
    EXPECT_TRUE(file.write("one "));
    EXPECT_TRUE(file.write("two"));
    EXPECT_TRUE(file.finish());
    EXPECT_FALSE(dir.exists("f"));
    EXPECT_TRUE(file.put_in_place());
    file.keep();
    ::umask(before);
    EXPECT_EQ(dir.read("f"), "one two");
    EXPECT_EQ(entries_of(dir), 1);
    struct stat info = {};
    ASSERT_EQ(::stat(dir.file("f").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0644U);
}

TEST(NewFile, LeavesNothingWhenItIsNotKept) {
    const TempDir dir;
    NewFile(dir.file("begun")).write("x");
    {
        NewFile file(dir.file("in_place"));
        EXPECT_TRUE(file.write("x") && file.finish() && file.put_in_place());
        EXPECT_TRUE(dir.exists("in_place"));
        const NewFile moved(std::move(file));
    }
    EXPECT_EQ(entries_of(dir), 0);
}

TEST(NewFile, BringsBackWhatItReplaced) {
    const TempDir dir;
    dir.write("f", "old");
    {
        NewFile file(dir.file("f"));
        EXPECT_TRUE(file.write("new") && file.finish());
        EXPECT_EQ(dir.read("f"), "old");
        EXPECT_TRUE(file.put_in_place());
        EXPECT_EQ(dir.read("f"), "new");
    }
    EXPECT_EQ(dir.read("f"), "old");
    EXPECT_EQ(entries_of(dir), 1);
}

TEST(NewFile, ReplacesWhatAnInterruptedRunLeftBehind) {
    const TempDir dir;
    dir.write("f", "old");
    dir.write(".f.gwtmp", "half of someth");
    dir.write(".f.gwold", "older");
    NewFile file(dir.file("f"));
    EXPECT_TRUE(file.write("new") && file.finish() && file.put_in_place());
    file.keep();
    EXPECT_EQ(dir.read("f"), "new");
    EXPECT_EQ(entries_of(dir), 1);
}

TEST(NewFile, ReplacesALinkAndNotWhatItPointsTo) {
    const TempDir dir;
    dir.write("target", "kept");
    std::filesystem::create_symlink("target", dir.file("f"));
    {
        NewFile file(dir.file("f"));
        EXPECT_TRUE(file.write("new") && file.finish() && file.put_in_place());
    }
    EXPECT_TRUE(std::filesystem::is_symlink(dir.file("f"))) << "not kept";
    NewFile file(dir.file("f"));
    EXPECT_TRUE(file.write("new") && file.finish() && file.put_in_place());
    file.keep();
    EXPECT_FALSE(std::filesystem::is_symlink(dir.file("f")));
    EXPECT_EQ(dir.read("target"), "kept");
}

TEST(NewFile, SaysWhyItCannotBegin) {
    const TempDir dir;
    dir.make_dir("d");
    EXPECT_EQ(NewFile(dir.file("d")).outcome().failure().error, EISDIR);
    EXPECT_EQ(NewFile(dir.file("missing/f")).outcome().failure().error, ENOENT);
    NewFile refused(dir.file("d"));
    EXPECT_FALSE(refused.write("x") || refused.finish() || refused.put_in_place());
    EXPECT_TRUE(std::filesystem::is_directory(dir.file("d")));
    if (::geteuid() == 0) return;  // the superuser can write every file
    ::chmod(dir.write("closed", "old").c_str(), 0444);
    EXPECT_EQ(NewFile(dir.file("closed")).outcome().failure().error, EACCES);
    EXPECT_EQ(dir.read("closed"), "old");
}

TEST(NewFile, KeepsTheOwnerOfTheFileThatItReplaces) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser gives files away";
    const TempDir dir;
    ASSERT_EQ(::chown(dir.write("f", "old").c_str(), 1234, 4321), 0);
    NewFile file(dir.file("f"));
    EXPECT_TRUE(file.write("new") && file.finish() && file.put_in_place());
    file.keep();
    struct stat info = {};
    ASSERT_EQ(::stat(dir.file("f").c_str(), &info), 0);
    EXPECT_EQ(info.st_uid, 1234U);
    EXPECT_EQ(info.st_gid, 4321U);
}

TEST(NewFile, LeavesTheOldOneOnAFullDisk) {
    const SmallDisk disk;
    disk.write("f", "old");
    disk.leave_blocks(1);
    {
        NewFile file(disk.file("f"));
        EXPECT_FALSE(file.write(std::string(50000, 'x')) && file.finish());
        EXPECT_EQ(file.outcome().failure().error, ENOSPC);
        EXPECT_FALSE(file.put_in_place());
    }
    EXPECT_EQ(disk.read("f"), "old");
    EXPECT_EQ(disk.entries(), 1);
}

// --- the plain copy

TEST(BufFileCopy, LeavesNothingOfAFileThatDoesNotFit) {
    const SmallDisk disk;
    const TempDir dir;
    dir.write("f", std::string(50000, 'x'));
    disk.leave_blocks(2);
    GW_DIR target(disk.path().c_str());
    EXPECT_EQ(GW_BUF_FILE("f", dir.c_str(), 0).copy(&target), 1);
    EXPECT_EQ(disk.entries(), 0);
}

TEST(BufFileCopy, OfADirectoryIsNone) {
    const TempDir dir;
    dir.make_dir("from/f");
    GW_DIR target(dir.make_dir("to").c_str());
    EXPECT_EQ(GW_BUF_FILE("f", dir.file("from").c_str(), 0).copy(&target), 1);
    EXPECT_TRUE(std::filesystem::is_empty(dir.file("to")));
}

// A plain copy would open its own source for writing and so empty it.
TEST(BufFileCopy, IntoItsOwnDirectoryByAnotherWayLeavesTheFileAlone) {
    const TempDir dir;
    dir.write("real/f", "bytes");
    std::filesystem::create_directory_symlink("real", dir.file("link"));
    for (const char* way : {"link", "real//", "./real"}) {
        GW_DIR target(dir.file(way).c_str());
        EXPECT_EQ(GW_BUF_FILE("f", dir.file("real").c_str(), 0).copy(&target), 1);
        EXPECT_EQ(dir.read("real/f"), "bytes") << way;
    }
    std::filesystem::create_directory(dir.file("other"));
    std::filesystem::create_symlink("../real/f", dir.file("other/f"));
    GW_DIR other(dir.file("other").c_str());
    EXPECT_EQ(GW_BUF_FILE("f", dir.file("real").c_str(), 0).copy(&other), 1);
    EXPECT_EQ(dir.read("real/f"), "bytes");
    EXPECT_EQ(dir.read("other/f"), "bytes");
}

}  // namespace
