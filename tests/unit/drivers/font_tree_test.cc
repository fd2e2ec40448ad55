// SPDX-License-Identifier: MIT
#include "drivers/font_tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "drivers/engine_globals.h"
#include "modules/font_modules.h"
#include "modules/gw_fsm_list.h"
#include "support/temp_dir.h"

namespace {

using gw::find_font_tree;
using gw::FontTree;
using gw::test::TempDir;
using testing::ElementsAre;
using testing::SizeIs;

class FontTreeTest : public testing::Test {
  protected:
    FontTreeTest() { gw::append_font_modules(the_fsm_list); }
    ~FontTreeTest() override { the_fsm_list.clear(); }
    /// A directory below the root with a file that may be a font.
    std::string add(const std::string& dir, const std::string& file = "a.pcf") const {
        root.make_dir(dir);
        root.write(dir + "/" + file, "");
        return path(dir);
    }
    [[nodiscard]] std::string path(const std::string& dir) const { return root.file(dir); }
    [[nodiscard]] std::string top() const { return root.path().substr(0, root.path().size() - 1); }
    TempDir root;
};

TEST_F(FontTreeTest, ADirectoryAloneIsItself) {
    EXPECT_THAT(find_font_tree(root.path()).dirs, ElementsAre(top()));
    root.write("a.pcf", "");
    root.make_dir("empty");
    const FontTree tree = find_font_tree(top());
    EXPECT_THAT(tree.dirs, ElementsAre(top()));
    EXPECT_TRUE(tree.is_whole);
    EXPECT_THAT(find_font_tree("/nonexistent").dirs, ElementsAre("/nonexistent"));
}

TEST_F(FontTreeTest, HasTheDirectoriesWithFontsTheNearestFirst) {
    const std::string deep = add("b/c/d", "x.pfa");
    const std::string near = add("z", "y.pcf");
    const std::string with_blank = add("a b");
    add("texts", "readme.txt");
    EXPECT_THAT(find_font_tree(root.path()).dirs, ElementsAre(top(), with_blank, near, deep));
}

TEST_F(FontTreeTest, LeavesOutHiddenDirectoriesAndFollowsNoLinks) {
    const TempDir other;
    other.write("fonts/a.pcf", "");
    const std::string real = add("real");
    add(".glyphward/trash");
    std::filesystem::create_symlink(root.path(), path("real/circle"));
    std::filesystem::create_symlink(other.path(), path("elsewhere"));
    const FontTree tree = find_font_tree(root.path());
    EXPECT_THAT(tree.dirs, ElementsAre(top(), real));
    EXPECT_TRUE(tree.is_whole);
}

// The user may mean a tree by a link to it.
TEST_F(FontTreeTest, BeginsBehindALink) {
    add("real/below");
    std::filesystem::create_symlink(path("real"), path("link"));
    EXPECT_THAT(find_font_tree(path("link")).dirs, ElementsAre(path("link"), path("link/below")));
}

TEST_F(FontTreeTest, LeavesOutWhatMayNotBeRead) {
    if (::geteuid() == 0) GTEST_SKIP() << "the superuser reads everything";
    const std::string readable = add("readable");
    const std::string closed = add("closed");
    std::filesystem::permissions(closed, std::filesystem::perms::none);
    EXPECT_THAT(find_font_tree(root.path()).dirs, ElementsAre(top(), readable));
    std::filesystem::permissions(closed, std::filesystem::perms::owner_all);
}

TEST_F(FontTreeTest, HasLimits) {
    for (int i = 10; i < 30; ++i) add("d" + std::to_string(i));
    add("d10/1/2/3");
    EXPECT_TRUE(find_font_tree(root.path()).is_whole);
    EXPECT_THAT(find_font_tree(root.path()).dirs, SizeIs(22));
    const FontTree few = find_font_tree(root.path(), {.used = 5});
    EXPECT_THAT(few.dirs,
                ElementsAre(top(), path("d10"), path("d11"), path("d12"), path("d13"), path("d14")));
    EXPECT_FALSE(few.is_whole);
    const FontTree hasty = find_font_tree(root.path(), {.looked_at = 3});
    EXPECT_THAT(hasty.dirs, ElementsAre(top(), path("d10"), path("d11")));
    EXPECT_FALSE(hasty.is_whole);
    const FontTree flat = find_font_tree(root.path(), {.depth = 3});
    EXPECT_THAT(flat.dirs, SizeIs(21));
    EXPECT_FALSE(flat.is_whole);
    EXPECT_TRUE(find_font_tree(root.path(), {.depth = 4}).is_whole);
}

}  // namespace
