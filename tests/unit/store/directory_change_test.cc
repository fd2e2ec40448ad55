// SPDX-License-Identifier: MIT
#include "store/directory_change.h"

#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "core/file_calls.h"
#include "store/font_action.h"
#include "store/journal.h"
#include "support/file_faults.h"
#include "support/heard_failures.h"
#include "support/put_file.h"
#include "support/temp_dir.h"

namespace {

using gw::DirectoryChange;
using gw::Reason;
using gw::test::TempDir;

constexpr const char* INDEX = "2\na.pcf -a\nb.pcf -b\n";

class Change : public testing::Test {
  protected:
    Change() {
        dir.write("a.pcf", "A");
        dir.write("b.pcf", "B");
        dir.write("fonts.dir", INDEX);
        gw::set_lock_patience(60);
    }
    ~Change() override { gw::set_lock_patience(5000); }

    [[nodiscard]] std::unique_ptr<DirectoryChange> begin() const {
        auto change = DirectoryChange::begin(dir.path());
        EXPECT_TRUE(change) << (change ? "" : change.failure().text());
        return change ? std::move(*change) : nullptr;
    }
    static void put(DirectoryChange& change, const std::string& name, const std::string& bytes) {
        EXPECT_TRUE(gw::test::put_file(change, name, bytes)) << name;
    }

    TempDir dir;
};

TEST_F(Change, IsAllThereWhenItIsCommitted) {
    const auto change = begin();
    put(*change, "c.pcf", "C");
    change->enter("c.pcf -c\n");
    EXPECT_EQ(change->strike_out("a.pcf", 1), 1);
    EXPECT_TRUE(change->take_out("a.pcf", false));
    EXPECT_EQ(dir.read("fonts.dir"), INDEX) << "the index follows at the end";
    EXPECT_TRUE(dir.exists("a.pcf"));
    EXPECT_TRUE(change->commit());
    EXPECT_EQ(dir.read("fonts.dir"), "2\nb.pcf -b\nc.pcf -c\n");
    EXPECT_EQ(dir.read("c.pcf"), "C");
    EXPECT_FALSE(dir.exists("a.pcf"));
    EXPECT_FALSE(dir.exists(".glyphward/journal"));
    EXPECT_TRUE(std::filesystem::is_empty(dir.file(".glyphward/old")));
}

TEST_F(Change, LeavesNothingWhenItIsNotCommitted) {
    {
        const auto change = begin();
        put(*change, "a.pcf", "other");
        put(*change, "c.pcf", "C");
        EXPECT_TRUE(change->make_metrics_dir());
        put(*change, "afm/c.afm", "metrics");
        EXPECT_EQ(dir.read("a.pcf"), "other");
        EXPECT_TRUE(dir.exists("afm/c.afm"));
    }
    EXPECT_EQ(dir.read("a.pcf"), "A");
    EXPECT_FALSE(dir.exists("c.pcf"));
    EXPECT_FALSE(dir.exists("afm"));
    EXPECT_EQ(gw::test::entries_in(dir.path()), 3);
}

TEST_F(Change, OfOneFontCanBeTakenBackAlone) {
    const auto change = begin();
    put(*change, "c.pcf", "C");
    change->enter("c.pcf -c\n");
    const DirectoryChange::Mark mark = change->mark();
    put(*change, "d.pcf", "D");
    change->enter("d.pcf -d\n");
    change->take_out("b.pcf", false);
    change->take_back_to(mark);
    EXPECT_TRUE(change->commit());
    EXPECT_EQ(dir.read("fonts.dir"), "3\na.pcf -a\nb.pcf -b\nc.pcf -c\n");
    EXPECT_FALSE(dir.exists("d.pcf"));
    EXPECT_TRUE(dir.exists("b.pcf"));
}

// `mkfontdir` takes no lock.
TEST_F(Change, KeepsWhatAnotherProgramHasWrittenMeanwhile) {
    const auto change = begin();
    change->enter("c.pcf -c\n");
    change->strike_out("a.pcf", 1);
    dir.write("fonts.dir", "3\nnew.pcf -new\nb.pcf -b\na.pcf -a\n");
    EXPECT_TRUE(change->commit());
    EXPECT_EQ(dir.read("fonts.dir"), "3\nnew.pcf -new\nb.pcf -b\nc.pcf -c\n");
}

TEST_F(Change, KeepsOthersOut) {
    const auto change = begin();
    const auto other = DirectoryChange::begin(dir.path());
    ASSERT_FALSE(other);
    EXPECT_EQ(other.failure().reason, Reason::IN_USE);
    EXPECT_EQ(other.failure().detail, std::to_string(::getpid()));
    EXPECT_TRUE(gw::settle(dir.path())) << "what is going on is not unfinished";
}

TEST_F(Change, DatesTheIndexLaterByWholeSeconds) {
    struct stat before = {};
    ASSERT_EQ(::stat(dir.file("fonts.dir").c_str(), &before), 0);
    for (int i = 0; i < 3; ++i) {
        struct stat now = {};
        const auto change = begin();
        for (int font = 0; font < 100; ++font) change->enter("c" + std::to_string(font) + ".pcf -c\n");
        EXPECT_TRUE(change->commit());
        ASSERT_EQ(::stat(dir.file("fonts.dir").c_str(), &now), 0);
        EXPECT_GT(now.st_mtim.tv_sec, before.st_mtim.tv_sec);
        EXPECT_LE(now.st_mtim.tv_sec, ::time(nullptr) + i + 1);
        before = now;
    }
}

TEST_F(Change, OverwritesAnIndexThatHasOtherNames) {
    ASSERT_EQ(::link(dir.file("fonts.dir").c_str(), dir.file("second").c_str()), 0);
    const auto change = begin();
    change->enter("c.pcf -c\n");
    EXPECT_TRUE(change->commit());
    EXPECT_EQ(dir.read("second"), "3\na.pcf -a\nb.pcf -b\nc.pcf -c\n");
}

TEST_F(Change, FollowsAnIndexThatIsItsOwnLink) {
    dir.write("elsewhere/real", INDEX);
    std::filesystem::remove(dir.file("fonts.dir"));
    std::filesystem::create_symlink("elsewhere/real", dir.file("fonts.dir"));
    const auto change = begin();
    change->enter("c.pcf -c\n");
    EXPECT_TRUE(change->commit());
    EXPECT_TRUE(std::filesystem::is_symlink(dir.file("fonts.dir")));
    EXPECT_EQ(dir.read("elsewhere/real"), "3\na.pcf -a\nb.pcf -b\nc.pcf -c\n");
}

TEST_F(Change, TrustsNobodyElsesLinksAndFiles) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can make files of another user";
    const auto refused = [&] {
        const auto change = DirectoryChange::begin(dir.path());
        return !change && change.failure().reason == Reason::NOT_OURS;
    };
    std::filesystem::rename(dir.file("fonts.dir"), dir.file("real"));
    std::filesystem::create_symlink("real", dir.file("fonts.dir"));
    ASSERT_EQ(::lchown(dir.file("fonts.dir").c_str(), 1000, 1000), 0);
    EXPECT_TRUE(refused()) << "the index";
    std::filesystem::remove(dir.file("fonts.dir"));
    std::filesystem::remove_all(dir.file(".glyphward"));

    std::filesystem::create_symlink("/tmp", dir.file(".glyphward"));
    EXPECT_TRUE(refused()) << "a link in our place, although it is root's";
    std::filesystem::remove(dir.file(".glyphward"));
    ASSERT_EQ(::mkdir(dir.file(".glyphward").c_str(), 0777), 0);
    ASSERT_EQ(::chown(dir.file(".glyphward").c_str(), 1000, 1000), 0);
    EXPECT_TRUE(refused()) << "a directory of another user's";
    ASSERT_EQ(::chown(dir.file(".glyphward").c_str(), 0, 0), 0);
    dir.write(".glyphward/journal", "glyphward-journal 1\nput 1 a.pcf\n");
    ASSERT_EQ(::chown(dir.file(".glyphward/journal").c_str(), 1000, 1000), 0);
    EXPECT_TRUE(refused()) << "a journal of another user's";
    EXPECT_EQ(dir.read("a.pcf"), "A");
}

/// A directory of an ordinary user's, and a file of the superuser's that the user would like to reach.
class OthersDirectory : public Change {
  protected:
    void SetUp() override {
        if (::geteuid() != 0) GTEST_SKIP() << "only the superuser changes the directories of others";
        ASSERT_EQ(::chown(dir.c_str(), USER, USER), 0);
        target.write("passwd", "root\n");
    }
    /// What the owner of a directory can do at any moment.
    void exchange_index_for_a_link() const {
        std::filesystem::remove(dir.file("fonts.dir"));
        std::filesystem::create_symlink(target.file("passwd"), dir.file("fonts.dir"));
        ASSERT_EQ(::lchown(dir.file("fonts.dir").c_str(), USER, USER), 0);
    }
    void plant_journal(const std::string& records) const {
        dir.write(".glyphward/journal", "glyphward-journal 1\n" + records);
        ASSERT_EQ(::chown(dir.file(".glyphward/journal").c_str(), USER, USER), 0);
    }
    static constexpr uid_t USER = 1000;
    TempDir target;
};

TEST_F(OthersDirectory, AnIndexThatBecomesALinkIsNotFollowed) {
    std::filesystem::create_hard_link(dir.file("fonts.dir"), dir.file("second"));
    ASSERT_EQ(::chown(dir.file("fonts.dir").c_str(), USER, USER), 0);
    const auto change = begin();
    change->enter("c.pcf -c\n");
    exchange_index_for_a_link();
    EXPECT_FALSE(change->commit());
    EXPECT_EQ(target.read("passwd"), "root\n");
}

TEST_F(OthersDirectory, AnIndexThatBecomesALinkIsNotFollowedOnAFullDisk) {
    const auto change = begin();
    change->strike_out("a.pcf", 1);
    EXPECT_TRUE(change->take_out("a.pcf", false));
    exchange_index_for_a_link();
    {
        const gw::test::FileFaults faults(gw::test::FileFaults::Fault::FAIL_ONCE, 2, ENOSPC);
        EXPECT_FALSE(change->commit());
    }
    EXPECT_EQ(target.read("passwd"), "root\n");
    EXPECT_TRUE(dir.exists("a.pcf"));
}

// The owner can give a link that the superuser has made another name.
TEST_F(OthersDirectory, ALinkOfTheSuperusersLeadsNowhere) {
    { const auto change = begin(); }
    std::filesystem::create_directory_symlink(target.path(), dir.file("afm"));
    struct stat info = {};
    ASSERT_EQ(::stat(target.file("passwd").c_str(), &info), 0);
    dir.write(".glyphward/old/0", "planted");
    plant_journal("put " + std::to_string(info.st_ino) + " afm/passwd\nout 0 afm/planted\n");
    EXPECT_FALSE(gw::settle(dir.path()));
    EXPECT_TRUE(target.exists("passwd"));
    EXPECT_FALSE(target.exists("planted"));

    std::filesystem::remove(dir.file("afm"));
    std::filesystem::remove(dir.file("fonts.dir"));
    std::filesystem::create_symlink(target.file("passwd"), dir.file("fonts.dir"));
    plant_journal("line 1 evil\nindex 0 1\n");
    EXPECT_FALSE(gw::settle(dir.path()));
    EXPECT_EQ(target.read("passwd"), "root\n");
    std::filesystem::remove(dir.file(".glyphward/journal"));
    EXPECT_FALSE(DirectoryChange::begin(dir.path())) << "not read either";
}

TEST_F(OthersDirectory, AnIndexThatIsASecondNameOfAnothersFileIsRefused) {
    std::filesystem::remove(dir.file("fonts.dir"));
    std::filesystem::create_hard_link(target.file("passwd"), dir.file("fonts.dir"));
    const auto change = DirectoryChange::begin(dir.path());
    ASSERT_FALSE(change);
    EXPECT_EQ(change.failure().reason, Reason::NOT_OURS);
    plant_journal("line 1 evil\nindex 0 1\n");
    EXPECT_FALSE(gw::settle(dir.path()));
    EXPECT_EQ(target.read("passwd"), "root\n");
}

TEST_F(OthersDirectory, ALinkThereThatALinkOfOursLeadsToIsNotFollowed) {
    const TempDir ours;
    exchange_index_for_a_link();
    std::filesystem::create_symlink(dir.file("fonts.dir"), ours.file("fonts.dir"));
    const auto change = DirectoryChange::begin(ours.path());
    ASSERT_FALSE(change);
    EXPECT_EQ(change.failure().reason, Reason::NOT_OURS);
    // The link may come while the change is going on.
    std::filesystem::remove(dir.file("fonts.dir"));
    dir.write("fonts.dir", INDEX);
    auto begun = DirectoryChange::begin(ours.path());
    ASSERT_TRUE(begun);
    (*begun)->enter("c.pcf -c\n");
    exchange_index_for_a_link();
    EXPECT_FALSE((*begun)->commit());
    EXPECT_EQ(target.read("passwd"), "root\n");
}

TEST_F(OthersDirectory, AnOldIndexThatIsALinkToASecretIsNotBroughtBack) {
    { const auto change = begin(); }
    ASSERT_EQ(::chmod(target.file("passwd").c_str(), 0600), 0);
    for (const char* forged : {"old", "new"}) {
        const std::string other = forged == std::string("old") ? "new" : "old";
        dir.write(".glyphward/" + other + "/fonts.dir", INDEX);
        std::filesystem::create_hard_link(target.file("passwd"),
                                          dir.file(".glyphward/" + std::string(forged) + "/fonts.dir"));
        plant_journal("overwrite\n");
        EXPECT_FALSE(gw::settle(dir.path())) << forged;
        EXPECT_EQ(dir.read("fonts.dir"), INDEX) << forged;
        std::filesystem::remove(dir.file(".glyphward/journal"));
        { const auto change = begin(); }
    }
    EXPECT_EQ(target.read("passwd"), "root\n");
}

// Anybody can give any file a second name there.
TEST_F(Change, WhereEverybodyMayWriteTrustsNoIndexWithASecondName) {
    ASSERT_EQ(::link(dir.file("fonts.dir").c_str(), dir.file("second").c_str()), 0);
    ASSERT_EQ(::chmod(dir.c_str(), 01777), 0);
    const auto change = DirectoryChange::begin(dir.path());
    ASSERT_FALSE(change);
    EXPECT_EQ(change.failure().reason, Reason::NOT_OURS);
}

TEST_F(Change, FollowsAnIndexThroughAllItsOwnLinks) {
    dir.write("elsewhere/real", INDEX);
    std::filesystem::remove(dir.file("fonts.dir"));
    std::filesystem::create_symlink("elsewhere/second", dir.file("fonts.dir"));
    std::filesystem::create_symlink("../third", dir.file("elsewhere/second"));
    std::filesystem::create_symlink(dir.file("elsewhere/real"), dir.file("third"));
    auto change = begin();
    change->enter("c.pcf -c\n");
    EXPECT_TRUE(change->commit());
    EXPECT_TRUE(std::filesystem::is_symlink(dir.file("fonts.dir")));
    EXPECT_EQ(dir.read("elsewhere/real"), "3\na.pcf -a\nb.pcf -b\nc.pcf -c\n");
    change.reset();
    std::filesystem::remove(dir.file("third"));
    std::filesystem::create_symlink("fonts.dir", dir.file("third"));
    const auto endless = DirectoryChange::begin(dir.path());
    ASSERT_FALSE(endless);
    EXPECT_EQ(endless.failure().error, ELOOP);
    // What removes the directory cannot get along with it.
    std::filesystem::remove(dir.file("third"));
}

TEST_F(Change, WhoseJournalWouldMakeAnEndlessIndexIsNotTakenBack) {
    dir.write(".glyphward/journal",
              "glyphward-journal 1\nline 1000 x.pcf " + std::string(100000, 'x') + "\nindex 1 1\n");
    EXPECT_FALSE(gw::settle(dir.path()));
    EXPECT_EQ(dir.read("fonts.dir"), INDEX);
    dir.write(".glyphward/journal", "glyphward-journal 1\nline 2 x.pcf -x\nindex 1 1\n");
    EXPECT_TRUE(gw::settle(dir.path()));
    EXPECT_EQ(dir.read("fonts.dir"), "4\na.pcf -a\nb.pcf -b\nx.pcf -x\nx.pcf -x\n");
}

TEST_F(Change, WhoseJournalIsTooLongIsNoneOfOurs) {
    dir.write(".glyphward/journal",
              "glyphward-journal 1\n" + std::string(gw::journal::MOST_BYTES, 'x') + '\n');
    const gw::Outcome settled = gw::settle(dir.path());
    ASSERT_FALSE(settled);
    EXPECT_EQ(settled.failure().reason, Reason::NOT_A_JOURNAL);
}

// What a journal cannot say could not be taken back.
TEST_F(Change, OfALineThatTheIndexHasTooOftenIsRefused) {
    std::string index = "1001\n";
    for (int i = 0; i < 1001; ++i) index += "a.pcf -a\n";
    dir.write("fonts.dir", index);
    const auto change = begin();
    change->strike_out("a.pcf", 1);
    EXPECT_TRUE(change->take_out("a.pcf", false));
    const gw::Outcome committed = change->commit();
    ASSERT_FALSE(committed);
    EXPECT_EQ(committed.failure().error, EOVERFLOW);
    EXPECT_EQ(dir.read("fonts.dir"), index);
    EXPECT_TRUE(dir.exists("a.pcf"));
}

// One font goes, and a file of another that fails gets its name for a moment.
TEST_F(Change, TakenBackToAMarkStillKnowsWhatGoes) {
    const auto change = begin();
    change->strike_out("a.pcf", 1);
    EXPECT_TRUE(change->take_out("a.pcf", false));
    const DirectoryChange::Mark mark = change->mark();
    change->strike_out("b.pcf", 1);
    EXPECT_TRUE(change->take_out("b.pcf", false));
    put(*change, "a.pcf", "new");
    change->take_back_to(mark);
    EXPECT_TRUE(change->commit());
    EXPECT_EQ(dir.read("fonts.dir"), "1\nb.pcf -b\n");
    EXPECT_FALSE(dir.exists("a.pcf"));
    EXPECT_EQ(dir.read("b.pcf"), "B");
}

TEST_F(Change, KnowsTheFirstLineOfAnIndexWithoutACount) {
    dir.write("fonts.dir", "a.pcf -a\nb.pcf -b\n");
    const auto change = begin();
    change->strike_out("a.pcf", 1);
    dir.write("fonts.dir", INDEX);
    EXPECT_TRUE(change->commit());
    EXPECT_EQ(dir.read("fonts.dir"), "1\nb.pcf -b\n");
}

TEST_F(Change, MakesAnIndexThatWasRemovedMeanwhile) {
    const auto change = begin();
    change->enter("c.pcf -c\n");
    std::filesystem::remove(dir.file("fonts.dir"));
    EXPECT_TRUE(change->commit());
    EXPECT_EQ(dir.read("fonts.dir"), "1\nc.pcf -c\n");
}

TEST_F(Change, ThatOnlyDeletesKeepsThePermissionsOfTheIndex) {
    ASSERT_EQ(::chmod(dir.file("fonts.dir").c_str(), 0600), 0);
    const auto change = begin();
    change->strike_out("a.pcf", 1);
    EXPECT_TRUE(change->commit());
    struct stat info = {};
    ASSERT_EQ(::stat(dir.file("fonts.dir").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600U);
}

// Whatever the lengths of the lines are.
TEST_F(Change, ThatBringsAFontMakesTheIndexReadableToAll) {
    ASSERT_EQ(::chmod(dir.file("fonts.dir").c_str(), 0600), 0);
    const auto change = begin();
    EXPECT_EQ(change->strike_out("a.pcf", 1), 1);
    EXPECT_TRUE(gw::test::put_font(*change, "c", "C", "-c"));
    EXPECT_TRUE(change->commit());
    EXPECT_EQ(dir.read("fonts.dir"), "2\nb.pcf -b\nc -c\n");
    struct stat info = {};
    ASSERT_EQ(::stat(dir.file("fonts.dir").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0644U);
}

TEST_F(Change, BringsMetricsBackAlsoWhenTheirDirectoryHasGone) {
    dir.write(".glyphward/old/0", "metrics");
    dir.write(".glyphward/journal", "glyphward-journal 1\nout 0 afm/a.afm\n");
    EXPECT_TRUE(gw::settle(dir.path()));
    EXPECT_EQ(dir.read("afm/a.afm"), "metrics");
}

/// A directory that leads to itself.
void spoil_metrics_of(const TempDir& dir) {
    std::filesystem::create_symlink("afm", dir.file("afm"));
}

// A directory for metrics that cannot be looked into is not one without them.
TEST_F(Change, FailsWhenItCannotReachWhatGoes) {
    spoil_metrics_of(dir);
    {
        const auto change = begin();
        change->strike_out("a.pcf", 1);
        EXPECT_TRUE(change->take_out("a.pcf", false));
        EXPECT_TRUE(change->take_out("afm/a.afm", false));
        EXPECT_EQ(gw::test::text_of(change->commit()),
                  dir.file("afm/a.afm") + ": Too many levels of symbolic links");
        EXPECT_EQ(dir.read("fonts.dir"), INDEX);
        EXPECT_TRUE(dir.exists("a.pcf"));
    }
    std::filesystem::remove(dir.file("afm"));
    for (const bool is_a_file : {false, true}) {
        if (is_a_file) dir.write("afm", "a file");
        const auto change = begin();
        EXPECT_TRUE(change->take_out("afm/a.afm", false));
        EXPECT_TRUE(change->commit()) << "what is not there is gone";
    }
}

TEST_F(Change, SaysWhichFileMayStayAndDoes) {
    spoil_metrics_of(dir);
    for (const bool is_full : {false, true}) {
        const auto change = begin();
        EXPECT_TRUE(change->take_out("afm/a.afm", true));
        const gw::test::HeardFailures heard;
        {
            using gw::test::FileFaults;
            const FileFaults faults(is_full ? FileFaults::Fault::FAIL_ONCE : FileFaults::Fault::NONE, 2,
                                    ENOSPC);
            EXPECT_TRUE(change->commit());
        }
        EXPECT_EQ(heard.text(),
                  dir.file("afm/a.afm") +
                      ": Too many levels of symbolic links; this file of a font that is gone remains\n");
    }
    std::filesystem::remove(dir.file("afm"));
}

// The first font waits for the lock; the others know.
TEST_F(Change, OfAnActionWaitsOnceForTheLock) {
    auto other = begin();
    const gw::FontAction action;
    const auto step = [](DirectoryChange&) { return gw::done(); };
    EXPECT_FALSE(gw::in_change(dir.path(), step));
    other.reset();
    const gw::Outcome second = gw::in_change(dir.path(), step);
    ASSERT_FALSE(second);
    EXPECT_EQ(second.failure().reason, Reason::IN_USE);
}

// A journal that somebody has made up can remove nothing that is not its own change's.
TEST_F(Change, AnInventedJournalDoesNoHarm) {
    dir.write(".glyphward/journal", "glyphward-journal 1\nput 1 a.pcf\nout 0 b.pcf\nindex 1 1\n");
    EXPECT_TRUE(gw::settle(dir.path()));
    EXPECT_EQ(dir.read("a.pcf"), "A");
    EXPECT_EQ(dir.read("b.pcf"), "B");
    EXPECT_EQ(dir.read("fonts.dir"), INDEX);
    dir.write(".glyphward/journal", "glyphward-journal 1\nput 1 ../../etc/passwd\n");
    EXPECT_FALSE(gw::settle(dir.path()));
    EXPECT_TRUE(dir.exists(".glyphward/journal")) << "left alone";
}

TEST_F(Change, BelongsToTheOwnerOfTheDirectory) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser changes the directories of others";
    ASSERT_EQ(::chown(dir.c_str(), 1000, 1000), 0);
    { const auto change = begin(); }
    for (const char* name : {".glyphward", ".glyphward/lock", ".glyphward/new", ".glyphward/old"}) {
        struct stat info = {};
        ASSERT_EQ(::stat(dir.file(name).c_str(), &info), 0);
        EXPECT_EQ(info.st_uid, 1000U) << name;
        EXPECT_EQ(info.st_mode & 0077, 0U) << name;
    }
}

TEST_F(Change, TrustsTheGroupThatMayWriteTheDirectory) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can make files of another user";
    { const auto change = begin(); }
    ASSERT_EQ(::chown(dir.c_str(), 1000, 2000), 0);
    ASSERT_EQ(::chown(dir.file(".glyphward").c_str(), 1001, 2000), 0);
    EXPECT_FALSE(DirectoryChange::begin(dir.path()));
    ASSERT_EQ(::chmod(dir.c_str(), 0775), 0);
    EXPECT_TRUE(DirectoryChange::begin(dir.path()));
}

// What is in the journal and cannot be cut off again would be taken back the next time, with what has come
// since.
TEST_F(Change, WhoseJournalSaysTooMuchIsTakenBack) {
    const auto change = begin();
    put(*change, "c.pcf", "C");
    const DirectoryChange::Mark mark = change->mark();
    put(*change, "d.pcf", "D");
    {
        const gw::test::FileFaults faults(gw::test::FileFaults::Fault::FAIL_ONCE, 3);  // 1: unlink, 2: sync
        change->take_back_to(mark);
        EXPECT_EQ(gw::test::FileFaults::calls(), 3);
    }
    EXPECT_FALSE(change->commit());
    EXPECT_EQ(gw::test::entries_in(dir.path()), 3);
    EXPECT_FALSE(dir.exists(".glyphward/journal"));
}

TEST_F(Change, IsOpenToTheGroupWhereTheDirectoryIs) {
    ASSERT_EQ(::chmod(dir.c_str(), 0775), 0);
    { const auto change = begin(); }
    for (const char* name : {".glyphward", ".glyphward/new", ".glyphward/old"}) {
        struct stat info = {};
        ASSERT_EQ(::stat(dir.file(name).c_str(), &info), 0);
        EXPECT_EQ(info.st_mode & 0777, 0770U) << name;
    }
}

TEST_F(Change, IsOpenToNoGroupWhereEverybodyMayWrite) {
    ASSERT_EQ(::chmod(dir.c_str(), 01777), 0);
    const auto change = begin();
    put(*change, "c.pcf", "C");
    for (const char* name : {"", "/lock", "/new", "/old", "/journal"}) {
        struct stat info = {};
        ASSERT_EQ(::stat(dir.file(std::string(".glyphward") + name).c_str(), &info), 0) << name;
        EXPECT_EQ(info.st_mode & 0077, 0U) << name;
    }
}

int refuse_owner(int /*fd*/, uid_t /*owner*/, gid_t /*group*/) {
    errno = EPERM;
    return -1;
}

TEST_F(Change, IsNotOpenToAnotherGroupThanThatOfTheDirectory) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can give the directory a group of others";
    ASSERT_EQ(::chown(dir.c_str(), 0, 2000), 0);
    ASSERT_EQ(::chmod(dir.c_str(), 0775), 0);
    gw::FileCalls calls = gw::system_file_calls();
    calls.set_owner = refuse_owner;
    gw::use_file_calls(calls);
    { const auto change = begin(); }
    gw::use_file_calls(gw::system_file_calls());
    for (const char* name : {"", "/lock", "/new", "/old"}) {
        struct stat info = {};
        ASSERT_EQ(::stat(dir.file(std::string(".glyphward") + name).c_str(), &info), 0) << name;
        EXPECT_EQ(info.st_mode & 0077, 0U) << name;
    }
}

}  // namespace
