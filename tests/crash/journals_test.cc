// SPDX-License-Identifier: MIT
//
// Journals of which all records were taken back before another one came, killed at each call: whoever has the
// next look can read them.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "store/directory_change.h"
#include "support/file_faults.h"
#include "support/put_file.h"
#include "support/temp_dir.h"

namespace {

using gw::DirectoryChange;
using gw::test::MOST_CALLS;
using gw::test::TempDir;

/// A directory with the fonts "a" and "b".
void prepare(const TempDir& dir) {
    dir.write("a.pcf", "A");
    dir.write("b.pcf", "B");
    dir.write("fonts.dir", "2\na.pcf -a\nb.pcf -b\n");
}

/// Kills the work at each call; `look` sees what the next look at the directory has left, and the last time
/// what the work does when nobody kills it.
void kill_at_each_call(const std::function<void(const TempDir&)>& work,
                       const std::function<void(const TempDir&, bool killed)>& look) {
    bool killed = true;
    int at = 1;
    for (; killed && at < MOST_CALLS; ++at) {
        const TempDir dir;
        prepare(dir);
        killed = gw::test::killed_at(at, [&] { work(dir); });
        const gw::Outcome settled = gw::settle(dir.path());
        EXPECT_TRUE(settled) << at << ": " << (settled ? "" : settled.failure().text());
        look(dir, killed);
        EXPECT_TRUE(DirectoryChange::begin(dir.path())) << at;
    }
    EXPECT_FALSE(killed) << "more calls than " << MOST_CALLS;
    EXPECT_GT(at, 20);
}

TEST(Journals, OfWhichAllWasTakenBackBeginAnew) {
    kill_at_each_call(
        [](const TempDir& dir) {
            const auto change = DirectoryChange::begin(dir.path());
            const DirectoryChange::Mark mark = (*change)->mark();
            (void)gw::test::put_font(**change, "x.pcf", "X", "-x");
            (*change)->take_back_to(mark);
            (void)gw::test::put_font(**change, "y.pcf", "Y", "-y");
            (void)(*change)->commit();
        },
        [](const TempDir& dir, bool killed) {
            const bool is_new = dir.exists("y.pcf");
            EXPECT_FALSE(dir.exists("x.pcf"));
            EXPECT_TRUE(is_new || killed);
            EXPECT_EQ(dir.read("fonts.dir"),
                      is_new ? "3\na.pcf -a\nb.pcf -b\ny.pcf -y\n" : "2\na.pcf -a\nb.pcf -b\n");
        });
}

// The index is written a second time, because another program has written it meanwhile.
TEST(Journals, OfWhichTheIndexWasTakenBackBeginAnew) {
    constexpr const char* OTHERS = "3\na.pcf -a\nb.pcf -b\nn.pcf -n\n";
    kill_at_each_call(
        [](const TempDir& dir) {
            const auto change = DirectoryChange::begin(dir.path());
            (*change)->strike_out("a.pcf", 1);
            (void)(*change)->take_out("a.pcf", false);
            dir.write("fonts.dir", OTHERS);
            (void)(*change)->commit();
        },
        [](const TempDir& dir, bool killed) {
            const std::string index = dir.read("fonts.dir");
            if (dir.exists("a.pcf")) {
                EXPECT_TRUE(killed);
                EXPECT_TRUE(index == "2\na.pcf -a\nb.pcf -b\n" || index == OTHERS) << index;
            } else {
                EXPECT_EQ(index, "2\nb.pcf -b\nn.pcf -n\n");
            }
        });
}

}  // namespace
