// SPDX-License-Identifier: MIT
#include "fontpath/trash_places.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/host_paths.h"
#include "support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

using gw::remember_trash_place;
using gw::remembered_trash_places;
using gw::trash_places;
using gw::test::TempDir;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class TrashPlaces : public testing::Test {
  protected:
    TrashPlaces() {
        ::setenv("HOME", home.c_str(), 1);
        fs::remove(file());
    }
    ~TrashPlaces() override { fs::remove(file()); }
    TrashPlaces(const TrashPlaces&) = delete;
    TrashPlaces& operator=(const TrashPlaces&) = delete;

    [[nodiscard]] std::string file() const {
        return ::geteuid() == 0 ? gw::SUPERUSER_TRASH_LIST : home.file(".glyphwdtrash");
    }
    TempDir home;
    TempDir fonts;
};

TEST_F(TrashPlaces, AreRememberedOnce) {
    EXPECT_THAT(remembered_trash_places(), IsEmpty());
    EXPECT_TRUE(remember_trash_place(fonts.path()));
    EXPECT_TRUE(remember_trash_place("/other/"));
    EXPECT_TRUE(remember_trash_place(fonts.path()));
    EXPECT_THAT(remembered_trash_places(), ElementsAre(fonts.path(), "/other/"));
    EXPECT_EQ(TempDir::read_bytes(file()), fonts.path() + "\n/other/\n");
    struct stat info = {};
    ASSERT_EQ(::stat(file().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0600U) << "which fonts a user has is nobody's business";
}

TEST_F(TrashPlaces, AreThoseOfThePathTheDefaultsAndTheList) {
    const std::string link = home.file("link");
    fs::create_directory_symlink(fonts.path(), link);
    const TempDir other;
    EXPECT_TRUE(remember_trash_place(other.path()));
    EXPECT_TRUE(remember_trash_place(link + '/'));
    EXPECT_TRUE(remember_trash_place("/nowhere/"));
    const auto places = trash_places({"built-ins", fonts.path() + ":unscaled", "/missing"});
    EXPECT_EQ(places.front(), fonts.path());
    EXPECT_THAT(places, Contains(other.path()));
    EXPECT_THAT(places, Not(Contains(link + '/'))) << "the same directory";
    EXPECT_THAT(places, Not(Contains("/nowhere/")));
    if (::geteuid() == 0) return;
    const std::string destination = home.make_dir("glyphwd_fonts");
    EXPECT_THAT(trash_places({}), Contains(fs::path(destination).string()));
}

TEST_F(TrashPlaces, WithStrangeNamesAreNotListed) {
    EXPECT_TRUE(remember_trash_place("/a\nb/"));
    EXPECT_TRUE(remember_trash_place("relative/"));
    EXPECT_THAT(remembered_trash_places(), IsEmpty());
    EXPECT_FALSE(fs::exists(file()));
}

TEST_F(TrashPlaces, AreNoMoreThanSoMany) {
    std::string lines;
    for (std::size_t i = 0; i < gw::MOST_TRASH_PLACES; ++i) lines += '/' + std::to_string(i) + "/\n";
    fs::create_directories(fs::path(file()).parent_path());
    std::ofstream(file()) << lines;
    EXPECT_TRUE(remember_trash_place("/newest/"));
    const std::vector<std::string> all = remembered_trash_places();
    EXPECT_EQ(all.size(), gw::MOST_TRASH_PLACES);
    EXPECT_EQ(all.front(), "/1/");
    EXPECT_EQ(all.back(), "/newest/");
}

TEST_F(TrashPlaces, GarbageInTheListIsPassedOver) {
    fs::create_directories(fs::path(file()).parent_path());
    std::ofstream(file(), std::ios::binary)
        << std::string("\0\xFF\n\nnot a path\n", 15) << fonts.path() << '\n';
    EXPECT_THAT(remembered_trash_places(), ElementsAre(fonts.path()));
}

TEST_F(TrashPlaces, OfAUserWithoutAHomeAreNotRemembered) {
    if (::geteuid() == 0) GTEST_SKIP() << "the superuser's list is not in a home directory";
    ::unsetenv("HOME");
    EXPECT_TRUE(remember_trash_place(fonts.path()));
    EXPECT_THAT(remembered_trash_places(), IsEmpty());
}

}  // namespace
