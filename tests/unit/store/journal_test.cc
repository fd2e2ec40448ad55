// SPDX-License-Identifier: MIT
#include "store/journal.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace gw::journal;

using gw::FileIdentity;

constexpr FileIdentity STAMP = {123456789012, FileIdentity::Content{34567, 1700000000, 999999999}};

const std::vector<Record> RECORDS = {Out{3, "a.pfa"},
                                     Put{STAMP, "a.pfa"},
                                     Back{STAMP, 7, "1790000000-0a1b", "b c.pcf"},
                                     MadeDir{"afm"},
                                     Put{STAMP, "afm/a b.afm"},
                                     Line{0, "a.pfa -x-a b\n"},
                                     Index{STAMP, true},
                                     Overwrite{},
                                     Register{STAMP, false},
                                     With{"0123456789abcdef", "/fonts/a b/"},
                                     And{"/fonts/c d/"}};

std::string text_of(const std::vector<Record>& records) {
    std::string text(HEADING);
    for (const Record& record : records) text += line_of(record);
    return text;
}

TEST(Journal, IsReadAsItWasWritten) {
    const auto records = parse(text_of(RECORDS), "j");
    ASSERT_TRUE(records);
    EXPECT_EQ(*records, RECORDS);
}

// Killed at any byte of it: what is not there to its end was not begun.
TEST(Journal, EndsWithItsLastWholeLine) {
    const std::string text = text_of(RECORDS);
    for (std::size_t size = 0; size <= text.size(); ++size) {
        const auto records = parse(std::string_view(text).substr(0, size), "j");
        ASSERT_TRUE(records) << size;
        ASSERT_LE(records->size(), RECORDS.size());
        EXPECT_TRUE(std::equal(records->begin(), records->end(), RECORDS.begin())) << size;
        EXPECT_EQ(records->size() == RECORDS.size(), size == text.size());
    }
}

// The first version knew a file by its number alone.
TEST(Journal, OfTheFirstVersionIsRead) {
    EXPECT_TRUE(parse("glyphward-journal 1", "j")) << "killed before the end of the heading";
    const auto records =
        parse("glyphward-journal 1\nput 7 a b.pfa\nout 3 a.pfa\nline 1 a.pfa -a\nindex 12 1\n", "j");
    ASSERT_TRUE(records);
    EXPECT_EQ(*records, (std::vector<Record>{Put{FileIdentity{7}, "a b.pfa"}, Out{3, "a.pfa"},
                                             Line{1, "a.pfa -a\n"}, Index{FileIdentity{12}, true}}));
    struct stat info = {};
    info.st_mode = S_IFREG;
    info.st_ino = 7;
    info.st_size = 5;
    EXPECT_TRUE(std::get<Put>(records->front()).stamp.fits(info));
    EXPECT_FALSE((FileIdentity{7, FileIdentity::Content{6, 0, 0}}).fits(info));
    info.st_mode = S_IFDIR;
    EXPECT_FALSE(std::get<Put>(records->front()).stamp.fits(info));
}

TEST(Journal, NamesOnlyFilesOfItsDirectory) {
    for (const char* name : {"a.pfa", "a b", "afm/a.afm", "afm", "..a", ".hidden", "-rf", "100%"})
        EXPECT_TRUE(can_name(name)) << name;
    for (const char* name : {"", ".", "..", "/", "a/b", "afm/", "afm/..", "afm/a/b", "../a", "a\nb",
                             ".glyphward", "afm/.glyphward", "/etc/passwd", "afm//a"})
        EXPECT_FALSE(can_name(name)) << name;
    EXPECT_FALSE(can_name(std::string_view("a\0b", 3)));
}

TEST(Journal, OfAnythingElseIsRefused) {
    for (const char* line : {"put 1 2 3 4 ../a",
                             "put 1 2 3 4",
                             "put 1 2 3 a",
                             "put 1 a",
                             "put 1 2 3 x a",
                             "put 1 ../a",
                             "put 1",
                             "put x a",
                             "put -1 a",
                             "out 99999999999999999999 a",
                             "out 4294967296 a",
                             "back 1 2 3 4 0 1-a a/b",
                             "back 1 2 3 4 0 ../x a",
                             "back 1 2 3 4 0 trash a",
                             "back 1 2 3 4 x 1-a a",
                             "back 1 2 3 4 0 1-a",
                             "line 1001 a b",
                             "line 2147483647 a b",
                             "out 1 a/b",
                             "dir ..",
                             "dir a",
                             "line -1 a b",
                             "line a",
                             "index 1",
                             "index 1 2",
                             "index x 1",
                             "index 1 2 3 1",
                             "index 1 2 3 4 2",
                             "overwrite 1",
                             "with 1f",
                             "with 1f a",
                             "with 1g /a",
                             "with  /a",
                             "and",
                             "and a",
                             "",
                             " ",
                             "rename 1 a",
                             "put 1 2 3 4 /etc/passwd"}) {
        const auto records = parse(std::string(HEADING) + line + '\n', "j");
        ASSERT_FALSE(records) << line;
        EXPECT_EQ(records.failure().reason, gw::Reason::NOT_A_JOURNAL) << line;
    }
    for (const char* text : {"glyphward-journal 3\n", "x", "put 1 a\n", "\n"})
        EXPECT_FALSE(parse(text, "j")) << text;
}

}  // namespace
