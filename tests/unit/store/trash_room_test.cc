// SPDX-License-Identifier: MIT
//
// The trash on a disk without room.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include "store/directory_change.h"
#include "store/font_action.h"
#include "store/trash.h"
#include "support/file_faults.h"
#include "support/heard_failures.h"
#include "support/put_file.h"
#include "support/small_disk.h"
#include "support/trash_on.h"

namespace {

using gw::DirectoryChange;
using gw::test::FileFaults;
using gw::test::HeardFailures;
using gw::test::SmallDisk;
using gw::test::TempDir;
using gw::test::TrashOn;
using testing::HasSubstr;

gw::Outcome remove(const std::string& dir, const std::string& name) {
    return gw::in_change(dir, [&](DirectoryChange& change) {
        change.strike_out(name, 1);
        (void)change.take_out(name, false);
        return gw::done();
    });
}

std::size_t entries(const std::string& dir) {
    const auto found = gw::trash_entries(dir);
    EXPECT_TRUE(found);
    return found ? found->size() : 99;
}

class TrashRoom : public testing::Test {
  protected:
    const TrashOn on;
};

TEST_F(TrashRoom, IsGivenUpBeforeAnInstallationFails) {
    constexpr std::size_t SIZE = 40000;
    const SmallDisk disk;
    ASSERT_TRUE(gw::test::bring_font(disk.path(), "a.pcf", std::string(SIZE, 'a'), "-a"));
    ASSERT_TRUE(gw::test::bring_font(disk.path(), "b.pcf", std::string(SIZE, 'b'), "-b"));
    ASSERT_TRUE(gw::test::bring_font(disk.path(), "k.pcf", "k", "-k"));
    ASSERT_TRUE(remove(disk.path(), "a.pcf"));
    TrashOn::pass(1);
    ASSERT_TRUE(remove(disk.path(), "b.pcf"));
    ASSERT_EQ(entries(disk.path()), 2U);
    disk.leave_blocks(6);
    EXPECT_TRUE(gw::test::bring_font(disk.path(), "c.pcf", std::string(SIZE, 'c'), "-c"));
    EXPECT_EQ(disk.read("c.pcf"), std::string(SIZE, 'c'));
    EXPECT_EQ(entries(disk.path()), 1U) << "the oldest goes first, and no more than have to";
    EXPECT_TRUE(gw::test::bring_font(disk.path(), "d.pcf", std::string(SIZE, 'd'), "-d"));
    EXPECT_EQ(entries(disk.path()), 0U);
    const gw::Outcome full = gw::test::bring_font(disk.path(), "e.pcf", std::string(SIZE, 'e'), "-e");
    ASSERT_FALSE(full);
    EXPECT_EQ(full.failure(), gw::Failure::of_system(disk.file("e.pcf"), ENOSPC));
    EXPECT_EQ(disk.read("fonts.dir"), "3\nk.pcf -k\nc.pcf -c\nd.pcf -d\n");
}

TEST_F(TrashRoom, IsNotNeededForDeleting) {
    const SmallDisk disk;
    ASSERT_TRUE(gw::test::bring_font(disk.path(), "a.pcf", std::string(20000, 'a'), "-a"));
    ASSERT_TRUE(gw::test::bring_font(disk.path(), "b.pcf", "b", "-b"));
    disk.leave_blocks(0);
    const HeardFailures heard;
    EXPECT_TRUE(remove(disk.path(), "a.pcf"));
    EXPECT_FALSE(disk.exists("a.pcf"));
    EXPECT_EQ(disk.read("fonts.dir"), "1\nb.pcf -b\n");
    EXPECT_EQ(entries(disk.path()), 0U);
}

// Wherever room is missing once, the font goes; what can come back is complete.
TEST_F(TrashRoom, IsNotNeededForDeletingWhateverThereIsNoRoomFor) {
    int kept = 0;
    int at = 1;
    for (int calls = 1; at <= calls; ++at) {
        const TempDir dir;
        dir.write("a.pcf", "A");
        dir.write("fonts.dir", "2\na.pcf -a\nb.pcf -b\n");
        const HeardFailures heard;
        {
            const FileFaults faults(FileFaults::Fault::FAIL_ONCE, at, ENOSPC);
            EXPECT_TRUE(remove(dir.path(), "a.pcf")) << at;
            calls = FileFaults::calls();
        }
        EXPECT_FALSE(dir.exists("a.pcf")) << at;
        EXPECT_EQ(dir.read("fonts.dir"), "1\nb.pcf -b\n") << at;
        const auto found = gw::trash_entries(dir.path());
        ASSERT_TRUE(found);
        if (found->empty()) continue;
        ++kept;
        EXPECT_TRUE(gw::bring_back(dir.path(), found->front().id)) << at;
        EXPECT_EQ(dir.read("a.pcf"), "A") << at;
    }
    EXPECT_GT(at, 30);
    EXPECT_GT(kept, 5);
}

TEST_F(TrashRoom, IsNotNeededForDeletingOnADiskThatIsAlmostFull) {
    int kept = 0;
    for (unsigned long blocks = 0; blocks < 12; ++blocks) {
        const SmallDisk disk;
        const HeardFailures heard;
        ASSERT_TRUE(gw::test::bring_font(disk.path(), "a.pcf", std::string(20000, 'a'), "-a"));
        ASSERT_TRUE(gw::test::bring_font(disk.path(), "b.pcf", "b", "-b"));
        disk.leave_blocks(blocks);
        EXPECT_TRUE(remove(disk.path(), "a.pcf")) << blocks;
        EXPECT_FALSE(disk.exists("a.pcf")) << blocks;
        EXPECT_EQ(disk.read("fonts.dir"), "1\nb.pcf -b\n") << blocks;
        kept += entries(disk.path()) == 1 ? 1 : 0;
    }
    EXPECT_GT(kept, 0);
    EXPECT_LT(kept, 12) << "there was no room for some";
}

// The entry that comes back is not what gives way.
TEST_F(TrashRoom, IsNotGivenUpForWhatComesBackFromIt) {
    const TempDir dir;
    dir.write("a.pcf", "A");
    dir.write("fonts.dir", "2\na.pcf -a\nb.pcf -b\n");
    int at = 1;
    for (bool has_failed = true; has_failed; ++at) {
        ASSERT_TRUE(remove(dir.path(), "a.pcf")) << at;
        const auto found = gw::trash_entries(dir.path());
        ASSERT_TRUE(found && found->size() == 1) << at;
        gw::Outcome outcome;
        {
            const FileFaults faults(FileFaults::Fault::FAIL_ONCE, at, ENOSPC);
            outcome = gw::bring_back(dir.path(), found->front().id);
            has_failed = FileFaults::calls() >= at;
        }
        if (!outcome) {
            EXPECT_FALSE(dir.exists("a.pcf")) << at;
            outcome = gw::bring_back(dir.path(), found->front().id);
        }
        EXPECT_TRUE(outcome) << at << ": " << (outcome ? "" : outcome.failure().text());
        EXPECT_EQ(dir.read("a.pcf"), "A") << at;
    }
    EXPECT_GT(at, 15);
}

}  // namespace
