// SPDX-License-Identifier: MIT
//
// Indexes that are not replaced by a rename, file systems without hard links, and what others do in the
// directory after a process was killed there.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <ostream>
#include <string>

#include "core/file_calls.h"
#include "fontfiles/index_text.h"
#include "store/directory_change.h"
#include "support/file_faults.h"
#include "support/put_file.h"
#include "support/temp_dir.h"

namespace {

using gw::DirectoryChange;
using gw::test::MOST_CALLS;
using gw::test::TempDir;

constexpr const char* BEFORE = "3\na.pcf -a\nb.pcf -b\nc.pcf -c\n";

enum class Form { A_FILE, A_LINK, TWO_NAMES, NO_HARD_LINKS };
enum class Work { ADDS, DELETES, REPLACES };

struct Case {
    Form form;
    Work work;
    friend std::ostream& operator<<(std::ostream& out, const Case& that) {
        constexpr const char* FORMS[] = {"a file", "a link", "two names", "no hard links"};
        constexpr const char* WORKS[] = {"adds", "deletes", "replaces"};
        return out << FORMS[static_cast<int>(that.form)] << ", " << WORKS[static_cast<int>(that.work)];
    }
};

class Indexes : public testing::TestWithParam<Case> {
  protected:
    static void prepare(const TempDir& dir) {
        for (const char* name : {"a.pcf", "b.pcf", "c.pcf"}) dir.write(name, name);
        dir.write(GetParam().form == Form::A_LINK ? "real" : "fonts.dir", BEFORE);
        if (GetParam().form == Form::A_LINK) std::filesystem::create_symlink("real", dir.file("fonts.dir"));
        if (GetParam().form == Form::TWO_NAMES)
            std::filesystem::create_hard_link(dir.file("fonts.dir"), dir.file("second"));
    }

    static gw::Outcome work(const TempDir& dir) {
        if (GetParam().form == Form::NO_HARD_LINKS) forbid_hard_links();
        auto begun = DirectoryChange::begin(dir.path());
        if (!begun) return begun.failure();
        DirectoryChange& change = **begun;
        if (GetParam().work != Work::ADDS) {
            change.strike_out("a.pcf", 1);
            (void)change.take_out("a.pcf", false);
        }
        if (GetParam().work != Work::DELETES) {
            const std::string name = GetParam().work == Work::ADDS ? "d.pcf" : "a.pcf";
            if (gw::Outcome put = gw::test::put_font(change, name, "new", "-new"); !put) return put;
        }
        return change.commit();
    }

    /// Who was not killed has done it.
    static void expect_old_or_new(const TempDir& dir, bool killed, const std::string& when) {
        const std::string index = dir.read("fonts.dir");
        const std::string a = dir.exists("a.pcf") ? dir.read("a.pcf") : "";
        const bool is_old = index == BEFORE && a == "a.pcf" && !dir.exists("d.pcf");
        bool is_new = false;
        switch (GetParam().work) {
            case Work::ADDS:
                is_new = index == "4\na.pcf -a\nb.pcf -b\nc.pcf -c\nd.pcf -new\n" && dir.exists("d.pcf");
                break;
            case Work::DELETES:
                is_new = index == "2\nb.pcf -b\nc.pcf -c\n" && a.empty();
                break;
            case Work::REPLACES:
                is_new = index == "3\nb.pcf -b\nc.pcf -c\na.pcf -new\n" && a == "new";
                break;
        }
        EXPECT_TRUE(is_new || (killed && is_old)) << when << ":\n" << index << "a.pcf: " << a;
        EXPECT_EQ(std::filesystem::is_symlink(dir.file("fonts.dir")), GetParam().form == Form::A_LINK);
        EXPECT_EQ(dir.exists("second"), GetParam().form == Form::TWO_NAMES);
        if (dir.exists("second")) {
            EXPECT_EQ(dir.read("second"), index) << when;
        }
    }

  private:
    static void forbid_hard_links() {
        static gw::FileCalls calls;
        calls = gw::file_calls();
        calls.link = [](int, const char*, int, const char*) {
            errno = EPERM;
            return -1;
        };
        gw::use_file_calls(calls);
    }
};

TEST_P(Indexes, KilledAtAnyCallItIsTheOldStateOrTheNew) {
    int at = 1;
    for (bool killed = true; killed; ++at) {
        ASSERT_LT(at, MOST_CALLS);
        const TempDir dir;
        prepare(dir);
        killed = gw::test::killed_at(at, [&] { (void)work(dir); });
        EXPECT_TRUE(gw::settle(dir.path())) << at;
        expect_old_or_new(dir, killed, "killed at " + std::to_string(at));
    }
    EXPECT_GT(at, 15);
}

TEST_P(Indexes, KilledWhileItIsTakenBackItIsTheOldStateOrTheNew) {
    bool killed = true;
    for (int at = 5; killed; at += 2 * gw::test::CALL_STEP) {
        ASSERT_LT(at, MOST_CALLS);
        for (int again = 1; again < 14; ++again) {
            const TempDir dir;
            prepare(dir);
            killed = gw::test::killed_at(at, [&] { (void)work(dir); });
            (void)gw::test::killed_at(again, [&] { (void)gw::settle(dir.path()); });
            EXPECT_TRUE(gw::settle(dir.path()));
            expect_old_or_new(dir, killed, std::to_string(at) + ", then " + std::to_string(again));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, Indexes,
    testing::Values(Case{Form::A_FILE, Work::ADDS}, Case{Form::A_FILE, Work::DELETES},
                    Case{Form::A_LINK, Work::ADDS}, Case{Form::A_LINK, Work::DELETES},
                    Case{Form::A_LINK, Work::REPLACES}, Case{Form::TWO_NAMES, Work::ADDS},
                    Case{Form::TWO_NAMES, Work::DELETES}, Case{Form::TWO_NAMES, Work::REPLACES},
                    Case{Form::NO_HARD_LINKS, Work::ADDS}, Case{Form::NO_HARD_LINKS, Work::DELETES},
                    Case{Form::NO_HARD_LINKS, Work::REPLACES}));

[[noreturn]] int die(int /*fd*/, off_t /*size*/) {
    ::kill(::getpid(), SIGKILL);
    for (;;) ::pause();
}

// There is no journal then, so nothing is taken back: what is there must do.
TEST(OnAFullDisk, ADeletionThatIsKilledLeavesNoPartOfALine) {
    const TempDir dir;
    dir.write("a.pcf", "A");
    dir.write("fonts.dir", "2\na.pcf -a-very-long-name\nb.pcf -b\n");
    const auto delete_a = [&] {
        gw::FileCalls calls = gw::system_file_calls();
        calls.make_dir = [](int, const char*, mode_t) {
            errno = ENOSPC;
            return -1;
        };
        calls.truncate = die;
        gw::use_file_calls(calls);
        const auto change = DirectoryChange::begin(dir.path());
        (*change)->strike_out("a.pcf", 1);
        (void)(*change)->take_out("a.pcf", false);
        (void)(*change)->commit();
    };
    ASSERT_TRUE(gw::test::is_killed(delete_a));
    EXPECT_TRUE(gw::settle(dir.path()));
    const std::string index = dir.read("fonts.dir");
    EXPECT_EQ(index, "1\nb.pcf -b\n" + std::string(index.size() - 11, '\n'));
    EXPECT_TRUE(gw::test::bring_font(dir.path(), "c.pcf", "C", "-c"));
    EXPECT_EQ(gw::index_count(dir.read("fonts.dir")), 2);
}

/// Kills an installation of "c.pcf" at every call, and shows the directories in which it got its name and
/// still has a journal. Returns their number.
int with_killed_installations(const std::function<void(const TempDir&)>& look) {
    int shown = 0;
    for (int at = 1;; ++at) {
        EXPECT_LT(at, MOST_CALLS);
        const TempDir dir;
        dir.write("a.pcf", "A");
        dir.write("fonts.dir", "1\na.pcf -a\n");
        const bool killed =
            gw::test::killed_at(at, [&] { (void)gw::test::bring_font(dir.path(), "c.pcf", "C", "-c"); });
        if (!killed || at == MOST_CALLS) {
            EXPECT_EQ(dir.read("fonts.dir"), "2\na.pcf -a\nc.pcf -c\n");
            return shown;
        }
        if (!dir.exists("c.pcf") || !dir.exists(".glyphward/journal")) continue;
        ++shown;
        look(dir);
    }
}

TEST(AfterAKill, AFileThatSomebodyHasWrittenIntoStays) {
    EXPECT_GT(with_killed_installations([](const TempDir& dir) {
                  dir.write("c.pcf", "precious");
                  EXPECT_TRUE(gw::settle(dir.path()));
                  EXPECT_EQ(dir.exists("c.pcf") ? dir.read("c.pcf") : "", "precious");
              }),
              1);
}

TEST(AfterAKill, AFileThatHasGotTheNumberOfOursStays) {
    EXPECT_GT(with_killed_installations([](const TempDir& dir) {
                  std::filesystem::remove(dir.file("c.pcf"));
                  dir.write("c.pcf", "X");  // of the same size
                  EXPECT_TRUE(gw::settle(dir.path()));
                  EXPECT_TRUE(dir.exists("c.pcf"));
              }),
              1);
}

TEST(AfterAKill, AnIndexThatSomebodyHasWrittenIntoStays) {
    EXPECT_GT(with_killed_installations([](const TempDir& dir) {
                  dir.write("p.pcf", "P");
                  std::string index = gw::with_entries(dir.read("fonts.dir"), "p.pcf -package\n", 1);
                  dir.write("fonts.dir", index);
                  EXPECT_TRUE(gw::settle(dir.path()));
                  EXPECT_EQ(dir.read("fonts.dir"), "2\na.pcf -a\np.pcf -package\n");
              }),
              1);
}

}  // namespace
