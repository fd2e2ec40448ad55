// SPDX-License-Identifier: MIT
#include "store/own_directory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <set>
#include <string>

#include "store/directory_change.h"
#include "support/file_faults.h"
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

TEST_F(OwnDirectory, TakesAwayWhatAKilledOneHasBegun) {
    dir.write(".glyphward-123/lock", "");
    dir.make_dir(".glyphward-124");
    { ASSERT_TRUE(DirectoryChange::begin(dir.path())); }
    EXPECT_EQ(names(), (std::set<std::string>{".glyphward", "a.pcf", "fonts.dir"}));
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
