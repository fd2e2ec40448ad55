// SPDX-License-Identifier: MIT
//
// "fonts.scale" follows the index, whatever it is, and whoever else writes it.
#include <gmock/gmock.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>

#include "core/file_calls.h"
#include "store/directory_change.h"
#include "support/heard_failures.h"
#include "support/put_file.h"
#include "support/small_disk.h"
#include "support/temp_dir.h"
#include "support/under_policy.h"

namespace {

using gw::DirectoryChange;
using gw::test::HeardFailures;
using gw::test::SmallDisk;
using gw::test::TempDir;
using testing::HasSubstr;

constexpr const char* ADMINS = "admin.ttf -admin\n";

gw::Outcome add(const std::string& dir, const std::string& name) {
    auto change = DirectoryChange::begin(dir);
    if (!change) return change.failure();
    if (gw::Outcome made = (*change)->make_index(); !made) return made;
    if (gw::Outcome put = gw::test::put_font(**change, name, "a font", "-x"); !put) return put;
    return (*change)->commit();
}

gw::Outcome remove(const std::string& dir, const std::string& name) {
    auto change = DirectoryChange::begin(dir);
    if (!change) return change.failure();
    (*change)->strike_out(name, 1);
    (*change)->take_out(name, false);
    return (*change)->commit();
}

class ScalableIndexChange : public testing::Test {
  protected:
    gw::test::UnderPolicy policy{true};
    TempDir dir;
};

/// The font is installed; what stands at "fonts.scale" stays, and the user hears of it.
TEST_F(ScalableIndexChange, LeavesAloneWhatIsNoFile) {
    const std::string path = dir.file("fonts.scale");
    const std::function<void()> makers[] = {
        [&] { std::filesystem::create_symlink("elsewhere", path); },
        [&] { ASSERT_EQ(::mkfifo(path.c_str(), 0666), 0); },
        [&] { std::filesystem::create_directory(path); },
        [&] {
            dir.write("fonts.scale", "");
            std::filesystem::resize_file(path, 1ULL << 32);
        },
    };
    dir.write("elsewhere", ADMINS);
    int number = 0;
    for (const auto& make : makers) {
        make();
        const auto before = std::filesystem::symlink_status(path).type();
        const std::string name = "font" + std::to_string(number++) + ".ttf";
        {
            const HeardFailures heard;
            EXPECT_TRUE(add(dir.path(), name)) << number;
            EXPECT_THAT(heard.text(), HasSubstr(path)) << number;
        }
        EXPECT_THAT(dir.read("fonts.dir"), HasSubstr(name + " -x\n"));
        EXPECT_EQ(std::filesystem::symlink_status(path).type(), before);
        // Bitmap fonts are no concern of it.
        const HeardFailures heard;
        EXPECT_TRUE(add(dir.path(), name + ".pcf"));
        EXPECT_EQ(heard.text(), "") << number;
        std::filesystem::remove(path);
    }
    EXPECT_EQ(dir.read("elsewhere"), ADMINS);
}

/// The tests of one disk.
TEST_F(ScalableIndexChange, LosesLinesOnAFullDiskToo) {
    const SmallDisk disk;
    const HeardFailures heard;
    ASSERT_TRUE(add(disk.path(), "a.ttf"));
    ASSERT_TRUE(add(disk.path(), "b.ttf"));
    disk.write("fonts.scale", "3\n" + std::string(ADMINS) + "a.ttf -x\nb.ttf -x\n");
    disk.leave_blocks(0);
    EXPECT_TRUE(remove(disk.path(), "a.ttf"));
    EXPECT_EQ(disk.read("fonts.dir"), "1\nb.ttf -x\n");
    EXPECT_EQ(disk.read("fonts.scale"), "2\n" + std::string(ADMINS) + "b.ttf -x\n");
    EXPECT_FALSE(disk.exists("a.ttf"));
    EXPECT_EQ(heard.text(), "");
}

/// Another program, which knows nothing of the lock, writes "fonts.scale" at the `at`-th time that bytes are
/// sent to the disk.
class AnotherWriter {
  public:
    AnotherWriter(const TempDir& dir, int at) {
        state() = {&dir, at};
        static gw::FileCalls calls;
        calls = gw::system_file_calls();
        calls.sync = [](int fd) {
            if (--state().left == 0) {
                const std::string path = state().dir->file("fonts.scale");
                const std::string now = TempDir::read_bytes(path);
                std::filesystem::remove(path);
                state().dir->write("fonts.scale", now + ADMINS);
            }
            return gw::system_file_calls().sync(fd);
        };
        gw::use_file_calls(calls);
    }
    ~AnotherWriter() { gw::use_file_calls(gw::system_file_calls()); }
    AnotherWriter(const AnotherWriter&) = delete;
    AnotherWriter& operator=(const AnotherWriter&) = delete;

    [[nodiscard]] static bool has_written() { return state().left <= 0; }

  private:
    struct State {
        const TempDir* dir;
        int left;
    };
    static State& state() {
        static State current = {};
        return current;
    }
};

/// What another program wrote between our reading and our writing was lost.
TEST_F(ScalableIndexChange, LosesNoLineOfAnotherProgram) {
    int at = 1;
    for (bool has_written = true; has_written && at < 100; ++at) {
        const TempDir fonts;
        ASSERT_TRUE(add(fonts.path(), "a.ttf"));
        {
            const AnotherWriter writer(fonts, at);
            EXPECT_TRUE(add(fonts.path(), "b.ttf")) << at;
            has_written = AnotherWriter::has_written();
        }
        if (!has_written) break;
        for (const char* line : {"a.ttf -x\n", "b.ttf -x\n", ADMINS})
            EXPECT_THAT(fonts.read("fonts.scale"), HasSubstr(line)) << at;
        EXPECT_THAT(fonts.read("fonts.dir"), HasSubstr("b.ttf -x\n")) << at;
    }
    EXPECT_GT(at, 5);
}

constexpr uid_t ALICE = 1000;
constexpr uid_t BOB = 1001;
constexpr gid_t GROUP = 2000;

/// Whether the work of that user, a member of GROUP, is a success.
bool as(uid_t user, const std::function<bool()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::umask(002);
        const bool is_user = ::setgroups(1, &GROUP) == 0 && ::setgid(GROUP) == 0 && ::setuid(user) == 0;
        ::_exit(is_user && work() ? 0 : 1);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
    return status == 0;
}

class ScalableIndexOfAGroup : public ScalableIndexChange, public testing::WithParamInterface<mode_t> {
  protected:
    void SetUp() override {
        if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can be several users";
        if (!as(ALICE, [] { return true; })) GTEST_SKIP() << "there are no other users here";
        dir.write("fonts.dir", "0\n");
        ASSERT_EQ(::chown(dir.file("fonts.dir").c_str(), 0, GROUP), 0);
        ASSERT_EQ(::chmod(dir.file("fonts.dir").c_str(), 0664), 0);
        ASSERT_EQ(::chown(dir.c_str(), 0, GROUP), 0);
        ASSERT_EQ(::chmod(dir.c_str(), GetParam()), 0);
    }
};

TEST_P(ScalableIndexOfAGroup, NeverKeepsAMemberFromInstalling) {
    EXPECT_TRUE(as(ALICE, [&] { return bool(add(dir.path(), "a.ttf")); }));
    EXPECT_TRUE(as(BOB, [&] { return bool(add(dir.path(), "b.ttf")); }));
    EXPECT_EQ(dir.read("fonts.dir"), "2\na.ttf -x\nb.ttf -x\n");
    const bool is_sticky = (GetParam() & S_ISVTX) != 0;
    EXPECT_EQ(dir.read("fonts.scale"), is_sticky ? "1\na.ttf -x\n" : "2\na.ttf -x\nb.ttf -x\n");
}

INSTANTIATE_TEST_SUITE_P(Modes, ScalableIndexOfAGroup, testing::Values(02775, 0775, 03775));

}  // namespace
