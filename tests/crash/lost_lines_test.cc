// SPDX-License-Identifier: MIT
//
// The register of our lines, when a process is killed that changes the index: a line that another program
// drops later still comes back, and none of a font that was deleted does.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "store/directory_change.h"
#include "support/file_faults.h"
#include "support/put_file.h"
#include "support/temp_dir.h"

namespace {

using gw::DirectoryChange;
using gw::test::TempDir;

void bring(const std::string& dir, const std::string& name) {
    ASSERT_TRUE(gw::test::bring_font(dir, name, name, "-x"));
}

/// "a" goes and "c" comes, in one change.
void exchange(const std::string& dir) {
    auto change = DirectoryChange::begin(dir);
    if (!change) return;
    (*change)->strike_out("a.pcf", 1);
    (void)(*change)->take_out("a.pcf", false);
    if (gw::test::put_font(**change, "c.pcf", "c.pcf", "-x")) (void)(*change)->commit();
}

TEST(LostLinesAfterAKill, ComeBackAsFarAsTheirFontsAreThere) {
    int at = 1;
    for (bool killed = true; killed; ++at) {
        ASSERT_LT(at, gw::test::MOST_CALLS);
        const TempDir dir;
        dir.write("fonts.dir", "0\n");
        bring(dir.path(), "a.pcf");
        bring(dir.path(), "b.pcf");
        killed = gw::test::killed_at(at, [&] { exchange(dir.path()); });
        EXPECT_TRUE(gw::settle(dir.path())) << at;
        const std::string index = dir.read("fonts.dir");
        const bool is_old = index == "2\na.pcf -x\nb.pcf -x\n";
        EXPECT_TRUE((killed && is_old) || index == "2\nb.pcf -x\nc.pcf -x\n") << at << ":\n" << index;
        EXPECT_EQ(dir.exists("a.pcf"), is_old) << at;
        dir.write("fonts.dir", "0\n");
        bring(dir.path(), "d.pcf");
        EXPECT_EQ(dir.read("fonts.dir"),
                  is_old ? "3\na.pcf -x\nb.pcf -x\nd.pcf -x\n" : "3\nb.pcf -x\nc.pcf -x\nd.pcf -x\n")
            << at;
    }
    EXPECT_GT(at, 30);
}

}  // namespace
