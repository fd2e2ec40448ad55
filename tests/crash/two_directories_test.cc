// SPDX-License-Identifier: MIT
//
// Two directories in one action, killed and failed at each call: both are as they were, or both are as they
// were to be, and what is said of them is true.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>

#include "store/font_action.h"
#include "store/joint_change.h"
#include "support/file_faults.h"
#include "support/put_file.h"
#include "support/temp_dir.h"

namespace {

using gw::DirectoryChange;
using gw::test::FileFaults;
using gw::test::TempDir;

enum class State { OLD, NEW, MIXED };

gw::Outcome put_font(DirectoryChange& change, const std::string& name, const std::string& bytes) {
    return gw::test::put_font(change, name, bytes, '-' + bytes);
}

gw::Outcome remove_font(DirectoryChange& change, const std::string& name) {
    change.strike_out(name, 1);
    (void)change.take_out(name, false);
    return gw::done();
}

/// Two directories, one with the font "a" and one with "b".
class Pair {
  public:
    Pair() {
        x.write("a.pcf", "a");
        x.write("fonts.dir", "1\na.pcf -a\n");
        y.write("b.pcf", "b");
        y.write("fonts.dir", "1\nb.pcf -b\n");
    }

    /// The font "a" moves to the other directory, and with `both_ways` the other font to this one.
    gw::Outcome move(bool both_ways) const {
        return gw::as_one_change([&] {
            gw::Outcome done = gw::in_change(x.path(), [&](DirectoryChange& change) {
                gw::Outcome gone = remove_font(change, "a.pcf");
                return gone && both_ways ? put_font(change, "b.pcf", "b") : gone;
            });
            if (!done) return done;
            return gw::in_change(y.path(), [&](DirectoryChange& change) {
                if (both_ways) (void)remove_font(change, "b.pcf");
                return put_font(change, "a.pcf", "a");
            });
        });
    }

    [[nodiscard]] State state(bool both_ways) const {
        const std::string in_x = shown(x);
        const std::string in_y = shown(y);
        if (in_x == "1\na.pcf -a\na" && in_y == "1\nb.pcf -b\nb") return State::OLD;
        const bool is_new = both_ways ? in_x == "1\nb.pcf -b\nb" && in_y == "1\na.pcf -a\na"
                                      : in_x == "0\n" && in_y == "2\nb.pcf -b\na.pcf -a\nab";
        return is_new ? State::NEW : State::MIXED;
    }
    [[nodiscard]] std::string text() const { return "x: " + shown(x) + "\ny: " + shown(y); }
    [[nodiscard]] bool is_tidy() const { return is_tidy(x) && is_tidy(y); }

    TempDir x;
    TempDir y;

  private:
    static std::string shown(const TempDir& dir) {
        std::string all = dir.read("fonts.dir");
        for (const char* name : {"a.pcf", "b.pcf"}) all += dir.exists(name) ? dir.read(name) : "";
        return all;
    }
    static bool is_tidy(const TempDir& dir) {
        return !dir.exists(".glyphward/journal") &&
               (!dir.exists(".glyphward") ||
                gw::final_names(*gw::Directory::open(dir.file(".glyphward"))).empty());
    }
};

class TwoWays : public testing::TestWithParam<bool> {};

TEST_P(TwoWays, KilledAtAnyCallBothAreOldOrBothAreNew) {
    for (const bool x_first : {true, false}) {
        int at = 1;
        int as_new = 0;
        for (;; ++at) {
            const Pair pair;
            const bool killed = gw::test::killed_at(at, [&] { (void)pair.move(GetParam()); });
            const std::string& first = x_first ? pair.x.path() : pair.y.path();
            for (const std::string& dir : {first, pair.y.path(), pair.x.path()}) EXPECT_TRUE(gw::settle(dir));
            EXPECT_NE(pair.state(GetParam()), State::MIXED) << "killed at " << at << '\n' << pair.text();
            EXPECT_TRUE(pair.is_tidy()) << at;
            as_new += pair.state(GetParam()) == State::NEW ? 1 : 0;
            if (!killed) break;
        }
        EXPECT_GT(at, 40);
        EXPECT_GT(as_new, 2);
    }
}

TEST_P(TwoWays, KilledAgainWhileItIsSettledBothAreOldOrBothAreNew) {
    int commits = 0;
    for (int at = 30;; at += gw::test::CALL_STEP) {
        bool killed = false;
        for (int again = 1; again < 8; ++again) {
            const Pair pair;
            killed = gw::test::killed_at(at, [&] { (void)pair.move(GetParam()); });
            (void)gw::test::killed_at(again, [&] { (void)gw::settle(pair.y.path()); });
            for (const TempDir* dir : {&pair.x, &pair.y, &pair.x}) EXPECT_TRUE(gw::settle(dir->path()));
            EXPECT_NE(pair.state(GetParam()), State::MIXED) << at << ", then " << again << '\n'
                                                            << pair.text();
            EXPECT_TRUE(pair.is_tidy()) << at << ", then " << again;
            commits += pair.state(GetParam()) == State::NEW ? 1 : 0;
        }
        if (!killed) break;
    }
    EXPECT_GT(commits, 7);
}

// The directory that is asked what became of the change may be on a disk that is not mounted now.
TEST_P(TwoWays, KilledAtAnyCallBothWaitForTheOneThatIsAway) {
    int waited = 0;
    for (const bool x_is_away : {true, false}) {
        bool killed = true;
        for (int at = 1; killed && at < gw::test::MOST_CALLS; at += gw::test::CALL_STEP) {
            const Pair pair;
            killed = gw::test::killed_at(at, [&] { (void)pair.move(GetParam()); });
            const TempDir& away = x_is_away ? pair.x : pair.y;
            const TempDir& here = x_is_away ? pair.y : pair.x;
            std::filesystem::rename(away.path(), here.file("elsewhere"));
            waited += gw::settle(here.path()) ? 0 : 1;
            std::filesystem::rename(here.file("elsewhere"), away.path());
            for (const TempDir* dir : {&away, &here, &away}) EXPECT_TRUE(gw::settle(dir->path())) << at;
            // A font that only goes from a directory is brought back at once.
            const bool is_in_both = !GetParam() && pair.x.exists("a.pcf") && pair.y.exists("a.pcf");
            EXPECT_TRUE(is_in_both || pair.state(GetParam()) != State::MIXED) << at << '\n' << pair.text();
            EXPECT_TRUE(pair.is_tidy()) << at;
        }
        EXPECT_FALSE(killed);
    }
    EXPECT_EQ(waited > 0, GetParam()) << waited;
}

TEST_P(TwoWays, WhatFailsIsWhatIsSaid) {
    for (const FileFaults::Fault fault :
         {FileFaults::Fault::FAIL_ONCE, FileFaults::Fault::FAIL_FROM_THEN_ON}) {
        for (const int error : {ENOSPC, EIO, EROFS}) {
            for (int at = 1, calls = 1; at <= calls; at += gw::test::CALL_STEP) {
                const Pair pair;
                gw::Outcome outcome;
                {
                    const FileFaults faults(fault, at, error);
                    outcome = pair.move(GetParam());
                    calls = FileFaults::calls();
                }
                for (const TempDir* dir : {&pair.x, &pair.y}) EXPECT_TRUE(gw::settle(dir->path()));
                EXPECT_EQ(pair.state(GetParam()), outcome ? State::NEW : State::OLD)
                    << (outcome ? "done" : outcome.failure().text()) << ": call " << at << " of " << calls
                    << ", error " << error << '\n'
                    << pair.text();
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, TwoWays, testing::Bool());

TEST(TwoDirectories, ThatOnlyLoseFontsCanDoSoOnAFullDisk) {
    const Pair pair;
    {
        gw::FontAction action;
        for (const auto& [dir, name] : {std::pair(&pair.x, "a.pcf"), std::pair(&pair.y, "b.pcf")}) {
            EXPECT_TRUE(gw::in_change(
                dir->path(), [font = name](DirectoryChange& change) { return remove_font(change, font); }));
        }
        const FileFaults faults(FileFaults::Fault::FAIL_ONCE, 2, ENOSPC);
        EXPECT_TRUE(action.commit().empty());
    }
    EXPECT_EQ(pair.text(), "x: 0\n\ny: 0\n");
}

// What says so is a file that only the owner of the leading directory can have made.
TEST(TwoDirectories, ADirectoryOfAStrangersDecidesNothing) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can make files of another user";
    const Pair pair;
    { ASSERT_TRUE(DirectoryChange::begin(pair.x.path())); }
    { ASSERT_TRUE(DirectoryChange::begin(pair.y.path())); }
    std::filesystem::rename(pair.x.file("a.pcf"), pair.x.file(".glyphward/old/0"));
    pair.x.write(".glyphward/journal", "glyphward-journal 2\nout 0 a.pcf\nwith 1f " + pair.y.path() + '\n');
    pair.y.write(".glyphward/final-1f", "glyphward-journal 2\nand " + pair.x.path() + '\n');
    ASSERT_EQ(::chown(pair.y.file(".glyphward/final-1f").c_str(), 1000, 1000), 0);
    EXPECT_TRUE(gw::settle(pair.x.path()));
    EXPECT_TRUE(pair.x.exists("a.pcf"));
}

}  // namespace
