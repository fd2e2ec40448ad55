// SPDX-License-Identifier: MIT
#include "fontfiles/gw_fontdir_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "support/small_disk.h"
#include "support/temp_dir.h"

namespace {

using gw::test::TempDir;

constexpr const char* COURIER = "-adobe-courier-medium-r-normal--0-0-0-0-m-0-iso8859-1";

std::string entry(int i) {
    return "f" + std::to_string(i) + ".pfa -x-f" + std::to_string(i) + "\n";
}

/// An index of `count` entries whose first line says `promised`.
std::string index_of(int promised, int count) {
    std::string bytes = std::to_string(promised) + "\n";
    for (int i = 1; i <= count; ++i) bytes += entry(i);
    return bytes;
}

class FontdirFile : public testing::Test {
  protected:
    GW_FONTDIR_FILE index() const { return {dir.c_str(), 0}; }
    void set(const std::string& bytes) const { dir.write("fonts.dir", bytes); }
    [[nodiscard]] std::string bytes() const { return dir.read("fonts.dir"); }
    TempDir dir;
};

std::vector<std::string> texts(const GW_STRING_LIST& list) {
    std::vector<std::string> all;
    for (const GW_STRING* s : list) all.emplace_back(s->get_str());
    return all;
}

TEST_F(FontdirFile, CreateMakesAnIndexOfNothing) {
    EXPECT_EQ(index().create(), 1);
    EXPECT_EQ(bytes(), "0\n");
}

// Because of an empty index the X server would reject the whole directory.
TEST(FontdirFileOnAFullDisk, IsNotMadeAtAll) {
    const gw::test::SmallDisk disk;
    disk.leave_blocks(0);
    EXPECT_EQ(GW_FONTDIR_FILE(disk.path().c_str(), 0).create(), 1);
    EXPECT_EQ(disk.entries(), 0);
}

TEST_F(FontdirFile, CreateLeavesAnIndexAlone) {
    set("7\nwhatever");
    EXPECT_EQ(index().create(), 1);
    EXPECT_EQ(bytes(), "7\nwhatever");
}

TEST_F(FontdirFile, ALineSplitsAtItsFirstBlank) {
    const struct {
        const char* line;
        const char* file;
        const char* font;
    } cases[] = {
        {"cour.pfa -adobe-courier-medium-r-normal--0-0-0-0-m-0-iso8859-1\n", "cour.pfa", COURIER},
        {"a.pcf  -two blanks\n", "a.pcf", " -two blanks"},
        {"a.pcf -misc-fixed medium-r\n", "a.pcf", "-misc-fixed medium-r"},
        {"lonely\n", "lonely", ""},
        {"\n", "", ""},
        {"caf\xe9.pcf -caf\xe9-\n", "caf\xe9.pcf", "-caf\xe9-"},
    };
    for (const auto& c : cases) {
        std::string file;
        std::string font;
        GW_FONTDIR_FILE::split_line(c.line, file, font);
        EXPECT_EQ(file, c.file) << c.line;
        EXPECT_EQ(font, c.font) << c.line;
    }
}

TEST_F(FontdirFile, ListsAndFindsItsEntries) {
    set(std::string("2\ncour.pfa ") + COURIER + "\nb.pcf fixed\n");
    GW_FONTDIR_FILE file = index();
    EXPECT_EQ(file.get_font_count(), 2);
    GW_STRING_LIST names;
    const gw::ElementsOwner names_owner(names);
    EXPECT_EQ(file.get_inst_font_file_names(names), 1);
    EXPECT_EQ(texts(names), (std::vector<std::string>{"cour.pfa", "b.pcf"}));
    GW_STRING_LIST fonts;
    const gw::ElementsOwner fonts_owner(fonts);
    EXPECT_EQ(file.get_inst_font_names(fonts), 1);
    EXPECT_EQ(texts(fonts), (std::vector<std::string>{COURIER, "fixed"}));
    EXPECT_STREQ(file.get_file_name(COURIER)->get_str(), "cour.pfa");
    EXPECT_STREQ(file.get_font_name("b.pcf")->get_str(), "fixed");
    EXPECT_EQ(file.get_font_name("B.pcf"), nullptr);
}

TEST_F(FontdirFile, AMissingIndexAnswersForItself) {
    GW_FONTDIR_FILE file = index();
    GW_STRING_LIST none;
    EXPECT_EQ(file.get_font_count(), -1);
    EXPECT_EQ(file.get_inst_font_file_names(none), 0);
    EXPECT_EQ(file.get_inst_font_names(none), 0);
    EXPECT_EQ(file.get_font_name("x"), nullptr);
    EXPECT_EQ(file.get_file_name("x"), nullptr);
    EXPECT_EQ(file.delete_font_file_line("x"), 0);
    EXPECT_EQ(file.delete_line(1), 0);
    EXPECT_EQ(file.adjust_font_count(1), -1);
    EXPECT_FALSE(dir.exists("fonts.dir"));
}

TEST_F(FontdirFile, AppendingKeepsTheCountRightByteForByte) {
    for (const int before : {0, 4, 9, 10, 99, 100}) {
        set(index_of(before, before));
        EXPECT_EQ(index().append_line(entry(before + 1).c_str()), 1);
        EXPECT_EQ(bytes(), index_of(before + 1, before + 1)) << before;
    }
}

TEST_F(FontdirFile, AppendingSeveralCountsThemAll) {
    for (const int before : {8, 98}) {
        set(index_of(before, before));
        GW_STRING_LIST lines;
        const gw::ElementsOwner owner(lines);
        for (int i = 1; i <= 3; ++i) lines.append(new GW_STRING(entry(before + i).c_str()));
        EXPECT_EQ(index().append_line(&lines), 1);
        EXPECT_EQ(bytes(), index_of(before + 3, before + 3)) << before;
    }
}

TEST_F(FontdirFile, ABatchWritesItsLinesAllAtOnceAndInOrder) {
    for (const int before : {0, 8, 98}) {
        set(index_of(before, before));
        GW_FONTDIR_FILE file = index();
        {
            GW_FONTDIR_FILE::Batch batch(file);
            for (int i = 1; i <= 3; ++i) EXPECT_EQ(file.append_line(entry(before + i).c_str()), 1);
            EXPECT_EQ(bytes(), index_of(before, before));
            EXPECT_TRUE(batch.write());
            EXPECT_EQ(bytes(), index_of(before + 3, before + 3));
            file.append_line(entry(before + 4).c_str());
        }
        EXPECT_EQ(bytes(), index_of(before + 4, before + 4)) << "the rest at the batch's end";
        file.append_line(entry(before + 5).c_str());
        EXPECT_EQ(bytes(), index_of(before + 5, before + 5)) << "and then line by line again";
    }
}

TEST_F(FontdirFile, ABatchWithoutLinesWritesNothing) {
    GW_FONTDIR_FILE file = index();
    EXPECT_TRUE(GW_FONTDIR_FILE::Batch(file).write());
    EXPECT_FALSE(dir.exists("fonts.dir"));
}

TEST(FontdirFileBatch, SaysWhenItsLinesCouldNotBeWritten) {
    GW_FONTDIR_FILE file("/nonexistent/", 0);
    GW_FONTDIR_FILE::Batch batch(file);
    EXPECT_EQ(file.append_line("a -a\n"), 1);
    EXPECT_FALSE(batch.write());
    EXPECT_TRUE(batch.write()) << "they are given up";
}

TEST_F(FontdirFile, TakingALineBackUndoesItsAppending) {
    for (const int before : {0, 9, 99}) {
        const std::string twice = index_of(before, before) + entry(1);
        set(twice);
        const std::string line = entry(1);
        ASSERT_EQ(index().append_line(line.c_str()), 1);
        EXPECT_EQ(index().take_back_line(line.c_str()), 1);
        EXPECT_EQ(bytes(), twice) << "of equal entries the last one";
        EXPECT_EQ(index().take_back_line("f1.pfa -x\n"), 0) << "the whole line must agree";
        EXPECT_EQ(bytes(), twice);
    }
    EXPECT_EQ(GW_FONTDIR_FILE("/nonexistent/", 0).take_back_line("a -a\n"), 0);
}

TEST_F(FontdirFile, DeletingKeepsTheCountRightByteForByte) {
    for (const int before : {1, 9, 10, 11, 100, 101}) {
        set(index_of(before, before));
        const std::size_t size = bytes().size();
        EXPECT_EQ(index().delete_font_file_line(("f" + std::to_string(before) + ".pfa").c_str()), 1);
        EXPECT_EQ(bytes(), index_of(before - 1, before - 1)) << before;
        const std::size_t digit = std::to_string(before).size() - std::to_string(before - 1).size();
        EXPECT_EQ(size - bytes().size(), entry(before).size() + digit) << before;
    }
}

TEST_F(FontdirFile, DeletesTheFirstEntryOfAFileAndOnlyThat) {
    set("3\na.pfb -one\nb.pfb -b\na.pfb -two\n");
    EXPECT_EQ(index().delete_font_file_line("a.pfb"), 1);
    EXPECT_EQ(bytes(), "2\nb.pfb -b\na.pfb -two\n");
    EXPECT_EQ(index().delete_font_file_line("c.pfb"), 0);
    EXPECT_EQ(bytes(), "2\nb.pfb -b\na.pfb -two\n");
}

TEST_F(FontdirFile, DeletesAllEntriesOfAFileAndCountsThemOff) {
    set("12\na.pfb -one\na.pfb -two\nb.pfb -b\naa.pfb -aa\na.pfb -three\n");
    EXPECT_EQ(index().delete_font_file_lines("a.pfb"), 1);
    EXPECT_EQ(bytes(), "9\nb.pfb -b\naa.pfb -aa\n");
    EXPECT_EQ(index().delete_font_file_lines("a.pfb"), 0);
    EXPECT_EQ(bytes(), "9\nb.pfb -b\naa.pfb -aa\n");
    set("2\na.pfb -one\na.pfb -two");
    EXPECT_EQ(index().delete_font_file_lines("a.pfb"), 1);
    EXPECT_EQ(bytes(), "0\n");
    EXPECT_EQ(GW_FONTDIR_FILE("/nonexistent/", 0).delete_font_file_lines("a.pfb"), 0);
}

TEST_F(FontdirFile, DeleteLineLeavesTheCountAlone) {
    set(index_of(3, 3));
    EXPECT_EQ(index().delete_line(2), 1);
    EXPECT_EQ(bytes(), "3\n" + entry(1) + entry(3));
    for (const int n : {0, -1, 3, 100}) EXPECT_EQ(index().delete_line(n), 0) << n;
    EXPECT_EQ(bytes(), "3\n" + entry(1) + entry(3));
}

TEST_F(FontdirFile, TheCountGrowsAndShrinksInPlace) {
    const struct {
        int from;
        int delta;
    } cases[] = {{5, 1}, {9, 1}, {10, -1}, {99, 2}, {100, -1}, {1, -1}, {3, 0}};
    for (const auto& c : cases) {
        set(index_of(c.from, 12));
        EXPECT_EQ(index().adjust_font_count(c.delta), c.from + c.delta);
        EXPECT_EQ(bytes(), index_of(c.from + c.delta, 12))
            << c.from << " by " << c.delta << ": no entry may be lost";
    }
}

TEST_F(FontdirFile, AWrongCountNeitherHidesNorLosesEntries) {
    const struct {
        const char* first_line;
        int count;
        const char* after_append;
    } cases[] = {
        {"1", 1, "2"},       {"500", 500, "501"}, {"-3", -3, "-2"},
        {"none", 0, "1"},    {"", 0, "1"},        {"2147483000", 2147483000, "2147483001"},
        {"3 fonts", 3, "4"},
    };
    for (const auto& c : cases) {
        set(std::string(c.first_line) + "\n" + entry(1) + entry(2));
        EXPECT_EQ(index().get_font_count(), c.count) << c.first_line;
        std::vector<GW_FONTDIR_FILE::Entry> entries;
        EXPECT_TRUE(index().get_entries(entries));
        EXPECT_EQ(entries.size(), 2U) << c.first_line;
        EXPECT_EQ(index().append_line(entry(3).c_str()), 1);
        EXPECT_EQ(bytes(), std::string(c.after_append) + "\n" + entry(1) + entry(2) + entry(3))
            << c.first_line;
    }
}

TEST_F(FontdirFile, ACountThatOverflowsIsRepaired) {
    for (const char* count : {"2147483647", "2147483648", "99999999999999999999", "-99999999999999999999"}) {
        set(std::string(count) + "\n" + entry(1) + entry(2));
        EXPECT_EQ(index().append_line(entry(3).c_str()), 1);
        EXPECT_EQ(bytes(), index_of(3, 3)) << count;
    }
}

TEST_F(FontdirFile, AFirstLineThatIsAnEntryIsKept) {
    set(entry(1) + entry(2));
    EXPECT_EQ(index().append_line(entry(3).c_str()), 1);
    EXPECT_EQ(bytes(), index_of(3, 3));
    set("10x20.pcf -x-f\n" + entry(2));
    EXPECT_EQ(index().delete_font_file_line("f2.pfa"), 1);
    EXPECT_EQ(bytes(), "1\n10x20.pcf -x-f\n");
}

TEST_F(FontdirFile, AnEmptyIndexHasNoEntriesAndCanGrow) {
    set("");
    EXPECT_EQ(index().get_font_count(), 0);
    EXPECT_EQ(index().append_line(entry(1).c_str()), 1);
    EXPECT_EQ(bytes(), index_of(1, 1));
}

TEST_F(FontdirFile, AnEntryAppendedToAMissingIndexMakesOne) {
    EXPECT_EQ(index().append_line(entry(1).c_str()), 1);
    EXPECT_EQ(bytes(), index_of(1, 1));
}

TEST_F(FontdirFile, ALastLineWithoutItsNewlineDoesNotSwallowTheNextEntry) {
    set("1\nf1.pfa -x-f1");
    EXPECT_EQ(index().append_line(entry(2).c_str()), 1);
    EXPECT_EQ(bytes(), index_of(2, 2));
}

// A line of 119 characters, its newline included, is the longest that is read back whole.
TEST_F(FontdirFile, LongLinesAreReadInPieces) {
    const struct {
        std::size_t length;  // newline included
        std::size_t pieces;
    } cases[] = {{118, 1}, {119, 1}, {120, 2}, {121, 2}, {5000, 43}};
    for (const auto& c : cases) {
        const std::string line = "f.pfa " + std::string(c.length - 7, 'x') + "\n";
        ASSERT_EQ(line.size(), c.length);
        set("1\n" + line);
        std::vector<GW_FONTDIR_FILE::Entry> entries;
        EXPECT_TRUE(index().get_entries(entries));
        EXPECT_EQ(entries.size(), c.pieces) << c.length;
        EXPECT_EQ(entries.front().file_name, "f.pfa");
    }
}

TEST_F(FontdirFile, DeletingALongEntryTakesAllItsPieces) {
    set("3\n" + entry(1) + "long.pfa " + std::string(300, 'x') + "\n" + entry(2));
    EXPECT_EQ(index().delete_font_file_line("long.pfa"), 1);
    EXPECT_EQ(bytes(), index_of(2, 2));
}

TEST_F(FontdirFile, AppendingGivesStandardPermissionsAndDeletingKeepsThem) {
    set(index_of(2, 2));
    ::chmod(dir.file("fonts.dir").c_str(), 0600);
    index().delete_font_file_line("f2.pfa");
    struct stat info = {};
    ::stat(dir.file("fonts.dir").c_str(), &info);
    EXPECT_EQ(info.st_mode & 0777, 0600U);
    index().append_line(entry(2).c_str());
    ::stat(dir.file("fonts.dir").c_str(), &info);
    EXPECT_EQ(info.st_mode & 0777, 0644U);
}

TEST_F(FontdirFile, AnIndexThatMayNotBeWrittenStaysAsItIs) {
    if (::geteuid() == 0) GTEST_SKIP() << "every file is open to the superuser";
    set(index_of(2, 2));
    ::chmod(dir.file("fonts.dir").c_str(), 0444);
    EXPECT_EQ(index().append_line(entry(3).c_str()), 0);
    EXPECT_EQ(index().delete_font_file_line("f1.pfa"), 0);
    EXPECT_EQ(index().adjust_font_count(1), -1);
    EXPECT_EQ(bytes(), index_of(2, 2));
}

}  // namespace
