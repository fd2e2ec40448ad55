// SPDX-License-Identifier: MIT
//
// Many fonts that come as one action: their files are written to the disk together. Killed and failed at each
// call, each font is there with its line, or nothing of it is.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "core/file_calls.h"
#include "fontfiles/index_text.h"
#include "modules/gw_fsm_list.h"
#include "modules/gw_t1_fsm.h"
#include "store/directory_change.h"
#include "store/font_action.h"
#include "support/changed_directory.h"
#include "support/file_faults.h"
#include "support/temp_dir.h"

namespace {

using gw::test::FileFaults;
using gw::test::Files;
using gw::test::TempDir;
using Font = gw::Ref<GWFont>;

constexpr int FEW = 3;
constexpr int MORE_THAN_ARE_WRITTEN_TOGETHER = 40;
constexpr const char* NEIGHBOUR = "-x-kappa";

std::string xlfd_of(int number) {
    return "-x-f" + std::to_string(number) + "-medium-r-normal--0-0-0-0-p-0-iso8859-1";
}

/// Fonts with metrics, and the directory that they come to, which has one.
class Batch {
  public:
    explicit Batch(int count) : count_(count) {
        modules_.append(&type1_);
        for (int i = 0; i < count; ++i) {
            dir.write("from/" + outline(i), "%!PS-AdobeFont-1.0: Number " + std::to_string(i) + "\n");
            dir.write("from/" + metrics(i), "% metrics of " + std::to_string(i));
        }
        dir.write("fonts/k.pcf", "a neighbour");
        dir.write("fonts/fonts.dir", std::string("1\nk.pcf ") + NEIGHBOUR + '\n');
    }

    static std::string outline(int number) { return 'f' + std::to_string(number) + ".pfa"; }
    static std::string metrics(int number) { return 'f' + std::to_string(number) + ".afm"; }

    gw::Outcome install(int number) {
        const Font font(new GWFont(GWFont::TYPE1_FONT));
        font->set_xlfd_name(xlfd_of(number).c_str());
        auto files = std::make_unique<GW_FSPEC_LIST>();
        for (const std::string& name : {outline(number), metrics(number)})
            files->append(new GW_FILE_SPEC(name.c_str(), dir.file("from").c_str(), gw::FILE_TYPE_REGULAR,
                                           gw::EXT_UNKNOWN));
        font->set_font_file_list(std::move(files));
        return font->install(fonts(), modules_);
    }
    /// The fonts that are there according to what was answered.
    std::set<int> install_all() {
        std::set<int> done;
        gw::FontAction action;
        for (int i = 0; i < count_; ++i) {
            if (install(i)) done.insert(i);
        }
        return action.commit().empty() ? done : std::set<int>();
    }

    [[nodiscard]] std::string fonts() const { return dir.file("fonts"); }
    [[nodiscard]] Files state() const { return gw::test::significant(gw::test::files_in(fonts())); }

    /// The fonts that are there; each must be whole.
    [[nodiscard]] std::set<int> whole_fonts(const std::string& when) const {
        Files files = state();
        std::set<std::string> listed;
        for (const gw::IndexEntry& entry : gw::index_entries(files["fonts.dir"]))
            EXPECT_TRUE(listed.insert(entry.file_name).second) << when;
        EXPECT_EQ(files["k.pcf"], "a neighbour") << when;
        EXPECT_EQ(listed.erase("k.pcf"), 1U) << when;
        std::set<int> whole;
        for (int i = 0; i < count_; ++i) {
            const bool is_listed = listed.erase(outline(i)) > 0;
            EXPECT_EQ(files.count(outline(i)) > 0, is_listed) << when << ", font " << i;
            EXPECT_EQ(files.count(metrics(i)) > 0, is_listed) << when << ", font " << i;
            if (!is_listed) continue;
            EXPECT_EQ(files[outline(i)], copy_of(outline(i))) << when;
            EXPECT_EQ(files[metrics(i)], copy_of(metrics(i))) << when;
            whole.insert(i);
        }
        EXPECT_TRUE(listed.empty()) << when;
        EXPECT_EQ(files.size(), 2 + 2 * whole.size()) << when;
        EXPECT_TRUE(gw::test::leaves_nothing_of_its_own(fonts())) << when;
        return whole;
    }

    TempDir dir;

  private:
    /// The bytes behind the first block's end and before the first comment are not those of the original.
    [[nodiscard]] std::string copy_of(const std::string& file) const {
        const std::string bytes = dir.read("from/" + file);
        return bytes.substr(bytes.find('%')) + '\0';
    }

    int count_;
    GW_T1_FSM type1_;
    GW_FSM_LIST modules_;
};

std::set<int> first(int count) {
    std::set<int> numbers;
    for (int i = 0; i < count; ++i) numbers.insert(numbers.end(), i);
    return numbers;
}

int calls_of(int count) {
    Batch batch(count);
    const FileFaults counting(FileFaults::Fault::NONE, 0);
    EXPECT_EQ(batch.install_all(), first(count));
    return FileFaults::calls();
}

/// Kills the installation at every `step`-th call.
void kill_everywhere(int count, int step) {
    const int calls = calls_of(count);
    bool was_as_before = false;
    bool was_done = false;
    for (int at = 1; at <= calls; at += step) {
        Batch batch(count);
        (void)gw::test::killed_at(at, [&] { (void)batch.install_all(); });
        EXPECT_TRUE(gw::settle(batch.fonts())) << at;
        const std::set<int> there = batch.whole_fonts("killed at " + std::to_string(at));
        EXPECT_TRUE(there.empty() || there == first(count)) << at;
        was_as_before = was_as_before || there.empty();
        was_done = was_done || !there.empty();
    }
    EXPECT_TRUE(was_as_before);
    // The last calls are after the moment in which it is final.
    EXPECT_TRUE(was_done || step > 1);
}

TEST(ABatch, KilledAtAnyCallIsThereOrIsNot) {
    kill_everywhere(FEW, gw::test::CALL_STEP);
}

TEST(ABatch, OfSeveralGroupsKilledAtAnyCallIsThereOrIsNot) {
    kill_everywhere(MORE_THAN_ARE_WRITTEN_TOGETHER, 17 * gw::test::CALL_STEP);
}

TEST(ABatch, KilledWhileItIsTakenBackIsGoneTheNextTime) {
    const int calls = calls_of(FEW);
    for (int at = calls / 3; at <= calls; at += 5 * gw::test::CALL_STEP) {
        for (int again = 1; again <= 15; again += 2) {
            Batch batch(FEW);
            (void)gw::test::killed_at(at, [&] { (void)batch.install_all(); });
            (void)gw::test::killed_at(again, [&] { (void)gw::settle(batch.fonts()); });
            EXPECT_TRUE(gw::settle(batch.fonts()));
            const std::string when = std::to_string(at) + ", then " + std::to_string(again);
            const std::set<int> there = batch.whole_fonts(when);
            EXPECT_TRUE(there.empty() || there == first(FEW)) << when;
        }
    }
}

TEST(ABatch, InWhichACallFailsHasWhatItSaysItHas) {
    const int calls = calls_of(FEW);
    for (const FileFaults::Fault fault :
         {FileFaults::Fault::FAIL_ONCE, FileFaults::Fault::FAIL_FROM_THEN_ON}) {
        for (const int error : {ENOSPC, EIO, EPERM}) {
            for (int at = 1; at <= calls; at += gw::test::CALL_STEP) {
                Batch batch(FEW);
                std::set<int> said;
                {
                    const FileFaults faults(fault, at, error);
                    said = batch.install_all();
                }
                EXPECT_TRUE(gw::settle(batch.fonts()));
                const std::string when = "call " + std::to_string(at) + ", error " + std::to_string(error) +
                                         (fault == FileFaults::Fault::FAIL_ONCE ? ", once" : "");
                std::set<int> there = batch.whole_fonts(when);
                EXPECT_EQ(there, said) << when;
            }
        }
    }
}

TEST(ABatch, HasTheOthersWhenThereIsNoRoomForTheSecond) {
    Batch batch(FEW);
    gw::FontAction action;
    EXPECT_TRUE(batch.install(0));
    {
        const FileFaults full(FileFaults::Fault::FAIL_FROM_THEN_ON, 1, ENOSPC);
        const gw::Outcome second = batch.install(1);
        ASSERT_FALSE(second);
        EXPECT_TRUE(second.failure().is_lack_of_room());
    }
    EXPECT_TRUE(batch.install(2));
    EXPECT_TRUE(action.commit().empty());
    EXPECT_EQ(batch.whole_fonts("no room for the second"), (std::set<int>{0, 2}));
}

TEST(ABatch, InWhichTheSameFontComesTwiceHasItOnce) {
    Batch batch(FEW);
    {
        gw::FontAction action;
        EXPECT_TRUE(batch.install(1));
        EXPECT_TRUE(batch.install(1));
        EXPECT_TRUE(batch.install(0));
        EXPECT_TRUE(action.commit().empty());
    }
    EXPECT_TRUE(batch.dir.exists("fonts/" + Batch::metrics(1)));
    EXPECT_EQ(batch.state().size(), 6U);
}

/// What becomes of the part of the journal that was not on the disk when the power failed.
enum class Lost { CUT, ZEROS };

void lose_the_end_of_the_journal(const Batch& batch, Lost how) {
    const std::string journal = batch.dir.read("fonts/.glyphward/journal");
    const std::size_t end = journal.find('\n', journal.find("put ")) + 1;
    ASSERT_LT(end, journal.size()) << "only the first file is on the disk for certain";
    const std::string rest(how == Lost::ZEROS ? journal.size() - end : 0, '\0');
    batch.dir.write("fonts/.glyphward/journal", journal.substr(0, end) + rest);
}

TEST(ABatch, WhoseRecordsAreLostWithThePowerIsTakenBackByItsSecondNames) {
    for (const Lost how : {Lost::CUT, Lost::ZEROS}) {
        Batch batch(FEW);
        const Files before = batch.state();
        ASSERT_TRUE(gw::test::is_killed([&] {
            const gw::FontAction action;
            for (int i = 0; i < FEW; ++i) (void)batch.install(i);
            ::kill(::getpid(), SIGKILL);
        }));
        EXPECT_EQ(batch.state().size(), before.size() + std::size_t{2} * FEW)
            << "the files have their names at once";
        lose_the_end_of_the_journal(batch, how);
        EXPECT_TRUE(gw::settle(batch.fonts()));
        EXPECT_TRUE(batch.whole_fonts("the power failed").empty());
        EXPECT_EQ(batch.state(), before);
    }
}

/// Sees which files have a name and are not on the disk.
class SeenDisk {
  public:
    SeenDisk() {
        state() = {};
        static gw::FileCalls calls = gw::system_file_calls();
        calls.link = [](int old_dir, const char* old_name, int new_dir, const char* new_name) {
            if (std::string(new_name) != "fonts.dir") ++state().waiting;
            return gw::system_file_calls().link(old_dir, old_name, new_dir, new_name);
        };
        calls.sync_all = [](int fd) {
            ++state().all;
            if (state().fails) return errno = EIO, -1;
            state().waiting = 0;
            return gw::system_file_calls().sync_all(fd);
        };
        calls.sync = [](int fd) {
            ++state().single;
            return gw::system_file_calls().sync(fd);
        };
        calls.rename = [](int old_dir, const char* old_name, int new_dir, const char* new_name) {
            if (std::string(new_name) == "fonts.dir") state().waiting_at_index += state().waiting;
            return gw::system_file_calls().rename(old_dir, old_name, new_dir, new_name);
        };
        gw::use_file_calls(calls);
    }
    ~SeenDisk() { gw::use_file_calls(gw::system_file_calls()); }
    SeenDisk(const SeenDisk&) = delete;
    SeenDisk& operator=(const SeenDisk&) = delete;

    struct State {
        int waiting = 0;
        int waiting_at_index = 0;
        int all = 0;
        int single = 0;
        bool fails = false;
    };
    static State& state() {
        static State of_the_disk;
        return of_the_disk;
    }
};

TEST(ABatch, IsOnTheDiskBeforeTheIndexNamesIt) {
    Batch batch(FEW);
    const SeenDisk disk;
    EXPECT_EQ(batch.install_all(), first(FEW));
    EXPECT_EQ(SeenDisk::state().all, 1);
    EXPECT_EQ(SeenDisk::state().waiting_at_index, 0);
    EXPECT_EQ(SeenDisk::state().waiting, 0);
}

TEST(ABatch, WritesEachFileToTheDiskWhereThatFailsForAll) {
    int in_one = 0;
    {
        Batch batch(FEW);
        const SeenDisk disk;
        EXPECT_EQ(batch.install_all(), first(FEW));
        in_one = SeenDisk::state().single;
    }
    Batch batch(FEW);
    const SeenDisk disk;
    SeenDisk::state().fails = true;
    EXPECT_EQ(batch.install_all(), first(FEW));
    EXPECT_EQ(SeenDisk::state().single, in_one + 2 * FEW + 1) << "the files and the journal";
    EXPECT_EQ(batch.whole_fonts("each by itself"), first(FEW));
}

}  // namespace
