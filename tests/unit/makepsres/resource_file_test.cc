// SPDX-License-Identifier: MIT
//
// Resource files as text: what is written, to the byte, and what is read.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "makepsres/resource_file.h"
#include "makepsres/resource_set.h"
#include "support/strict_upr.h"

namespace {

using gw::psres::parse_resource_file;
using gw::psres::ResourceSet;
using gw::test::StrictUpr;

// --- writing -----------------------------------------------------------------

TEST(ResourceSet, NothingIsAValidFileWithoutSections) {
    EXPECT_EQ(ResourceSet().text("/fonts", false), "PS-Resources-1.0\n.\n");
    EXPECT_EQ(ResourceSet().text("", true), "PS-Resources-Exclusive-1.0\n.\n");
}

TEST(ResourceSet, WritesSectionsAndNamesInTheOrderOfTheirBytes) {
    ResourceSet set;
    set.add_file("FontOutline", "b", "/fonts/b.pfa");
    set.add_file("FontOutline", "a", "/fonts/z.pfa");
    set.add_file("FontOutline", "B", "/fonts/sub/B.pfb");
    set.add_file("FontAFM", "a", "/elsewhere/a.afm");
    EXPECT_EQ(set.text("/fonts", false),
              "PS-Resources-1.0\nFontAFM\nFontOutline\n.\n//fonts\n"
              "FontAFM\na==/elsewhere/a.afm\n.\n"
              "FontOutline\nB=sub/B.pfb\na=z.pfa\nb=b.pfa\n.\n");
    EXPECT_EQ(set.text("", false),
              "PS-Resources-1.0\nFontAFM\nFontOutline\n.\n"
              "FontAFM\na==/elsewhere/a.afm\n.\n"
              "FontOutline\nB==/fonts/sub/B.pfb\na==/fonts/z.pfa\nb==/fonts/b.pfa\n.\n");
    EXPECT_EQ(set.text("/font", false), set.text("", false)) << "/fonts is not below /font";
}

TEST(ResourceSet, KnowsTheRootDirectory) {
    ResourceSet set;
    set.add_file("FontAFM", "a", "/a.afm");
    EXPECT_EQ(set.text("/", false), "PS-Resources-1.0\nFontAFM\n.\n//\nFontAFM\na=a.afm\n.\n")
        << "the slash that introduces the directory, and the directory";
}

TEST(ResourceSet, QuotesWhatMeansSomething) {
    ResourceSet set;
    set.add_file("FontOutline", "a=b,c\\d%e", "/f/x=y,z\\%.pfa");
    set.add_file("FontOutline", ".dot", "/f/.hidden ");
    set.add_file("FontOutline", "blank name", "/f/=");
    set.add_line("FontFamily", "Sample", "Sample=Roman,Sample-Roman,Bo\\,ld,Sample-Bold");
    EXPECT_EQ(set.text("/f", false),
              "PS-Resources-1.0\nFontFamily\nFontOutline\n.\n//f\n"
              "FontFamily\nSample=Roman,Sample-Roman,Bo\\,ld,Sample-Bold\n.\n"
              "FontOutline\n\\.dot=.hidden\\ \na\\=b\\,c\\\\d\\%e=x\\=y\\,z\\\\\\%.pfa\nblank name=\\=\n.\n");
}

TEST(ResourceSet, TheFirstOfANameStays) {
    ResourceSet set;
    EXPECT_EQ(set.add_file("FontAFM", "a", "/1"), "/1");
    EXPECT_EQ(set.add_file("FontAFM", "a", "/2"), "/1");
    EXPECT_EQ(set.add_file("FontOutline", "a", "/3"), "/3");
    set.add_line("FontAFM", "a", "a=4");
    EXPECT_EQ(set.text("", false),
              "PS-Resources-1.0\nFontAFM\nFontOutline\n.\nFontAFM\na==/1\n.\nFontOutline\na==/3\n.\n");
    EXPECT_TRUE(set.has("FontAFM", "a"));
    EXPECT_FALSE(set.has("FontAFM", "b"));
    EXPECT_FALSE(set.has("Form", "a"));
}

TEST(WrittenLine, IsContinuedAt255Characters) {
    using gw::psres::written_line;
    EXPECT_EQ(written_line(std::string(253, 'x')), std::string(253, 'x') + '\n');
    EXPECT_EQ(written_line(std::string(254, 'x')), std::string(253, 'x') + "\\\nx\n");
    // A quoted character stays on the same line as its "\".
    EXPECT_EQ(written_line(std::string(252, 'x') + "\\%y"), std::string(252, 'x') + "\\\n\\%y\n");
    // At the edge of a line a "." would end the section, and a blank would be lost.
    EXPECT_EQ(written_line(std::string(253, 'x') + ".pfa"), std::string(253, 'x') + "\\\n\\.pfa\n");
    EXPECT_EQ(written_line(std::string(253, 'x') + " "), std::string(253, 'x') + "\\\n\\ \n");
    EXPECT_EQ(written_line(std::string(252, 'x') + " "), std::string(252, 'x') + "\\ \n");
}

TEST(WrittenLine, HoldsADirectoryThatFits) {
    using gw::psres::written_directory_line;
    EXPECT_EQ(written_directory_line("/a b%"), "//a b\\%\n");
    EXPECT_EQ(written_directory_line("/a "), "//a\\ \n");
    const std::string longest = '/' + std::string(252, 'd');
    EXPECT_EQ(written_directory_line(longest), '/' + longest + '\n');
    EXPECT_FALSE(written_directory_line(longest + 'd'));
    ResourceSet set;
    set.add_file("FontAFM", "a", longest + "d/a.afm");
    const StrictUpr read(set.text(longest + 'd', false));
    EXPECT_EQ(read.directory, "");
    EXPECT_EQ(read.files("FontAFM").at("a"), longest + "d/a.afm");
}

// --- reading -----------------------------------------------------------------

TEST(ParseResourceFile, ReadsThePublishedForm) {
    const auto file = parse_resource_file(
        "PS-Resources-1.0\n"
        "FontAFM\n"
        "FontOutline  \n"
        "% a comment\n"
        ".\n"
        "//usr/fonts % where\n"
        "FontAFM\n"
        "Sample-Roman=afm/sample.afm\n"
        "\n"
        ".\n"
        "FontOutline\n"
        "Sample-Roman=type1/sam\\\n"
        "ple.pfa\t \n"
        "Local\\=Odd==/opt/odd\\ name\\%.pfa\\ \r\n"
        "\\.dot=x=y\n"
        "no file\n"
        ".\n");
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->complete);
    EXPECT_FALSE(file->exclusive);
    EXPECT_EQ(file->directory, "/usr/fonts");
    ASSERT_EQ(file->sections.size(), 2U);
    EXPECT_EQ(file->sections[0].name, "FontAFM");
    ASSERT_EQ(file->sections[0].entries.size(), 1U);
    EXPECT_EQ(file->sections[0].entries[0].file, "afm/sample.afm");
    EXPECT_EQ(file->sections[1].name, "FontOutline");
    const auto& outlines = file->sections[1].entries;
    ASSERT_EQ(outlines.size(), 4U);
    EXPECT_EQ(outlines[0].name, "Sample-Roman");
    EXPECT_EQ(outlines[0].file, "type1/sample.pfa");
    EXPECT_FALSE(outlines[0].is_final);
    EXPECT_EQ(outlines[1].name, "Local=Odd");
    EXPECT_EQ(outlines[1].file, "/opt/odd name%.pfa ");
    EXPECT_TRUE(outlines[1].is_final);
    EXPECT_EQ(outlines[1].line, "Local\\=Odd==/opt/odd\\ name\\%.pfa\\ ");
    EXPECT_EQ(outlines[2].name, ".dot");
    EXPECT_EQ(outlines[2].file, "x=y");
    EXPECT_EQ(outlines[3].name, "no file");
    EXPECT_FALSE(outlines[3].file);
}

TEST(ParseResourceFile, KnowsAnExclusiveOneAndWhatIsNone) {
    EXPECT_TRUE(parse_resource_file("PS-Resources-Exclusive-1.0\n.\n")->exclusive);
    for (const char* text :
         {"", "\n\n", "PS-Resources-2.0\n.\n", "ps-resources-1.0\n.\n", "FontAFM\n.\n", "%\n"})
        EXPECT_FALSE(parse_resource_file(text)) << text;
}

TEST(ParseResourceFile, KeepsWhatStandsBeforeTheEnd) {
    for (const char* text : {"PS-Resources-1.0", "PS-Resources-1.0\nFontAFM\n"}) {
        const auto file = parse_resource_file(text);
        ASSERT_TRUE(file) << text;
        EXPECT_FALSE(file->complete) << text;
        EXPECT_TRUE(file->sections.empty());
    }
    const auto torn = parse_resource_file("PS-Resources-1.0\nFontAFM\n.\nFontAFM\na=b\nc=d\\");
    ASSERT_TRUE(torn);
    EXPECT_FALSE(torn->complete);
    ASSERT_EQ(torn->sections.size(), 1U);
    EXPECT_EQ(torn->sections[0].entries.size(), 2U);
    EXPECT_FALSE(parse_resource_file("PS-Resources-1.0\n.\n.\n")->complete) << "an end without a section";
}

TEST(ParseResourceFile, RubbishNeverBreaksIt) {
    constexpr int ROUNDS = 20000;
    std::mt19937 random(20261121);
    const std::string grains[] = {"PS-Resources-1.0\n",
                                  "FontAFM\n",
                                  ".\n",
                                  "//d\n",
                                  "a=b\n",
                                  "\\",
                                  "\\\n",
                                  "%",
                                  "=",
                                  "==",
                                  " ",
                                  "\t",
                                  "\r\n",
                                  "\n",
                                  ".",
                                  std::string(1, '\0')};
    int read = 0;
    for (int round = 0; round < ROUNDS; ++round) {
        std::string bytes = round % 8 == 0 ? "" : "PS-Resources-1.0\nFontAFM\n.\n";
        for (int i = 0; i < 60; ++i) {
            if (random() % 4 == 0) {
                bytes += static_cast<char>(random() & 0xFF);
            } else {
                bytes += grains[random() % std::size(grains)];
            }
        }
        const auto file = parse_resource_file(bytes);
        if (!file) continue;
        ++read;
        for (const auto& section : file->sections) {
            for (const auto& entry : section.entries)
                ASSERT_LE(entry.name.size() + (entry.file ? entry.file->size() : 0), bytes.size());
        }
    }
    EXPECT_GT(read, ROUNDS / 2);
}

// Whatever the names are, both the tool's reader and the strict one read back what was written.
TEST(ResourceFiles, AreReadBackAsTheyWereWritten) {
    constexpr int ROUNDS = 300;
    std::mt19937 random(20261121);
    const std::string letters = "ab .=\\%,/\t-\xE4";
    const auto text = [&](std::size_t longest) {
        std::string name;
        for (std::size_t size = 1 + random() % longest; name.size() < size;)
            name += letters[random() % letters.size()];
        return name;
    };
    for (int round = 0; round < ROUNDS; ++round) {
        const std::string directory = "/d" + text(random() % 3 == 0 ? 260 : 20) + 'x';
        ResourceSet set;
        std::map<std::string, std::string> written;
        for (int i = 0; i < 8; ++i) {
            const std::string name = text(i == 0 ? 400 : 10);
            const std::string file =
                (i % 2 == 0 ? directory + "/r" : std::string("/e")) + text(i == 1 ? 700 : 12);
            written.emplace(name, file);
            set.add_file("FontOutline", name, file);
        }
        const std::string bytes = set.text(directory, false);
        SCOPED_TRACE(bytes);
        ASSERT_EQ(StrictUpr(bytes).files("FontOutline"), written);

        const auto file = parse_resource_file(bytes);
        ASSERT_TRUE(file && file->complete);
        ASSERT_EQ(file->sections.size(), 1U);
        std::map<std::string, std::string> read;
        for (const auto& entry : file->sections[0].entries)
            read.emplace(entry.name, entry.is_final ? *entry.file : file->directory + '/' + *entry.file);
        ASSERT_EQ(read, written);
    }
}

}  // namespace
