// SPDX-License-Identifier: MIT
//
// Directories that answer and directories that do not, with children that hang where a dead mount would let
// them hang. A limit of an hour must not be reached; the short ones pass.
#include "platform/directory_look.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "support/children.h"
#include "support/sleeping_files.h"
#include "support/temp_dir.h"

namespace {

using gw::silent_directories;
using gw::test::has_children;
using gw::test::NobodyDies;
using gw::test::SleepingDirectory;
using gw::test::TempDir;
using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

constexpr std::chrono::hours FOR_EVER(1);
constexpr std::chrono::milliseconds SHORT(300);

class DirectoryLook : public testing::Test {
  protected:
    DirectoryLook() {
        for (const char* name : {"a/fonts.dir", "asleep/fonts.dir", "b/fonts.dir", "c/fonts.alias"})
            dir.write(name, "0\n");
    }
    ~DirectoryLook() override { EXPECT_FALSE(has_children()); }
    [[nodiscard]] Texts files(std::initializer_list<const char*> names) const {
        Texts all;
        for (const char* name : names) all.push_back(dir.file(name));
        return all;
    }
    const TempDir dir;
};

TEST_F(DirectoryLook, WhateverIsThereOrNotThereAnswers) {
    dir.make_dir("empty");
    dir.write("file", "x");
    dir.make_dir("strange/fonts.dir");
    std::filesystem::create_symlink(dir.file("nowhere"), dir.file("dangling"));
    EXPECT_THAT(
        silent_directories(files({"a/", "b", "c", "empty", "file", "strange", "dangling", "nowhere/below"}),
                           FOR_EVER),
        IsEmpty());
    EXPECT_THAT(silent_directories({}, FOR_EVER), IsEmpty());
}

TEST_F(DirectoryLook, PipesInTheirPlacesAreNotWaitedFor) {
    ASSERT_EQ(::mkfifo(dir.file("b/fonts.alias").c_str(), 0600), 0);
    ASSERT_EQ(::mkfifo(dir.file("pipe").c_str(), 0600), 0);
    EXPECT_THAT(silent_directories(files({"b", "pipe"}), FOR_EVER), IsEmpty());
}

TEST_F(DirectoryLook, TheOneThatHangsIsSilentAndTheOthersAnswer) {
    const SleepingDirectory asleep(dir.file("asleep"));
    EXPECT_EQ(silent_directories(files({"a", "asleep/", "b", "c"}), SHORT), files({"asleep/"}));
    EXPECT_EQ(silent_directories(files({"asleep", "b"}), SHORT), files({"asleep"}));
    EXPECT_EQ(silent_directories(files({"b", "asleep"}), SHORT), files({"asleep"}));
    EXPECT_EQ(silent_directories(files({"asleep/below"}), SHORT), files({"asleep/below"}));
    EXPECT_THAT(asleep.looked_at(), IsEmpty());
}

TEST_F(DirectoryLook, ManyThatHangDoNotHideTheOneBehindThem) {
    const SleepingDirectory asleep(dir.file("asleep"));
    Texts many;
    for (int i = 0; i < 20; ++i) many.push_back(dir.file("asleep/" + std::to_string(i)));
    Texts all = many;
    all.push_back(dir.file("b"));
    EXPECT_EQ(silent_directories(all, std::chrono::seconds(2)), many);
}

// Nobody waits for them, and they are collected when somebody asks again.
TEST_F(DirectoryLook, ChildrenThatCannotDieAreLeftBehindAndCollectedLater) {
    const SleepingDirectory asleep(dir.file("asleep"));
    {
        const NobodyDies alive;
        EXPECT_EQ(silent_directories(files({"asleep", "b"}), SHORT), files({"asleep"}));
        EXPECT_THAT(NobodyDies::spared(), testing::SizeIs(testing::Ge(1U)));
        EXPECT_TRUE(has_children());
    }
    for (const int child : NobodyDies::spared()) ::kill(child, SIGKILL);
    // Waits for their ends without collecting them.
    for (const int child : NobodyDies::spared()) {
        siginfo_t info = {};
        ::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT);
    }
    EXPECT_THAT(silent_directories(files({"b"}), FOR_EVER), IsEmpty());
}

TEST_F(DirectoryLook, WithoutAnyChildAllCountAsAnswering) {
    const SleepingDirectory asleep(dir.file("asleep"));
    rlimit before = {};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none = {0, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    const Texts silent = silent_directories(files({"asleep", "b"}), FOR_EVER);
    ::setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_THAT(silent, IsEmpty());
}

// A child that hangs for ever would keep a terminal, a lock or the X server's connection.
TEST_F(DirectoryLook, ChildrenKeepNothingOpenButTheirPipe) {
    const SleepingDirectory asleep(dir.file("asleep"));
    Texts open;
    {
        const NobodyDies alive;
        (void)silent_directories(files({"asleep"}), SHORT);
        for (const int child : NobodyDies::spared()) {
            for (const auto& fd :
                 std::filesystem::directory_iterator("/proc/" + std::to_string(child) + "/fd"))
                open.push_back(fd.path().filename());
        }
    }
    EXPECT_THAT(open, ElementsAre("0"));
    for (const int child : NobodyDies::spared()) {
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
    }
    EXPECT_THAT(silent_directories(files({"b"}), FOR_EVER), IsEmpty());
}

}  // namespace
