// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <random>

#include "fontfiles/font_face.h"
#include "fontfiles/font_verdict.h"
#include "support/bitmap_maker.h"
#include "support/compressed.h"
#include "support/sfnt_maker.h"
#include "support/temp_dir.h"

namespace gw {

void PrintTo(const Verdict::Kind& kind, std::ostream* out) {
    static constexpr const char* NAMES[] = {"OK",    "DAMAGED",         "NOT_A_FONT",
                                            "EMPTY", "NOT_FOR_SERVERS", "UNREADABLE"};
    *out << NAMES[static_cast<int>(kind)];
}

namespace {

using Kind = Verdict::Kind;

constexpr const char* FONTS = "/usr/share/fonts/";

/// The content of a font of the system, unpacked.
std::string system_font(const std::string& name) {
    const Result<FontBytes> bytes = FontBytes::open(FONTS + name);
    if (!bytes) ADD_FAILURE() << bytes.failure().text();
    return bytes ? bytes->part(0, bytes->size()) : "";
}

std::string pfa_from(const std::string& pfb) {
    std::string pfa;
    for (std::size_t place = 0; place + 6 < pfb.size() && pfb[place + 1] != 3;) {
        std::size_t size = 0;
        for (std::size_t i = 4; i > 0; --i) size = size << 8 | static_cast<unsigned char>(pfb[place + 1 + i]);
        pfa += pfb.substr(place + 6, size);
        place += 6 + size;
    }
    return pfa;
}

class FontVerdictTest : public testing::Test {
  protected:
    Verdict verdict(std::string_view bytes, const std::string& name = "font") {
        return judge(dir_.write(name, bytes));
    }
    /// All beginnings of the font whose sizes are multiples of `step` are damaged, or, without a byte, empty.
    void expect_every_cut_is_found(const std::string& font, std::size_t step) {
        ASSERT_EQ(verdict(font).kind, Kind::OK);
        for (std::size_t size = step; size < font.size(); size += step) {
            const Verdict cut = verdict(std::string_view(font).substr(0, size));
            EXPECT_EQ(cut.kind, Kind::DAMAGED) << size << " of " << font.size();
            if (HasFailure()) return;
        }
    }
    test::TempDir dir_;
};

TEST_F(FontVerdictTest, GoodFontsAreOk) {
    EXPECT_EQ(verdict(test::SfntMaker().make()).kind, Kind::OK);
    EXPECT_EQ(verdict(test::SfntMaker().make_collection(3, 3)).kind, Kind::OK);
    EXPECT_EQ(verdict(test::BitmapMaker().make_bdf()).kind, Kind::OK);
    EXPECT_EQ(verdict(test::BitmapMaker().make_pcf()).kind, Kind::OK);
    EXPECT_EQ(verdict(test::gzipped(test::BitmapMaker().make_bdf())).kind, Kind::OK);
    EXPECT_EQ(verdict(pfa_from(system_font("X11/Type1/c0419bt_.pfb"))).kind, Kind::OK);
}

TEST_F(FontVerdictTest, FontsOfTheSystemAreOkOrNotForServers) {
    std::size_t fonts = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(FONTS)) {
        const std::string name = entry.path().filename();
        const bool is_font = name.ends_with(".pcf.gz") || name.ends_with(".ttf") || name.ends_with(".pfb") ||
                             name.ends_with(".otf");
        if (!entry.is_regular_file() || entry.is_symlink() || !is_font) continue;
        if (++fonts % 7 != 0) continue;
        const Verdict verdict = judge(entry.path());
        const bool has_cff = name.ends_with(".otf") && verdict.kind == Kind::NOT_FOR_SERVERS;
        EXPECT_TRUE(verdict.kind == Kind::OK || has_cff) << verdict.why.text();
    }
    EXPECT_GT(fonts, 500U);
}

TEST_F(FontVerdictTest, PostScriptOutlinesInOpenTypeAreNotForServers) {
    const Verdict otf = judge(FONTS + std::string("opentype/urw-base35/NimbusSans-Regular.otf"));
    EXPECT_EQ(otf.kind, Kind::NOT_FOR_SERVERS);
    EXPECT_EQ(otf.why.reason_text(), "no X server opens OpenType fonts with PostScript outlines");
    const std::string whole = system_font("opentype/urw-base35/NimbusSans-Regular.otf");
    EXPECT_EQ(verdict(whole.substr(0, whole.size() - 100)).kind, Kind::DAMAGED) << "damaged goes first";
}

TEST_F(FontVerdictTest, ATrueTypeFontThatIsCutOffIsDamaged) {
    expect_every_cut_is_found(system_font("truetype/dejavu/DejaVuSans.ttf"), 4096);
    expect_every_cut_is_found(test::SfntMaker().make(), 4);
    expect_every_cut_is_found(test::SfntMaker().make_collection(2, 2), 4);
}

TEST_F(FontVerdictTest, APcfFontThatIsCutOffIsDamaged) {
    expect_every_cut_is_found(system_font("X11/misc/10x20.pcf.gz"), 512);
    expect_every_cut_is_found(system_font("X11/75dpi/timR10.pcf.gz"), 512);
    expect_every_cut_is_found(test::BitmapMaker().make_pcf(), 4);
}

TEST_F(FontVerdictTest, ACompressedPcfFontThatIsCutOffIsDamaged) {
    expect_every_cut_is_found(test::TempDir::read_bytes(FONTS + std::string("X11/misc/6x13.pcf.gz")), 512);
    const std::string pcf = system_font("X11/misc/5x7.pcf.gz");
    expect_every_cut_is_found(test::compressed(pcf, ARCHIVE_FILTER_COMPRESS), 512);
    expect_every_cut_is_found(test::compressed(pcf, ARCHIVE_FILTER_BZIP2), 512);
}

TEST_F(FontVerdictTest, AType1FontThatIsCutOffIsDamaged) {
    const std::string pfb = system_font("X11/Type1/c0419bt_.pfb");
    expect_every_cut_is_found(pfb, 1024);
    EXPECT_EQ(verdict(pfb.substr(0, pfb.size() - 2)).kind, Kind::OK) << "only the mark of the end is missing";
    const std::string pfa = pfa_from(pfb);
    ASSERT_NE(pfa.find("cleartomark"), std::string::npos);
    expect_every_cut_is_found(pfa, 1024);
    EXPECT_EQ(verdict(pfa.substr(0, pfa.find("cleartomark"))).why.reason_text(),
              "the end of this font is missing");
}

TEST_F(FontVerdictTest, ABdfFontThatIsCutOffIsDamaged) {
    const std::string bdf = test::BitmapMaker().make_bdf();
    for (std::size_t size = 10; size < bdf.size() - 1; ++size)
        EXPECT_EQ(verdict(bdf.substr(0, size)).kind, Kind::DAMAGED) << size;
    const std::size_t row = bdf.rfind("FF\n");
    EXPECT_EQ(verdict(bdf.substr(0, row) + bdf.substr(row + 3)).kind, Kind::DAMAGED) << "a row is missing";
    const std::size_t bitmap = bdf.rfind("BITMAP");
    EXPECT_EQ(verdict(bdf.substr(0, bitmap) + "ENDCHAR\nENDFONT\n").kind, Kind::DAMAGED)
        << "a bitmap is missing";
    const std::size_t last = bdf.rfind("STARTCHAR");
    EXPECT_EQ(verdict(bdf.substr(0, last) + "ENDFONT\n").kind, Kind::DAMAGED) << "a character is missing";
}

TEST_F(FontVerdictTest, OneBrokenGlyphIsFoundInABitmapFont) {
    std::string pcf = system_font("X11/misc/6x13.pcf.gz");
    const std::string bitmaps("\x08\x00\x00\x00", 4);
    const std::size_t entry = pcf.find(bitmaps, 8);
    ASSERT_LT(entry, 200U);
    std::size_t table = 0;
    for (std::size_t i = 4; i > 0; --i) table = table << 8 | static_cast<unsigned char>(pcf[entry + 11 + i]);
    pcf.replace(table + 408, 4, "\x7f\x7f\x7f\x7f");
    const Verdict broken = verdict(pcf);
    EXPECT_EQ(broken.kind, Kind::DAMAGED);
}

TEST_F(FontVerdictTest, WhatIsNoFontIsToldFromWhatIsEmpty) {
    std::mt19937 random(42);
    std::string bytes(200, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    EXPECT_EQ(verdict(bytes, "random.pfb").kind, Kind::NOT_A_FONT);
    EXPECT_EQ(verdict(bytes, "random.pfb").why, (Failure{dir_.file("random.pfb"), Reason::NOT_A_FONT}));
    EXPECT_EQ(verdict("", "empty.ttf").kind, Kind::EMPTY);
    EXPECT_EQ(verdict("<html>404</html>", "download.ttf").kind, Kind::NOT_A_FONT);
    EXPECT_EQ(verdict(test::gzipped("not a font"), "a.pcf.gz").kind, Kind::NOT_A_FONT);
}

TEST_F(FontVerdictTest, WhatCannotBeReadIsUnreadable) {
    EXPECT_EQ(judge(dir_.make_dir("directory")).kind, Kind::UNREADABLE);
    ASSERT_EQ(::mkfifo(dir_.file("pipe").c_str(), 0644), 0);
    EXPECT_EQ(judge(dir_.file("pipe")).kind, Kind::UNREADABLE);
    EXPECT_EQ(judge(dir_.file("nothing")).kind, Kind::UNREADABLE);
    const std::string sparse = dir_.write("sparse.otf", "");
    ASSERT_EQ(::truncate(sparse.c_str(), off_t{1} << 31), 0);
    EXPECT_EQ(judge(sparse).kind, Kind::UNREADABLE);
}

TEST_F(FontVerdictTest, CountsThatLieAreDamage) {
    EXPECT_EQ(verdict(test::SfntMaker().make_collection(2, 0xFFFFFFFF)).kind, Kind::DAMAGED);
    EXPECT_EQ(verdict(test::SfntMaker().make_collection(2, 3)).kind, Kind::DAMAGED);
    std::string font = test::SfntMaker().make();
    font.replace(4, 2, "\xFF\xFF");
    EXPECT_EQ(verdict(font).kind, Kind::DAMAGED);
    EXPECT_EQ(verdict("\1"
                      "fcp\xFF\xFF\xFF\xFF")
                  .kind,
              Kind::DAMAGED);
}

TEST_F(FontVerdictTest, StrangeNamesAreNoDamage) {
    test::SfntMaker maker;
    for (const char* family : {"", "a-b, \"c\" 'd'", "a\nb\tc\x1B", "%s%n"}) {
        maker.names = test::windows_names(family);
        EXPECT_EQ(verdict(maker.make()).kind, Kind::OK) << family;
    }
    maker.names = {};
    EXPECT_EQ(verdict(maker.make()).kind, Kind::OK);
    maker.names = {{0, 3, 0, 1, test::utf16("Only UTF-16")}};
    EXPECT_EQ(verdict(maker.make()).kind, Kind::OK);
}

long peak_kilobytes() {
    rusage usage = {};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

/// Fonts that would like to have all the memory or all the time.
TEST_F(FontVerdictTest, GreedyFontsGetLittle) {
    test::BitmapMaker maker;
    maker.codes.clear();
    for (int code = 0; code < 300000; ++code) maker.codes.push_back(code);
    const std::string characters = maker.make_bdf();
    const long before = peak_kilobytes();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(verdict(test::gzipped(std::string(100UL << 20, ' ')), "bomb.bdf.gz").kind, Kind::UNREADABLE);
    EXPECT_EQ(verdict(test::gzipped("STARTFONT 2.1\n" + std::string(60UL << 20, '\n')), "lines.bdf.gz").kind,
              Kind::DAMAGED);
    EXPECT_NE(verdict(test::gzipped(characters), "characters.bdf.gz").kind, Kind::NOT_A_FONT);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60)) << "a hang";
#ifndef GLYPHWARD_SANITIZE
    // What the test itself has made is in it too.
    EXPECT_LT(peak_kilobytes() - before, 300L * 1024);
#else
    static_cast<void>(before);
#endif
}

}  // namespace
}  // namespace gw
