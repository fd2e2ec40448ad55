// SPDX-License-Identifier: MIT
//
// What is told of directories in which another program does something. The kernel tells it at once, so
// nothing here waits, but for the test that has too many changes.
#include "platform/directory_watch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
using gw::DirectoryWatch;
using gw::test::TempDir;
using testing::ElementsAre;
using testing::IsEmpty;

class Watching : public testing::Test {
  protected:
    std::string made(const std::string& name) {
        fs::create_directories(dir.file(name));
        return dir.file(name) + "/";
    }
    [[nodiscard]] bool is_readable() const {
        pollfd ready = {watch.descriptor(), POLLIN, 0};
        return ::poll(&ready, 1, 0) == 1;
    }
    TempDir dir;
    DirectoryWatch watch;
};

TEST_F(Watching, TellsOfFilesThatComeChangeAndGo) {
    const std::string fonts = made("fonts");
    watch.watch({fonts});
    EXPECT_FALSE(is_readable());
    EXPECT_THAT(watch.take_changes(), IsEmpty());
    dir.write("fonts/fonts.dir", "0\n");
    EXPECT_TRUE(is_readable());
    EXPECT_THAT(watch.take_changes(), ElementsAre(fonts));
    EXPECT_FALSE(is_readable());
    dir.write("fonts/fonts.dir", "0\n\n");
    EXPECT_THAT(watch.take_changes(), ElementsAre(fonts));
    fs::rename(fonts + "fonts.dir", fonts + "fonts.alias");
    EXPECT_THAT(watch.take_changes(), ElementsAre(fonts));
    ::chmod((fonts + "fonts.alias").c_str(), 0400);
    EXPECT_THAT(watch.take_changes(), ElementsAre(fonts));
    fs::remove(fonts + "fonts.alias");
    EXPECT_THAT(watch.take_changes(), ElementsAre(fonts));
    EXPECT_THAT(watch.take_changes(), IsEmpty());
}

TEST_F(Watching, HiddenFilesDoNotCount) {
    const std::string fonts = made("fonts");
    watch.watch({fonts});
    made("fonts/.glyphward");
    dir.write("fonts/.fonts.dir.new", "0\n");
    EXPECT_THAT(watch.take_changes(), IsEmpty());
    fs::rename(fonts + ".fonts.dir.new", fonts + "fonts.dir");
    EXPECT_THAT(watch.take_changes(), ElementsAre(fonts));
}

TEST_F(Watching, OnlyTheDirectoriesThatWereGivenLast) {
    const std::string one = made("one");
    const std::string two = made("two");
    watch.watch({one});
    watch.watch({two, "relative", "built-ins"});
    dir.write("one/a", "");
    EXPECT_THAT(watch.take_changes(), IsEmpty());
    dir.write("two/a", "");
    EXPECT_THAT(watch.take_changes(), ElementsAre(two));
    watch.watch({});
    dir.write("two/b", "");
    EXPECT_THAT(watch.take_changes(), IsEmpty());
}

TEST_F(Watching, WhatHappensBetweenTwoCallsIsNotLost) {
    const std::string one = made("one");
    watch.watch({one});
    dir.write("one/a", "");
    watch.watch({one, made("two")});
    EXPECT_THAT(watch.take_changes(), ElementsAre(one));
}

TEST_F(Watching, ADirectoryUnderTwoNamesIsToldUnderBoth) {
    const std::string fonts = made("fonts");
    fs::create_symlink("fonts", dir.file("link"));
    watch.watch({fonts, dir.file("link")});
    dir.write("fonts/a", "");
    EXPECT_THAT(watch.take_changes(), ElementsAre(fonts, dir.file("link")));
}

TEST_F(Watching, ADirectoryThatComesLater) {
    const std::string deep = dir.file("a/b/fonts/");
    watch.watch({deep});
    made("another");
    EXPECT_THAT(watch.take_changes(), IsEmpty()) << "not on the way to it";
    made("a");
    EXPECT_THAT(watch.take_changes(), ElementsAre(deep));
    made("a/b/fonts");
    EXPECT_THAT(watch.take_changes(), ElementsAre(deep));
    dir.write("a/b/fonts/fonts.dir", "0\n");
    EXPECT_THAT(watch.take_changes(), ElementsAre(deep));
    made("another/one");
    made("a/c");
    EXPECT_THAT(watch.take_changes(), IsEmpty()) << "what is above it does not count any more";
}

TEST_F(Watching, ADirectoryThatGoesAndComesAgain) {
    const std::string fonts = made("fonts");
    watch.watch({fonts});
    fs::remove_all(fonts);
    EXPECT_THAT(watch.take_changes(), ElementsAre(fonts));
    made("fonts");
    EXPECT_THAT(watch.take_changes(), ElementsAre(fonts));
    dir.write("fonts/fonts.dir", "0\n");
    EXPECT_THAT(watch.take_changes(), ElementsAre(fonts));
}

TEST_F(Watching, ADirectoryThatIsReplaced) {
    const std::string fonts = made("fonts");
    watch.watch({fonts});
    fs::rename(dir.file("fonts"), dir.file("old"));
    made("fonts");
    EXPECT_THAT(watch.take_changes(), ElementsAre(fonts));
    dir.write("old/a", "");
    EXPECT_THAT(watch.take_changes(), IsEmpty());
    dir.write("fonts/a", "");
    EXPECT_THAT(watch.take_changes(), ElementsAre(fonts));
}

TEST_F(Watching, ADirectoryThatBecomesReadable) {
    if (::geteuid() == 0) GTEST_SKIP() << "the superuser can read everything";
    const std::string fonts = made("fonts");
    ::chmod(fonts.c_str(), 0);
    watch.watch({fonts});
    ::chmod(fonts.c_str(), 0755);
    EXPECT_THAT(watch.take_changes(), ElementsAre(fonts));
    dir.write("fonts/a", "");
    EXPECT_THAT(watch.take_changes(), ElementsAre(fonts));
}

TEST_F(Watching, WhenTooMuchChangesAtOnceEverythingCounts) {
    const std::string busy = made("busy");
    const std::string quiet = made("quiet");
    watch.watch({busy, quiet});
    std::size_t limit = std::stoul(TempDir::read_bytes("/proc/sys/fs/inotify/max_queued_events"));
    ASSERT_LT(limit, 1000000U);
    // Equal events in a row are one, so the names differ.
    for (std::size_t i = 0; i <= limit / 2; ++i) {
        const std::string file = busy + (i % 2 == 0 ? "a" : "b");
        std::ofstream(file).put(0);
        fs::remove(file);
    }
    std::set<std::string> changed;
    while (is_readable()) changed.merge(watch.take_changes());
    EXPECT_THAT(changed, ElementsAre(busy, quiet));
    dir.write("quiet/a", "");
    EXPECT_THAT(watch.take_changes(), ElementsAre(quiet)) << "everything is still watched";
}

TEST_F(Watching, ASystemWithoutWatchesTellsNothing) {
    std::vector<gw::Descriptor> taken;
    for (int fd = 0; (fd = ::dup(0)) >= 0;) taken.emplace_back(fd);
    DirectoryWatch none;
    taken.clear();
    EXPECT_EQ(none.descriptor(), -1);
    none.watch({made("fonts")});
    dir.write("fonts/a", "");
    EXPECT_THAT(none.take_changes(), IsEmpty());
}

}  // namespace
