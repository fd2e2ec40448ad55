// SPDX-License-Identifier: MIT
//
// Installing and deleting when something goes wrong: either the whole font is there or nothing of it, and the
// index agrees.
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "model/gw_alias.h"
#include "model/gw_conflict.h"
#include "model/gw_hrn_list.h"
#include "modules/gw_fsm_list.h"
#include "modules/gw_pcf_fsm.h"
#include "modules/gw_t1_fsm.h"
#include "store/font_action.h"
#include "support/font_maker.h"
#include "support/giving_up.h"
#include "support/heard_failures.h"
#include "support/small_disk.h"
#include "support/temp_dir.h"

namespace {

using gw::test::SmallDisk;
using gw::test::TempDir;
using Font = gw::Ref<GWFont>;

const std::string BITMAP_NAME = "-test-tiny-medium-r-normal--8-80-75-75-c-80-iso8859-1";
const std::string OUTLINE_NAME = "-test-tiny-medium-r-normal--0-0-0-0-p-0-iso8859-1";

/// A font made of these files of `dir`.
Font font_of(GWFont::GW_FONT_TYPE type, const std::string& dir, const std::vector<std::string>& names) {
    Font font(gw::test::make_font(type, type == GWFont::TYPE1_FONT ? OUTLINE_NAME : BITMAP_NAME));
    auto files = std::make_unique<GW_FSPEC_LIST>();
    for (const std::string& name : names)
        files->append(new GW_FILE_SPEC(name.c_str(), dir.c_str(), gw::FILE_TYPE_REGULAR, gw::EXT_UNKNOWN));
    font->set_font_file_list(std::move(files));
    return font;
}

class Installation : public testing::Test {
  protected:
    Installation() {
        modules.append(&type1);
        modules.append(&pcf);
    }
    /// Installs the font into `target`; true when that was done. `said` gets the output on standard error.
    bool install(const Font& font, const std::string& target) {
        const gw::Outcome outcome = font->install(target, modules);
        said = gw::test::text_of(outcome);
        return static_cast<bool>(outcome);
    }
    bool remove(const Font& font) {
        const gw::Outcome outcome = font->remove(modules);
        said = gw::test::text_of(outcome);
        return static_cast<bool>(outcome);
    }
    [[nodiscard]] Font bitmap(const std::string& name = "tiny.pcf") const {
        return font_of(GWFont::BITMAP_FONT, dir.file("from"), {name});
    }
    [[nodiscard]] Font outline(const std::vector<std::string>& names) const {
        return font_of(GWFont::TYPE1_FONT, dir.file("from"), names);
    }
    [[nodiscard]] bool said_of(const std::string& path, const std::string& reason) const {
        return said == path + ": " + reason;
    }

    TempDir dir;
    GW_T1_FSM type1;
    GW_PCF_FSM pcf;
    GW_FSM_LIST modules;
    std::string said;
};

constexpr const char* FULL = "No space left on device; the font is left out";
constexpr const char* GONE = "No such file or directory; the font is left out";
constexpr const char* CLOSED = "Permission denied; the font is left out";
constexpr const char* FOREIGN = "this is a file of another font; the font is left out";

TEST_F(Installation, WholeFontsAreDoneAndNothingElseRemains) {
    dir.write("from/tiny.pcf", "bitmap");
    dir.write("from/tiny.pfa", "%!PS");
    dir.write("from/tiny.afm", "%afm");
    const std::string target = dir.make_dir("to");
    EXPECT_TRUE(install(outline({"tiny.pfa", "tiny.afm"}), target)) << said;
    EXPECT_TRUE(install(bitmap(), target)) << said;
    EXPECT_EQ(dir.read("to/fonts.dir"), "2\ntiny.pfa " + OUTLINE_NAME + "\ntiny.pcf " + BITMAP_NAME + "\n");
    EXPECT_EQ(dir.read("to/tiny.pcf"), "bitmap");
    EXPECT_EQ(dir.read("to/tiny.pfa"), std::string("%!PS\0", 5));
    EXPECT_EQ(gw::test::entries_in(target), 5) << "three files, the index and the directory for metrics";
    EXPECT_EQ(said, "");
}

TEST_F(Installation, ABitmapFontThatDoesNotFitLeavesNothing) {
    const SmallDisk disk;
    disk.write("fonts.dir", "1\nother.pcf -other\n");
    dir.write("from/tiny.pcf", std::string(50000, 'x'));
    disk.leave_blocks(4);
    EXPECT_FALSE(install(bitmap(), disk.path()));
    EXPECT_TRUE(said_of(disk.file("tiny.pcf"), FULL)) << said;
    EXPECT_EQ(disk.read("fonts.dir"), "1\nother.pcf -other\n");
    EXPECT_EQ(disk.entries(), 1);
}

TEST_F(Installation, AnOutlineFontWhoseSecondFileDoesNotFitLeavesNothing) {
    const SmallDisk disk;
    disk.write("fonts.dir", "1\nother.pcf -other\n");
    dir.write("from/tiny.pfa", "%!PS");
    dir.write("from/tiny.afm", "%" + std::string(50000, 'x'));
    disk.leave_blocks(4);
    EXPECT_FALSE(install(outline({"tiny.pfa", "tiny.afm"}), disk.path()));
    EXPECT_TRUE(said_of(disk.file("tiny.afm"), FULL)) << said;
    EXPECT_EQ(disk.read("fonts.dir"), "1\nother.pcf -other\n");
    EXPECT_EQ(disk.entries(), 1) << "not even the directory for metrics";
}

// The disk has room for the font or for a part of what the change needs, but not for all of it.
TEST_F(Installation, AFontWhoseIndexLineDoesNotFitLeavesNothing) {
    const SmallDisk disk;
    std::string index = "100\n";
    for (int i = 0; index.size() < 4096 - 20; ++i) index += "f" + std::to_string(i) + ".pcf -f\n";
    disk.write("fonts.dir", index);
    dir.write("from/tiny.pcf", "small");
    dir.write("from/tiny.pfa", "%small");
    for (const Font& font : {bitmap(), outline({"tiny.pfa"})}) {
        for (unsigned long blocks = 1; blocks <= 3; ++blocks) {
            disk.leave_blocks(blocks);
            EXPECT_FALSE(install(font, disk.path())) << blocks;
            EXPECT_TRUE(said.ends_with(FULL)) << said;
            EXPECT_EQ(disk.read("fonts.dir"), index);
            EXPECT_EQ(disk.entries(), 1);
            std::filesystem::remove("/small/filler");
        }
    }
}

TEST_F(Installation, ASourceThatHasVanishedLeavesNothing) {
    const std::string target = dir.make_dir("to");
    dir.write("from/tiny.pfa", "%!PS");
    for (const auto& [font, missing] :
         {std::pair(bitmap(), "tiny.pcf"), std::pair(outline({"tiny.pfb"}), "tiny.pfb"),
          std::pair(outline({"tiny.pfa", "tiny.afm"}), "tiny.afm")}) {
        EXPECT_FALSE(install(font, target));
        EXPECT_TRUE(said_of(dir.file("from/") + missing, GONE)) << said;
        EXPECT_EQ(dir.read("to/fonts.dir"), "0\n");
        EXPECT_EQ(gw::test::entries_in(target), 1) << missing;
    }
}

TEST_F(Installation, ASourceThatIsADirectoryLeavesNothing) {
    const std::string target = dir.make_dir("to");
    dir.make_dir("from/tiny.pcf");
    EXPECT_FALSE(install(bitmap(), target));
    EXPECT_TRUE(said_of(dir.file("from/tiny.pcf"), "Is a directory; the font is left out")) << said;
    EXPECT_EQ(gw::test::entries_in(target), 1);
}

TEST_F(Installation, ADirectoryThatMayNotBeWrittenStaysAsItIs) {
    if (::geteuid() == 0) GTEST_SKIP() << "every directory is open to the superuser";
    dir.write("from/tiny.pcf", "new");
    dir.write("to/fonts.dir", "0\n");
    ::chmod(dir.file("to").c_str(), 0555);
    EXPECT_FALSE(install(bitmap(), dir.file("to/")));
    EXPECT_TRUE(said_of(dir.file("to/tiny.pcf"), CLOSED)) << said;
    EXPECT_EQ(dir.read("to/fonts.dir"), "0\n");
}

// The metrics were once said to be missing, when only their directory could not be made.
TEST_F(Installation, ADirectoryForMetricsThatCannotBeMadeIsNamedItself) {
    dir.write("from/afm/tiny.afm", "x");
    dir.write("from/tiny.pfa", "%!PS");
    dir.write("to/fonts.dir", "0\n");
    dir.write("to/afm", "a file");
    EXPECT_FALSE(install(outline({"afm/tiny.afm", "tiny.pfa"}), dir.file("to/")));
    EXPECT_TRUE(said_of(dir.file("to/afm"), "Not a directory; the font is left out")) << said;
    EXPECT_EQ(dir.read("to/afm"), "a file");
}

TEST_F(Installation, AnIndexThatMayNotBeWrittenGetsNoFont) {
    if (::geteuid() == 0) GTEST_SKIP() << "every file is open to the superuser";
    dir.write("from/tiny.pcf", "new");
    ::chmod(dir.write("to/fonts.dir", "0\n").c_str(), 0444);
    EXPECT_FALSE(install(bitmap(), dir.file("to/")));
    EXPECT_EQ(gw::test::entries_in(dir.file("to")), 1);
}

TEST_F(Installation, AnEarlierVersionOutlivesAFailedCopy) {
    const SmallDisk disk;
    const std::string index = "1\ntiny.pcf " + BITMAP_NAME + "\n";
    disk.write("fonts.dir", index);
    disk.write("tiny.pcf", "old");
    dir.write("from/tiny.pcf", std::string(50000, 'x'));
    disk.leave_blocks(4);
    EXPECT_FALSE(install(bitmap(), disk.path()));
    EXPECT_EQ(disk.read("tiny.pcf"), "old");
    EXPECT_EQ(disk.read("fonts.dir"), index);
    EXPECT_EQ(disk.entries(), 2);
}

TEST_F(Installation, AnEarlierVersionIsReplaced) {
    dir.write("to/fonts.dir", "2\ntiny.pcf -one-more-name\ntiny.pcf " + BITMAP_NAME + "\n");
    dir.write("to/tiny.pcf", "old");
    dir.write("from/tiny.pcf", "new");
    EXPECT_TRUE(install(bitmap(), dir.file("to/"))) << said;
    EXPECT_EQ(dir.read("to/tiny.pcf"), "new");
}

TEST_F(Installation, AFileOfAnotherFontIsNotOverwritten) {
    const std::string index = "2\ntiny.pcf -another-font\ntiny.pfa -another-outline\n";
    dir.write("to/fonts.dir", index);
    dir.write("to/tiny.pcf", "other");
    dir.write("to/tiny.pfa", "%other");
    dir.write("from/tiny.pcf", "new");
    dir.write("from/tiny.pfa", "%new");
    EXPECT_FALSE(install(bitmap(), dir.file("to/")));
    EXPECT_TRUE(said_of(dir.file("to/tiny.pcf"), FOREIGN)) << said;
    EXPECT_FALSE(install(outline({"tiny.pfa"}), dir.file("to/")));
    EXPECT_TRUE(said_of(dir.file("to/tiny.pfa"), FOREIGN)) << said;
    EXPECT_EQ(dir.read("to/tiny.pcf"), "other");
    EXPECT_EQ(dir.read("to/tiny.pfa"), "%other");
    EXPECT_EQ(dir.read("to/fonts.dir"), index);
    EXPECT_EQ(gw::test::entries_in(dir.file("to")), 3);
}

// Files with the same prefix are one font. The two fonts would share their metrics, and deleting one would
// delete both.
TEST_F(Installation, AnOutlineOfAnotherFontsPrefixIsRefused) {
    const std::string index = "1\ntiny.pfb -another-font\n";
    dir.write("to/fonts.dir", index);
    dir.write("to/tiny.pfb", "%other");
    dir.write("to/tiny.afm", "other");
    dir.write("from/tiny.pfa", "%new");
    dir.write("from/tiny.afm", "new");
    EXPECT_FALSE(install(outline({"tiny.pfa", "tiny.afm"}), dir.file("to/")));
    EXPECT_TRUE(said_of(dir.file("to/tiny.pfb"), FOREIGN)) << said;
    EXPECT_EQ(dir.read("to/tiny.afm"), "other");
    EXPECT_EQ(dir.read("to/fonts.dir"), index);
    EXPECT_EQ(gw::test::entries_in(dir.file("to")), 3);
    std::filesystem::remove(dir.file("to/tiny.pfb"));
    EXPECT_TRUE(install(outline({"tiny.pfa", "tiny.afm"}), dir.file("to/"))) << "a line alone owns nothing";
}

TEST_F(Installation, AFileOfTheSameBytesMayHaveOneMoreName) {
    dir.write("to/fonts.dir", "1\ntiny.pcf -another-name\n");
    dir.write("to/tiny.pcf", "same");
    dir.write("from/tiny.pcf", "same");
    EXPECT_TRUE(install(bitmap(), dir.file("to/"))) << said;
    EXPECT_EQ(dir.read("to/fonts.dir"), "2\ntiny.pcf -another-name\ntiny.pcf " + BITMAP_NAME + "\n");
}

// Otherwise the conversion would overwrite the source file.
TEST_F(Installation, AFontInItsOwnDirectoryByAnotherWayIsOnlyEntered) {
    dir.write("from/tiny.pfa", "%!PS\r");
    std::filesystem::create_directory_symlink("from", dir.file("link"));
    EXPECT_TRUE(install(outline({"tiny.pfa"}), dir.file("link/"))) << said;
    EXPECT_EQ(dir.read("from/tiny.pfa"), "%!PS\r");
    EXPECT_EQ(dir.read("from/fonts.dir"), "1\ntiny.pfa " + OUTLINE_NAME + "\n");
}

// Whenever the process is killed, the index is complete and its count is right.
TEST_F(Installation, KilledInTheMiddleLeavesAWholeIndex) {
    dir.write("from/tiny.pcf", std::string(200000, 'x'));
    dir.write("to/fonts.dir", "0\n");
    for (int round = 0; round < 20; ++round) {
        const std::uintmax_t goal = std::filesystem::file_size(dir.file("to/fonts.dir")) + 1;
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (int i = 0; i < 1000000; ++i) bitmap()->install_font(dir.file("to/").c_str(), 0, modules);
            ::_exit(0);
        }
        std::error_code between;
        while (std::filesystem::file_size(dir.file("to/fonts.dir"), between) < goal || between)
            ::sched_yield();
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);

        GW_FONTDIR_FILE index(dir.file("to").c_str(), 0);
        std::vector<GW_FONTDIR_FILE::Entry> entries;
        ASSERT_TRUE(index.get_entries(entries));
        EXPECT_EQ(index.get_font_count(), static_cast<int>(entries.size()));
        for (const auto& entry : entries) {
            ASSERT_EQ(entry.file_name, "tiny.pcf");
            ASSERT_EQ(entry.font_name, BITMAP_NAME);
        }
        EXPECT_EQ(dir.read("to/tiny.pcf").size(), 200000U) << "a bitmap is there before its line";
    }
    ASSERT_TRUE(install(bitmap(), dir.file("to/")));
    EXPECT_EQ(gw::test::entries_in(dir.file("to")), 2) << "the next installation clears up";
}

// --- deleting

class Deleting : public Installation {};

TEST_F(Deleting, OfAFontThatIsGoneAlreadyTakesItsLine) {
    dir.write("from/fonts.dir", "2\ntiny.pcf " + BITMAP_NAME + "\nother.pcf -other\n");
    EXPECT_TRUE(remove(bitmap()));
    EXPECT_EQ(dir.read("from/fonts.dir"), "1\nother.pcf -other\n");
    EXPECT_EQ(said, "");
}

TEST_F(Deleting, InAClosedDirectoryChangesNothing) {
    if (::geteuid() == 0) GTEST_SKIP() << "every directory is open to the superuser";
    const std::string index = "1\ntiny.pcf " + BITMAP_NAME + "\n";
    dir.write("from/fonts.dir", index);
    dir.write("from/tiny.pcf", "x");
    ::chmod(dir.file("from").c_str(), 0555);
    EXPECT_FALSE(remove(bitmap()));
    EXPECT_TRUE(said_of(dir.file("from/tiny.pcf"), "Permission denied; the font stays")) << said;
    EXPECT_EQ(dir.read("from/fonts.dir"), index);
    EXPECT_TRUE(dir.exists("from/tiny.pcf"));
}

TEST_F(Deleting, WithAClosedDirectoryOfMetricsChangesNothing) {
    if (::geteuid() == 0) GTEST_SKIP() << "every directory is open to the superuser";
    const std::string index = "1\ntiny.pfa " + OUTLINE_NAME + "\n";
    dir.write("from/fonts.dir", index);
    dir.write("from/tiny.pfa", "%x");
    dir.write("from/afm/tiny.afm", "x");
    ::chmod(dir.file("from/afm").c_str(), 0555);
    EXPECT_FALSE(remove(outline({"tiny.pfa", "afm/tiny.afm"})));
    EXPECT_EQ(dir.read("from/fonts.dir"), index);
    EXPECT_TRUE(dir.exists("from/tiny.pfa"));
}

TEST_F(Deleting, WithAClosedIndexChangesNothing) {
    if (::geteuid() == 0) GTEST_SKIP() << "every file is open to the superuser";
    const std::string index = "1\ntiny.pcf " + BITMAP_NAME + "\n";
    ::chmod(dir.write("from/fonts.dir", index).c_str(), 0444);
    dir.write("from/tiny.pcf", "x");
    EXPECT_FALSE(remove(bitmap()));
    EXPECT_TRUE(said_of(dir.file("from/fonts.dir"), "Permission denied; the font stays")) << said;
    EXPECT_EQ(dir.read("from/fonts.dir"), index);
    EXPECT_TRUE(dir.exists("from/tiny.pcf"));
}

// The file in the index is not always the font's first file.
TEST_F(Deleting, WithAClosedIndexKeepsAllFilesOfAnOutline) {
    if (::geteuid() == 0) GTEST_SKIP() << "every file is open to the superuser";
    ::chmod(dir.write("from/fonts.dir", "1\ntiny.pfa " + OUTLINE_NAME + "\n").c_str(), 0444);
    dir.write("from/tiny.pfb", "%x");
    dir.write("from/tiny.pfa", "%x");
    EXPECT_FALSE(remove(outline({"tiny.pfb", "tiny.pfa"})));
    EXPECT_EQ(gw::test::entries_in(dir.file("from")), 3);
}

// The font's file is a directory, which is noticed only when it is removed.
TEST_F(Deleting, PutsTheLineBackWhenTheFileStays) {
    const std::string index = "2\ntiny.pcf " + BITMAP_NAME + "\nother.pcf -other\n";
    dir.write("from/fonts.dir", index);
    dir.make_dir("from/tiny.pcf");
    EXPECT_FALSE(remove(bitmap()));
    EXPECT_TRUE(said_of(dir.file("from/tiny.pcf"), "Is a directory; the font stays")) << said;
    EXPECT_EQ(dir.read("from/fonts.dir"), index);
}

// In a directory like /tmp only the owner can remove a file.
TEST_F(Deleting, AFileOfAnotherInAStickyDirectoryStays) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser makes files of two owners";
    const std::string index = "1\ntiny.pcf " + BITMAP_NAME + "\n";
    dir.write("from/tiny.pcf", "x");
    ::chmod(dir.write("from/fonts.dir", index).c_str(), 0666);
    ::chmod(dir.file("from").c_str(), 01777);
    ::chmod(dir.c_str(), 0755);
    const Font font = bitmap();
    ASSERT_EQ(::seteuid(1234), 0);
    const bool done = remove(font);
    ASSERT_EQ(::seteuid(0), 0);
    EXPECT_FALSE(done);
    EXPECT_TRUE(said_of(dir.file("from/tiny.pcf"), "Operation not permitted; the font stays")) << said;
    EXPECT_EQ(dir.read("from/fonts.dir"), index);
    EXPECT_TRUE(dir.exists("from/tiny.pcf"));
}

TEST_F(Installation, ThatFailsGivesItsRoomToTheNextFontOfTheAction) {
    const SmallDisk disk;
    dir.write("from/large.pcf", std::string(300000, 'x'));
    dir.write("from/small.pcf", std::string(20000, 'x'));
    disk.leave_blocks(20);
    gw::FontAction action;
    EXPECT_FALSE(install(bitmap("large.pcf"), disk.path()));
    EXPECT_TRUE(said_of(disk.file("large.pcf"), FULL)) << said;
    EXPECT_TRUE(install(bitmap("small.pcf"), disk.path())) << said;
    EXPECT_TRUE(action.commit().empty());
    EXPECT_TRUE(disk.exists("small.pcf"));
}

TEST_F(Installation, ThatIsGivenUpLeavesNothing) {
    dir.write("from/tiny.pcf", std::string(200000, 'x'));
    std::filesystem::create_directory(dir.file("to"));
    {
        int asked = 0;
        const gw::test::GivingUp user([&] { return ++asked == 10; });
        EXPECT_FALSE(install(bitmap(), dir.file("to/")));
        EXPECT_EQ(said, dir.file("from/tiny.pcf") + ": this was cancelled; the font is left out");
    }
    EXPECT_FALSE(dir.exists("to/tiny.pcf"));
    EXPECT_EQ(dir.read("to/fonts.dir"), "0\n");
    EXPECT_TRUE(install(bitmap(), dir.file("to/"))) << said;
    EXPECT_EQ(std::filesystem::file_size(dir.file("to/tiny.pcf")), 200000U);
}

/// An entry of three sizes, of which the user waits for two.
TEST_F(Installation, OfAnEntryKeepsTheSizesThatAreWhole) {
    std::filesystem::create_directory(dir.file("to"));
    GWHRNList source(0);
    for (const char* size : {"80", "100", "120"}) {
        const std::string file = std::string("tiny") + size + ".pcf";
        dir.write("from/" + file, std::string(200000, 'x'));
        Font font = font_of(GWFont::BITMAP_FONT, dir.file("from"), {file});
        font->set_xlfd_name(
            ("-test-tiny-medium-r-normal--8-" + std::string(size) + "-75-75-c-80-iso8859-1").c_str());
        source.add_font(font.get());
    }
    GWHRNList installed(0);
    GW_SORTED_LIST<GWAlias> aliases(0);
    GW_LIST<GWConflict> conflicts;
    {
        gw::FontAction action;
        const gw::test::GivingUp user([&] { return dir.exists("to/tiny100.pcf"); });
        EXPECT_EQ(source.install_at_pos(1, dir.file("to/").c_str(), installed, aliases, modules, conflicts),
                  GWHRNElement::DONE);
        EXPECT_TRUE(source.get_report().failed().empty()) << "what the user gives up has not failed";
        gw::listen_to_long_work(nullptr);
        EXPECT_TRUE(action.commit().empty());
    }
    EXPECT_TRUE(dir.exists("to/tiny80.pcf"));
    EXPECT_TRUE(dir.exists("to/tiny100.pcf"));
    EXPECT_FALSE(dir.exists("to/tiny120.pcf"));
    EXPECT_EQ(dir.read("to/fonts.dir").substr(0, 2), "2\n");
    ASSERT_EQ(installed.get_count(), 1);
    EXPECT_EQ(installed.get_elem_at_pos(1)->get_slots().size(), 2U);
}

}  // namespace
