// SPDX-License-Identifier: MIT
#include "store/joint_change.h"

#include <gtest/gtest.h>

#include <string>

#include "store/directory_change.h"
#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;

constexpr const char* HEADING = "glyphward-journal 2\n";

TEST(JointChange, GoesToEachDirectoryOnceHoweverOftenItIsNamed) {
    const TempDir dir;
    dir.make_dir("other/.glyphward");
    std::string text = HEADING;
    while (text.size() < 4'000'000) text += "and " + dir.file("other") + '\n';
    dir.write("fonts/.glyphward/final-1f", text);
    EXPECT_TRUE(gw::settle(dir.file("fonts")));
    EXPECT_FALSE(dir.exists("fonts/.glyphward/final-1f"));
}

TEST(JointChange, OfTooManyDirectoriesIsNoneOfOurs) {
    const TempDir dir;
    std::string text = HEADING;
    for (std::size_t i = 0; i <= gw::MOST_JOINED; ++i) text += "and " + dir.file(std::to_string(i)) + '\n';
    dir.write("fonts/.glyphward/final-1f", text);
    EXPECT_TRUE(gw::settle(dir.file("fonts")));
    EXPECT_TRUE(dir.exists("fonts/.glyphward/final-1f")) << "left alone";
    dir.write("fonts/.glyphward/final-1f", HEADING + std::string("and ") + dir.file("other") + '\n');
    dir.make_dir("other/.glyphward");
    EXPECT_TRUE(gw::settle(dir.file("fonts")));
    EXPECT_FALSE(dir.exists("fonts/.glyphward/final-1f"));
}

// A disk that is not mounted has left an empty directory in its place, or none.
TEST(JointChange, OfADirectoryThatIsNotThereWaitsForIt) {
    const TempDir dir;
    dir.write("fonts/.glyphward/journal",
              HEADING + std::string("put 1 1 1 1 a.pcf\nwith 1f ") + dir.file("leader") + '\n');
    for (const bool is_mount_point : {false, true}) {
        if (is_mount_point) dir.make_dir("leader");
        const gw::Outcome settled = gw::settle(dir.file("fonts"));
        ASSERT_FALSE(settled);
        EXPECT_EQ(settled.failure().text(), dir.file("fonts") +
                                                "/: an unfinished change of this directory depends on " +
                                                dir.file("leader") + ", which is not there");
        EXPECT_TRUE(dir.exists("fonts/.glyphward/journal"));
    }
    dir.make_dir("leader/.glyphward");
    EXPECT_TRUE(gw::settle(dir.file("fonts")));
    EXPECT_FALSE(dir.exists("fonts/.glyphward/journal"));
}

TEST(JointChange, StaysFinalAsLongAsADirectoryIsNotThere) {
    const TempDir dir;
    dir.write("fonts/.glyphward/final-1f", HEADING + std::string("and ") + dir.file("other") + '\n');
    for (const bool is_mount_point : {false, true}) {
        if (is_mount_point) dir.make_dir("other");
        EXPECT_TRUE(gw::settle(dir.file("fonts")));
        EXPECT_TRUE(dir.exists("fonts/.glyphward/final-1f"));
    }
}

// Twenty of them have more orders than anybody can go through.
TEST(JointChange, DirectoriesThatLeadEachOtherAreGoneThroughOnce) {
    constexpr int DIRECTORIES = 20;
    const TempDir dir;
    std::string text = HEADING;
    for (int i = 0; i < DIRECTORIES; ++i) text += "and " + dir.file(std::to_string(i)) + '\n';
    for (int i = 0; i < DIRECTORIES; ++i) dir.write(std::to_string(i) + "/.glyphward/final-1f", text);
    for (int i = 0; i < DIRECTORIES; ++i) {
        EXPECT_TRUE(gw::settle(dir.file(std::to_string(i))));
        EXPECT_FALSE(dir.exists(std::to_string(i) + "/.glyphward/final-1f")) << i;
    }
}

}  // namespace
