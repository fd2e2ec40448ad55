// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "diagnosis/find_surroundings.h"
#include "platform/host_paths.h"
#include "support/temp_dir.h"

namespace {

using gw::diagnosis::directories_with_fonts;
using gw::diagnosis::Surroundings;
using gw::test::TempDir;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

using Texts = std::vector<std::string>;

TEST(DirectoriesWithFonts, AreThoseWithAnIndexOrAFontInTheirOrder) {
    const TempDir root;
    root.write("b/fonts.dir", "0\n");
    root.write("a/deep/er/Some.TTF", "");
    root.write("a/deep/readme.txt", "");
    root.write("c/9x15.pcf.gz", "");
    root.write("text/notes", "");
    root.write("top.pfb", "");
    EXPECT_THAT(directories_with_fonts({root.path()}),
                ElementsAre(root.path(), root.file("a/deep/er/"), root.file("b/"), root.file("c/")));
}

TEST(DirectoriesWithFonts, AreNeitherHiddenNorLinks) {
    const TempDir root;
    const TempDir elsewhere;
    elsewhere.write("x.ttf", "");
    root.write(".glyphward/trash/x.ttf", "");
    std::filesystem::create_directory_symlink(elsewhere.path(), root.file("link"));
    std::filesystem::create_directory_symlink(root.path(), root.file("circle"));
    EXPECT_THAT(directories_with_fonts({root.path()}), ElementsAre());
    // The root itself may be either.
    EXPECT_THAT(directories_with_fonts({root.file("link")}), ElementsAre(root.file("link/")));
}

TEST(DirectoriesWithFonts, AreNotSoughtForEver) {
    const TempDir root;
    std::string deep;
    for (int i = 0; i <= gw::diagnosis::DEEPEST_DIRECTORY; ++i) deep += "d/";
    root.write(deep + "x.ttf", "");
    root.write("d/y.ttf", "");
    EXPECT_THAT(directories_with_fonts({root.path()}), ElementsAre(root.file("d/")));
    EXPECT_THAT(directories_with_fonts({root.file("missing"), root.file("d/y.ttf")}), ElementsAre());
}

TEST(Surroundings, AreThoseOfThisUser) {
    const TempDir home;
    const std::string before = std::getenv("HOME") != nullptr ? std::getenv("HOME") : "";
    ::setenv("HOME", home.c_str(), 1);
    home.write(".fonts/x.ttf", "");
    home.write(".local/share/fonts/y/x.ttf", "");
    home.write("mine/x.ttf", "");
    home.write(".VTfontpath", home.file(".fonts/") + '\n');
    const Surroundings found = gw::diagnosis::find_surroundings();
    ::setenv("HOME", before.c_str(), 1);
    EXPECT_EQ(found.home + '/', home.path());
    EXPECT_EQ(found.user, ::geteuid());
    EXPECT_THAT(found.other_directories, Contains(home.file(".local/share/fonts/y/")));
    EXPECT_THAT(found.other_directories, Not(Contains(home.file("mine/"))));
    EXPECT_EQ(found.own_fonts, ::geteuid() == 0 ? gw::SUPERUSER_FONT_DIR : home.file("glyphwd_fonts/"));
    if (::geteuid() == 0) return;
    EXPECT_THAT(found.configured, Contains(home.file(".fonts/")));
    EXPECT_THAT(found.other_directories, Not(Contains(home.file(".fonts/"))));
}

}  // namespace
