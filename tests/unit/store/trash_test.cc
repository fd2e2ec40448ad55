// SPDX-License-Identifier: MIT
#include "store/trash.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "core/file_calls.h"
#include "store/font_action.h"
#include "store/trash_bin.h"
#include "support/changed_directory.h"
#include "support/heard_failures.h"
#include "support/put_file.h"
#include "support/temp_dir.h"
#include "support/trash_on.h"
#include "support/under_policy.h"

namespace {

namespace fs = std::filesystem;

using gw::DirectoryChange;
using gw::Reason;
using gw::TrashEntry;
using gw::test::files_in;
using gw::test::TempDir;
using gw::test::TrashOn;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::time_t DAY = 24L * 60 * 60;

class Trash : public testing::Test {
  protected:
    Trash() {
        dir.write("a.pfa", "outline A");
        dir.write("afm/a.afm", "metrics A");
        dir.write("b.pcf", "B");
        dir.write("k.pcf", "K");
        dir.write("fonts.dir", "4\na.pfa -a1\na.pfa -a2\nb.pcf -b\nk.pcf -k\n");
        dir.write("fonts.scale", "3\na.pfa -a1\na.pfa -a2\na.pfa -only-scalable\n");
    }

    static void take_a(DirectoryChange& change) {
        change.strike_out("a.pfa", 99);
        (void)change.take_out("a.pfa", false);
        (void)change.take_out("afm/a.afm", true);
    }
    static void take_b(DirectoryChange& change) {
        change.strike_out("b.pcf", 99);
        (void)change.take_out("b.pcf", false);
    }
    [[nodiscard]] gw::Outcome run(const std::function<void(DirectoryChange&)>& steps) const {
        return gw::in_change(dir.path(), [&](DirectoryChange& change) { return steps(change), gw::done(); });
    }
    void delete_a() const { EXPECT_TRUE(run(take_a)); }
    void delete_b() const { EXPECT_TRUE(run(take_b)); }
    /// A font takes the place of "a", under the same name or another.
    void replace_a(const std::string& by) const {
        EXPECT_TRUE(run([&](DirectoryChange& change) {
            take_a(change);
            EXPECT_TRUE(gw::test::put_file(change, by + ".pfa", "new outline"));
            EXPECT_TRUE(change.make_metrics_dir());
            EXPECT_TRUE(gw::test::put_file(change, "afm/" + by + ".afm", "new metrics"));
            change.enter(by + ".pfa -a1\n");
        }));
    }
    [[nodiscard]] std::vector<TrashEntry> entries() const {
        const auto found = gw::trash_entries(dir.path());
        EXPECT_TRUE(found) << (found ? "" : found.failure().text());
        return found ? *found : std::vector<TrashEntry>();
    }
    [[nodiscard]] TrashEntry only_entry() const {
        const std::vector<TrashEntry> all = entries();
        EXPECT_EQ(all.size(), 1U);
        return all.empty() ? TrashEntry() : all.front();
    }
    [[nodiscard]] gw::Outcome bring_back(const TrashEntry& entry) const {
        return gw::bring_back(entry.dir, entry.id);
    }
    [[nodiscard]] std::ptrdiff_t kept() const {
        if (!dir.exists(".glyphward/trash")) return 0;
        const fs::directory_iterator all(dir.file(".glyphward/trash"));
        return std::distance(begin(all), end(all));
    }
    static void expect_refusal(const gw::Outcome& outcome, Reason reason, const std::string& subject) {
        ASSERT_FALSE(outcome);
        EXPECT_EQ(outcome.failure().reason, reason) << outcome.failure().text();
        EXPECT_EQ(outcome.failure().subject, subject);
    }

    const gw::test::UnderPolicy policy{true};
    const TrashOn on;
    TempDir dir;
};

TEST_F(Trash, HasWhatWasDeletedAndGivesItBack) {
    const auto before = files_in(dir.path());
    delete_a();
    EXPECT_EQ(dir.read("fonts.dir"), "2\nb.pcf -b\nk.pcf -k\n");
    EXPECT_EQ(dir.read("fonts.scale"), "0\n");
    EXPECT_FALSE(dir.exists("a.pfa"));
    const TrashEntry entry = only_entry();
    EXPECT_EQ(entry.dir, dir.path());
    EXPECT_EQ(entry.time, TrashOn::now());
    EXPECT_EQ(entry.user, ::geteuid());
    EXPECT_EQ(entry.bytes, 18);
    EXPECT_FALSE(entry.is_replacement());
    ASSERT_EQ(entry.fonts.size(), 1U);
    EXPECT_THAT(entry.fonts[0].font_names, ElementsAre("-a1", "-a2"));
    EXPECT_THAT(entry.fonts[0].files, ElementsAre("a.pfa", "afm/a.afm"));
    EXPECT_EQ(entry.fonts[0].file_name, "a.pfa");

    EXPECT_TRUE(bring_back(entry));
    EXPECT_TRUE(entries().empty());
    EXPECT_EQ(kept(), 0);
    auto after = files_in(dir.path());
    EXPECT_EQ(after["fonts.dir"], "4\nb.pcf -b\nk.pcf -k\na.pfa -a1\na.pfa -a2\n");
    EXPECT_EQ(after["fonts.scale"], before.at("fonts.scale"));
    after["fonts.dir"] = before.at("fonts.dir");
    after.erase("glyphwd.upr");
    EXPECT_EQ(after, before);
}

TEST_F(Trash, IsOffByDefault) {
    gw::set_keeps_what_is_taken_out(false);
    delete_a();
    EXPECT_TRUE(entries().empty());
    EXPECT_FALSE(dir.exists(".glyphward/trash"));
    EXPECT_TRUE(fs::is_empty(dir.file(".glyphward/old")));
}

TEST_F(Trash, GivesABitmapBackWhoseIndexAnotherProgramHasRemoved) {
    delete_b();
    fs::remove(dir.file("fonts.dir"));
    EXPECT_TRUE(bring_back(only_entry()));
    EXPECT_EQ(dir.read("b.pcf"), "B");
    EXPECT_THAT(dir.read("fonts.dir"), HasSubstr("b.pcf -b\n"));
}

TEST_F(Trash, TakesBackAReplacementUnderTheSameName) {
    replace_a("a");
    EXPECT_EQ(dir.read("a.pfa"), "new outline");
    const TrashEntry entry = only_entry();
    EXPECT_TRUE(entry.is_replacement());
    EXPECT_TRUE(bring_back(entry));
    EXPECT_EQ(dir.read("a.pfa"), "outline A");
    EXPECT_EQ(dir.read("afm/a.afm"), "metrics A");
    EXPECT_EQ(dir.read("fonts.dir"), "4\nb.pcf -b\nk.pcf -k\na.pfa -a1\na.pfa -a2\n");
    EXPECT_EQ(dir.read("fonts.scale"), "3\na.pfa -a1\na.pfa -only-scalable\na.pfa -a2\n");
    // That is undone in the same way.
    const TrashEntry again = only_entry();
    EXPECT_TRUE(again.is_replacement());
    EXPECT_TRUE(bring_back(again));
    EXPECT_EQ(dir.read("a.pfa"), "new outline");
    EXPECT_EQ(dir.read("afm/a.afm"), "new metrics");
    EXPECT_EQ(dir.read("fonts.dir"), "3\nb.pcf -b\nk.pcf -k\na.pfa -a1\n");
    EXPECT_EQ(kept(), 1);
}

TEST_F(Trash, TakesBackAReplacementUnderAnotherName) {
    replace_a("n");
    EXPECT_EQ(dir.read("fonts.dir"), "3\nb.pcf -b\nk.pcf -k\nn.pfa -a1\n");
    EXPECT_TRUE(bring_back(only_entry()));
    EXPECT_FALSE(dir.exists("n.pfa"));
    EXPECT_FALSE(dir.exists("afm/n.afm"));
    EXPECT_EQ(dir.read("fonts.dir"), "4\nb.pcf -b\nk.pcf -k\na.pfa -a1\na.pfa -a2\n");
    EXPECT_EQ(dir.read("a.pfa"), "outline A");
    EXPECT_EQ(only_entry().fonts.at(0).file_name, "n.pfa");
}

// The lines are the same, and so there is no difference in the index.
TEST_F(Trash, TakesBackAReplacementByTheSameFont) {
    EXPECT_TRUE(run([](DirectoryChange& change) {
        take_b(change);
        EXPECT_TRUE(gw::test::put_font(change, "b.pcf", "B again", "-b"));
    }));
    EXPECT_TRUE(bring_back(only_entry()));
    EXPECT_EQ(dir.read("b.pcf"), "B");
    EXPECT_THAT(dir.read("fonts.dir"), HasSubstr("b.pcf -b\n"));
    EXPECT_EQ(only_entry().fonts.at(0).font_names.size(), 1U);
}

TEST_F(Trash, DoesNotTakeWhatCameForAReplacementWhenItIsAnotherFileNow) {
    replace_a("a");
    const TrashEntry entry = only_entry();
    dir.write("a.pfa", "somebody has written this since");
    expect_refusal(bring_back(entry), Reason::FILE_IN_THE_WAY, dir.file("a.pfa"));
    EXPECT_EQ(dir.read("a.pfa"), "somebody has written this since");
    EXPECT_EQ(dir.read("afm/a.afm"), "new metrics");
    EXPECT_EQ(only_entry().id, entry.id) << "nothing is lost";
}

TEST_F(Trash, SaysWhichFileIsInTheWay) {
    delete_a();
    const TrashEntry entry = only_entry();
    dir.write("afm/a.afm", "others");
    expect_refusal(bring_back(entry), Reason::FILE_IN_THE_WAY, dir.file("afm/a.afm"));
    EXPECT_FALSE(dir.exists("a.pfa"));
    EXPECT_EQ(dir.read("afm/a.afm"), "others");
    fs::remove(dir.file("afm/a.afm"));
    EXPECT_TRUE(bring_back(entry));
}

TEST_F(Trash, SaysWhichFileHasTheNameOfTheFontNow) {
    delete_b();
    const TrashEntry entry = only_entry();
    EXPECT_TRUE(gw::test::bring_font(dir.path(), "n.pcf", "N", "-B"));
    const gw::Outcome outcome = bring_back(entry);
    expect_refusal(outcome, Reason::NAME_IN_THE_WAY, dir.file("n.pcf"));
    EXPECT_EQ(outcome.failure().detail, "-b");
    EXPECT_FALSE(dir.exists("b.pcf"));
    EXPECT_EQ(entries().size(), 1U);
}

// Two files of one font name had been there before, too.
TEST_F(Trash, GivesATwinBack) {
    dir.write("fonts.dir", "3\nb.pcf -b\nk.pcf -b\nk.pcf -k\n");
    delete_b();
    EXPECT_TRUE(bring_back(only_entry()));
    EXPECT_EQ(dir.read("fonts.dir"), "3\nk.pcf -b\nk.pcf -k\nb.pcf -b\n");
}

TEST_F(Trash, GivesOneFontOfSeveralBack) {
    EXPECT_TRUE(run([](DirectoryChange& change) {
        take_a(change);
        take_b(change);
    }));
    const TrashEntry entry = only_entry();
    EXPECT_EQ(entry.fonts.size(), 2U);
    EXPECT_TRUE(gw::bring_back_font(dir.path(), entry.id, "b.pcf"));
    EXPECT_TRUE(dir.exists("b.pcf"));
    EXPECT_FALSE(dir.exists("a.pfa"));
    const TrashEntry rest = only_entry();
    EXPECT_EQ(rest.id, entry.id);
    ASSERT_EQ(rest.fonts.size(), 1U);
    EXPECT_EQ(rest.fonts[0].file_name, "a.pfa");
    expect_refusal(gw::bring_back_font(dir.path(), entry.id, "b.pcf"), Reason::NOT_IN_TRASH, dir.path());
    EXPECT_TRUE(bring_back(rest));
    EXPECT_TRUE(dir.exists("a.pfa"));
    EXPECT_EQ(kept(), 0);
}

TEST_F(Trash, KeepsLinesOfAFileThatStays) {
    EXPECT_TRUE(run([](DirectoryChange& change) { change.strike_out("a.pfa", 1); }));
    EXPECT_EQ(dir.read("fonts.dir"), "3\na.pfa -a2\nb.pcf -b\nk.pcf -k\n");
    const TrashEntry entry = only_entry();
    EXPECT_TRUE(entry.fonts.at(0).files.empty());
    EXPECT_TRUE(bring_back(entry));
    EXPECT_THAT(dir.read("fonts.dir"), HasSubstr("a.pfa -a1\n"));
    EXPECT_EQ(kept(), 0);
}

TEST_F(Trash, OffersAReturnedEntryToOneOnly) {
    delete_a();
    const TrashEntry entry = only_entry();
    EXPECT_TRUE(bring_back(entry));
    expect_refusal(bring_back(entry), Reason::NOT_IN_TRASH, dir.path());
    expect_refusal(gw::empty_trash_entry(dir.path(), entry.id), Reason::NOT_IN_TRASH, dir.path());
    EXPECT_EQ(dir.read("a.pfa"), "outline A");
}

TEST_F(Trash, OffersAnEntryToOneOfTwoProcesses) {
    delete_a();
    const TrashEntry entry = only_entry();
    std::vector<pid_t> children;
    for (int i = 0; i < 2; ++i) {
        children.push_back(::fork());
        if (children.back() != 0) continue;
        const gw::Outcome outcome = bring_back(entry);
        ::_exit(outcome ? 0 : outcome.failure().reason == Reason::NOT_IN_TRASH ? 1 : 2);
    }
    int sum = 0;
    for (const pid_t child : children) {
        int status = -1;
        while (::waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
        ASSERT_TRUE(WIFEXITED(status));
        sum += WEXITSTATUS(status);
    }
    EXPECT_EQ(sum, 1) << "one succeeds, and one hears that it is not there any more";
    EXPECT_EQ(dir.read("a.pfa"), "outline A");
    EXPECT_EQ(gw::index_count(dir.read("fonts.dir")), 4);
}

TEST_F(Trash, IsEmptiedEntryByEntryOrAtOnce) {
    delete_a();
    TrashOn::pass(1);
    delete_b();
    const std::vector<TrashEntry> all = entries();
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[0].fonts.at(0).file_name, "b.pcf") << "the newest first";
    EXPECT_TRUE(gw::empty_trash_entry(dir.path(), all[0].id));
    EXPECT_EQ(only_entry().id, all[1].id);
    delete_b();
    EXPECT_TRUE(gw::empty_trash(dir.path()));
    EXPECT_TRUE(entries().empty());
    EXPECT_EQ(kept(), 0);
    expect_refusal(bring_back(all[1]), Reason::NOT_IN_TRASH, dir.path());
    EXPECT_EQ(dir.read("fonts.dir"), "1\nk.pcf -k\n");
}

TEST_F(Trash, IsEmptiedFontByFont) {
    EXPECT_TRUE(run([](DirectoryChange& change) {
        take_a(change);
        take_b(change);
    }));
    const std::string id = only_entry().id;
    EXPECT_TRUE(gw::empty_trash_of_fonts(dir.path(), id, {"a.pfa"}));
    const TrashEntry entry = only_entry();
    ASSERT_EQ(entry.fonts.size(), 1U);
    EXPECT_EQ(entry.fonts[0].file_name, "b.pcf");
    EXPECT_EQ(files_in(dir.file(".glyphward/trash/" + id)).size(), 2U) << "the manifest and one file";
    expect_refusal(gw::empty_trash_of_fonts(dir.path(), id, {"a.pfa"}), Reason::NOT_IN_TRASH, dir.path());
    expect_refusal(gw::bring_back_font(dir.path(), id, "a.pfa"), Reason::NOT_IN_TRASH, dir.path());
    EXPECT_TRUE(gw::bring_back_font(dir.path(), id, "b.pcf"));
    EXPECT_EQ(dir.read("b.pcf"), "B");
    EXPECT_EQ(kept(), 0);
}

TEST_F(Trash, ForgetsAnEntryWithItsLastFont) {
    delete_a();
    EXPECT_TRUE(gw::empty_trash_of_fonts(dir.path(), only_entry().id, {"a.pfa", "other"}));
    EXPECT_EQ(kept(), 0);
    expect_refusal(gw::empty_trash_of_fonts(dir.path(), "1-a", {"a.pfa"}), Reason::NOT_IN_TRASH, dir.path());
}

// A font of lines alone has no file by whose absence it would be seen to have gone.
TEST_F(Trash, ForgetsLinesWithoutAFile) {
    EXPECT_TRUE(run([](DirectoryChange& change) {
        change.strike_out("k.pcf", 1);
        take_b(change);
    }));
    const TrashEntry entry = only_entry();
    ASSERT_EQ(entry.fonts.size(), 2U);
    EXPECT_TRUE(gw::empty_trash_of_fonts(dir.path(), entry.id, {"k.pcf"}));
    ASSERT_EQ(only_entry().fonts.size(), 1U);
    EXPECT_EQ(only_entry().fonts[0].file_name, "b.pcf");
}

TEST_F(Trash, IsLookedIntoWithoutSettlingAnything) {
    delete_a();
    dir.write(".glyphward/journal", "glyphward-journal 2\n");
    const auto found = gw::look_into_trash(dir.path());
    ASSERT_TRUE(found);
    EXPECT_EQ(found->size(), 1U);
    EXPECT_TRUE(dir.exists(".glyphward/journal"));
    EXPECT_EQ(entries().size(), 1U);
    EXPECT_FALSE(dir.exists(".glyphward/journal"));
}

TEST_F(Trash, KeepsNothingForMoreThanThirtyDays) {
    delete_a();
    TrashOn::pass(30 * DAY);
    delete_b();
    EXPECT_EQ(entries().size(), 2U);
    TrashOn::pass(1);
    const TrashEntry entry = only_entry();
    EXPECT_EQ(entry.fonts.at(0).file_name, "b.pcf");
    EXPECT_EQ(kept(), 2) << "listing removes nothing";
    { ASSERT_TRUE(DirectoryChange::begin(dir.path())); }
    EXPECT_EQ(kept(), 1);
    TrashOn::pass(-40 * DAY);
    EXPECT_EQ(only_entry().id, entry.id) << "a clock that was set back makes nothing old";
}

TEST_F(Trash, KeepsNoMoreThanItMay) {
    gw::set_trash_limits({.most_bytes = 600});
    delete_a();
    TrashOn::pass(1);
    delete_b();
    EXPECT_EQ(entries().size(), 2U) << "manifests of some 150 bytes, and 19 bytes of fonts";
    TrashOn::pass(1);
    dir.write("c.pcf", std::string(200, 'c'));
    EXPECT_TRUE(run([](DirectoryChange& change) { (void)change.take_out("c.pcf", false); }));
    const std::vector<TrashEntry> left = entries();
    ASSERT_FALSE(left.empty());
    EXPECT_LT(left.size(), 3U) << "the oldest goes first";
    EXPECT_EQ(left.front().fonts.at(0).file_name, "c.pcf");
    for (const TrashEntry& entry : left) EXPECT_NE(entry.fonts.at(0).file_name, "a.pfa");
    EXPECT_EQ(kept(), static_cast<std::ptrdiff_t>(left.size()));
}

TEST_F(Trash, KeepsOnlySoManyEntries) {
    gw::set_trash_limits({.most_entries = 3});
    for (int i = 0; i < 5; ++i) {
        dir.write("c.pcf", std::to_string(i));
        EXPECT_TRUE(run([](DirectoryChange& change) { (void)change.take_out("c.pcf", false); }));
        TrashOn::pass(1);
    }
    EXPECT_EQ(entries().size(), 3U);
    EXPECT_EQ(kept(), 3);
}

TEST_F(Trash, SaysThatItDoesNotKeepWhatIsTooMuch) {
    gw::set_trash_limits({.most_bytes = 10});
    const gw::test::HeardFailures heard;
    delete_a();
    EXPECT_THAT(heard.text(), HasSubstr("cannot be brought back"));
    EXPECT_FALSE(dir.exists("a.pfa"));
    EXPECT_TRUE(entries().empty());
    EXPECT_EQ(kept(), 0);
    EXPECT_TRUE(fs::is_empty(dir.file(".glyphward/old")));
}

TEST_F(Trash, DoesNotKeepLinksAndFilesOfSeveralNames) {
    fs::remove(dir.file("b.pcf"));
    fs::create_symlink("k.pcf", dir.file("b.pcf"));
    fs::create_hard_link(dir.file("a.pfa"), dir.file("second"));
    EXPECT_TRUE(run([](DirectoryChange& change) {
        take_a(change);
        take_b(change);
    }));
    EXPECT_EQ(dir.read("fonts.dir"), "1\nk.pcf -k\n");
    const TrashEntry entry = only_entry();
    ASSERT_EQ(entry.fonts.size(), 1U);
    EXPECT_THAT(entry.fonts[0].files, ElementsAre("afm/a.afm"));
    EXPECT_TRUE(entry.fonts[0].font_names.empty());
}

TEST_F(Trash, KeepsWhatWasThereBeforeAndNotWhatCameAndWent) {
    EXPECT_TRUE(run([](DirectoryChange& change) {
        EXPECT_TRUE(gw::test::put_font(change, "c.pcf", "first", "-c"));
        change.strike_out("c.pcf", 1);
        (void)change.take_out("c.pcf", false);
        EXPECT_TRUE(gw::test::put_file(change, "b.pcf", "second"));
        EXPECT_TRUE(gw::test::put_file(change, "b.pcf", "third"));
    }));
    EXPECT_EQ(dir.read("b.pcf"), "third");
    const TrashEntry entry = only_entry();
    ASSERT_EQ(entry.fonts.size(), 1U);
    EXPECT_EQ(entry.bytes, 1);
    EXPECT_TRUE(bring_back(entry));
    EXPECT_EQ(dir.read("b.pcf"), "B");
}

TEST_F(Trash, IsNotForAChangeThatIsTakenBack) {
    {
        auto change = DirectoryChange::begin(dir.path());
        ASSERT_TRUE(change);
        take_a(**change);
    }
    EXPECT_TRUE(entries().empty());
    EXPECT_EQ(dir.read("a.pfa"), "outline A");
    EXPECT_FALSE(dir.exists(".glyphward/trash"));
}

// An action of the user's in two directories.
TEST_F(Trash, UndoesAnAction) {
    const TempDir other;
    other.write("c.pcf", "C");
    other.write("fonts.dir", "1\nc.pcf -c\n");
    delete_b();
    TrashOn::pass(5);
    std::string token;
    {
        gw::FontAction action;
        token = action.token();
        EXPECT_TRUE(run(take_a));
        EXPECT_TRUE(gw::in_change(other.path(), [](DirectoryChange& change) {
            change.strike_out("c.pcf", 1);
            (void)change.take_out("c.pcf", false);
            return gw::done();
        }));
        EXPECT_TRUE(action.commit().empty());
        ASSERT_EQ(action.kept().size(), 2U);
        EXPECT_NE(action.kept()[0].dir, action.kept()[1].dir);
    }
    const std::vector<TrashEntry> last = gw::entries_of_last_action({other.path(), dir.path(), "/nowhere"});
    ASSERT_EQ(last.size(), 2U);
    EXPECT_EQ(last[0].action, token);
    EXPECT_EQ(gw::entries_of_action(token, {other.path()}).size(), 1U);

    other.write("c.pcf", "in the way");
    const gw::Outcome refused = gw::bring_back_all(last);
    expect_refusal(refused, Reason::FILE_IN_THE_WAY, other.file("c.pcf"));
    EXPECT_FALSE(dir.exists("a.pfa")) << "all or nothing";
    EXPECT_EQ(gw::entries_of_action(token, {other.path(), dir.path()}).size(), 2U);

    fs::remove(other.file("c.pcf"));
    EXPECT_TRUE(gw::bring_back_all(last));
    EXPECT_EQ(dir.read("a.pfa"), "outline A");
    EXPECT_EQ(other.read("c.pcf"), "C");
    EXPECT_EQ(other.read("fonts.dir"), "1\nc.pcf -c\n");
    EXPECT_EQ(only_entry().fonts.at(0).file_name, "b.pcf");
}

// An installation, undone: its files go, whatever has become of the rest of the directory.
TEST_F(Trash, TakesOutAgainWhatAnActionHasBrought) {
    std::vector<gw::FontAction::Came> came;
    {
        gw::FontAction action;
        EXPECT_TRUE(run([](DirectoryChange& change) {
            EXPECT_TRUE(gw::test::put_font(change, "new.pcf", "N", "-n1"));
            change.enter("new.pcf -n2\n");
            EXPECT_TRUE(gw::test::put_font(change, "other.pcf", "O", "-o"));
        }));
        EXPECT_TRUE(action.commit().empty());
        EXPECT_TRUE(action.kept().empty());
        came = action.came();
    }
    ASSERT_EQ(came.size(), 1U);
    EXPECT_EQ(came.front().dir, dir.path());
    ASSERT_EQ(came.front().files.size(), 2U);
    dir.write("other.pcf", "somebody has changed it");
    EXPECT_TRUE(gw::take_out_again(came));
    EXPECT_FALSE(dir.exists("new.pcf"));
    EXPECT_EQ(dir.read("other.pcf"), "somebody has changed it");
    EXPECT_THAT(dir.read("fonts.dir"), HasSubstr("other.pcf -o"));
    EXPECT_THAT(dir.read("fonts.dir"), testing::Not(HasSubstr("new.pcf")));
    EXPECT_EQ(only_entry().fonts.at(0).file_name, "new.pcf") << "it can come back in its turn";
    EXPECT_TRUE(gw::take_out_again(came)) << "what has gone has gone";
}

TEST_F(Trash, SaysBeforehandWhatItWouldNotKeep) {
    using testing::IsEmpty;
    EXPECT_THAT(gw::would_be_lost(dir.path(), {"a.pfa", "afm/a.afm", "b.pcf", "missing"}), IsEmpty());
    EXPECT_FALSE(dir.exists(".glyphward")) << "it only looks";
    fs::remove(dir.file("b.pcf"));
    fs::create_symlink("k.pcf", dir.file("b.pcf"));
    EXPECT_THAT(gw::would_be_lost(dir.path(), {"a.pfa", "b.pcf"}), ElementsAre("b.pcf"));
    gw::TrashLimits limits;
    limits.most_bytes = 12;
    gw::set_trash_limits(limits);
    EXPECT_THAT(gw::would_be_lost(dir.path(), {"a.pfa"}), IsEmpty());
    EXPECT_THAT(gw::would_be_lost(dir.path(), {"a.pfa", "afm/a.afm"}), ElementsAre("a.pfa", "afm/a.afm"));
    EXPECT_THAT(gw::would_be_lost("/nowhere", {"x"}), ElementsAre("x"));
    gw::set_keeps_what_is_taken_out(false);
    EXPECT_THAT(gw::would_be_lost(dir.path(), {"a.pfa"}), ElementsAre("a.pfa"));
}

TEST_F(Trash, IsNotOfferedInPieces) {
    EXPECT_TRUE(run([](DirectoryChange& change) {
        take_a(change);
        take_b(change);
    }));
    const TrashEntry entry = only_entry();
    const std::string place = ".glyphward/trash/" + entry.id + '/';
    const std::string manifest = dir.read(place + "manifest");
    const std::size_t at = manifest.find(" 9 afm/a.afm");
    ASSERT_NE(at, std::string::npos) << manifest;
    const std::string number =
        manifest.substr(manifest.rfind(' ', at - 1) + 1, at - manifest.rfind(' ', at - 1) - 1);
    dir.write(place + number, "longer than it was");
    ASSERT_EQ(only_entry().fonts.size(), 1U);
    EXPECT_EQ(only_entry().fonts[0].file_name, "b.pcf");
    // A manifest that was cut off tells what is in front of that.
    dir.write(place + number, "metrics A");
    EXPECT_EQ(only_entry().fonts.size(), 2U);
    dir.write(place + "manifest", manifest.substr(0, manifest.size() - 4));
    EXPECT_EQ(only_entry().fonts.size(), 1U);
    dir.write(place + "manifest", "no manifest");
    EXPECT_TRUE(entries().empty());
    EXPECT_FALSE(bring_back(entry));
    EXPECT_TRUE(gw::empty_trash(dir.path()));
    EXPECT_EQ(kept(), 0);
}

TEST_F(Trash, SweepsAwayAnEntryWithoutManifest) {
    delete_a();
    const TrashEntry entry = only_entry();
    fs::remove(dir.file(".glyphward/trash/" + entry.id + "/manifest"));
    EXPECT_TRUE(entries().empty());
    { ASSERT_TRUE(DirectoryChange::begin(dir.path())); }
    EXPECT_EQ(kept(), 0);
}

TEST_F(Trash, LeavesAloneWhatIsNoEntry) {
    delete_a();
    dir.write(".glyphward/trash/notes", "somebody's");
    dir.write(".glyphward/trash/12-xyz/manifest", "somebody's");
    fs::create_symlink("/tmp", dir.file(".glyphward/trash/1790000000-abcdef"));
    EXPECT_EQ(entries().size(), 1U);
    EXPECT_TRUE(bring_back(only_entry()));
    (void)gw::empty_trash(dir.path());
    EXPECT_EQ(dir.read(".glyphward/trash/notes"), "somebody's");
    EXPECT_TRUE(dir.exists(".glyphward/trash/12-xyz/manifest"));
    EXPECT_TRUE(fs::is_symlink(dir.file(".glyphward/trash/1790000000-abcdef")));
}

TEST_F(Trash, OfAnotherUserIsRefused) {
    if (::geteuid() == 0) GTEST_SKIP() << "the superuser may do everything";
    delete_a();
    const TrashEntry entry = only_entry();
    fs::permissions(dir.file(".glyphward"), fs::perms::none);
    const auto found = gw::trash_entries(dir.path());
    ASSERT_FALSE(found);
    EXPECT_EQ(found.failure(), gw::Failure::of_system(dir.path(), EACCES));
    EXPECT_EQ(bring_back(entry), gw::Outcome(gw::Failure::of_system(dir.path(), EACCES)));
    EXPECT_EQ(gw::empty_trash(dir.path()), gw::Outcome(gw::Failure::of_system(dir.path(), EACCES)));
    fs::permissions(dir.file(".glyphward"), fs::perms::owner_all);
    EXPECT_TRUE(bring_back(entry));
}

TEST_F(Trash, IsListedWhereNothingMayBeWritten) {
    if (::geteuid() == 0) GTEST_SKIP() << "the superuser may write everywhere";
    delete_a();
    const TrashEntry entry = only_entry();
    fs::permissions(dir.path(), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_EQ(entries().size(), 1U);
    EXPECT_FALSE(bring_back(entry));
    fs::permissions(dir.path(), fs::perms::owner_all);
    EXPECT_EQ(only_entry().id, entry.id);
    EXPECT_TRUE(bring_back(entry));
}

TEST_F(Trash, OfAUserIsOneForTheSuperuserToo) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can make files of another user";
    constexpr uid_t USER = 1000;
    fs::recursive_directory_iterator all(dir.path());
    for (const auto& file : all) ASSERT_EQ(::lchown(file.path().c_str(), USER, USER), 0);
    ASSERT_EQ(::chown(dir.c_str(), USER, USER), 0);
    delete_a();
    const TrashEntry entry = only_entry();
    for (const char* name : {"", "/manifest"}) {
        struct stat info = {};
        ASSERT_EQ(::stat((dir.file(".glyphward/trash/") + entry.id + name).c_str(), &info), 0);
        EXPECT_EQ(info.st_uid, USER) << name;
    }
    const pid_t child = ::fork();
    if (child == 0) ::_exit(::setgid(USER) == 0 && ::setuid(USER) == 0 && bring_back(entry) ? 0 : 1);
    int status = -1;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
    EXPECT_EQ(status, 0);
    EXPECT_EQ(dir.read("a.pfa"), "outline A");
}

// What somebody else has put there does not come back.
TEST_F(Trash, TrustsNobodyElsesFiles) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser can make files of another user";
    delete_a();
    const TrashEntry entry = only_entry();
    const std::string place = dir.file(".glyphward/trash/" + entry.id);
    ASSERT_EQ(::chown((place + "/manifest").c_str(), 1000, 1000), 0);
    EXPECT_TRUE(entries().empty());
    ASSERT_EQ(::chown((place + "/manifest").c_str(), 0, 0), 0);
    ASSERT_EQ(::chown(place.c_str(), 1000, 1000), 0);
    EXPECT_TRUE(entries().empty());
    ASSERT_EQ(::chown(place.c_str(), 0, 0), 0);
    EXPECT_EQ(only_entry().id, entry.id);
}

}  // namespace
