// SPDX-License-Identifier: MIT
//
// Which files are read at all, and of which a copy may be made that everybody can read.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "core/directory.h"
#include "core/gw_buf_file.h"
#include "core/gw_dir.h"
#include "core/gw_file.h"
#include "core/new_file.h"
#include "core/replace_file.h"
#include "support/heard_failures.h"
#include "support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
using gw::test::TempDir;
using gw::test::text_of;

constexpr uid_t ALICE = 1000;

std::string why_not_read(const std::string& path) {
    const gw::Result<std::string> bytes = gw::read_file(path);
    return bytes ? "read: " + *bytes : bytes.failure().reason_text();
}

class Reading : public testing::Test {
  protected:
    void give_to_alice(const std::string& name) const {
        ASSERT_EQ(::lchown(dir.file(name).c_str(), ALICE, ALICE), 0);
    }
    TempDir dir;
};

TEST_F(Reading, OnlyRegularFilesAreReadAndNothingIsWaitedFor) {
    ASSERT_EQ(::mkfifo(dir.file("pipe").c_str(), 0600), 0);
    dir.make_dir("directory");
    fs::create_symlink("/dev/zero", dir.file("device"));
    fs::create_symlink("pipe", dir.file("to a pipe"));
    dir.write("file", "text");
    EXPECT_EQ(why_not_read(dir.file("pipe")), "this is no ordinary file");
    EXPECT_EQ(why_not_read(dir.file("to a pipe")), "this is no ordinary file");
    EXPECT_EQ(why_not_read(dir.file("device")), "this is no ordinary file");
    EXPECT_EQ(why_not_read(dir.file("directory")), "Is a directory");
    EXPECT_EQ(why_not_read(dir.file("missing")), "No such file or directory");
    EXPECT_EQ(why_not_read(dir.file("file")), "read: text");
}

TEST_F(Reading, TheFileClassesDoNotWaitEither) {
    ASSERT_EQ(::mkfifo(dir.file("pipe").c_str(), 0600), 0);
    for (const char* mode : {"r", "r+", "w", "a"}) {
        GW_FILE file("pipe", dir.c_str(), gw::FILE_TYPE_REGULAR);
        EXPECT_EQ(file.open(mode), 0) << mode;
        EXPECT_FALSE(file.outcome()) << mode;
    }
    EXPECT_TRUE(fs::is_fifo(dir.file("pipe")));
}

TEST_F(Reading, AFileOfMoreThan64MegabytesIsNoTable) {
    const int fd = ::open(dir.file("huge").c_str(), O_WRONLY | O_CREAT, 0600);
    ASSERT_EQ(::ftruncate(fd, gw::Directory::FILE_LIMIT + 1), 0);
    ::close(fd);
    EXPECT_EQ(why_not_read(dir.file("huge")), "File too large");
    GW_FILE file("huge", dir.c_str(), gw::FILE_TYPE_REGULAR);
    EXPECT_EQ(file.open("r"), 0);
    EXPECT_EQ(text_of(file.outcome()), dir.file("huge") + ": File too large");
}

TEST_F(Reading, ALinkOfThisUserLeadsAnywhere) {
    dir.write("there/file", "text");
    fs::create_symlink("../there/file", dir.make_dir("here") + "link");
    EXPECT_EQ(why_not_read(dir.file("here/link")), "read: text");
}

TEST_F(Reading, ALinkOfSomebodyElseLeadsNowhereButToItsOwnDirectory) {
    if (::geteuid() != 0) GTEST_SKIP() << "makes files of two users";
    dir.write("secret", "text");
    dir.write("theirs/file", "text");
    for (const auto& [name, target] : {std::pair("out", "../secret"), std::pair("absolute", "/etc/passwd"),
                                       std::pair("in", "file"), std::pair("chain", "out")}) {
        fs::create_symlink(target, dir.file(std::string("theirs/") + name));
        give_to_alice(std::string("theirs/") + name);
    }
    for (const bool also_the_directory : {false, true}) {
        if (also_the_directory) give_to_alice("theirs");
        for (const char* name : {"out", "absolute", "chain"})
            EXPECT_EQ(why_not_read(dir.file(std::string("theirs/") + name)),
                      "this is a link or belongs to someone else");
        EXPECT_EQ(why_not_read(dir.file("theirs/in")), "read: text");
    }
}

TEST_F(Reading, InADirectoryOfSomebodyElseNoLinkIsTrusted) {
    if (::geteuid() != 0) GTEST_SKIP() << "makes files of two users";
    dir.write("secret", "text");
    fs::create_symlink("../secret", dir.make_dir("theirs") + "link");
    EXPECT_EQ(why_not_read(dir.file("theirs/link")), "read: text");
    give_to_alice("theirs");
    EXPECT_EQ(why_not_read(dir.file("theirs/link")), "this is a link or belongs to someone else")
        << "she could put her own in its place";
}

// The metrics of a font were read from any directory to which its owner had made a link of that name.
TEST_F(Reading, ALinkOnTheWayIsNotFollowedEither) {
    dir.write("secret/a.afm", "text");
    dir.make_dir("theirs");
    fs::create_symlink("../secret", dir.file("theirs/afm"));
    EXPECT_EQ(why_not_read(dir.file("theirs/afm/a.afm")), "read: text") << "it is this user's own";
    if (::geteuid() != 0) GTEST_SKIP() << "makes files of two users";
    give_to_alice("theirs/afm");
    EXPECT_EQ(why_not_read(dir.file("theirs/afm/a.afm")), "this is a link or belongs to someone else");
    give_to_alice("theirs");
    EXPECT_EQ(why_not_read(dir.file("theirs/afm/a.afm")), "this is a link or belongs to someone else");
}

TEST_F(Reading, AChainOfLinksIsFollowedLinkByLink) {
    if (::geteuid() != 0) GTEST_SKIP() << "makes files of two users";
    dir.write("secret", "text");
    dir.make_dir("theirs");
    fs::create_symlink("../secret", dir.file("theirs/second"));
    fs::create_symlink("theirs/second", dir.file("first"));
    EXPECT_EQ(why_not_read(dir.file("first")), "read: text");
    give_to_alice("theirs/second");
    EXPECT_EQ(why_not_read(dir.file("first")), "this is a link or belongs to someone else");
    fs::create_symlink("round", dir.file("round"));
    EXPECT_EQ(why_not_read(dir.file("round")), "Too many levels of symbolic links");
    fs::remove(dir.file("round"));
}

class Copying : public Reading {
  protected:
    /// What copying the file says.
    [[nodiscard]] std::string copy(const std::string& name) const {
        GW_BUF_FILE file(name.c_str(), dir.file("from").c_str(), gw::FILE_TYPE_REGULAR);
        gw::NewFile target(dir.file("copy"));
        return text_of(file.copy_into(target));
    }
    [[nodiscard]] std::string refused(const std::string& name) const {
        return dir.file("from/" + name) +
               ": not everybody may read this file, and it is not one that you may give to everybody";
    }
    std::string make(const std::string& name, mode_t mode) const {
        const std::string path = dir.write("from/" + name, "font");
        ::chmod(path.c_str(), mode);
        return path;
    }
};

TEST_F(Copying, AFileThatEverybodyMayReadIsTaken) {
    fs::create_hard_link(make("a.pcf", 0644), dir.file("from/b.pcf"));
    EXPECT_EQ(copy("a.pcf"), "");
    EXPECT_EQ(copy("b.pcf"), "");
}

TEST_F(Copying, AUsersOwnPrivateFileIsTakenIfItHasOneName) {
    make("a.pcf", 0600);
    EXPECT_EQ(copy("a.pcf"), "");
    fs::create_hard_link(dir.file("from/a.pcf"), dir.file("second name"));
    EXPECT_EQ(copy("a.pcf"), refused("a.pcf"));
}

TEST_F(Copying, APrivateFileOfSomebodyElseIsOnlyTheirsToGiveAway) {
    if (::geteuid() != 0) GTEST_SKIP() << "makes files of two users";
    make("a.pcf", 0600);
    give_to_alice("from/a.pcf");
    EXPECT_EQ(copy("a.pcf"), refused("a.pcf")) << "it lies in the superuser's directory";
    give_to_alice("from");
    EXPECT_EQ(copy("a.pcf"), "") << "it lies in her own";
    make("b.pcf", 0600);
    EXPECT_EQ(copy("b.pcf"), "") << "it is the superuser's own";
    fs::create_hard_link(dir.write("secret", "text"), dir.file("from/c.pcf"));
    ::chmod(dir.file("secret").c_str(), 0600);
    EXPECT_EQ(copy("c.pcf"), refused("c.pcf")) << "she has made a second name for it";
}

}  // namespace
