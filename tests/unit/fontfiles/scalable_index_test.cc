// SPDX-License-Identifier: MIT
#include "fontfiles/scalable_index.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

using gw::LineNumbers;
using Text = std::optional<std::string>;

const auto none_leaves = [](const std::string&) { return false; };

TEST(ScalableIndex, BeginsWithEveryOutlineOfTheIndex) {
    const std::string index = "4\na.ttf -a\nb.pcf -b\nC.PFB -c\n:1:d.ttc -d\n";
    EXPECT_EQ(gw::scalable_index(std::nullopt, index, {{"a.ttf -a\n", 1}}, none_leaves),
              Text("3\n:1:d.ttc -d\nC.PFB -c\na.ttf -a\n"));
}

TEST(ScalableIndex, IsNotWrittenForBitmaps) {
    EXPECT_EQ(gw::scalable_index(std::nullopt, "1\nb.pcf -b\n", {{"b.pcf -b\n", 1}}, none_leaves),
              std::nullopt);
    EXPECT_EQ(
        gw::scalable_index("1\na.ttf -a\n", "2\na.ttf -a\nb.pcf -b\n", {{"b.pcf -b\n", 1}}, none_leaves),
        std::nullopt);
}

TEST(ScalableIndex, GetsTheLinesThatAreEnteredOnce) {
    const LineNumbers entered = {{"a.ttf -a\n", 1}, {"b.ttf -b\n", 1}};
    EXPECT_EQ(gw::scalable_index("1\na.ttf -a\n", "2\na.ttf -a\nb.ttf -b\n", entered, none_leaves),
              Text("2\na.ttf -a\nb.ttf -b\n"));
    EXPECT_EQ(gw::scalable_index("1\na.ttf -a\n", "1\na.ttf -a\n", {{"a.ttf -a\n", 1}}, none_leaves),
              std::nullopt);
}

TEST(ScalableIndex, LosesTheLinesThatAreRemovedAndAllOfAFileThatLeaves) {
    const std::string text = "4\na.ttf -a\n:1:b.ttc -b1\nb.ttc -b\nc.ttf -c\n";
    EXPECT_EQ(gw::scalable_index(text, "1\nc.ttf -c\n", {{"a.ttf -a\n", -1}}, none_leaves),
              Text("3\n:1:b.ttc -b1\nb.ttc -b\nc.ttf -c\n"));
    EXPECT_EQ(gw::scalable_index(text, "2\na.ttf -a\nc.ttf -c\n", {{"b.ttc -b\n", -1}},
                                 [](const std::string& file) { return file == "b.ttc"; }),
              Text("2\na.ttf -a\nc.ttf -c\n"));
}

/// mkfontscale writes lines that are too long for an index. They stayed when their font was deleted, so that
/// mkfontdir listed a font without a file.
TEST(ScalableIndex, LosesTheLongLinesOfAFileThatLeaves) {
    const std::string name(300, 'n');
    const std::string text = "4\na.ttf -a\na.ttf -" + name + "\n  a.ttf  -b\nb.ttf -" + name + "\n";
    EXPECT_EQ(gw::scalable_index(text, "0\n", {{"a.ttf -a\n", -1}},
                                 [](const std::string& file) { return file == "a.ttf"; }),
              Text("1\nb.ttf -" + name + "\n"));
}

TEST(ScalableIndex, KeepsLinesAsAnAdministratorHasWrittenThem) {
    const std::string odd = "c.ttf   -c c\n\n  d.ttf -" + std::string(200, 'd') + "\nlone\ne.ttf -e";
    EXPECT_EQ(gw::scalable_index("6\na.ttf -a\n" + odd, "0\n", {{"a.ttf -a\n", -1}}, none_leaves),
              Text("5\n" + odd));
}

TEST(ScalableIndex, GetsACountWhereItHasNone) {
    const LineNumbers entered = {{"a.ttf -a\n", 1}};
    EXPECT_EQ(gw::scalable_index("", "1\na.ttf -a\n", entered, none_leaves), Text("1\na.ttf -a\n"));
    EXPECT_EQ(gw::scalable_index("b.ttf -b\n", "1\na.ttf -a\n", entered, none_leaves),
              Text("2\nb.ttf -b\na.ttf -a\n"));
}

TEST(ScalableIndex, KeepsALineThatTheIndexHasStill) {
    EXPECT_EQ(gw::scalable_index("1\na.ttf -a\n", "1\na.ttf -a\n", {{"a.ttf -a\n", -1}}, none_leaves),
              std::nullopt);
}

TEST(IndexedFile, KnowsTheOptionsInFrontOfTheName) {
    struct Case {
        const char* field;
        int face;
        const char* name;
        const char* options;
    };
    for (const Case& c :
         {Case{"a.ttf", 0, "a.ttf", ""}, Case{":1:a.ttc", 1, "a.ttc", ":1:"},
          Case{":fn=2:a.ttc", 2, "a.ttc", ":fn=2:"}, Case{":ai=0.2:fn=3:a.ttc", 3, "a.ttc", ":ai=0.2:fn=3:"},
          Case{":a.ttc", 0, ":a.ttc", ""}, Case{":99999999999:a.ttc", 0, "a.ttc", ":99999999999:"},
          Case{"::", 0, "", "::"}, Case{"", 0, "", ""}, Case{"a:1:b.ttc", 0, "a:1:b.ttc", ""}}) {
        const gw::IndexedFile file = gw::indexed_file(c.field);
        EXPECT_EQ(file.face, c.face) << c.field;
        EXPECT_EQ(file.name, c.name) << c.field;
        EXPECT_EQ(file.options, c.options) << c.field;
    }
    EXPECT_EQ(gw::index_field("a.ttc", 0), "a.ttc");
    EXPECT_EQ(gw::index_field("a.ttc", 12), ":12:a.ttc");
}

}  // namespace
