// SPDX-License-Identifier: MIT
#include "platform/scratch.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <set>
#include <string>

#include "support/another_run.h"
#include "support/heard_failures.h"
#include "support/temp_dir.h"
#include "support/under_policy.h"

namespace {

namespace fs = std::filesystem;
using gw::test::AnotherRun;
using gw::test::TempDir;
using gw::test::text_of;
using gw::test::UnderPolicy;

constexpr mode_t OPEN_MODE = 0777;
constexpr const char* NOT_OURS = ": this is a link or belongs to someone else";

class Scratch : public testing::Test {
  protected:
    ~Scratch() override { gw::remove_scratch(); }
    TempDir dir;
};

TEST_F(Scratch, AFileIsMadeAnewAndNeverThroughALink) {
    const std::string errors = dir.write("errors", "old");
    EXPECT_TRUE(gw::create_scratch_file(errors));
    EXPECT_EQ(dir.read("errors"), "");
    dir.write("victim", "precious");
    fs::create_symlink(dir.file("victim"), dir.file("link"));
    EXPECT_TRUE(gw::create_scratch_file(dir.file("link")));
    EXPECT_FALSE(fs::is_symlink(dir.file("link")));
    EXPECT_EQ(dir.read("victim"), "precious");
    const std::string taken = dir.make_dir("taken");
    EXPECT_EQ(text_of(gw::create_scratch_file(dir.file("taken"))), dir.file("taken") + NOT_OURS);
}

TEST_F(Scratch, FilesGoAtTheEndUnlessSomebodyElseHasTakenTheName) {
    EXPECT_TRUE(gw::create_scratch_file(dir.file("errors")));
    EXPECT_TRUE(gw::create_scratch_file(dir.file("taken")));
    fs::rename(dir.write("other", "x"), dir.file("taken"));
    gw::remove_scratch();
    EXPECT_FALSE(dir.exists("errors"));
    EXPECT_TRUE(dir.exists("taken"));
}

TEST_F(Scratch, APrivateDirectoryThatCannotBeLockedGoes) {
    const UnderPolicy modern(true);
    const auto names = [] {
        std::set<std::string> all;
        for (const auto& entry : fs::directory_iterator("/tmp")) all.insert(entry.path());
        return all;
    };
    gw::remove_scratch();
    const std::set<std::string> before = names();
    rlimit files = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &files), 0);
    const rlimit none = {0, files.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    const std::string path = gw::scratch_path("/tmp/errors");
    ::setrlimit(RLIMIT_NOFILE, &files);
    EXPECT_EQ(path, "/tmp/errors");
    EXPECT_EQ(names(), before);
}

TEST_F(Scratch, ADirectoryIsHeldUntilItIsDropped) {
    const std::string path = dir.file("pcf/");
    EXPECT_FALSE(gw::holds_scratch_dir(path));
    EXPECT_EQ(text_of(gw::hold_scratch_dir(path, OPEN_MODE)), "");
    EXPECT_EQ(text_of(gw::hold_scratch_dir(path, OPEN_MODE)), "") << "it is ours already";
    for (const char* target : {"/a", "/b"})
        EXPECT_EQ(text_of(gw::link_in_scratch_dir(path, "link", target)), "");
    EXPECT_EQ(fs::read_symlink(path + "link"), "/b");
    dir.write("pcf/fonts.dir", "0\n");
    gw::drop_scratch_dir(path);
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(Scratch, WhatIsInADirectoryIsNotFollowed) {
    const std::string path = dir.file("pcf/");
    dir.write("fonts/a.pcf", "precious");
    ASSERT_TRUE(gw::hold_scratch_dir(path, OPEN_MODE));
    ASSERT_TRUE(gw::link_in_scratch_dir(path, "all", dir.file("fonts")));
    gw::drop_scratch_dir(path);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(dir.read("fonts/a.pcf"), "precious");
}

TEST_F(Scratch, AForeignDirectoryIsNeitherUsedNorRemoved) {
    const std::string path = dir.file("gw_dir/");
    const std::string victim = dir.make_dir("victim");
    dir.write("victim/fonts.dir", "0\n");
    fs::create_directory_symlink(victim, dir.file("gw_dir"));
    EXPECT_EQ(text_of(gw::hold_scratch_dir(path, OPEN_MODE)), path + NOT_OURS);
    fs::remove(dir.file("gw_dir"));
    dir.write("gw_dir", "a file");
    EXPECT_EQ(text_of(gw::hold_scratch_dir(path, OPEN_MODE)), path + NOT_OURS);
    fs::remove(dir.file("gw_dir"));
    dir.write("gw_dir/notes", "not of a kind that we make");
    dir.write("gw_dir/fonts.dir", "0\n");
    EXPECT_EQ(text_of(gw::hold_scratch_dir(path, OPEN_MODE)), path + NOT_OURS);
    EXPECT_TRUE(dir.exists("gw_dir/notes"));
    if (::geteuid() == 0) {
        fs::remove(dir.file("gw_dir/notes"));
        ASSERT_EQ(::chown(dir.file("gw_dir").c_str(), 1234, 1234), 0);
        EXPECT_EQ(text_of(gw::hold_scratch_dir(path, OPEN_MODE)), path + NOT_OURS);
    }
    EXPECT_EQ(dir.read("victim/fonts.dir"), "0\n");
    gw::remove_scratch();
    EXPECT_TRUE(dir.exists("gw_dir"));
}

TEST_F(Scratch, ADirectoryOfARunningProcessIsRefusedAndOneOfADeadProcessTakenOver) {
    const std::string path = dir.file("gw_dir/");
    AnotherRun other([&] {
        const gw::Outcome held = gw::hold_scratch_dir(path, OPEN_MODE);
        (void)gw::link_in_scratch_dir(path, "link", "/its");
        return text_of(held);
    });
    EXPECT_EQ(other.answer(), "");
    EXPECT_EQ(text_of(gw::hold_scratch_dir(path, OPEN_MODE)),
              path + ": another running Glyph Warden uses it");
    EXPECT_TRUE(fs::is_symlink(path + "link"));
    other.kill();
    EXPECT_EQ(text_of(gw::hold_scratch_dir(path, OPEN_MODE)), "");
    EXPECT_FALSE(fs::is_symlink(path + "link"));
}

TEST_F(Scratch, ACopyOfTheProcessRemovesNothing) {
    const std::string path = dir.file("gw_dir/");
    ASSERT_TRUE(gw::hold_scratch_dir(path, OPEN_MODE));
    const AnotherRun copy([] {
        gw::remove_scratch();
        return std::string();
    });
    EXPECT_TRUE(gw::holds_scratch_dir(path));
}

TEST_F(Scratch, FixedNamesAreUsedUnlessThereIsAPrivateDirectory) {
    EXPECT_EQ(gw::scratch_path("/tmp/pcf/"), "/tmp/pcf/");
    const UnderPolicy modern(true);
    const std::string path = gw::scratch_path("/tmp/pcf/");
    EXPECT_TRUE(path.starts_with("/tmp/glyphward-") && path.ends_with("/pcf/")) << path;
    const std::string root = gw::scratch_path("/tmp");
    EXPECT_EQ(root + "/pcf/", path);
    struct stat info = {};
    ASSERT_EQ(::lstat(root.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777U, 0711U);
    ASSERT_TRUE(gw::hold_scratch_dir(path, OPEN_MODE));
    ASSERT_TRUE(gw::create_scratch_file(gw::scratch_path("/tmp/errors")));
    gw::remove_scratch();
    EXPECT_FALSE(fs::exists(root));
}

TEST_F(Scratch, PrivateDirectoriesOfKilledRunsGoAtTheNextStart) {
    const UnderPolicy modern(true);
    const auto work = [] {
        const std::string staging = gw::scratch_path("/tmp/gw_dir/");
        (void)gw::hold_scratch_dir(staging, OPEN_MODE);
        (void)gw::link_in_scratch_dir(staging, "link", "/usr");
        return gw::scratch_path("/tmp");
    };
    AnotherRun killed(work);
    const AnotherRun alive(work);
    const auto age = [](const std::string& path) {
        fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::minutes(5));
    };
    killed.kill();
    EXPECT_TRUE(gw::remove_left_scratch().empty()) << "it may be one that has just been made";
    age(killed.answer());
    age(alive.answer());
    EXPECT_EQ(gw::remove_left_scratch(), std::vector<std::string>{killed.answer() + '/'});
    EXPECT_FALSE(fs::exists(killed.answer()));
    EXPECT_TRUE(gw::was_in_private_scratch(killed.answer() + "/gw_dir/"));
    EXPECT_TRUE(gw::was_in_private_scratch(killed.answer()));
    EXPECT_FALSE(gw::was_in_private_scratch(alive.answer() + "/gw_dir/"));
    for (const char* other : {"/tmp/fonts/", "/tmp/glyphward-long-name/", "/usr/glyphward-abcdef/", ""})
        EXPECT_FALSE(gw::was_in_private_scratch(other)) << other;
    EXPECT_TRUE(fs::exists(alive.answer() + "/gw_dir/link"));
    fs::remove_all(alive.answer());
}

TEST_F(Scratch, AShortLivedDirectoryGoesWithWhatIsInIt) {
    std::string path;
    {
        const gw::ShortLivedDirectory first;
        const gw::ShortLivedDirectory second;
        path = first.path();
        EXPECT_NE(path, second.path());
        EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_all);
        dir.write("fonts/a.pcf", "precious");
        fs::create_directories(path + "/1");
        fs::create_directory_symlink(dir.file("fonts"), path + "/all");
        fs::create_symlink(dir.file("fonts/a.pcf"), path + "/1/a.pcf");
    }
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(dir.read("fonts/a.pcf"), "precious");
}

TEST_F(Scratch, AShortLivedDirectoryStaysWhileItsProcessLives) {
    AnotherRun other([] { return (new gw::ShortLivedDirectory)->path(); });
    fs::last_write_time(other.answer(), fs::file_time_type::clock::now() - std::chrono::minutes(5));
    EXPECT_TRUE(gw::remove_left_scratch().empty());
    other.kill();
    EXPECT_EQ(gw::remove_left_scratch(), std::vector<std::string>{other.answer() + '/'});
}

}  // namespace
