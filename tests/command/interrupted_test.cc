// SPDX-License-Identifier: MIT
//
// The commands, killed and failed at calls that change the disk. After the next command each part of what
// there is, fonts with their index, font path, aliases, is as it was or as it was to be. What is said to be
// done is done, and what fails says so.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <ostream>
#include <random>
#include <sstream>

#include "command/in_process.h"
#include "support/changed_directory.h"

namespace {

using gw::test::Ended;
using gw::test::FileFaults;
using gw::test::Files;
using gw::test::OwnMachine;
using gw::test::run_in_child;
using gw::test::small_font;
using Words = std::vector<std::string>;

/// So many calls of each command go wrong, unless all are asked for.
constexpr int TRIED = 12 / gw::test::CALL_STEP;
/// So many calls are made only when files would have times in the same second.
constexpr int UNSTEADY = 8;
/// Machines of tests have none.
const std::string SERVER = std::getenv("DISPLAY") != nullptr ? std::getenv("DISPLAY") : "";
/// A directory that a command makes, below that of the machine.
const std::string NEW = "new/";

/// Calls from 1 to `calls`, the same ones each time.
std::vector<int> some_of(int calls) {
    std::vector<int> all;
    for (int at = 1; at <= calls; ++at) all.push_back(at);
    if (std::getenv("GLYPHWARD_EVERY_CALL") != nullptr) return all;
    std::mt19937 random(static_cast<unsigned>(calls));
    std::shuffle(all.begin(), all.end(), random);
    all.resize(std::min(all.size(), static_cast<std::size_t>(TRIED)));
    std::sort(all.begin(), all.end());
    return all;
}

struct Operation {
    const char* name;
    std::function<void(OwnMachine&)> prepare;
    std::function<Words(const OwnMachine&)> words;
    bool is_for_users = false;  // and not for the superuser
    friend std::ostream& operator<<(std::ostream& out, const Operation& operation) {
        return out << operation.name;
    }
};

void expect_done(const Words& words) {
    const Ended ended = run_in_child(words);
    EXPECT_EQ(ended.status, 0) << testing::PrintToString(words) << ended.err;
}

void have_fonts(OwnMachine& machine) {
    for (const char* name : {"Alpha", "Beta"})
        (void)machine.source().write(std::string(name) + ".ttf", small_font(name));
    expect_done({"install", "--to", machine.to(), machine.source().path()});
}

void have_gamma(OwnMachine& machine) {
    (void)machine.source().write("Gamma.ttf", small_font("Gamma"));
}

/// The directory that is made is on the font path, so the next command has a look at it.
void have_gamma_for_new(OwnMachine& machine) {
    have_gamma(machine);
    expect_done({"path", "add", "--of", OwnMachine::whose(), machine.to() + NEW});
}

void have_newer_fonts(OwnMachine& machine) {
    have_fonts(machine);
    (void)machine.source().write("Alpha.ttf", small_font("Alpha", 1));
    (void)machine.source().write("Gamma.ttf", small_font("Gamma"));
}

void write_profile(OwnMachine& machine) {
    have_newer_fonts(machine);
    (void)machine.source().write("p.toml", "profile = 1\n[fonts]\nto = \"" + machine.to() +
                                               "\"\nfiles = [\"Alpha.ttf\", \"Gamma.ttf\"]\n"
                                               "absent = [\"Beta*\"]\n[path]\n" +
                                               OwnMachine::whose() + " = [\"" + machine.to() +
                                               "\", \"/elsewhere/\"]\n"
                                               "[[alias]]\nname = \"gamma\"\nfont = \"-misc-gamma\"\n");
}

const std::vector<Operation> OPERATIONS = {
    {"install",
     [](OwnMachine& m) {
         have_fonts(m);
         have_gamma(m);
     },
     [](const OwnMachine& m) {
         return Words{"install", "--to", m.to(), m.source().file("Gamma.ttf")};
     }},
    {"install_into_an_empty_directory", have_gamma,
     [](const OwnMachine& m) {
         return Words{"install", "--to", m.to(), m.source().file("Gamma.ttf")};
     }},
    {"install_into_a_new_directory", have_gamma_for_new,
     [](const OwnMachine& m) {
         return Words{"install", "--to", m.to() + NEW, m.source().file("Gamma.ttf")};
     }},
    {"apply_to_a_new_directory",
     [](OwnMachine& m) {
         have_gamma_for_new(m);
         (void)m.source().write(
             "p.toml", "profile = 1\n[fonts]\nto = \"" + m.to() + NEW + "\"\nfiles = [\"Gamma.ttf\"]\n");
     },
     [](const OwnMachine& m) {
         return Words{"apply", m.source().file("p.toml")};
     }},
    {"replace", have_newer_fonts,
     [](const OwnMachine& m) {
         return Words{"install", "--replace", "--to", m.to(), m.source().file("Alpha.ttf")};
     }},
    {"delete", have_fonts,
     [](const OwnMachine&) {
         return Words{"delete", "--yes", "alpha.ttf"};
     }},
    {"undo",
     [](OwnMachine& m) {
         have_fonts(m);
         expect_done({"delete", "--yes", "alpha.ttf"});
     },
     [](const OwnMachine&) { return Words{"undo"}; }},
    {"undo_replacement",
     [](OwnMachine& m) {
         have_newer_fonts(m);
         expect_done({"install", "--replace", "--to", m.to(), m.source().file("Alpha.ttf")});
     },
     [](const OwnMachine&) { return Words{"undo"}; }},
    {"apply", write_profile,
     [](const OwnMachine& m) {
         return Words{"apply", m.source().file("p.toml")};
     }},
    {"path_add", have_fonts,
     [](const OwnMachine&) {
         return Words{"path", "add", "--of", OwnMachine::whose(), "/elsewhere/"};
     }},
    {"path_remove", have_fonts,
     [](const OwnMachine& m) {
         return Words{"path", "remove", "--of", OwnMachine::whose(), m.to()};
     }},
    {"path_save", have_fonts,
     [](const OwnMachine&) {
         return Words{"path", "save", "--server", SERVER};
     },
     true},
};

std::string sorted_lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    std::sort(lines.begin(), lines.end());
    return testing::PrintToString(lines);
}

/// What there is, in parts that each change completely or not at all. The order of lines in an index does not
/// matter.
struct State {
    Files fonts;
    std::string aliases;
    std::string path;
    bool has_new = false;  // the directory that a command makes
    explicit State(const OwnMachine& machine)
        : fonts(gw::test::significant(gw::test::files_in(machine.to()), false)), path(machine.path_file()) {
        aliases = fonts["fonts.alias"];
        fonts.erase("fonts.alias");
        has_new = fonts.erase("new") > 0;
        for (const char* index : {"fonts.dir", "fonts.scale", "new/fonts.dir", "new/fonts.scale"})
            if (const auto found = fonts.find(index); found != fonts.end())
                found->second = sorted_lines(found->second);
    }
    /// An empty directory is none.
    bool operator==(const State& other) const {
        return fonts == other.fonts && aliases == other.aliases && path == other.path;
    }
};

class InterruptedCommand : public testing::TestWithParam<Operation> {
  protected:
    void SetUp() override {
        if (GetParam().is_for_users && ::geteuid() == 0)
            GTEST_SKIP() << "the superuser has no path of an own";
        carry_out_before();
        OwnMachine machine;
        GetParam().prepare(machine);
        before = std::make_unique<State>(machine);
        const Ended ended = run_in_child(GetParam().words(machine));
        ASSERT_EQ(ended.status, 0) << ended.err;
        calls = ended.calls;
        after = std::make_unique<State>(machine);
        ASSERT_FALSE(*before == *after);
        ASSERT_GT(calls, 3);
    }
    /// What is made once, as the places of locks beside files of the system, costs no calls later.
    static void carry_out_before() {
        OwnMachine machine;
        GetParam().prepare(machine);
        expect_done(GetParam().words(machine));
    }
    void expect_whole(const State& now, int at) const {
        EXPECT_TRUE(now.fonts == before->fonts || now.fonts == after->fonts)
            << "call " << at << " of " << calls << testing::PrintToString(now.fonts);
        EXPECT_TRUE(now.aliases == before->aliases || now.aliases == after->aliases) << at << now.aliases;
        EXPECT_TRUE(now.path == before->path || now.path == after->path) << at << now.path;
    }

    std::unique_ptr<State> before;
    std::unique_ptr<State> after;
    int calls = 0;
};

TEST_P(InterruptedCommand, KilledAtAnyCallLosesNothingAndCanBeRepeated) {
    for (const int at : some_of(calls)) {
        OwnMachine machine;
        GetParam().prepare(machine);
        const Ended killed = run_in_child(GetParam().words(machine), {FileFaults::Fault::KILL, at});
        ASSERT_TRUE(killed.is_killed || at > calls - UNSTEADY) << at << " of " << calls;
        // Whatever command comes next puts it in order.
        EXPECT_EQ(run_in_child({"list", "-q"}).status, 0);
        State now(machine);
        expect_whole(now, at);
        if (now == *after) continue;
        const Ended again = run_in_child(GetParam().words(machine));
        EXPECT_TRUE(again.status == 0 || again.status == 3) << at << ": " << again.status << again.err;
        EXPECT_TRUE(State(machine) == *after) << at;
    }
}

TEST_P(InterruptedCommand, WhatFailsIsToldAndLeavesEverything) {
    const std::vector<int> errors = {ENOSPC, EIO, EACCES};
    int tried = 0;
    for (const FileFaults::Fault fault :
         {FileFaults::Fault::FAIL_ONCE, FileFaults::Fault::FAIL_FROM_THEN_ON}) {
        for (const int at : some_of(calls)) {
            OwnMachine machine;
            GetParam().prepare(machine);
            const int error = errors[static_cast<std::size_t>(tried++) % errors.size()];
            const Ended failed = run_in_child(GetParam().words(machine), {fault, at, error});
            EXPECT_EQ(run_in_child({"list", "-q"}).status, 0);
            const State now(machine);
            expect_whole(now, at);
            const std::string what = "call " + std::to_string(at) + " of " + std::to_string(calls) +
                                     ", error " + std::to_string(error) + ": status " +
                                     std::to_string(failed.status) + '\n' + failed.out + failed.err;
            if (failed.status == 0) {
                EXPECT_TRUE(now.fonts == after->fonts) << what;
            } else {
                EXPECT_TRUE(failed.status == 1 || failed.status == 4) << what;
                EXPECT_NE(failed.err, "") << what;
                EXPECT_FALSE(now == *after) << what;
                const bool is_left = fault == FileFaults::Fault::FAIL_ONCE && now.fonts == before->fonts;
                EXPECT_FALSE(is_left && now.has_new) << what;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, InterruptedCommand, testing::ValuesIn(OPERATIONS),
                         [](const auto& param) { return std::string(param.param.name); });

// What goes for good is there as a whole or not at all.
TEST(InterruptedTrash, KilledAtAnyCallTheRestComesBackOrIsGone) {
    bool is_killed = true;
    for (int at = 1; is_killed && at < gw::test::MOST_CALLS; at += 2) {
        OwnMachine machine;
        have_fonts(machine);
        const State before(machine);
        expect_done({"delete", "--yes", "alpha.ttf"});
        is_killed = run_in_child({"trash", "--empty"}, {FileFaults::Fault::KILL, at}).is_killed;
        const bool is_offered = !run_in_child({"trash"}).out.empty();
        const Ended undone = run_in_child({"undo"});
        EXPECT_EQ(undone.status, is_offered ? 0 : 1) << at << undone.err;
        EXPECT_TRUE(!is_offered || State(machine) == before) << at;
    }
    EXPECT_FALSE(is_killed);
}

/// How many calls it takes to empty the trash.
int calls_to_empty_trash() {
    OwnMachine machine;
    have_fonts(machine);
    expect_done({"delete", "--yes", "alpha.ttf"});
    return run_in_child({"trash", "--empty"}).calls;
}

// What cannot be removed is told. It comes back as a whole, or is not offered any more.
TEST(InterruptedTrash, WhatFailsIsTold) {
    const std::vector<int> errors = {ENOSPC, EIO, EACCES};
    const int calls = calls_to_empty_trash();
    ASSERT_GE(calls, 3);
    for (const FileFaults::Fault fault :
         {FileFaults::Fault::FAIL_ONCE, FileFaults::Fault::FAIL_FROM_THEN_ON}) {
        for (int at = 1; at <= calls; at += gw::test::CALL_STEP) {
            OwnMachine machine;
            have_fonts(machine);
            const State before(machine);
            expect_done({"delete", "--yes", "alpha.ttf"});
            const int error = errors[static_cast<std::size_t>(at) % errors.size()];
            const Ended emptied = run_in_child({"trash", "--empty"}, {fault, at, error});
            const bool is_offered = !run_in_child({"trash"}).out.empty();
            EXPECT_FALSE(is_offered && emptied.status == 0) << at;
            EXPECT_EQ(emptied.status == 0, emptied.err.empty()) << at << emptied.err;
            const Ended undone = run_in_child({"undo"});
            EXPECT_EQ(undone.status, is_offered ? 0 : 1) << at << undone.err;
            EXPECT_TRUE(!is_offered || State(machine) == before) << at;
        }
    }
}

}  // namespace
