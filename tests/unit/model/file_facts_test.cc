// SPDX-License-Identifier: MIT
#include "model/file_facts.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "support/temp_dir.h"

namespace {

using gw::Failure;
using gw::Reason;
using gw::test::TempDir;

TEST(FileFacts, AreThoseOfTheFile) {
    const TempDir dir;
    const std::string path = dir.write("a.pcf", "twelve bytes");
    const struct timespec times[] = {{0, UTIME_OMIT}, {1234567890, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    const auto facts = gw::facts_of_file(path);
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->bytes, 12);
    EXPECT_EQ(facts->changed, 1234567890);
    EXPECT_EQ(facts->owner, ::geteuid());
}

TEST(FileFacts, OfAMissingFileAreAFailure) {
    const TempDir dir;
    const auto facts = gw::facts_of_file(dir.file("none"));
    ASSERT_FALSE(facts);
    EXPECT_EQ(facts.failure(), Failure::of_system(dir.file("none"), ENOENT));
}

TEST(EqualBytes, AreFoundWhateverTheFilesAreCalled) {
    const TempDir dir;
    const std::string bytes = std::string("a\0b\n", 4) + std::string(100000, 'x');
    const std::string one = dir.write("one", bytes);
    const struct {
        const char* name;
        std::string bytes;
        bool is_equal;
    } cases[] = {{"same", bytes, true},
                 {"shorter", bytes.substr(1), false},
                 {"last", bytes.substr(0, bytes.size() - 1) + 'y', false},
                 {"empty", "", false}};
    for (const auto& c : cases) {
        const auto equal = gw::have_equal_bytes(one, dir.write(c.name, c.bytes));
        ASSERT_TRUE(equal) << c.name;
        EXPECT_EQ(*equal, c.is_equal) << c.name;
    }
    EXPECT_TRUE(*gw::have_equal_bytes(dir.file("empty"), dir.write("empty too", "")));
}

TEST(EqualBytes, AreNotLookedForInWhatIsNoFile) {
    const TempDir dir;
    const std::string file = dir.write("one", "1");
    const std::string pipe = dir.file("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(gw::have_equal_bytes(file, pipe).failure(), (Failure{pipe, Reason::NOT_A_FILE}));
    EXPECT_EQ(gw::have_equal_bytes(dir.path(), file).failure(), (Failure{dir.path(), Reason::NOT_A_FILE}));
    EXPECT_EQ(gw::have_equal_bytes(file, dir.file("none")).failure(),
              Failure::of_system(dir.file("none"), ENOENT));
}

}  // namespace
