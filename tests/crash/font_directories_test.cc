// SPDX-License-Identifier: MIT
//
// Changes of a font directory, killed and failed at each call that changes the disk. After the next look at
// the directory it is as it was, or as it was to be: never a font less, a line without its file, or a file
// without its line.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "core/gw_reg_exp.h"
#include "fontfiles/index_text.h"
#include "model/gw_conflict.h"
#include "modules/gw_fsm_list.h"
#include "modules/gw_pcf_fsm.h"
#include "modules/gw_t1_fsm.h"
#include "store/directory_change.h"
#include "store/font_action.h"
#include "support/changed_directory.h"
#include "support/file_faults.h"
#include "support/font_maker.h"
#include "support/temp_dir.h"

namespace {

using gw::test::FileFaults;
using gw::test::TempDir;
using Font = gw::Ref<GWFont>;
using gw::test::Files;
using gw::test::files_in;
using gw::test::leaves_nothing_of_its_own;
using gw::test::significant;

constexpr const char* OUTLINE_NAME = "-x-alpha-medium-r-normal--0-0-0-0-p-0-iso8859-1";
constexpr const char* BITMAP_NAME = "-x-beta-medium-r-normal--10-100-75-75-p-50-iso8859-1";
constexpr const char* OTHER_NAME = "-x-gamma-medium-r-normal--10-100-75-75-p-50-iso8859-1";

/// Directories of fonts, new for every attempt.
class World {
  public:
    World() {
        modules.append(&type1);
        modules.append(&pcf);
        dir.write("from/a.pfa", "%!PS-AdobeFont-1.0: Alpha 2\nnew outline\n");
        dir.write("from/a.afm", "new metrics");
        dir.write("from/b.pcf", "new bitmap");
        dir.write("from/c.pcf", "another bitmap");
        dir.write("fonts/a.pfa", "%!PS-AdobeFont-1.0: Alpha 1\nold outline\n");
        dir.write("fonts/a.afm", "old metrics");
        dir.write("fonts/b.pcf", "old bitmap");
        dir.write("fonts/k.pcf", "a neighbour");
        dir.write("fonts/fonts.dir",
                  std::string("3\na.pfa ") + OUTLINE_NAME + "\nb.pcf " + BITMAP_NAME + "\nk.pcf -x-kappa\n");
        dir.make_dir("empty");
    }

    [[nodiscard]] Font outline(const char* where) const {
        return font(GWFont::TYPE1_FONT, where, {"a.pfa", "a.afm"});
    }
    [[nodiscard]] Font bitmap(const char* where, const char* file = "b.pcf") const {
        return font(GWFont::BITMAP_FONT, where, {file});
    }
    gw::Outcome install(const Font& font, const char* where) {
        return font->install(dir.file(where), modules);
    }
    gw::Outcome remove(const Font& font) { return font->remove(modules); }
    gw::Outcome replace(const Font& font, const Font& old) {
        return gw::as_one_change([&] {
            gw::Outcome removed = remove(old);
            return removed ? install(font, "fonts") : removed;
        });
    }

    TempDir dir;
    GW_T1_FSM type1;
    GW_PCF_FSM pcf;
    GW_FSM_LIST modules;

  private:
    [[nodiscard]] Font font(GWFont::GW_FONT_TYPE type, const char* where,
                            const std::vector<const char*>& names) const {
        Font made(new GWFont(type));
        made->set_xlfd_name(type == GWFont::TYPE1_FONT              ? OUTLINE_NAME
                            : std::string(names.front()) == "b.pcf" ? BITMAP_NAME
                                                                    : OTHER_NAME);
        auto files = std::make_unique<GW_FSPEC_LIST>();
        for (const char* name : names)
            files->append(
                new GW_FILE_SPEC(name, dir.file(where).c_str(), gw::FILE_TYPE_REGULAR, gw::EXT_UNKNOWN));
        made->set_font_file_list(std::move(files));
        return made;
    }
};

struct Operation {
    const char* name;
    const char* where;  // the directory that changes
    std::function<gw::Outcome(World&)> run;
    friend std::ostream& operator<<(std::ostream& out, const Operation& operation) {
        return out << operation.name;
    }
};

gw::Outcome first_failure(const std::vector<gw::FontAction::Failed>& failed) {
    return failed.empty() ? gw::done() : gw::Outcome(failed.front().why);
}

/// Two fonts come and one goes, as one action of the user.
gw::Outcome several(World& world) {
    gw::FontAction action;
    for (const auto& step :
         {std::function([&] { return world.install(world.bitmap("from", "c.pcf"), "fonts"); }),
          std::function([&] { return world.remove(world.bitmap("fonts")); }),
          std::function([&] { return world.replace(world.outline("from"), world.outline("fonts")); })}) {
        if (gw::Outcome outcome = step(); !outcome) return outcome;
    }
    return first_failure(action.commit());
}

const std::vector<Operation> OPERATIONS = {
    {"installs an outline", "empty", [](World& w) { return w.install(w.outline("from"), "empty"); }},
    {"installs a bitmap", "empty", [](World& w) { return w.install(w.bitmap("from"), "empty"); }},
    {"adds a bitmap", "fonts", [](World& w) { return w.install(w.bitmap("from", "c.pcf"), "fonts"); }},
    {"replaces an outline", "fonts",
     [](World& w) { return w.replace(w.outline("from"), w.outline("fonts")); }},
    {"replaces a bitmap", "fonts", [](World& w) { return w.replace(w.bitmap("from"), w.bitmap("fonts")); }},
    {"deletes an outline", "fonts", [](World& w) { return w.remove(w.outline("fonts")); }},
    {"deletes a bitmap", "fonts", [](World& w) { return w.remove(w.bitmap("fonts")); }},
    {"does all of it", "fonts", several},
};

/// The date of an index needs no call when a second has begun since the index was written before.
constexpr int UNSTEADY_CALLS = 2;

class Crash : public testing::TestWithParam<Operation> {
  protected:
    void SetUp() override {
        World world;
        before = significant(files_in(world.dir.file(GetParam().where)));
        const FileFaults counting(FileFaults::Fault::NONE, 0);
        ASSERT_TRUE(GetParam().run(world));
        calls = FileFaults::calls();
        after = significant(files_in(world.dir.file(GetParam().where)));
        ASSERT_NE(before, after);
        ASSERT_GT(calls, 5);
    }
    [[nodiscard]] Files state_of(const World& world) const {
        return significant(files_in(world.dir.file(GetParam().where)));
    }

    Files before;
    Files after;
    int calls = 0;
};

TEST_P(Crash, KilledAtAnyCallItIsTheOldStateOrTheNew) {
    int as_before = 0;
    for (int at = 1; at <= calls; at += gw::test::CALL_STEP) {
        World world;
        const bool killed = gw::test::killed_at(at, [&] { (void)GetParam().run(world); });
        ASSERT_TRUE(killed || at >= calls - UNSTEADY_CALLS) << at << " of " << calls;
        EXPECT_TRUE(gw::settle(world.dir.file(GetParam().where))) << at;
        const Files state = state_of(world);
        EXPECT_TRUE(state == before || state == after) << "killed at " << at << " of " << calls << ":\n"
                                                       << testing::PrintToString(state);
        as_before += state == before ? 1 : 0;
        EXPECT_TRUE(leaves_nothing_of_its_own(world.dir.file(GetParam().where))) << at;
    }
    EXPECT_GT(as_before, 0);
}

TEST_P(Crash, KilledWhileItIsTakenBackItIsStillTheOldState) {
    for (int at = calls / 2; at <= calls; at += 3 * gw::test::CALL_STEP) {
        for (int again = 1; again <= 12; again += 2) {
            World world;
            const std::string dir = world.dir.file(GetParam().where);
            const bool killed = gw::test::killed_at(at, [&] { (void)GetParam().run(world); });
            ASSERT_TRUE(killed || at >= calls - UNSTEADY_CALLS) << at << " of " << calls;
            (void)gw::test::killed_at(again, [&] { (void)gw::settle(dir); });
            EXPECT_TRUE(gw::settle(dir));
            const Files state = state_of(world);
            EXPECT_TRUE(state == before || state == after) << at << ", then " << again;
        }
    }
}

TEST_P(Crash, WhatFailsLeavesTheOldStateAndSaysSo) {
    for (const FileFaults::Fault fault :
         {FileFaults::Fault::FAIL_ONCE, FileFaults::Fault::FAIL_FROM_THEN_ON}) {
        for (const int error : {ENOSPC, EDQUOT, EIO, EROFS, EACCES}) {
            for (int at = 1; at <= calls; at += gw::test::CALL_STEP) {
                World world;
                gw::Outcome outcome;
                {
                    const FileFaults faults(fault, at, error);
                    outcome = GetParam().run(world);
                }
                EXPECT_TRUE(gw::settle(world.dir.file(GetParam().where)));
                Files state = state_of(world);
                // Metrics that cannot be removed do not keep the outline.
                if (outcome && after.count("a.afm") == 0) state.erase("a.afm");
                EXPECT_EQ(state == after, static_cast<bool>(outcome))
                    << (outcome ? "done" : outcome.failure().text()) << ": call " << at << " of " << calls
                    << ", error " << error << ", "
                    << (fault == FileFaults::Fault::FAIL_ONCE ? "once" : "from then on") << ":\n"
                    << testing::PrintToString(state);
                EXPECT_TRUE(state == before || state == after);
            }
        }
    }
}

std::string name_of(const testing::TestParamInfo<Operation>& param) {
    std::string name = param.param.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

/// A font comes, and then one moves here from another directory, as one action.
void move_between_directories(World& world) {
    gw::FontAction action;
    (void)world.install(world.bitmap("from", "c.pcf"), "empty");
    (void)gw::as_one_change([&] {
        gw::Outcome removed = world.remove(world.bitmap("fonts"));
        return removed ? world.install(world.bitmap("from"), "empty") : removed;
    });
    (void)action.commit();
}

TEST(TwoDirectories, TheFontIsNeverInNeither) {
    const auto is_somewhere = [](const World& world) {
        for (const char* where : {"fonts", "empty"}) EXPECT_TRUE(gw::settle(world.dir.file(where)));
        return world.dir.exists("fonts/b.pcf") || world.dir.exists("empty/b.pcf");
    };
    int killed = 0;
    for (int at = 1;; ++at) {
        World world;
        if (!gw::test::killed_at(at, [&] { move_between_directories(world); })) break;
        ++killed;
        EXPECT_TRUE(is_somewhere(world)) << "killed at " << at;
        for (const FileFaults::Fault fault :
             {FileFaults::Fault::FAIL_ONCE, FileFaults::Fault::FAIL_FROM_THEN_ON}) {
            World failing;
            {
                const FileFaults faults(fault, at, ENOSPC);
                move_between_directories(failing);
            }
            EXPECT_TRUE(is_somewhere(failing)) << "failed at " << at;
        }
    }
    EXPECT_GT(killed, 20);
}

/// Installs that many fonts into the directory "fonts", one by one, and deletes every third of them again.
void come_and_go(World& world, const std::string& names, int number) {
    for (int i = 0; i < number; ++i) {
        const std::string name = names + std::to_string(i);
        const std::string file = name + ".pcf";
        world.dir.write("from/" + file, name);
        const Font font = world.bitmap("from", file.c_str());
        font->set_xlfd_name(("-x-" + name).c_str());
        if (!world.install(font, "fonts")) ::_exit(1);
        const Font installed = world.bitmap("fonts", file.c_str());
        if (i % 3 == 0 && !world.remove(installed)) ::_exit(2);
    }
}

TEST(Together, SeveralProcessesLoseNothing) {
    constexpr int PROCESSES = 4;
    constexpr int FONTS = 30;
    World world;
    std::vector<pid_t> children;
    for (int process = 0; process < PROCESSES; ++process) {
        children.push_back(::fork());
        if (children.back() != 0) continue;
        come_and_go(world, "p" + std::to_string(process) + "_", FONTS);
        ::_exit(0);
    }
    for (const pid_t child : children) {
        int status = -1;
        while (::waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
        EXPECT_EQ(status, 0);
    }
    std::set<std::string> listed;
    for (const gw::IndexEntry& entry : gw::index_entries(world.dir.read("fonts/fonts.dir")))
        EXPECT_TRUE(listed.insert(entry.file_name).second) << entry.file_name;
    EXPECT_EQ(gw::index_count(world.dir.read("fonts/fonts.dir")), static_cast<int>(listed.size()));
    EXPECT_EQ(listed.size(), 3U + PROCESSES * FONTS * 2 / 3);
    for (const std::string& file : listed) EXPECT_TRUE(world.dir.exists("fonts/" + file)) << file;
    // The metrics of the outline and the index have no line.
    EXPECT_EQ(files_in(world.dir.file("fonts")).size(), listed.size() + 2);
}

INSTANTIATE_TEST_SUITE_P(Changes, Crash, testing::ValuesIn(OPERATIONS), name_of);

}  // namespace
