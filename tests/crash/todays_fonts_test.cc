// SPDX-License-Identifier: MIT
//
// Changes of a directory with fonts of many names and with "fonts.scale", killed and failed at each call that
// changes the disk. After the next look both indexes are as they were, or as they were to be, and no line
// that an administrator has written is gone.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "core/gw_reg_exp.h"
#include "fontfiles/index_text.h"
#include "modules/font_modules.h"
#include "modules/gw_fsm_list.h"
#include "store/directory_change.h"
#include "store/font_action.h"
#include "support/changed_directory.h"
#include "support/file_faults.h"
#include "support/sfnt_maker.h"
#include "support/temp_dir.h"
#include "support/under_policy.h"

namespace {

using gw::test::FileFaults;
using gw::test::Files;
using gw::test::files_in;
using gw::test::leaves_nothing_of_its_own;
using gw::test::significant;
using gw::test::TempDir;
using Font = gw::Ref<GWFont>;

constexpr const char* ADMINS_LINE = "admin.ttf -x-admin-medium-r-normal--0-0-0-0-p-0-koi8-r";
constexpr int NAMES = 12;

std::string name_of(const std::string& family, int number) {
    return "-x-" + family + "-medium-r-normal--0-0-0-0-p-0-iso8859-" + std::to_string(number + 1);
}

std::vector<gw::IndexName> names_of(const std::string& family) {
    std::vector<gw::IndexName> names;
    for (int i = 0; i < NAMES; ++i) names.push_back({0, name_of(family, i)});
    return names;
}

std::string lines_of(const std::string& file, const std::string& family) {
    std::string lines;
    for (const gw::IndexName& name : names_of(family)) lines += file + ' ' + name.xlfd + '\n';
    return lines;
}

/// Directories of fonts, new for every attempt.
class World {
  public:
    World() {
        gw::append_font_modules(modules);
        const std::string font = gw::test::SfntMaker().make();
        for (const char* file : {"from/a.ttf", "from/b.ttf", "empty/keep", "fonts/b.ttf", "fonts/c.ttf",
                                 "fonts/d.ttf", "unscaled/b.ttf"})
            dir.write(file, font);
        dir.write("from/a.ttf", font + "new");
        dir.write("fonts/admin.ttf", "whatever");
        const std::string three =
            lines_of("b.ttf", "beta") + lines_of("c.ttf", "gamma") + lines_of("d.ttf", "delta");
        const std::string admins = std::string(ADMINS_LINE) + '\n';
        dir.write("fonts/fonts.dir", std::to_string(3 * NAMES) + '\n' + three);
        // An administrator has a font in it that is in no other index.
        dir.write("fonts/fonts.scale", std::to_string(3 * NAMES + 1) + '\n' + admins + three);
        dir.write("unscaled/fonts.dir", std::to_string(NAMES) + '\n' + lines_of("b.ttf", "beta"));
    }

    [[nodiscard]] Font font(const char* where, const char* file, const std::string& family) const {
        Font made(new GWFont(GWFont::TRUETYPE_FONT));
        auto files = std::make_unique<GW_FSPEC_LIST>();
        files->append(new GW_FILE_SPEC(file, dir.file(where).c_str(), gw::FILE_TYPE_REGULAR, gw::EXT_TTF));
        made->set_font_file_list(std::move(files));
        made->set_dir_name(dir.file(where).c_str());
        made->set_index_names(names_of(family));
        return made;
    }
    gw::Outcome install(const char* where) {
        return font("from", "a.ttf", "alpha")->install(dir.file(where), modules);
    }
    gw::Outcome remove(const char* where) { return font(where, "b.ttf", "beta")->remove(modules); }
    /// One font takes the place of three.
    gw::Outcome replace() {
        return gw::as_one_change([&] {
            for (const auto& [file, family] :
                 {std::pair("b.ttf", "beta"), std::pair("c.ttf", "gamma"), std::pair("d.ttf", "delta")}) {
                if (gw::Outcome removed = font("fonts", file, family)->remove(modules); !removed)
                    return removed;
            }
            return font("from", "b.ttf", "beta")->install(dir.file("fonts"), modules);
        });
    }

    TempDir dir;
    GW_FSM_LIST modules;

  private:
    const gw::test::UnderPolicy policy_{true};
};

struct Operation {
    const char* name;
    const char* where;  // the directory that changes
    std::function<gw::Outcome(World&)> run;
    friend std::ostream& operator<<(std::ostream& out, const Operation& operation) {
        return out << operation.name;
    }
};

const std::vector<Operation> OPERATIONS = {
    {"installs", "empty", [](World& w) { return w.install("empty"); }},
    {"adds", "fonts", [](World& w) { return w.install("fonts"); }},
    {"adds_where_no_scalable_index_was", "unscaled", [](World& w) { return w.install("unscaled"); }},
    {"replaces_three", "fonts", [](World& w) { return w.replace(); }},
    {"deletes", "fonts", [](World& w) { return w.remove("fonts"); }},
    {"deletes_the_last", "unscaled", [](World& w) { return w.remove("unscaled"); }},
};

class TodaysFontsCrash : public testing::TestWithParam<Operation> {
  protected:
    void SetUp() override {
        World world;
        before = state_of(world);
        const FileFaults counting(FileFaults::Fault::NONE, 0);
        ASSERT_TRUE(GetParam().run(world));
        calls = FileFaults::calls();
        after = state_of(world);
        ASSERT_NE(before, after);
        ASSERT_GT(calls, 5);
    }
    [[nodiscard]] std::string changed(const World& world) const { return world.dir.file(GetParam().where); }
    [[nodiscard]] Files state_of(const World& world) const {
        return significant(files_in(changed(world)), false);
    }

    Files before;
    Files after;
    int calls = 0;
};

/// The date of an index needs no call when a second has begun since the index was written before.
constexpr int UNSTEADY_CALLS = 2;

TEST_P(TodaysFontsCrash, KilledAtAnyCallBothIndexesAreTheOldOnesOrTheNew) {
    int as_before = 0;
    for (int at = 1; at <= calls; at += gw::test::CALL_STEP) {
        World world;
        const bool killed = gw::test::killed_at(at, [&] { (void)GetParam().run(world); });
        ASSERT_TRUE(killed || at >= calls - UNSTEADY_CALLS) << at << " of " << calls;
        EXPECT_TRUE(gw::settle(changed(world))) << at;
        const Files state = state_of(world);
        EXPECT_TRUE(state == before || state == after) << "killed at " << at << " of " << calls << ":\n"
                                                       << testing::PrintToString(state);
        as_before += state == before ? 1 : 0;
        EXPECT_TRUE(leaves_nothing_of_its_own(changed(world))) << at;
    }
    EXPECT_GT(as_before, 0);
}

/// Whether every line of an index has its file, and every outline file its lines.
void expect_whole(const Files& files, const char* index, const std::string& what) {
    const auto text = files.find(index);
    if (text == files.end()) return;
    int lines = 0;
    for (const gw::IndexEntry& entry : gw::index_entries(text->second)) {
        EXPECT_TRUE(files.contains(entry.file_name)) << index << " has " << entry.file_name << ": " << what;
        ++lines;
    }
    EXPECT_EQ(gw::index_count(text->second), lines) << index << ": " << what;
}

TEST_P(TodaysFontsCrash, WhatFailsLeavesNoIndexWithHalfAFont) {
    for (const FileFaults::Fault fault :
         {FileFaults::Fault::FAIL_ONCE, FileFaults::Fault::FAIL_FROM_THEN_ON}) {
        for (const int error : {ENOSPC, EIO, EACCES}) {
            for (int at = 1; at <= calls; at += gw::test::CALL_STEP) {
                World world;
                gw::Outcome outcome;
                {
                    const FileFaults faults(fault, at, error);
                    outcome = GetParam().run(world);
                }
                EXPECT_TRUE(gw::settle(changed(world)));
                const Files state = state_of(world);
                const std::string what =
                    (outcome ? "done" : outcome.failure().text()) + ", call " + std::to_string(at) + " of " +
                    std::to_string(calls) + ", error " + std::to_string(error) +
                    (fault == FileFaults::Fault::FAIL_ONCE ? ", once" : ", from then on");
                expect_whole(state, "fonts.dir", what);
                expect_whole(state, "fonts.scale", what);
                EXPECT_EQ(state == after, static_cast<bool>(outcome))
                    << what << testing::PrintToString(state);
                EXPECT_TRUE(state == before || state == after) << what;
            }
        }
    }
}

std::string name_of_parameter(const testing::TestParamInfo<Operation>& param) {
    return param.param.name;
}

INSTANTIATE_TEST_SUITE_P(Changes, TodaysFontsCrash, testing::ValuesIn(OPERATIONS), name_of_parameter);

}  // namespace
