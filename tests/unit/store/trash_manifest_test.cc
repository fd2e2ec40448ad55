// SPDX-License-Identifier: MIT
#include "store/trash_manifest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace {

using namespace gw::trash;

using gw::FileIdentity;

constexpr FileIdentity STAMP = {12, FileIdentity::Content{34, 1700000000, 56}};

Manifest example() {
    KeptFont outline;
    outline.files = {{3, 9000, "a b.pfa"}, {4, 12, "afm/a b.afm"}};
    outline.lines = {":1:x.ttc -y\n"};
    outline.files = {{3, 9000, "x.ttc"}, {4, 12, "afm/x.afm"}};
    outline.lines = {"x.ttc -x one\n", ":1:x.ttc -y\n"};
    outline.scalable_lines = {"x.ttc -x one\n"};
    outline.came = {{STAMP, "new font.ttf"}};
    outline.twins = {"t.pcf"};
    KeptFont bitmap;
    bitmap.files = {{7, 0, "b.pcf"}};
    KeptFont line;
    line.lines = {"c.pcf -c\n"};
    return {"1790000000-0123456789ab", "0123456789abcdef01234567", 1000, {outline, bitmap, line}, true};
}

TEST(TrashManifest, IsReadAsItWasWritten) {
    const auto read = parse(text_of(example()));
    ASSERT_TRUE(read);
    EXPECT_EQ(*read, example());
    EXPECT_EQ(read->fonts[0].file_name(), "x.ttc");
    EXPECT_EQ(read->fonts[0].font_names(), (std::vector<std::string>{"-x one", "-y"}));
    EXPECT_EQ(read->fonts[1].file_name(), "b.pcf");
}

// Whatever is missing at its end, the fonts in front of that are as they were.
TEST(TrashManifest, ThatIsCutOffHasItsFirstFonts) {
    const std::string text = text_of(example());
    std::set<std::size_t> numbers;
    for (std::size_t size = 0; size < text.size(); ++size) {
        const auto read = parse(text.substr(0, size));
        if (!read) continue;
        EXPECT_FALSE(read->is_whole) << size;
        ASSERT_LT(read->fonts.size(), 3U) << size;
        const Manifest whole = example();
        EXPECT_TRUE(std::equal(read->fonts.begin(), read->fonts.end(), whole.fonts.begin())) << size;
        numbers.insert(read->fonts.size());
    }
    EXPECT_EQ(numbers, (std::set<std::size_t>{0, 1, 2}));
}

TEST(TrashManifest, OfAnythingElseIsNone) {
    const std::string head = "glyphward-trash 1\nentry 1-a\naction b\nuser 0\n";
    ASSERT_TRUE(parse(head + "end\n"));
    for (const char* text : {"", "x", "glyphward-trash 2\n", "glyphward-trash 1\n",
                             "glyphward-trash 1\nend\n", "glyphward-trash 1\nentry 1-a\naction b\nend\n"})
        EXPECT_FALSE(parse(text)) << text;
    for (const char* rest : {"file 1 2 a",
                             "line a -b",
                             "font\nfile 1 2 ../a\n",
                             "font\nfile 1 2 a/b\n",
                             "font\nfile 1 2 .\n",
                             "font\nfile 1 2 .glyphward\n",
                             "font\nfile 1 2 /etc/passwd\n",
                             "font\nfile 1 -2 a\n",
                             "font\nfile -1 2 a\n",
                             "font\nfile 4294967296 2 a\n",
                             "font\nfile 1 99999999999999999999 a\n",
                             "font\nfile 1 2 a\nfile 1 2 b\n",
                             "font\nfile 1 2 a\nfile 2 2 a\n",
                             "font\nline ../a -b\n",
                             "font\nline sub/a -b\n",
                             "font\nline a\n",
                             "font\nline 12 -b\n",
                             "font\nline a -\x01\n",
                             "font\nline a -a\nline b -b\nfont\n",
                             "font\nfont\n",
                             "font\nline a -a\nfont\nline a -b\nfont\n",
                             "font\ncame 1 a\n",
                             "font\ncame 1 2 3 4 a/b\n",
                             "font\ntwin ../a\n",
                             "font\nfile 1 2 a\nlink 1 b\n",
                             "entry 2-b\n",
                             "action c\n",
                             "user 1\n",
                             "font x\n",
                             "end\nfont\n",
                             "end\nx",
                             "end\nend\n"}) {
        EXPECT_FALSE(parse(head + rest + (std::string(rest).ends_with('\n') ? "" : "\n"))) << rest;
    }
}

TEST(TrashManifest, NamesEntriesByTheirTime) {
    const std::string name = new_entry_name(1790000000);
    EXPECT_EQ(time_of_entry(name), 1790000000);
    EXPECT_NE(name, new_entry_name(1790000000));
    // What was taken out last comes back first, also of things that were done in the same second.
    // The second may be over when the name is made.
    const std::time_t now = ::time(nullptr);
    for (const std::time_t time : {now, now - 1, now - 2}) {
        const std::string first = new_entry_name(time);
        const std::string second = new_entry_name(time);
        EXPECT_LT(first, second);
    }
    for (const char* other : {"", "-", "1", "1-", "-a", "1-g", "1-a/b", "01-a", "+1-a", "1 -a", "..", "x-a",
                              "99999999999999999999-a", "1-A", "1.5-a"})
        EXPECT_FALSE(time_of_entry(other)) << other;
    EXPECT_FALSE(time_of_entry("1-" + std::string(65, 'a')));
}

}  // namespace
