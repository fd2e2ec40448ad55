// SPDX-License-Identifier: MIT
//
// The names of font files, asked of the real tools and of tools that fail.
#include "modules/tool_names.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "fontfiles/font_bytes.h"
#include "platform/shell_command.h"
#include "support/compressed.h"
#include "support/sfnt_maker.h"
#include "support/temp_dir.h"

namespace gw {

static void PrintTo(const IndexName& name, std::ostream* out) {
    *out << name.face << ' ' << name.xlfd;
}

}  // namespace gw

namespace {

namespace fs = std::filesystem;
using gw::IndexName;
using gw::tool_names;
using gw::tool_names_of;
using gw::test::compressed;
using gw::test::gzipped;
using gw::test::SfntMaker;
using gw::test::SfntName;
using gw::test::TempDir;
using gw::test::utf16;
using gw::test::windows_names;

using Names = std::vector<std::vector<IndexName>>;

constexpr const char* STAGED_BITMAP = "/usr/vantor/lib/X11/fonts/75dpi/helvR24-ISO8859-1.pcf";

std::string bdf(const std::string& font) {
    return "STARTFONT 2.1\nFONT " + font +
           "\nSIZE 8 75 75\nFONTBOUNDINGBOX 8 1 0 0\nSTARTPROPERTIES 2\nFONT_ASCENT 8\nFONT_DESCENT 0\n"
           "ENDPROPERTIES\nCHARS 1\nSTARTCHAR A\nENCODING 65\nSWIDTH 960 0\nDWIDTH 8 0\nBBX 8 1 0 0\nBITMAP\n"
           "FF\nENDCHAR\nENDFONT\n";
}

std::string box(const std::string& family) {
    return "-test-" + family + "-medium-r-normal--8-80-75-75-c-80-iso8859-1";
}

std::vector<IndexName> only(const std::string& xlfd) {
    return {{0, xlfd}};
}

Names names_of(const std::vector<std::string>& paths) {
    const gw::Result<Names> names = tool_names(paths);
    EXPECT_TRUE(names) << names.failure().text();
    return names ? *names : Names();
}

/// Programs under the names of the tools: shell scripts that do something before the tool does its work.
class OtherTools {
  public:
    /// `before` gets the tool's arguments, and "$dir", where it may write.
    explicit OtherTools(const std::string& before) : path_(std::getenv("PATH")) {
        for (const char* tool : {"mkfontscale", "mkfontdir"}) {
            const std::string program =
                dir_.write(tool, "#!/bin/sh\nPATH='" + path_ + "'\ndir='" + dir_.path() + "'\n" + before +
                                     "\nexec " + tool + " \"$@\"\n");
            fs::permissions(program, fs::perms::owner_all);
        }
        ::setenv("PATH", (dir_.path() + ':' + path_).c_str(), 1);
    }
    /// `what` is done when a font has the word in it.
    OtherTools(const std::string& word, const std::string& what)
        : OtherTools("for i; do\nif grep -qs " + word + " \"$i\"/*; then\n" + what + "\nfi\ndone") {}
    ~OtherTools() { ::setenv("PATH", path_.c_str(), 1); }
    OtherTools(const OtherTools&) = delete;
    OtherTools& operator=(const OtherTools&) = delete;

    /// What the script has written to "$dir/notes".
    [[nodiscard]] std::string notes() const { return dir_.read("notes"); }

  private:
    std::string path_;
    TempDir dir_;
};

class ToolNames : public testing::Test {
  protected:
    ~ToolNames() override { gw::set_command_patience(gw::LONG_WORK); }
    TempDir dir;
};

TEST_F(ToolNames, FilesOfOneNameAllHaveIt) {
    std::vector<std::string> paths;
    for (const char* name : {"a.bdf", "b.bdf", "sub/a.bdf"})
        paths.push_back(dir.write(name, bdf(box("Same"))));
    EXPECT_EQ(names_of(paths), Names(3, only(box("same"))));
}

TEST_F(ToolNames, FileNamesMayHaveAnyCharacter) {
    std::vector<std::string> paths;
    for (const char* name : {"a b.bdf", "UPPER.BDF", "it's.bdf", "two\nlines.bdf", ":1:x.bdf", "a.b.c.bdf",
                             "-o.bdf", "$(touch x).bdf", "*.bdf", "\xE9\xFF.bdf", "\\.bdf", ".bdf", "\".bdf"})
        paths.push_back(dir.write(name, bdf(box("Box" + std::to_string(paths.size())))));
    Names expected;
    for (std::size_t i = 0; i < paths.size(); ++i) expected.push_back(only(box("box" + std::to_string(i))));
    EXPECT_EQ(names_of(paths), expected);
}

TEST_F(ToolNames, WhatIsNoFontHasNoNames) {
    ASSERT_EQ(::mkfifo(dir.file("pipe.ttf").c_str(), 0600), 0);
    fs::create_symlink("gone", dir.file("dangling.ttf"));
    dir.make_dir("directory.ttf");
    std::string noise;
    for (int i = 0; i < 200; ++i) noise += static_cast<char>(i * 73 + i / 7);
    dir.write("noise.pfb", noise);
    dir.write("empty.ttf", "");
    dir.write("empty.pcf.gz", "");
    dir.write("locked.bdf", bdf(box("locked")));
    dir.write("font.txt", bdf(box("text")));
    dir.write("bdf", bdf(box("bdf")));
    std::vector<std::string> paths;
    for (const char* name : {"pipe.ttf", "dangling.ttf", "directory.ttf", "noise.pfb", "empty.ttf",
                             "empty.pcf.gz", "font.txt", "bdf", "missing.otf"})
        paths.push_back(dir.file(name));
    if (::geteuid() != 0) {
        fs::permissions(dir.file("locked.bdf"), fs::perms::none);
        paths.push_back(dir.file("locked.bdf"));
    }
    paths.push_back(dir.write("good.bdf", bdf(box("good"))));
    Names expected(paths.size());
    expected.back() = only(box("good"));
    EXPECT_EQ(names_of(paths), expected);
    EXPECT_EQ(names_of({}), Names());
}

TEST_F(ToolNames, NamesAreTheToolsWhateverIsInThem) {
    const std::string control = "-test-a\tb\001c-medium-r-normal--8-80-75-75-c-80-iso8859-1";
    const std::string quoted = "-test-\"q\"\\,'s-x-medium-r-normal--8-80-75-75-c-80-iso8859-1";
    const std::string wide = box(std::string(300, 'w'));
    const std::vector<std::string> paths = {
        dir.write("1.bdf", bdf("fixed")), dir.write("2.bdf", bdf("a b c")), dir.write("3.bdf", bdf(control)),
        dir.write("4.bdf", bdf(quoted)),  dir.write("5.bdf", bdf(wide)),    dir.write("6.bdf", bdf("1"))};
    EXPECT_EQ(names_of(paths),
              (Names{only("fixed"), only("a b c"), only(control), only(quoted), only(wide), only("1")}));
}

// A PCF font can have a line feed in its name, so it can seem to be the index of the font after it.
TEST_F(ToolNames, AFontCannotGiveAnotherOneAName) {
    std::string bytes = TempDir::read_bytes(STAGED_BITMAP);
    const std::size_t name = bytes.find("-Adobe-Helvetica-Medium-R-Normal--24-");
    ASSERT_NE(name, std::string::npos);
    const std::string forged = "x\n1\n2.bdf -forged";
    bytes.replace(name, forged.size(), forged);
    const std::vector<std::string> paths = {dir.write("0.bdf", bdf(box("zero"))), dir.write("1.pcf", bytes),
                                            dir.write("2.bdf", bdf(box("two")))};
    EXPECT_EQ(names_of(paths), (Names{only(box("zero")), {}, only(box("two"))}));
}

/// The names of an outline of these characters and a family in three encodings.
std::vector<IndexName> outline(const std::string& family) {
    std::vector<IndexName> names;
    for (const char* encoding : {"ascii-0", "iso10646-1", "iso8859-1"})
        names.push_back({0, "-misc-" + family + "-medium-r-normal--0-0-0-0-p-0-" + encoding});
    return names;
}

/// A maker of outlines with the characters of ISO 8859-1.
SfntMaker latin_outline(const std::vector<SfntName>& names) {
    SfntMaker maker;
    maker.charmap = 1;
    maker.names = names;
    maker.characters.clear();
    for (char32_t code = 0x20; code < 0x100; ++code) {
        if (code < 0x7F || code >= 0xA0) maker.characters += code;
    }
    return maker;
}

struct FamilyCase {
    const char* file;
    std::vector<SfntName> names;
    std::string family;
};

TEST_F(ToolNames, TheFamilyOfAnOutlineIsCleanedByTheTool) {
    const FamilyCase cases[] = {
        {"plain.ttf", windows_names("Plain"), "plain"},
        {"plain.otf", windows_names("Plain"), "plain"},
        {"Open Sans.TTF", windows_names("Open Sans"), "open sans"},
        {"hyphens.ttf", windows_names("My-Odd-Fam"), "my odd fam"},
        {"commas.ttf", windows_names("My,Fam"), "my,fam"},
        {"quotes.ttf", windows_names("My\"Fam'x"), "my\"fam'x"},
        {"controls.ttf", windows_names("My\t\001\nFam"), "my   fam"},
        {"wide.ttf", windows_names(std::string(150, 'w')), std::string(150, 'w')},
        {"utf-16.ttf", {{0, 3, 0, 1, utf16("Only Unicode")}}, "only unicode"},
        {"kana.ttf", {{3, 1, 0x409, 1, "\x30\x42\x30\x44"}}, "??"},
        {"No Names.TTF", {}, "no_names.ttf"},
        {"Foo.v2\t.ttf", windows_names(""), "foo.v2_.ttf"},
        {":1:x.ttf", {}, "_1:x.ttf"},
    };
    std::vector<std::string> paths;
    Names expected;
    for (const FamilyCase& test : cases) {
        paths.push_back(dir.write(test.file, latin_outline(test.names).make()));
        expected.push_back(outline(test.family));
    }
    EXPECT_EQ(names_of(paths), expected);
}

// mkfontscale 1.1 finds the first face only; later ones find all.
TEST_F(ToolNames, TheFirstFaceOfACollectionHasNames) {
    const SfntMaker maker = latin_outline(windows_names("Face"));
    const Names names = names_of({dir.write("a.ttc", maker.make_collection(3, 3)),
                                  dir.write("b.TTC", maker.make_collection(3, 3)),
                                  dir.write("c.ttc", maker.make_collection(3, 4000000000))});
    EXPECT_EQ(names, (Names{outline("face"), outline("face"), {}}));
}

TEST_F(ToolNames, TheOtherFacesOfACollectionAreNumbered) {
    const std::string path = dir.write("a.ttc", "x");
    const OtherTools later("printf '4\\na.ttc -x\\n:1:a.ttc -y\\n:12:a.ttc -y y\\na.ttc -z\\n'; exit");
    EXPECT_EQ(names_of({path}), (Names{{{0, "-x"}, {1, "-y"}, {12, "-y y"}, {0, "-z"}}}));
}

TEST_F(ToolNames, WhatIsNoIndexGivesNoNames) {
    const std::string path = dir.write("a.ttf", "x");
    for (const char* answer : {"", "x\\n", "2\\na.ttf -x\\n", "1\\na.ttf -x", "1\\na.ttf -x\\na.ttf -y\\n",
                               "1\\nb.ttf -x\\n", "1\\na.ttf\\n", "1\\n:x:a.ttf -x\\n", "1\\n:-1:a.ttf -x\\n",
                               "99999999999999999999\\na.ttf -x\\n", "-1\\n", "1\\na.ttf -x\\n0\\n"}) {
        const OtherTools other("printf '" + std::string(answer) + "'; exit");
        EXPECT_EQ(names_of({path}), Names(1)) << answer;
    }
    const OtherTools failing("printf '1\\na.ttf -x\\n'; exit 1");
    EXPECT_EQ(names_of({path}), Names(1));
}

TEST_F(ToolNames, AnOutlineThatIsCutHasNoNames) {
    const std::string whole = latin_outline(windows_names("Cut")).make();
    std::vector<std::string> paths;
    for (std::size_t size = 0; size < whole.size(); size += 512)
        paths.push_back(dir.write(std::to_string(size) + ".ttf", whole.substr(0, size)));
    const Names cut = names_of(paths);
    EXPECT_EQ(cut.front(), std::vector<IndexName>());
    for (const std::vector<IndexName>& names : cut) EXPECT_TRUE(names.empty() || names == outline("cut"));
    EXPECT_EQ(names_of({dir.write("whole.ttf", whole)}), Names{outline("cut")});
}

// mkfontdir takes a PCF that compress has made, but no such BDF.
TEST_F(ToolNames, CompressedBitmapFontsAreUnpacked) {
    const std::string pcf = TempDir::read_bytes(STAGED_BITMAP);
    const std::string helvetica = "-adobe-helvetica-medium-r-normal--24-240-75-75-p-130-iso8859-1";
    const std::vector<std::string> paths = {
        dir.write("a.bdf.gz", gzipped(bdf(box("gz")))),
        dir.write("B.BDF.GZ", gzipped(bdf(box("upper")))),
        dir.write("c.bdf.Z", compressed(bdf(box("lzw")), ARCHIVE_FILTER_COMPRESS)),
        dir.write("d.pcf.z", compressed(pcf, ARCHIVE_FILTER_COMPRESS)),
        dir.write("e.pcf.gz", gzipped(pcf)),
        dir.write("f.pcf.gz", gzipped(pcf).substr(0, 40)),
    };
    EXPECT_EQ(names_of(paths),
              (Names{only(box("gz")), only(box("upper")), {}, only(helvetica), only(helvetica), {}}));
}

// A tool unpacks everything that it is given.
TEST_F(ToolNames, WhatIsTooLargeUnpackedIsNotGivenToTheTool) {
    const std::string comment = "COMMENT " + std::string(70, 'x') + '\n';
    std::string bytes = "STARTFONT 2.1\n";
    while (bytes.size() <= gw::FontBytes::UNPACKED_LIMIT) bytes += comment;
    bytes += bdf(box("bomb")).substr(bytes.find('\n') + 1);
    const std::string bomb = gzipped(bytes);
    const OtherTools noting("echo run >> \"$dir/notes\"");
    const std::vector<std::string> paths = {dir.write("a.bdf.gz", bomb), dir.write("b.pcf", bomb)};
    EXPECT_EQ(names_of(paths), Names(2));
    EXPECT_EQ(noting.notes(), "");
}

/// Seventy fonts, of which three have this word in their names; what their names are if those have none.
std::pair<std::vector<std::string>, Names> three_bad_fonts(const TempDir& dir, const std::string& word) {
    std::pair<std::vector<std::string>, Names> fonts;
    for (int i = 0; i < 70; ++i) {
        const bool is_bad = i == 0 || i == 37 || i == 69;
        const std::string family = (is_bad ? word : "box") + std::to_string(i);
        fonts.first.push_back(dir.write(std::to_string(i) + ".bdf", bdf(box(family))));
        fonts.second.push_back(is_bad ? std::vector<IndexName>() : only(box(family)));
    }
    return fonts;
}

TEST_F(ToolNames, AFontThatEndsTheToolCostsOnlyItsOwnNames) {
    const auto [paths, expected] = three_bad_fonts(dir, "crash");
    const OtherTools crashing("crash", "kill -SEGV $$");
    EXPECT_EQ(names_of(paths), expected);
}

TEST_F(ToolNames, AFontThatHoldsTheToolUpCostsOnlyItsOwnNames) {
    gw::set_command_patience(std::chrono::milliseconds(1000));
    const std::vector<std::string> paths = {dir.write("0.bdf", bdf(box("zero"))),
                                            dir.write("1.bdf", bdf(box("hang"))),
                                            dir.write("2.bdf", bdf(box("two")))};
    const Names expected = {only(box("zero")), {}, only(box("two"))};
    const OtherTools hanging("hang", "exec sleep 1000");
    EXPECT_EQ(names_of(paths), expected);
}

TEST_F(ToolNames, TheToolGetsLittleOfTheMachine) {
    const OtherTools noting("ulimit -t > \"$dir/notes\"; ulimit -v >> \"$dir/notes\"");
    const std::string path = dir.write("a.bdf", bdf(box("a")));
    EXPECT_EQ(names_of({path}), Names{only(box("a"))});
    EXPECT_EQ(noting.notes(), "5\n1048576\n");
}

TEST_F(ToolNames, ManyFilesAreAskedAboutInFewRuns) {
    const OtherTools noting("echo $# >> \"$dir/notes\"");
    std::vector<std::string> paths;
    for (int i = 0; i < 600; ++i) paths.push_back(dir.write(std::to_string(i) + ".bdf", bdf(box("same"))));
    EXPECT_EQ(names_of(paths), Names(600, only(box("same"))));
    const std::string runs = noting.notes();
    EXPECT_LT(std::count(runs.begin(), runs.end(), '\n'), 30) << runs;
}

TEST_F(ToolNames, ProgressIsToldAndCanEndTheWork) {
    std::vector<std::string> paths = {dir.write("notes.txt", "no font")};
    for (int i = 0; i < 300; ++i) paths.push_back(dir.write(std::to_string(i) + ".bdf", bdf(box("same"))));
    std::vector<std::size_t> counts;
    const auto note = [&](std::size_t count) {
        counts.push_back(count);
        return true;
    };
    ASSERT_TRUE(tool_names(paths, note));
    EXPECT_TRUE(std::is_sorted(counts.begin(), counts.end()));
    EXPECT_EQ(counts.back(), paths.size());
    EXPECT_GE(counts.size(), 2U);
    // Until the first answers are there.
    const gw::Result<Names> names = tool_names(paths, [](std::size_t count) { return count < 2; });
    ASSERT_TRUE(names) << names.failure().text();
    EXPECT_EQ((*names)[1], only(box("same")));
    EXPECT_EQ(names->back(), std::vector<IndexName>());
    EXPECT_EQ(names->size(), paths.size());
}

TEST_F(ToolNames, TheCallerHasTimeForEachFileOnce) {
    std::vector<std::string> paths = {dir.write("notes.txt", "no font")};
    for (int i = 0; i < 300; ++i) paths.push_back(dir.write(std::to_string(i) + ".bdf", bdf(box("same"))));
    // With this one the tool has to be asked again.
    paths.push_back(dir.write("line\nfeed.bdf", "no font"));
    std::vector<int> calls(paths.size());
    ASSERT_TRUE(tool_names(paths, {}, [&](std::size_t place) { ++calls.at(place); }));
    EXPECT_EQ(calls.front(), 0) << "no tool is asked about it";
    calls.erase(calls.begin());
    EXPECT_EQ(calls, std::vector<int>(paths.size() - 1, 1));
}

TEST_F(ToolNames, AToolThatCannotBeRunIsAFailure) {
    const std::string path = dir.write("a.bdf", bdf(box("a")));
    const auto failure = [&] {
        const gw::Result<std::vector<IndexName>> names = tool_names_of(path);
        return names ? std::string("none") : names.failure().text();
    };
    {
        gw::set_command_patience(std::chrono::milliseconds(300));
        const OtherTools hanging("exec sleep 1000");
        EXPECT_EQ(failure(), "mkfontdir: this command did not end and was stopped");
        gw::set_command_patience(gw::LONG_WORK);
    }
    const std::string before = std::getenv("PATH");
    ::setenv("PATH", dir.c_str(), 1);
    EXPECT_EQ(failure(), "mkfontdir: this command failed with status 127");
    EXPECT_EQ(names_of({dir.write("a.txt", "")}), Names(1)) << "nothing is to be run";
    ::setenv("PATH", before.c_str(), 1);
    EXPECT_EQ(failure(), "none");
}

TEST_F(ToolNames, NothingIsLeftBehind) {
    const auto scratch = [] {
        std::vector<std::string> found;
        for (const char* root : {"/tmp", "/dev/shm"}) {
            for (const fs::directory_entry& entry : fs::directory_iterator(root)) {
                const std::string name = entry.path().filename();
                if (name.starts_with("glyphward-") && !name.starts_with("glyphward-test"))
                    found.push_back(name);
            }
        }
        return found;
    };
    const std::vector<std::string> before = scratch();
    const auto [paths, expected] = three_bad_fonts(dir, "crash");
    const OtherTools crashing("crash", "kill -SEGV $$");
    EXPECT_EQ(names_of(paths), expected);
    EXPECT_EQ(scratch(), before);
}

}  // namespace
