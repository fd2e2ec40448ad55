// SPDX-License-Identifier: MIT
#include "core/seen_directory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <vector>

#include "support/temp_dir.h"

namespace {

using gw::SeenDirectory;
using gw::test::TempDir;

/// What a directory is asked for: names that are there, that are not, and that no directory can have.
std::vector<std::string> names_to_ask_for() {
    return {"a.pfb",
            "A.PFB",
            "A.pfb",
            "missing.afm",
            "dangling",
            "link",
            "fifo",
            "sub",
            "sub/x",
            "sub/y",
            "a.pfb/x",
            "",
            ".",
            "..",
            "./a.pfb",
            "two words",
            "\xC3\xA9.pfb",
            "\xC3\xA8.pfb",
            std::string(250, 'n'),
            std::string(256, 'n')};
}

void fill(const TempDir& dir) {
    for (const char* name : {"a.pfb", "two words", "\xC3\xA9.pfb", "sub/x"}) dir.write(name, "bytes");
    dir.write(std::string(250, 'n'), "");
    ASSERT_EQ(::symlink("nowhere", dir.file("dangling").c_str()), 0);
    ASSERT_EQ(::symlink("a.pfb", dir.file("link").c_str()), 0);
    ASSERT_EQ(::mkfifo(dir.file("fifo").c_str(), S_IRWXU), 0);
}

bool is_there(const std::string& path) {
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0 || errno != ENOENT;
}

void expect_what_the_disk_says(const std::string& path) {
    SeenDirectory seen(path);
    // The first questions go to the disk, the others to the names that were read.
    for (int round = 0; round < 2; ++round) {
        for (const std::string& name : names_to_ask_for())
            EXPECT_EQ(seen.has(name), is_there(path + name)) << path << name << " in round " << round;
    }
}

TEST(SeenDirectory, HasWhatTheDiskHas) {
    const TempDir dir;
    ASSERT_NO_FATAL_FAILURE(fill(dir));
    expect_what_the_disk_says(dir.path());
    expect_what_the_disk_says(dir.file("no such directory/"));
    expect_what_the_disk_says(dir.file("a.pfb/"));
    expect_what_the_disk_says(dir.make_dir("empty"));
}

TEST(SeenDirectory, KnowsNothingMissingWhereItMayNotLook) {
    const TempDir dir;
    ASSERT_NO_FATAL_FAILURE(fill(dir));
    for (const mode_t mode : {mode_t{S_IRUSR | S_IWUSR}, mode_t{S_IXUSR | S_IWUSR}, mode_t{0}}) {
        ASSERT_EQ(::chmod(dir.c_str(), mode), 0);
        expect_what_the_disk_says(dir.path());
    }
}

TEST(SeenDirectory, LooksBehindLinksAndRemembers) {
    const TempDir dir;
    ASSERT_NO_FATAL_FAILURE(fill(dir));
    ASSERT_EQ(::chmod(dir.file("a.pfb").c_str(), S_IRUSR), 0);
    SeenDirectory seen(dir.path());
    EXPECT_EQ(seen.known("a.pfb"), nullptr);
    for (const char* name : {"a.pfb", "link"}) {
        ASSERT_TRUE(seen.look(name)) << name;
        EXPECT_EQ(seen.look(name)->mode, S_IFREG | S_IRUSR) << name;
        EXPECT_EQ(seen.look(name)->owner, ::geteuid()) << name;
        EXPECT_EQ(seen.look(name)->blocks, 8) << name;
        EXPECT_FALSE(seen.look(name)->is_unchangeable) << name;
    }
    for (const char* name : {"missing.afm", "dangling", "a.pfb/x"}) EXPECT_FALSE(seen.look(name)) << name;
    ASSERT_TRUE(seen.look("fifo"));
    EXPECT_TRUE(seen.look("fifo")->is_unchangeable) << "only of a file it is known that it can be written to";

    // The names are read meanwhile; what was seen stays so.
    for (const std::string& name : names_to_ask_for()) (void)seen.has(name);
    ASSERT_EQ(::chmod(dir.file("a.pfb").c_str(), S_IRWXU), 0);
    EXPECT_EQ(seen.look("a.pfb")->mode, S_IFREG | S_IRUSR);
    ASSERT_TRUE(seen.look("two words"));
    ASSERT_NE(seen.known("two words"), nullptr);
    EXPECT_EQ(seen.known("\xC3\xA9.pfb"), nullptr) << "that it is there is known, and nothing else";

    dir.write("missing.afm", "");
    EXPECT_FALSE(seen.look("missing.afm"));
    ASSERT_NE(seen.known("missing.afm"), nullptr);
    EXPECT_TRUE(SeenDirectory(dir.path()).look("missing.afm"));
}

TEST(SeenDirectory, OpensFilesAsOthersDo) {
    const TempDir dir;
    ASSERT_NO_FATAL_FAILURE(fill(dir));
    SeenDirectory seen(dir.path());
    for (const char* name : {"a.pfb", "link", "sub/x"}) {
        gw::Result<gw::Descriptor> file = seen.open_to_read(name);
        ASSERT_TRUE(file) << name;
        std::array<char, 16> bytes{};
        EXPECT_EQ(::read(file->get(), bytes.data(), bytes.size()), 5) << name;
    }
    EXPECT_NE(seen.known("a.pfb"), nullptr) << "the open file has told of itself";
    for (const char* name : {"fifo", "dangling", "missing.afm", "sub", ""}) {
        const gw::Result<gw::Descriptor> file = seen.open_to_read(name);
        const gw::Result<gw::ReadableFile> other = gw::open_to_read(dir.file(name));
        ASSERT_FALSE(file) << name;
        ASSERT_FALSE(other) << name;
        EXPECT_EQ(file.failure(), other.failure());
    }
}

TEST(SeenDirectory, AsksItsSubdirectory) {
    const TempDir dir;
    ASSERT_NO_FATAL_FAILURE(fill(dir));
    SeenDirectory seen(dir.path());
    EXPECT_TRUE(seen.below("sub").has("x"));
    EXPECT_FALSE(seen.below("sub").has("y"));
    EXPECT_EQ(seen.below("sub").path(), dir.file("sub/"));
    EXPECT_TRUE(seen.below("a.pfb").has("x")) << "below a file nobody can say what is missing";
}

}  // namespace
