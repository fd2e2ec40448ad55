// SPDX-License-Identifier: MIT
//
// Font names found in the first bytes of font files, correct and broken ones.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>

#include "makepsres/font_name.h"
#include "makepsres/plain_file.h"
#include "platform/host_paths.h"
#include "support/temp_dir.h"

namespace {

using gw::psres::metrics_font_name;
using gw::psres::outline_font_name;
using gw::test::TempDir;
using Name = std::optional<std::string>;

std::string segment(char kind, const std::string& content, std::size_t length) {
    std::string header = {static_cast<char>(128), kind};
    for (int shift = 0; shift < 32; shift += 8) header += static_cast<char>(length >> shift & 0xFF);
    return header + content;
}
std::string segment(char kind, const std::string& content) {
    return segment(kind, content, content.size());
}

const std::string CLEAR = "%!PS-AdobeFont-1.0: Sample\n/FontName /Sample-Roman def\ncurrentfile eexec\n";

struct OutlineCase {
    const char* what;
    std::string head;
    Name name;
};

TEST(OutlineFontName, IsTheLiteralNameBehindTheKey) {
    const OutlineCase cases[] = {
        {"plain", CLEAR, "Sample-Roman"},
        {"no blank between", "%!\n/FontName/Tight def", "Tight"},
        {"carriage returns", "%!PS\r/FontName\r/Old-Mac\rdef\r", "Old-Mac"},
        {"cut off, or it may be", "/FontName /End", {}},
        {"signs that files quote", "/FontName /a=b,c\\d.e def", "a=b,c\\d.e"},
        {"high bytes",
         "/FontName /Fl\xE4"
         "che def",
         "Fl\xE4"
         "che"},
        {"after a use that names nothing", "/FontName known not{/FontName /Second def}if", "Second"},
        {"the first of two", "/FontName /One def /FontName /Two def", "One"},
        {"behind a long notice", "/Notice (" + std::string(20000, 'x') + ") def /FontName /Far def", "Far"},
        {"in a comment", "% /FontName /Comment def\n/FontName /Real def", "Real"},
        {"in a string", "/Notice (/FontName /String) def /FontName /Real def", "Real"},
        {"in a nested string", "(a (b) /FontName /String \\) ) /FontName /Real ", "Real"},
        {"none", "%!PS-AdobeFont-1.0\n/FullName (Sample) def", {}},
        {"a longer key", "/FontNames /No def", {}},
        {"a string for a name", "/FontName (Sample) cvn def", {}},
        {"behind eexec", "currentfile eexec /FontName /Hidden def", {}},
        {"in a string without end", "/Notice (oh /FontName /Lost def", {}},
        {"nothing behind the key", "/FontName", {}},
        {"an empty name", "/FontName / def", {}},
        {"a control character",
         "/FontName /a\x01"
         "b def",
         {}},
        {"as long as can be", "/FontName /" + std::string(127, 'n') + '\n', std::string(127, 'n')},
        {"too long", "/FontName /" + std::string(128, 'n') + '\n', {}},
        {"nothing at all", "", {}},
    };
    for (const OutlineCase& c : cases) EXPECT_EQ(outline_font_name(c.head), c.name) << c.what;
}

TEST(OutlineFontName, IsFoundInTextSegments) {
    const std::size_t middle = CLEAR.find("Roman");
    const OutlineCase cases[] = {
        {"one segment", segment(1, CLEAR) + segment(2, "\x01\x02"), "Sample-Roman"},
        {"torn apart by two", segment(1, CLEAR.substr(0, middle)) + segment(1, CLEAR.substr(middle)),
         "Sample-Roman"},
        {"longer than the file", segment(1, CLEAR, 0xFFFFFFFF), "Sample-Roman"},
        {"binary first", segment(2, CLEAR), {}},
        {"a length of nothing", segment(1, "", 0) + CLEAR, {}},
        {"only the mark", segment(1, "").substr(0, 1), {}},
        {"header cut off", segment(1, "").substr(0, 5), {}},
        {"header alone", segment(1, "", 100), {}},
        {"a name that the text cuts off", segment(1, CLEAR, middle), {}},
        {"name behind the text", segment(1, "%!PS\n") + segment(2, CLEAR), {}},
    };
    for (const OutlineCase& c : cases) EXPECT_EQ(outline_font_name(c.head), c.name) << c.what;
}

TEST(MetricsFontName, IsTheRestOfItsLine) {
    const OutlineCase cases[] = {
        {"plain", "StartFontMetrics 2.0\nFontName Sample-Roman\nFullName x\n", "Sample-Roman"},
        {"DOS lines", "StartFontMetrics 2.0\r\nFontName Sample-Roman\r\n", "Sample-Roman"},
        {"Macintosh lines", "StartFontMetrics 2.0\rFontName Sample-Roman\rFullName x\r", "Sample-Roman"},
        {"blanks around", "  FontName \t Sample-Roman \t\n", "Sample-Roman"},
        {"blanks within, and %", "FontName Sample 100% Roman\n", "Sample 100% Roman"},
        {"without a line end", "FontName Sample", "Sample"},
        {"none", "StartFontMetrics 2.0\nFullName Sample\n", {}},
        {"a longer key", "FontNames Sample\n", {}},
        {"nothing behind the key", "FontName\nFontName \n", {}},
        {"among the characters", "StartCharMetrics 1\nFontName Sample\n", {}},
        {"a NUL character", std::string("FontName a\0b\n", 13), {}},
        {"too long", "FontName " + std::string(128, 'n'), {}},
        {"nothing at all", "", {}},
    };
    for (const OutlineCase& c : cases) EXPECT_EQ(metrics_font_name(c.head), c.name) << c.what;
}

// Random bytes, and a real header with random bytes in it: any name that is found can be written.
TEST(FontName, OfRubbishIsNoneOrOneThatCanBe) {
    constexpr int ROUNDS = 20000;
    std::mt19937 random(20261121);
    const std::string grains[] = {"/FontName ",     "/", "(", ")", "\\", "%", "\n", " ", "eexec", "FontName ",
                                  segment(1, "", 9)};
    int names = 0;
    for (int round = 0; round < ROUNDS; ++round) {
        std::string bytes = round % 2 == 0 ? CLEAR : std::string();
        for (int i = 0; i < 40; ++i) {
            const std::size_t place = bytes.empty() ? 0 : random() % bytes.size();
            if (random() % 2 == 0) {
                bytes.insert(place, 1, static_cast<char>(random() & 0xFF));
            } else {
                bytes.insert(place, grains[random() % std::size(grains)]);
            }
        }
        if (random() % 4 == 0) bytes.insert(0, segment(1, "", random()));
        for (const Name& name : {outline_font_name(bytes), metrics_font_name(bytes)}) {
            if (!name) continue;
            ++names;
            EXPECT_TRUE(!name->empty() && name->size() <= gw::psres::LONGEST_FONT_NAME);
            for (const char c : *name) ASSERT_TRUE(c < 0 || c >= ' ') << round;
        }
    }
    EXPECT_GT(names, 100) << "or nothing was tried";
}

TEST(FontName, EveryStagedFontHasOne) {
    int fonts = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::string(gw::SYSTEM_FONT_DIR) + "/Type1")) {
        const std::string extension = entry.path().extension();
        const std::string head = gw::psres::read_plain_file(entry.path(), gw::psres::SEARCHED_BYTES).bytes;
        if (extension == ".pfa" || extension == ".pfb") {
            ++fonts;
            EXPECT_TRUE(outline_font_name(head)) << entry.path();
        } else if (extension == ".afm") {
            EXPECT_TRUE(metrics_font_name(head)) << entry.path();
        }
    }
    EXPECT_GT(fonts, 10);
}

TEST(PlainFile, AloneIsRead) {
    const TempDir dir;
    dir.write("file", "0123456789");
    ASSERT_EQ(::mkfifo(dir.file("pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink("file", dir.file("link"));
    EXPECT_EQ(gw::psres::read_plain_file(dir.file("file"), 4).bytes, "0123");
    EXPECT_EQ(gw::psres::read_plain_file(dir.file("link"), 100).bytes, "0123456789");
    for (const std::string& path : {dir.file("pipe"), dir.path(), std::string("/dev/zero")}) {
        const gw::psres::FileBytes none = gw::psres::read_plain_file(path, 4);
        EXPECT_EQ(none.bytes, "");
        EXPECT_EQ(none.failure, "this is no plain file") << path;
        EXPECT_FALSE(gw::psres::is_plain_file(path));
    }
    EXPECT_EQ(gw::psres::read_plain_file(dir.file("none"), 4).failure, "No such file or directory");
    EXPECT_TRUE(gw::psres::is_plain_file(dir.file("link")));
}

}  // namespace
