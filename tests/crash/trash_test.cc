// SPDX-License-Identifier: MIT
//
// The trash of a font directory, killed and failed at each call that changes the disk. After the next look
// the directory is as it was, or as it was to be; and whatever is not in it can come back: a font is always
// in one of both places.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <filesystem>
#include <functional>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "store/directory_change.h"
#include "store/font_action.h"
#include "store/trash.h"
#include "support/changed_directory.h"
#include "support/file_faults.h"
#include "support/heard_failures.h"
#include "support/put_file.h"
#include "support/temp_dir.h"
#include "support/trash_on.h"
#include "support/under_policy.h"

namespace {

using gw::DirectoryChange;
using gw::TrashEntry;
using gw::test::FileFaults;
using gw::test::Files;
using gw::test::leaves_nothing_of_its_own;
using gw::test::TempDir;
using gw::test::TrashOn;

/// Two directories of fonts.
class World {
  public:
    World() {
        dir.write("a.pfa", "outline");
        dir.write("afm/a.afm", "metrics");
        dir.write("b.pcf", "bitmap");
        dir.write("fonts.dir", "4\na.pfa -a\na.pfa -a2\nb.pcf -b\nk.pcf -k\n");
        dir.write("fonts.scale", "2\na.pfa -a\na.pfa -a2\n");
        dir.write("k.pcf", "neighbour");
        other.write("c.pcf", "other bitmap");
        other.write("fonts.dir", "1\nc.pcf -c\n");
    }

    gw::Outcome remove(const std::string& where, const std::string& name) const {
        return gw::in_change(where, [&](DirectoryChange& change) {
            change.strike_out(name, 9);
            (void)change.take_out(name, false);
            if (name == "a.pfa") (void)change.take_out("afm/a.afm", true);
            return gw::done();
        });
    }
    [[nodiscard]] gw::Outcome remove_both() const {
        gw::FontAction action;
        for (const auto& [where, name] : {std::pair(&dir, "a.pfa"), std::pair(&other, "c.pcf")}) {
            if (gw::Outcome removed = remove(where->path(), name); !removed) return removed;
        }
        const auto failed = action.commit();
        return failed.empty() ? gw::done() : gw::Outcome(failed.front().why);
    }
    /// Another font comes under this name.
    [[nodiscard]] gw::Outcome replace_a(const std::string& by) const {
        return gw::as_one_change([&] {
            if (gw::Outcome removed = remove(dir.path(), "a.pfa"); !removed) return removed;
            return gw::in_change(dir.path(), [&](DirectoryChange& change) {
                return gw::test::put_font(change, by, "another outline", "-a");
            });
        });
    }
    [[nodiscard]] gw::Outcome bring_last_action_back() const {
        const auto entries = gw::entries_of_last_action({dir.path(), other.path()});
        if (entries.empty()) return gw::Failure{dir.path(), gw::Reason::NOT_IN_TRASH};
        return gw::bring_back_all(entries);
    }

    /// What both directories have; the order of lines in an index does not matter.
    [[nodiscard]] Files state() const {
        Files both;
        for (const TempDir* where : {&dir, &other}) {
            for (const auto& [name, bytes] : gw::test::significant(gw::test::files_in(where->path())))
                both[(where == &dir ? "dir/" : "other/") + name] =
                    name == "fonts.dir" || name == "fonts.scale" ? sorted(bytes) : bytes;
        }
        return both;
    }
    /// What can come back in both, the newest first.
    [[nodiscard]] std::vector<TrashEntry> offered() const {
        std::vector<TrashEntry> all;
        for (const TempDir* where : {&dir, &other}) {
            const auto entries = gw::trash_entries(where->path());
            EXPECT_TRUE(entries);
            if (entries) all.insert(all.end(), entries->begin(), entries->end());
        }
        return all;
    }
    void settle() const {
        for (const TempDir* where : {&dir, &other}) EXPECT_TRUE(gw::settle(where->path()));
    }
    [[nodiscard]] bool is_tidy() const {
        return leaves_nothing_of_its_own(dir.path()) && leaves_nothing_of_its_own(other.path());
    }

    TempDir dir;
    TempDir other;

  private:
    static std::string sorted(const std::string& text) {
        std::vector<std::string> lines;
        for (std::size_t start = 0; start < text.size(); start = text.find('\n', start) + 1)
            lines.push_back(text.substr(start, text.find('\n', start) + 1 - start));
        std::sort(lines.begin(), lines.end());
        std::string whole;
        for (const std::string& line : lines) whole += line;
        return whole;
    }
};

struct Operation {
    const char* name;
    std::function<void(World&)> prepare;
    std::function<gw::Outcome(World&)> run;
    friend std::ostream& operator<<(std::ostream& out, const Operation& operation) {
        return out << operation.name;
    }
};

void expect(const gw::Outcome& outcome) {
    EXPECT_TRUE(outcome) << (outcome ? "" : outcome.failure().text());
}

const std::vector<Operation> OPERATIONS = {
    {"deletes an outline", [](World&) {}, [](World& w) { return w.remove(w.dir.path(), "a.pfa"); }},
    {"deletes a bitmap", [](World&) {}, [](World& w) { return w.remove(w.dir.path(), "b.pcf"); }},
    {"deletes in two directories", [](World&) {}, [](World& w) { return w.remove_both(); }},
    {"replaces under the same name", [](World&) {}, [](World& w) { return w.replace_a("a.pfa"); }},
    {"replaces under another name", [](World&) {}, [](World& w) { return w.replace_a("n.pfa"); }},
    {"brings back", [](World& w) { expect(w.remove(w.dir.path(), "a.pfa")); },
     [](World& w) { return w.bring_last_action_back(); }},
    {"brings back in two directories", [](World& w) { expect(w.remove_both()); },
     [](World& w) { return w.bring_last_action_back(); }},
    {"takes a replacement back", [](World& w) { expect(w.replace_a("a.pfa")); },
     [](World& w) { return w.bring_last_action_back(); }},
    {"takes a replacement by another name back", [](World& w) { expect(w.replace_a("n.pfa")); },
     [](World& w) { return w.bring_last_action_back(); }},
};

/// The date of an index needs no call when a second has begun since the index was written before.
constexpr int UNSTEADY_CALLS = 3;

class TrashCrash : public testing::TestWithParam<Operation> {
  protected:
    void SetUp() override {
        World world;
        GetParam().prepare(world);
        before = world.state();
        offered_before = world.offered().size();
        const FileFaults counting(FileFaults::Fault::NONE, 0);
        expect(GetParam().run(world));
        calls = FileFaults::calls();
        after = world.state();
        offered_after = world.offered().size();
        ASSERT_NE(before, after);
        ASSERT_GT(calls, 10);
    }

    /// Nothing is lost: what was done can be undone.
    void expect_undone_by_bringing_back(const World& world, int at) const {
        if (offered_after == 0) return;
        expect(world.bring_last_action_back());
        EXPECT_EQ(world.state(), before) << at;
        EXPECT_TRUE(world.is_tidy()) << at;
    }

    const gw::test::UnderPolicy policy{true};
    const TrashOn on;
    Files before;
    Files after;
    std::size_t offered_before = 0;
    std::size_t offered_after = 0;
    int calls = 0;
};

TEST_P(TrashCrash, KilledAtAnyCallItIsTheOldStateOrTheNewAndNothingIsLost) {
    int as_before = 0;
    int as_after = 0;
    for (int at = 1; at <= calls; at += gw::test::CALL_STEP) {
        World world;
        GetParam().prepare(world);
        const bool killed = gw::test::killed_at(at, [&] { (void)GetParam().run(world); });
        ASSERT_TRUE(killed || at >= calls - UNSTEADY_CALLS) << at << " of " << calls;
        world.settle();
        const Files state = world.state();
        EXPECT_TRUE(state == before || state == after) << "killed at " << at << " of " << calls << ":\n"
                                                       << testing::PrintToString(state);
        EXPECT_TRUE(world.is_tidy()) << at;
        (state == before ? as_before : as_after) += 1;
        EXPECT_EQ(world.offered().size(), state == before ? offered_before : offered_after) << at;
        if (state == after) {
            expect_undone_by_bringing_back(world, at);
        } else if (offered_before > 0) {
            expect(world.bring_last_action_back());
            EXPECT_EQ(world.state(), after) << at;
        }
    }
    EXPECT_GT(as_before, 3);
    EXPECT_GT(as_after, 1);
}

TEST_P(TrashCrash, KilledAgainByTheNextLookNothingIsLost) {
    for (int at = calls / 2; at <= calls; at += 2 * gw::test::CALL_STEP) {
        for (int again = 1; again <= 14; again += 1) {
            World world;
            GetParam().prepare(world);
            (void)gw::test::killed_at(at, [&] { (void)GetParam().run(world); });
            (void)gw::test::killed_at(again, [&] { world.settle(); });
            world.settle();
            const Files state = world.state();
            EXPECT_TRUE(state == before || state == after) << at << ", then " << again;
            EXPECT_EQ(world.offered().size(), state == before ? offered_before : offered_after)
                << at << ", then " << again;
            if (state == after) expect_undone_by_bringing_back(world, at);
        }
    }
}

// A change does not fail because it cannot be undone later; so not everything that succeeds is in the trash.
TEST_P(TrashCrash, WhatFailsLeavesTheOldStateAndLosesNothing) {
    const gw::test::HeardFailures heard;
    for (const FileFaults::Fault fault :
         {FileFaults::Fault::FAIL_ONCE, FileFaults::Fault::FAIL_FROM_THEN_ON}) {
        for (const int error : {ENOSPC, EIO, EROFS, EACCES}) {
            for (int at = 1; at <= calls; at += gw::test::CALL_STEP) {
                World world;
                GetParam().prepare(world);
                gw::Outcome outcome;
                {
                    const FileFaults faults(fault, at, error);
                    outcome = GetParam().run(world);
                }
                world.settle();
                Files state = world.state();
                // Metrics that cannot be removed do not keep the outline.
                if (outcome && after.count("dir/afm/a.afm") == 0) state.erase("dir/afm/a.afm");
                EXPECT_EQ(state, outcome ? after : before)
                    << (outcome ? "done" : outcome.failure().text()) << ": call " << at << " of " << calls
                    << ", error " << error << (fault == FileFaults::Fault::FAIL_ONCE ? ", once" : "");
                EXPECT_TRUE(outcome || world.offered().size() == offered_before)
                    << "call " << at << " of " << calls << ", error " << error;
            }
        }
    }
}

std::string name_of(const testing::TestParamInfo<Operation>& param) {
    std::string name = param.param.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Changes, TrashCrash, testing::ValuesIn(OPERATIONS), name_of);

/// What makes the trash smaller. `run` gets a directory with two entries.
struct Reduction {
    const char* name;
    std::function<void(const World&)> run;
    std::size_t left;  // of the entries
    friend std::ostream& operator<<(std::ostream& out, const Reduction& reduction) {
        return out << reduction.name;
    }
};

constexpr std::time_t DAY = 24L * 60 * 60;

const std::vector<Reduction> REDUCTIONS = {
    {"emptying", [](const World& w) { expect(gw::empty_trash(w.dir.path())); }, 0},
    {"pruning by age",
     [](const World& w) {
         TrashOn::pass(31 * DAY);
         (void)DirectoryChange::begin(w.dir.path());
     },
     0},
    {"pruning by size",
     [](const World& w) {
         gw::set_trash_limits({.most_bytes = 250});
         expect(w.remove(w.dir.path(), "k.pcf"));
     },
     1},
    {"giving way",
     [](const World& w) {
         const auto change = DirectoryChange::begin(w.dir.path());
         EXPECT_TRUE((*change)->give_way());
         EXPECT_TRUE((*change)->give_way());
         EXPECT_FALSE((*change)->give_way());
     },
     0}};

/// One entry with an outline that has metrics, and a bitmap.
gw::Outcome remove_two_in_one_change(const World& world) {
    return gw::as_one_change([&] {
        if (gw::Outcome removed = world.remove(world.dir.path(), "a.pfa"); !removed) return removed;
        return world.remove(world.dir.path(), "b.pcf");
    });
}

std::set<std::string> names_in(const TrashEntry& entry) {
    std::set<std::string> names;
    for (const gw::TrashedFont& font : entry.fonts) names.insert(font.file_name);
    return names;
}

class TrashReduction : public testing::TestWithParam<Reduction> {
  protected:
    const TrashOn on;
};

TEST_P(TrashReduction, KilledAtAnyCallOffersWholeEntriesOnly) {
    bool killed = true;
    int at = 1;
    for (; killed && at < gw::test::MOST_CALLS; at += gw::test::CALL_STEP) {
        const World world;
        expect(world.remove(world.dir.path(), "a.pfa"));
        TrashOn::pass(1);
        expect(world.remove(world.dir.path(), "b.pcf"));
        killed = gw::test::killed_at(at, [&] { GetParam().run(world); });
        world.settle();
        EXPECT_TRUE(killed || world.offered().size() == GetParam().left) << world.offered().size();
        EXPECT_TRUE(world.is_tidy()) << at;
        for (const TrashEntry& entry : world.offered()) {
            expect(gw::bring_back(entry.dir, entry.id));
            for (const gw::TrashedFont& font : entry.fonts) {
                for (const std::string& file : font.files) EXPECT_TRUE(world.dir.exists(file)) << at;
            }
        }
        { EXPECT_TRUE(DirectoryChange::begin(world.dir.path())); }
        EXPECT_TRUE(world.offered().empty());
        EXPECT_TRUE(std::filesystem::is_empty(world.dir.file(".glyphward/trash"))) << at;
    }
    EXPECT_FALSE(killed);
    EXPECT_GT(at, 6);
}

// The font that stays in its entry is offered as before, or comes back; the other one is offered as long as
// it is there. None is lost that was not to go.
TEST(TrashCrashOfFonts, KilledAtAnyCallTheOtherFontOfTheEntryStays) {
    const TrashOn on;
    bool killed = true;
    int at = 1;
    int with_both = 0;
    for (; killed && at < gw::test::MOST_CALLS; at += gw::test::CALL_STEP) {
        const World world;
        expect(remove_two_in_one_change(world));
        const std::vector<TrashEntry> before = world.offered();
        ASSERT_EQ(before.size(), 1U);
        killed = gw::test::killed_at(
            at, [&] { (void)gw::empty_trash_of_fonts(world.dir.path(), before[0].id, {"a.pfa"}); });
        world.settle();
        EXPECT_TRUE(world.is_tidy()) << at;
        const std::vector<TrashEntry> entries = world.offered();
        ASSERT_EQ(entries.size(), 1U) << at;
        EXPECT_EQ(entries[0].id, before[0].id);
        const std::set<std::string> names = names_in(entries[0]);
        EXPECT_TRUE(names.contains("b.pcf")) << at;
        EXPECT_TRUE(killed || names.size() == 1) << at;
        with_both += names.size() == 2 ? 1 : 0;
        expect(gw::bring_back(entries[0].dir, entries[0].id));
        EXPECT_EQ(world.dir.read("b.pcf"), "bitmap") << at;
        EXPECT_EQ(world.dir.exists("a.pfa"), names.contains("a.pfa")) << at;
        EXPECT_EQ(world.dir.exists("afm/a.afm"), names.contains("a.pfa")) << at;
        { EXPECT_TRUE(DirectoryChange::begin(world.dir.path())); }
        EXPECT_TRUE(world.offered().empty()) << at;
        EXPECT_TRUE(std::filesystem::is_empty(world.dir.file(".glyphward/trash"))) << at;
    }
    EXPECT_FALSE(killed);
    EXPECT_GT(at, 6);
    EXPECT_GT(with_both, 0);
}

TEST(TrashCrashOfFonts, KilledAtAnyCallOfTheLastOneTheEntryIsThereOrGone) {
    const TrashOn on;
    bool killed = true;
    int at = 1;
    for (; killed && at < gw::test::MOST_CALLS; at += gw::test::CALL_STEP) {
        const World world;
        expect(world.remove(world.dir.path(), "b.pcf"));
        const std::string id = world.offered().at(0).id;
        killed =
            gw::test::killed_at(at, [&] { (void)gw::empty_trash_of_fonts(world.dir.path(), id, {"b.pcf"}); });
        world.settle();
        EXPECT_TRUE(world.is_tidy()) << at;
        const std::vector<TrashEntry> entries = world.offered();
        EXPECT_TRUE(killed || entries.empty());
        if (!entries.empty()) {
            expect(gw::bring_back(entries[0].dir, entries[0].id));
            EXPECT_EQ(world.dir.read("b.pcf"), "bitmap") << at;
        }
        { EXPECT_TRUE(DirectoryChange::begin(world.dir.path())); }
        EXPECT_TRUE(std::filesystem::is_empty(world.dir.file(".glyphward/trash"))) << at;
    }
    EXPECT_FALSE(killed);
    EXPECT_GT(at, 3);
}

// After a failure the entry has the font that was not to go, and the other one as a whole or not at all.
TEST(TrashCrashOfFonts, WhatFailsLeavesTheOtherFontOfTheEntry) {
    const TrashOn on;
    const gw::test::HeardFailures heard;
    int calls = 0;
    {
        const World world;
        expect(remove_two_in_one_change(world));
        const std::string id = world.offered().at(0).id;
        const FileFaults counting(FileFaults::Fault::NONE, 0);
        expect(gw::empty_trash_of_fonts(world.dir.path(), id, {"a.pfa"}));
        calls = FileFaults::calls();
    }
    ASSERT_GT(calls, 3);
    for (const int error : {ENOSPC, EIO, EACCES}) {
        for (int at = 1; at <= calls; at += gw::test::CALL_STEP) {
            const World world;
            expect(remove_two_in_one_change(world));
            const std::string id = world.offered().at(0).id;
            gw::Outcome outcome;
            {
                const FileFaults faults(FileFaults::Fault::FAIL_FROM_THEN_ON, at, error);
                outcome = gw::empty_trash_of_fonts(world.dir.path(), id, {"a.pfa"});
            }
            world.settle();
            const std::vector<TrashEntry> entries = world.offered();
            ASSERT_EQ(entries.size(), 1U) << at;
            const std::set<std::string> names = names_in(entries[0]);
            EXPECT_TRUE(names.contains("b.pcf")) << at;
            EXPECT_TRUE(!outcome || names.size() == 1) << at;
            expect(gw::bring_back(entries[0].dir, id));
            EXPECT_EQ(world.dir.read("b.pcf"), "bitmap") << at;
            EXPECT_EQ(world.dir.exists("a.pfa"), names.contains("a.pfa")) << at;
        }
    }
}

std::string reduction_name(const testing::TestParamInfo<Reduction>& param) {
    std::string name = param.param.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(All, TrashReduction, testing::ValuesIn(REDUCTIONS), reduction_name);

// A user stops the return of two fonts behind the first one.
TEST(StoppedReturn, KilledAtAnyCallBringsOneFontBackOrNone) {
    const gw::test::UnderPolicy policy{true};
    const TrashOn on;
    int with_one = 0;
    bool killed = true;
    for (int at = 1; killed && at < gw::test::MOST_CALLS; at += gw::test::CALL_STEP) {
        const World world;
        const Files whole = world.state();
        expect(gw::as_one_change([&] {
            const gw::Outcome first = world.remove(world.dir.path(), "a.pfa");
            return first ? world.remove(world.dir.path(), "b.pcf") : first;
        }));
        const std::string entry = world.offered().front().id;
        killed = gw::test::killed_at(at, [&] {
            (void)gw::bring_back_groups(world.dir.path(), entry, {{"a.pfa"}, {"b.pcf"}},
                                        [](std::size_t group) { return group < 1; });
        });
        world.settle();
        EXPECT_TRUE(world.is_tidy()) << at;
        EXPECT_FALSE(world.dir.exists("b.pcf")) << at;
        const bool has_one = world.dir.exists("a.pfa");
        EXPECT_EQ(world.dir.exists("afm/a.afm"), has_one) << at;
        EXPECT_EQ(world.dir.read("fonts.dir").substr(0, 2), has_one ? "3\n" : "1\n") << at;
        ASSERT_EQ(world.offered().size(), 1U) << at;
        EXPECT_EQ(world.offered().front().fonts.size(), has_one ? 1U : 2U) << at;
        with_one += has_one ? 1 : 0;
        expect(world.bring_last_action_back());
        EXPECT_EQ(world.state(), whole) << at;
    }
    EXPECT_FALSE(killed);
    EXPECT_GT(with_one, 1);
}

}  // namespace
