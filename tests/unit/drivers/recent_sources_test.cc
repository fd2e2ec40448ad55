// SPDX-License-Identifier: MIT
//
// The directories that were sources lately, and the file that keeps them.
#include "drivers/recent_sources.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "core/rights.h"
#include "platform/host_paths.h"
#include "support/temp_dir.h"

namespace {

using gw::recent_sources;
using gw::remember_recent_source;
using gw::test::TempDir;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class RecentSources : public testing::Test {
  protected:
    RecentSources() {
        ::setenv("HOME", home.path().c_str(), 1);
        std::filesystem::remove(gw::SUPERUSER_RECENT_SOURCES);
        if (gw::runs_as_superuser()) std::filesystem::create_directories(gw::HOST_DIR);
    }
    ~RecentSources() override { std::filesystem::remove_all(gw::SUPERUSER_RECENT_SOURCES); }

    [[nodiscard]] std::string file() const {
        return gw::runs_as_superuser() ? gw::SUPERUSER_RECENT_SOURCES : home.file(".glyphwdrecent");
    }
    void write_file(const std::string& text) const { std::ofstream(file(), std::ios::binary) << text; }

    TempDir home;
};

TEST_F(RecentSources, WithoutAFileThereAreNone) {
    EXPECT_THAT(recent_sources(), IsEmpty());
}

TEST_F(RecentSources, TheLastOneIsFirst) {
    for (const char* dir : {"/a", "/b/", "/a/", "/c"}) EXPECT_TRUE(remember_recent_source(dir)) << dir;
    EXPECT_THAT(recent_sources(), ElementsAre("/c", "/a", "/b"));
    EXPECT_EQ(TempDir::read_bytes(file()), "file:///c\nfile:///a\nfile:///b\n");
}

TEST_F(RecentSources, FiveAreKept) {
    for (int i = 1; i <= 7; ++i) EXPECT_TRUE(remember_recent_source("/" + std::to_string(i)));
    EXPECT_THAT(recent_sources(), ElementsAre("/7", "/6", "/5", "/4", "/3"));
}

TEST_F(RecentSources, NamesMayHaveAnyBytes) {
    for (const char* dir : {"/a b", "/100%", "/a\nb", "/caf\xe9", "/#x", "/"}) {
        EXPECT_TRUE(remember_recent_source(dir));
        EXPECT_EQ(recent_sources().front(), dir);
    }
}

TEST_F(RecentSources, WhatAnotherInstanceHasAddedStays) {
    ASSERT_TRUE(remember_recent_source("/a"));
    write_file("file:///other\nfile:///a\n");
    ASSERT_TRUE(remember_recent_source("/b"));
    EXPECT_THAT(recent_sources(), ElementsAre("/b", "/other", "/a"));
}

TEST_F(RecentSources, AHostileFileIsRead) {
    write_file("relative\nhttp://x/\nfile:///%00\nfile:///a%\n" + std::string(100000, 'x') +
               "\nfile:///good\n");
    EXPECT_THAT(recent_sources(), ElementsAre("/good"));
    std::string many;
    for (int i = 0; i < 10000; ++i) many += "file:///" + std::to_string(i) + "\n";
    write_file(many);
    EXPECT_THAT(recent_sources(), SizeIs(gw::MOST_RECENT_SOURCES));
}

TEST_F(RecentSources, AFileThatCannotBeWrittenIsAFailure) {
    std::filesystem::create_directory(file());
    EXPECT_FALSE(remember_recent_source("/a"));
    EXPECT_THAT(recent_sources(), IsEmpty());
}

TEST_F(RecentSources, WithoutAHomeNothingIsKept) {
    if (gw::runs_as_superuser()) GTEST_SKIP() << "the superuser's file is not in a home directory";
    ::unsetenv("HOME");
    EXPECT_TRUE(remember_recent_source("/a"));
    EXPECT_THAT(recent_sources(), IsEmpty());
}

}  // namespace
