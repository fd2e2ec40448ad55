// SPDX-License-Identifier: MIT
//
// What runs of an earlier release that were killed have left beside the fonts.
#include "store/leftovers.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "store/directory_change.h"
#include "support/file_faults.h"
#include "support/heard_failures.h"
#include "support/temp_dir.h"

namespace {

namespace fs = std::filesystem;
using gw::Reason;
using gw::test::FileFaults;
using gw::test::HeardFailures;
using gw::test::TempDir;

std::optional<std::string> line_of(const std::string& dir, const std::string& name) {
    if (name.starts_with("nameless")) return std::nullopt;
    EXPECT_TRUE(fs::exists(dir + name)) << name;
    return name + " -lost-" + name + '\n';
}

class Leftovers : public testing::Test {
  protected:
    Leftovers() {
        gw::know_lines_by(line_of);
        dir.write("b.pcf", "B");
        dir.write("fonts.dir", "1\nb.pcf -b\n");
    }
    ~Leftovers() override { gw::know_lines_by(nullptr); }

    /// Looks at the directory as the start of the program does, and returns what was told.
    [[nodiscard]] std::vector<gw::Failure> settled() const {
        const HeardFailures heard;
        EXPECT_TRUE(gw::settle(dir.path()));
        return heard.all();
    }
    /// Expects that one thing was told: the reason, about the hidden file.
    void expect_told(Reason reason, const std::string& hidden, const std::string& name) const {
        EXPECT_EQ(
            settled(),
            (std::vector<gw::Failure>{{.subject = dir.path() + hidden, .reason = reason, .detail = name}}));
        EXPECT_FALSE(dir.exists(hidden));
        EXPECT_TRUE(settled().empty()) << "the second time";
    }

    TempDir dir;
};

TEST_F(Leftovers, WhereThereAreNoneNothingIsMade) {
    dir.write(".fonts.dir.gwtmp", "another program is writing it");
    dir.write(".glyphwd.upr.gwtmp", "and this");
    dir.write("a.gwkept", "not hidden");
    dir.write(".gwkept", "of nothing");
    EXPECT_TRUE(settled().empty());
    EXPECT_FALSE(dir.exists(".glyphward"));
    for (const char* name : {".fonts.dir.gwtmp", ".glyphwd.upr.gwtmp", "a.gwkept", ".gwkept"})
        EXPECT_TRUE(dir.exists(name)) << name;
}

TEST_F(Leftovers, AFontThatWasBeingReplacedComesBackWithItsLine) {
    ::chmod(dir.write(".a.pcf.gwkept", "A").c_str(), 0640);
    expect_told(Reason::BROUGHT_BACK, ".a.pcf.gwkept", "a.pcf");
    EXPECT_EQ(dir.read("a.pcf"), "A");
    EXPECT_EQ(dir.read("fonts.dir"), "2\nb.pcf -b\na.pcf -lost-a.pcf\n");
    struct stat info = {};
    ASSERT_EQ(::stat(dir.file("a.pcf").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0640U);
}

TEST_F(Leftovers, ALineThatIsThereStays) {
    dir.write(".a.pcf.gwkept", "A");
    dir.write("fonts.dir", "2\na.pcf -its-own\nb.pcf -b\n");
    expect_told(Reason::BROUGHT_BACK, ".a.pcf.gwkept", "a.pcf");
    EXPECT_EQ(dir.read("fonts.dir"), "2\na.pcf -its-own\nb.pcf -b\n");
}

TEST_F(Leftovers, AFontWhoseNameIsNotKnownComesBackWithoutALine) {
    dir.write(".nameless.pfa.gwkept", "A");
    expect_told(Reason::BROUGHT_BACK_UNLISTED, ".nameless.pfa.gwkept", "nameless.pfa");
    EXPECT_EQ(dir.read("nameless.pfa"), "A");
    EXPECT_EQ(dir.read("fonts.dir"), "1\nb.pcf -b\n");
    // A program without the modules knows no names.
    gw::know_lines_by(nullptr);
    dir.write(".a.pcf.gwkept", "A");
    expect_told(Reason::BROUGHT_BACK_UNLISTED, ".a.pcf.gwkept", "a.pcf");
}

// The run was killed at the very end.
TEST_F(Leftovers, AFontThatHasItsSuccessorIsTakenAway) {
    dir.write(".a.pcf.gwkept", "A");
    dir.write("fonts.dir", "1\nb.pcf -Lost-a.pcf\n");
    expect_told(Reason::TAKEN_AWAY, ".a.pcf.gwkept", "a.pcf");
    EXPECT_FALSE(dir.exists("a.pcf"));
    EXPECT_EQ(dir.read("fonts.dir"), "1\nb.pcf -Lost-a.pcf\n");
}

TEST_F(Leftovers, ALineWithoutItsFileIsNoSuccessor) {
    dir.write(".a.pcf.gwkept", "A");
    dir.write("fonts.dir", "1\ngone.pcf -lost-a.pcf\n");
    expect_told(Reason::BROUGHT_BACK, ".a.pcf.gwkept", "a.pcf");
    EXPECT_EQ(dir.read("a.pcf"), "A");
}

TEST_F(Leftovers, WhatHasItsFileIsTakenAway) {
    dir.write(".b.pcf.gwkept", "B");
    expect_told(Reason::TAKEN_AWAY, ".b.pcf.gwkept", "b.pcf");
    dir.write(".b.pcf.gwold", "older");
    expect_told(Reason::TAKEN_AWAY, ".b.pcf.gwold", "b.pcf");
    dir.write(".c.pfb.gwtmp", "half of");
    expect_told(Reason::TAKEN_AWAY, ".c.pfb.gwtmp", "c.pfb");
    EXPECT_FALSE(dir.exists("c.pfb"));
    EXPECT_EQ(dir.read("b.pcf"), "B");
    EXPECT_EQ(dir.read("fonts.dir"), "1\nb.pcf -b\n");
}

// The run was killed between the index and the file. The file set aside is a link to it.
TEST_F(Leftovers, AFontThatOnlyLostItsLineGetsItBack) {
    dir.write("a.pcf", "A");
    fs::create_hard_link(dir.file("a.pcf"), dir.file(".a.pcf.gwkept"));
    expect_told(Reason::LISTED_AGAIN, ".a.pcf.gwkept", "a.pcf");
    EXPECT_EQ(dir.read("fonts.dir"), "2\nb.pcf -b\na.pcf -lost-a.pcf\n");
    // Another file of that name, which no index lists, is not ours to enter.
    dir.write("c.pcf", "C");
    dir.write(".c.pcf.gwkept", "other");
    expect_told(Reason::TAKEN_AWAY, ".c.pcf.gwkept", "c.pcf");
    EXPECT_EQ(dir.read("fonts.dir"), "2\nb.pcf -b\na.pcf -lost-a.pcf\n");
}

TEST_F(Leftovers, AFileThatWasBeingOverwrittenComesBack) {
    dir.write(".a.pcf.gwold", "A");
    dir.write("fonts.dir", "2\nb.pcf -b\na.pcf -a\n");
    expect_told(Reason::BROUGHT_BACK, ".a.pcf.gwold", "a.pcf");
    EXPECT_EQ(dir.read("a.pcf"), "A");
    EXPECT_EQ(dir.read("fonts.dir"), "2\nb.pcf -b\na.pcf -a\n");
}

TEST_F(Leftovers, OfTwoFilesForOneNameTheReplacedFontCounts) {
    dir.write(".a.pcf.gwold", "older");
    dir.write(".a.pcf.gwkept", "A");
    const auto told = settled();
    ASSERT_EQ(told.size(), 2U);
    EXPECT_EQ(told[0].reason, Reason::BROUGHT_BACK);
    EXPECT_EQ(told[1].reason, Reason::TAKEN_AWAY);
    EXPECT_EQ(dir.read("a.pcf"), "A");
    EXPECT_FALSE(dir.exists(".a.pcf.gwold"));
}

TEST_F(Leftovers, MetricsAndTheResourceFileComeBackWithoutLines) {
    dir.write("afm/.a.afm.gwkept", "metrics");
    expect_told(Reason::BROUGHT_BACK, "afm/.a.afm.gwkept", "afm/a.afm");
    EXPECT_EQ(dir.read("afm/a.afm"), "metrics");
    dir.write("afm/.a.afm.gwold", "older");
    expect_told(Reason::TAKEN_AWAY, "afm/.a.afm.gwold", "afm/a.afm");
    dir.write(".glyphwd.upr.gwkept", "PS-Resources-1.0\n");
    expect_told(Reason::BROUGHT_BACK, ".glyphwd.upr.gwkept", "glyphwd.upr");
    EXPECT_EQ(dir.read("fonts.dir"), "1\nb.pcf -b\n");
}

TEST_F(Leftovers, TheNextChangeFindsThemToo) {
    dir.write(".a.pcf.gwkept", "A");
    const HeardFailures heard;
    const auto change = gw::DirectoryChange::begin(dir.path());
    ASSERT_TRUE(change);
    EXPECT_EQ(heard.all().size(), 1U);
    EXPECT_EQ((*change)->index(), "2\nb.pcf -b\na.pcf -lost-a.pcf\n");
    (*change)->enter("c.pcf -c\n");
    EXPECT_TRUE((*change)->commit());
    EXPECT_EQ(dir.read("fonts.dir"), "3\nb.pcf -b\na.pcf -lost-a.pcf\nc.pcf -c\n");
}

TEST_F(Leftovers, WhatIsNoOrdinaryFileOfOursIsLeftAlone) {
    dir.write("secret", "of somebody");
    fs::create_symlink("secret", dir.file(".a.pcf.gwkept"));
    dir.make_dir(".c.pcf.gwold");
    ASSERT_EQ(::mkfifo(dir.file(".d.pcf.gwkept").c_str(), 0600), 0);
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(dir.write(".e.pcf.gwkept", "E").c_str(), 4711, 4711), 0);
    }
    EXPECT_TRUE(settled().empty());
    for (const char* name : {"a.pcf", "c.pcf", "d.pcf", "e.pcf"}) EXPECT_FALSE(dir.exists(name)) << name;
    EXPECT_TRUE(fs::is_symlink(dir.file(".a.pcf.gwkept")));
}

TEST_F(Leftovers, WhatHasManyNamesWasNotLeftByOneRun) {
    dir.write(".a0.pcf.gwold", "A");
    for (int i = 1; i < 20; ++i)
        fs::create_hard_link(dir.file(".a0.pcf.gwold"), dir.file(".a" + std::to_string(i) + ".pcf.gwold"));
    dir.write("elsewhere", "of somebody");
    fs::create_hard_link(dir.file("elsewhere"), dir.file(".c.pcf.gwkept"));
    EXPECT_TRUE(settled().empty());
    for (const char* name : {"a0.pcf", "a1.pcf", "c.pcf"}) EXPECT_FALSE(dir.exists(name)) << name;
    EXPECT_TRUE(dir.exists(".a19.pcf.gwold"));
}

TEST_F(Leftovers, ManyAreDoneInSeveralGoes) {
    std::string index = "250\n";
    for (int i = 0; i < 250; ++i) {
        const std::string name = "f" + std::to_string(i) + ".pcf";
        dir.write('.' + name + ".gwkept", "F");
        index += name + " -its-own\n";
    }
    dir.write("fonts.dir", index);
    EXPECT_EQ(settled().size(), 200U);
    EXPECT_EQ(settled().size(), 50U);
    EXPECT_TRUE(settled().empty());
    for (const char* name : {"f0.pcf", "f99.pcf", "f249.pcf"}) EXPECT_EQ(dir.read(name), "F") << name;
    EXPECT_EQ(dir.read("fonts.dir"), index);
}

TEST_F(Leftovers, AFontThatHasJustComeBackIsASuccessor) {
    gw::know_lines_by([](const std::string&, const std::string& name) {
        return std::optional<std::string>(name + " -Same\n");
    });
    dir.write(".a.pcf.gwkept", "A");
    dir.write(".c.pcf.gwkept", "C");
    EXPECT_EQ(settled().size(), 2U);
    EXPECT_EQ(dir.read("a.pcf"), "A");
    EXPECT_FALSE(dir.exists("c.pcf"));
    EXPECT_EQ(dir.read("fonts.dir"), "2\nb.pcf -b\na.pcf -Same\n");
}

TEST_F(Leftovers, WhoMayNotWriteIsToldThatSomethingIsUnfinished) {
    if (::geteuid() == 0) GTEST_SKIP() << "every directory is open to the superuser";
    dir.write(".a.pcf.gwkept", "A");
    ::chmod(dir.path().c_str(), 0555);
    const gw::Outcome settled = gw::settle(dir.path());
    ::chmod(dir.path().c_str(), 0755);
    ASSERT_FALSE(settled);
    EXPECT_EQ(settled.failure().reason, Reason::UNFINISHED);
    EXPECT_EQ(dir.read(".a.pcf.gwkept"), "A");
    EXPECT_EQ(dir.read("fonts.dir"), "1\nb.pcf -b\n");
}

/// A directory with one of each kind.
class EveryKind {
  public:
    EveryKind() {
        dir.write("fonts.dir", "1\nb.pcf -b\n");
        dir.write("b.pcf", "B");
        dir.write(".a.pcf.gwkept", "A");
        dir.write(".b.pcf.gwold", "older");
        dir.write("c.pcf", "C");
        fs::create_hard_link(dir.file("c.pcf"), dir.file(".c.pcf.gwkept"));
        dir.write(".d.pcf.gwtmp", "half");
    }
    void settle() const {
        const HeardFailures heard;
        EXPECT_TRUE(gw::settle(dir.path()));
    }
    [[nodiscard]] bool is_clear() const {
        // The lines are in the order in which they came back.
        const std::string index = dir.read("fonts.dir");
        const std::string a = "a.pcf -lost-a.pcf\n", b = "3\nb.pcf -b\n", c = "c.pcf -lost-c.pcf\n";
        bool clear = dir.read("a.pcf") == "A" && dir.read("b.pcf") == "B" && dir.read("c.pcf") == "C" &&
                     (index == b + a + c || index == b + c + a);
        for (const char* name : {".a.pcf.gwkept", ".b.pcf.gwold", ".c.pcf.gwkept", ".d.pcf.gwtmp"})
            clear = clear && !dir.exists(name);
        return clear && !dir.exists(".glyphward/journal") && fs::is_empty(dir.file(".glyphward/old"));
    }
    /// Whether each font is there, under one name or the other.
    [[nodiscard]] bool has_all() const {
        return (dir.read("a.pcf") == "A" || dir.read(".a.pcf.gwkept") == "A") && dir.read("b.pcf") == "B" &&
               dir.read("c.pcf") == "C";
    }
    TempDir dir;
};

int calls_for_every_kind() {
    const EveryKind world;
    const FileFaults counting(FileFaults::Fault::NONE, 0);
    world.settle();
    EXPECT_TRUE(world.is_clear());
    return FileFaults::calls();
}

TEST_F(Leftovers, KilledMeanwhileItIsDoneTheNextTime) {
    const int calls = calls_for_every_kind();
    ASSERT_GT(calls, 10);
    for (int at = 1; at <= calls; ++at) {
        const EveryKind world;
        (void)gw::test::killed_at(at, [&] { world.settle(); });
        world.settle();
        EXPECT_TRUE(world.is_clear())
            << "killed at " << at << " of " << calls << ": " << world.dir.read("fonts.dir");
    }
}

TEST_F(Leftovers, WhatFailsLosesNothing) {
    const int calls = calls_for_every_kind();
    for (const FileFaults::Fault fault :
         {FileFaults::Fault::FAIL_ONCE, FileFaults::Fault::FAIL_FROM_THEN_ON}) {
        for (const int error : {ENOSPC, EIO, EROFS}) {
            for (int at = 1; at <= calls; ++at) {
                const EveryKind world;
                {
                    const FileFaults faults(fault, at, error);
                    const HeardFailures heard;
                    (void)gw::settle(world.dir.path());
                }
                EXPECT_TRUE(world.has_all()) << "call " << at << " of " << calls << ", error " << error;
                world.settle();
                EXPECT_TRUE(world.is_clear()) << "call " << at << " of " << calls << ", error " << error;
            }
        }
    }
}

}  // namespace
