// SPDX-License-Identifier: MIT
//
// Fonts of today made into such that X servers open: by the real converter, and by ones that misbehave.
#include "modules/outline_conversion.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "fontfiles/font_face.h"
#include "modules/tool_names.h"
#include "platform/scratch.h"
#include "platform/shell_command.h"
#include "support/giving_up.h"
#include "support/heard_failures.h"
#include "support/processes.h"
#include "support/sfnt_maker.h"
#include "support/temp_dir.h"
#include "support/under_policy.h"
// Xlib last: it defines macros.
#include "support/session.h"

namespace {

using gw::convert_outlines;
using gw::FontFace;
using gw::FontFormat;
using gw::Reason;
using gw::Result;
using gw::test::BigEndian;
using gw::test::goes;
using gw::test::processes_called;
using gw::test::TempDir;
using std::filesystem::perms;

const std::string LATIN_MODERN = "/usr/share/texmf/fonts/opentype/public/lm/";
const std::string URW = "/usr/share/fonts/opentype/urw-base35/";
const std::string ROMAN = LATIN_MODERN + "lmroman10-regular.otf";
constexpr const char* TRUETYPE = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";

using Names = std::set<std::string>;

/// The names that mkfontscale gives to the font.
Names tool_names(const std::string& font) {
    const Result<std::vector<gw::IndexName>> found = gw::tool_names_of(font);
    EXPECT_TRUE(found) << font;
    Names names;
    if (found) {
        for (const gw::IndexName& name : *found) names.insert(name.xlfd);
    }
    return names;
}

Names without(const Names& all, const Names& these) {
    Names rest;
    std::set_difference(all.begin(), all.end(), these.begin(), these.end(), std::inserter(rest, rest.end()));
    return rest;
}

/// The same name at a size of 14 pixels.
std::string at_14_pixels(std::string name) {
    const std::string no_size = "--0-0-0-0-";
    return name.replace(name.find(no_size), no_size.size(), "--14-0-0-0-");
}

class Conversion : public testing::Test {
  protected:
    ~Conversion() override {
        ::setenv("PATH", path_.c_str(), 1);
        gw::set_command_patience(gw::LONG_WORK);
        gw::remove_scratch();
    }

    /// What stands in the scratch space, however little it may be.
    [[nodiscard]] static Names left() {
        Names names;
        for (const auto& entry : std::filesystem::directory_iterator(gw::scratch_path("/tmp/")))
            names.insert(entry.path().filename());
        return names;
    }
    /// From now on "fontforge" is this shell script, with the font as $5 and the file to be made as $6.
    /// Everybody may run it.
    void fake(const std::string& script) {
        std::filesystem::permissions(tools_.path(), perms(0755));
        tools_.write("bin/fontforge", "#!/bin/sh\n" + script + '\n');
        std::filesystem::permissions(tools_.file("bin/fontforge"), perms(0755));
        ::setenv("PATH", (tools_.file("bin:") + path_).c_str(), 1);
    }
    [[nodiscard]] const TempDir& tools() const { return tools_; }
    [[nodiscard]] const std::string& usual_path() const { return path_; }

    void expect_refusal(const std::string& font, Reason reason) {
        const Names before = left();
        const Result<std::string> made = convert_outlines(font);
        ASSERT_FALSE(made) << *made;
        EXPECT_EQ(made.failure(), (gw::Failure{.subject = font, .reason = reason}));
        EXPECT_EQ(left(), before);
    }

  private:
    gw::test::UnderPolicy modern_{true};
    std::string path_ = std::getenv("PATH");
    TempDir tools_;
};

TEST_F(Conversion, IsPossibleHere) {
    EXPECT_TRUE(gw::can_convert());
    EXPECT_STREQ(gw::CONVERTED_EXTENSION, ".ttf");
}

class EachFont : public Conversion, public testing::WithParamInterface<const char*> {
  protected:
    static std::string font() {
        const std::string name = GetParam();
        return (name.starts_with("lm") ? LATIN_MODERN : URW) + name + ".otf";
    }
};

TEST_P(EachFont, KeepsItsNamesAlsoWhenTheIndexIsMadeAnew) {
    const Result<std::string> made = convert_outlines(font());
    ASSERT_TRUE(made) << made.failure().text();
    const Names names = tool_names(font());
    EXPECT_GT(names.size(), 2U);
    EXPECT_EQ(without(names, tool_names(*made)), Names());
}

TEST_P(EachFont, KeepsItsCharactersAndItsFamily) {
    const Result<std::string> made = convert_outlines(font());
    ASSERT_TRUE(made) << made.failure().text();
    const Result<FontFace> before = FontFace::open(font());
    const Result<FontFace> after = FontFace::open(*made);
    ASSERT_TRUE(before && after);
    EXPECT_EQ(after->facts().format, FontFormat::TRUETYPE);
    EXPECT_EQ(after->facts().family, before->facts().family);
    EXPECT_EQ(after->facts().style, before->facts().style);
    EXPECT_EQ(after->facts().fixed_pitch, before->facts().fixed_pitch);
    EXPECT_GE(after->facts().glyphs, before->facts().glyphs);
    EXPECT_EQ(after->characters().size(), before->characters().size());
    for (const FontFace::Character& character : after->characters())
        EXPECT_TRUE(after->load(character.glyph)) << static_cast<unsigned>(character.code);
}

TEST_P(EachFont, IsOpenedByTheServerUnderItsNames) {
    const Result<std::string> made = convert_outlines(font());
    ASSERT_TRUE(made) << made.failure().text();
    const TempDir dir;
    std::filesystem::permissions(dir.path(), perms(0755));
    std::filesystem::copy(*made, dir.file("font.ttf"));
    std::filesystem::permissions(dir.file("font.ttf"), perms(0644));
    const Names names = tool_names(font());
    std::string index = std::to_string(names.size()) + '\n';
    for (const std::string& name : names) index += "font.ttf " + name + '\n';
    dir.write("fonts.dir", index);
    const gw::test::Session session;
    std::string element = dir.path();
    char* elements[] = {element.data()};
    XSetFontPath(session.display(), elements, 1);
    for (const std::string& name : names) {
        XFontStruct* opened = XLoadQueryFont(session.display(), at_14_pixels(name).c_str());
        ASSERT_NE(opened, nullptr) << name;
        EXPECT_GT(XTextWidth(opened, "A", 1), 0) << name;
        XFreeFont(session.display(), opened);
    }
}

// A foundry that only the outlines name, fixed pitch with accents that have no width, bold, condensed.
INSTANTIATE_TEST_SUITE_P(Families, EachFont,
                         testing::Values("lmroman10-regular", "lmroman10-bolditalic", "lmmono10-regular",
                                         "lmsansdemicond10-oblique", "C059-Bold", "NimbusMonoPS-Regular",
                                         "NimbusSansNarrow-Bold", "URWGothic-DemiOblique"),
                         [](const auto& font) {
                             std::string name = font.param;
                             std::erase(name, '-');
                             return name;
                         });

// A TrueType font cannot have the encoding of a symbol font, so mkfontscale does not find this one name.
TEST_F(Conversion, ASymbolFontLosesOnlyTheEncodingOfItsOwn) {
    for (const char* file : {"StandardSymbolsPS", "D050000L"}) {
        const std::string font = URW + file + ".otf";
        const Result<std::string> made = convert_outlines(font);
        ASSERT_TRUE(made) << made.failure().text();
        const Names lost = without(tool_names(font), tool_names(*made));
        ASSERT_EQ(lost.size(), 1U) << file;
        EXPECT_TRUE(lost.begin()->ends_with("-adobe-symbol") ||
                    lost.begin()->ends_with("-adobe-fontspecific"))
            << *lost.begin();
    }
}

TEST_F(Conversion, OneFontGivesTheSameBytesAgain) {
    const Result<std::string> first = convert_outlines(ROMAN);
    const Result<std::string> second = convert_outlines(ROMAN);
    ASSERT_TRUE(first && second);
    EXPECT_NE(*first, *second);
    EXPECT_EQ(TempDir::read_bytes(*first), TempDir::read_bytes(*second));
}

TEST_F(Conversion, LeavesOneFileOnlyAndNothingAtHome) {
    const TempDir home;
    const std::string before_home = std::getenv("HOME");
    ::setenv("HOME", home.c_str(), 1);
    const Names before = left();
    const Result<std::string> made = convert_outlines(ROMAN);
    ::setenv("HOME", before_home.c_str(), 1);
    ASSERT_TRUE(made) << made.failure().text();
    EXPECT_EQ(without(left(), before), Names{std::filesystem::path(*made).filename()});
    EXPECT_EQ(gw::test::entries_in(home.path()), 0);
    EXPECT_EQ(std::filesystem::status(*made).permissions(), perms(0600));
}

// The sum of a whole font, its adjustment included, is this.
TEST_F(Conversion, TheSumsOfAFontOfFixedPitchAreRight) {
    const Result<std::string> made = convert_outlines(LATIN_MODERN + "lmmono10-regular.otf");
    ASSERT_TRUE(made) << made.failure().text();
    const std::string bytes = TempDir::read_bytes(*made);
    ASSERT_EQ(bytes.size() % 4, 0U);
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        sum += static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i])) << (24 - 8 * (i % 4));
    EXPECT_EQ(sum, 0xB1B0AFBAU);
}

std::size_t number_at(const std::string& font, std::size_t at, std::size_t count) {
    std::size_t value = 0;
    for (std::size_t i = 0; i < count; ++i) value = value << 8U | static_cast<unsigned char>(font[at + i]);
    return value;
}

/// Where the table's entry in the directory is.
std::size_t entry_of(const std::string& font, const char* tag) {
    const std::size_t entry = font.find(tag);
    EXPECT_LT(entry, 12 + 16 * number_at(font, 4, 2)) << tag;
    return entry;
}

/// A CID-keyed copy of the font, with the characters of ASCII: its glyphs have numbers, not names. The font
/// must have no layout tables: FontForge does not survive that they speak of other glyphs.
std::string cid_keyed(const TempDir& dir, const std::string& font) {
    const std::string numbers = dir.write("ascii.cmap", R"(%!PS-Adobe-3.0 Resource-CMap
/CIDInit /ProcSet findresource begin
12 dict begin
begincmap
/CIDSystemInfo 3 dict dup begin
/Registry (Adobe) def
/Ordering (Identity) def
/Supplement 0 def
end def
/CMapName /ASCII-H def
/CMapVersion 1 def
/CMapType 1 def
1 begincodespacerange
<0000> <FFFF>
endcodespacerange
1 begincidrange
<0020> <007E> 1
endcidrange
endcmap
)");
    const std::string script = R"(Open($1); Reencode("UnicodeBmp"); ConvertByCMap($2); Generate($3))";
    const std::string made = dir.file("cid.otf");
    EXPECT_TRUE(gw::run_command("HOME=/dev/null fontforge -quiet -lang=ff -c %s %s %s %s >/dev/null 2>&1",
                                {script, font, numbers, made}, gw::LONG_WORK));
    return made;
}

TEST_F(Conversion, TakesFontsThatAreCidKeyed) {
    const TempDir dir;
    const std::string font = cid_keyed(dir, URW + "StandardSymbolsPS.otf");
    const Result<FontFace> before = FontFace::open(font);
    ASSERT_TRUE(before) << before.failure().text();
    ASSERT_TRUE(before->facts().is_cid_keyed);
    ASSERT_EQ(before->characters().size(), 95U);
    const Result<std::string> made = convert_outlines(font);
    ASSERT_TRUE(made) << made.failure().text();
    const Result<FontFace> after = FontFace::open(*made);
    ASSERT_TRUE(after) << after.failure().text();
    for (char32_t digit = '0'; digit <= '9'; ++digit) {
        const auto drawn = after->draw(after->glyph_of(digit), 40);
        const auto wanted = before->draw(before->glyph_of(digit), 40);
        ASSERT_TRUE(drawn && wanted);
        EXPECT_GT(drawn->width, 0);
        EXPECT_NEAR(drawn->width, wanted->width, 1);
        EXPECT_NEAR(drawn->height, wanted->height, 1);
    }
    EXPECT_FALSE(tool_names(font).empty());
    EXPECT_EQ(without(tool_names(font), tool_names(*made)), Names());
}

/// Two fonts in one file.
std::string collection(const std::string& first, const std::string& second) {
    const std::vector<std::string> fonts = {TempDir::read_bytes(first), TempDir::read_bytes(second)};
    BigEndian bytes;
    bytes.bytes("ttcf").u32(0x10000).u32(2);
    const std::size_t start = 20;
    bytes.u32(start).u32(start + fonts[0].size());
    std::size_t at = start;
    for (const std::string& font : fonts) {
        std::string moved = font;
        for (std::size_t i = 0; i < number_at(font, 4, 2); ++i) {
            const std::size_t place = 12 + 16 * i + 8;
            moved.replace(place, 4, BigEndian().u32(number_at(font, place, 4) + at).str());
        }
        bytes.bytes(moved);
        at += font.size();
    }
    return bytes.str();
}

TEST_F(Conversion, TakesTheWantedFontOfACollection) {
    const TempDir dir;
    const std::string path = dir.write("two.otc", collection(ROMAN, URW + "C059-Bold.otf"));
    for (const int face : {0, 1}) {
        const Result<std::string> made = convert_outlines(path, face);
        ASSERT_TRUE(made) << made.failure().text();
        const Result<FontFace> after = FontFace::open(*made);
        ASSERT_TRUE(after);
        EXPECT_EQ(after->facts().family, face == 0 ? "Latin Modern Roman" : "C059");
    }
    const Result<std::string> none = convert_outlines(path, 2);
    ASSERT_FALSE(none);
    EXPECT_EQ(none.failure().reason, Reason::NO_SUCH_FACE);
}

TEST_F(Conversion, TheNameOfTheFileMeansNothing) {
    const TempDir dir;
    for (const char* name :
         {"a b.otf", "x(1).otf", "$(touch y).otf", "'; touch y; '.otf", "x.tar.gz", "-c"}) {
        std::filesystem::copy(ROMAN, dir.file(name));
        const Result<std::string> made = convert_outlines(dir.file(name));
        EXPECT_TRUE(made) << name;
        EXPECT_FALSE(std::filesystem::exists("y"));
    }
}

TEST_F(Conversion, OtherFilesAreLeftAlone) {
    expect_refusal(TRUETYPE, Reason::NOTHING_TO_CONVERT);
    const TempDir dir;
    expect_refusal(dir.write("empty.otf", ""), Reason::EMPTY_FILE);
    expect_refusal(dir.write("text.otf", "This is not a font.\n"), Reason::NOT_A_FONT);
    expect_refusal(dir.write("cut.otf", TempDir::read_bytes(ROMAN).substr(0, 4096)), Reason::DAMAGED_FONT);
    EXPECT_FALSE(convert_outlines(dir.file("missing.otf")));
    EXPECT_FALSE(convert_outlines(dir.path()));
}

TEST_F(Conversion, AMakersReserveIsRespected) {
    std::string bytes = TempDir::read_bytes(ROMAN);
    const std::size_t offset = number_at(bytes, entry_of(bytes, "OS/2") + 8, 4);
    bytes.replace(offset + 8, 2, std::string("\0\2", 2));
    const TempDir dir;
    expect_refusal(dir.write("reserved.otf", bytes), Reason::MAY_NOT_BE_CONVERTED);
}

// FontForge crashes for some of these.
TEST_F(Conversion, DamagedFontsDoNoHarm) {
    const std::string whole = TempDir::read_bytes(ROMAN);
    const TempDir dir;
    const Names before = left();
    std::mt19937 random(7);
    int converted = 0;
    int refused = 0;
    for (int i = 0; i < 40; ++i) {
        std::string bytes = whole;
        const std::size_t from = i % 2 == 0 ? 300 : 12;
        for (int k = 0; k < 40; ++k)
            bytes[from + random() % (bytes.size() - from)] = static_cast<char>(random());
        const Result<std::string> made = convert_outlines(dir.write("broken.otf", bytes));
        if (made) {
            ++converted;
            EXPECT_TRUE(FontFace::open(*made));
            std::filesystem::remove(*made);
        } else {
            ++refused;
            EXPECT_EQ(made.failure().subject, dir.file("broken.otf"));
        }
    }
    EXPECT_EQ(left(), before);
    EXPECT_GT(converted, 0);
    EXPECT_GT(refused, 0);
}

TEST_F(Conversion, SaysWhichPackageIsMissing) {
    const TempDir empty;
    ::setenv("PATH", empty.c_str(), 1);
    const gw::Outcome possible = gw::can_convert();
    ASSERT_FALSE(possible);
    EXPECT_EQ(possible.failure().text(),
              "fontforge: the program that converts such fonts is not installed (package fontforge-nox)");
    const Result<std::string> made = convert_outlines(ROMAN);
    ASSERT_FALSE(made);
    EXPECT_EQ(made.failure(), possible.failure());
}

TEST_F(Conversion, AConverterThatFailsIsNotBelieved) {
    const Result<std::string> real = convert_outlines(ROMAN);
    ASSERT_TRUE(real) << real.failure().text();
    const std::string font = tools().write("real.ttf", TempDir::read_bytes(*real));
    std::filesystem::permissions(font, perms(0644));
    fake("cat " + font + " >\"$6\"");
    const Result<std::string> good = convert_outlines(ROMAN);
    ASSERT_TRUE(good) << good.failure().text();  // so this is how a fake is asked
    EXPECT_EQ(TempDir::read_bytes(*good), TempDir::read_bytes(*real));

    const std::vector<std::string> scripts = {"cat " + font + " >\"$6\"; exit 1",
                                              "cat " + font + " >\"$6\"; kill -SEGV $$",
                                              "exit 0",
                                              "rm -f \"$6\"",
                                              "head -c 100000 /dev/urandom >\"$6\"",
                                              "head -c 5000 " + font + " >\"$6\"",
                                              "cat \"$5\" >\"$6\"",
                                              R"(printf '\0\1\0\0\377\377' >"$6")"};
    for (const std::string& script : scripts) {
        SCOPED_TRACE(script);
        fake(script);
        expect_refusal(ROMAN, Reason::NOT_CONVERTED);
    }
}

TEST_F(Conversion, AResultThatHasLostCharactersIsRefused) {
    fake("cat " + std::string(TRUETYPE) + " >\"$6\"");
    expect_refusal(URW + "StandardSymbolsPS.otf", Reason::NOT_CONVERTED);
}

TEST_F(Conversion, AConverterThatHangsIsStopped) {
    fake("sleep 1000");
    gw::set_command_patience(std::chrono::milliseconds(500));
    expect_refusal(ROMAN, Reason::NOT_CONVERTED_IN_TIME);
}

// The real one, in the middle of its work.
TEST_F(Conversion, IsGivenUpAtOnce) {
    const Names before = left();
    const std::set<std::string> others = processes_called("fontforge");
    std::set<std::string> converter;
    std::chrono::steady_clock::time_point given_up;
    const gw::test::GivingUp user([&] {
        if (!converter.empty()) return true;
        for (const std::string& id : processes_called("fontforge")) {
            if (!others.contains(id)) converter.insert(id);
        }
        given_up = std::chrono::steady_clock::now();
        return !converter.empty();
    });
    const Result<std::string> made = convert_outlines(ROMAN);
    EXPECT_LT(std::chrono::steady_clock::now() - given_up, std::chrono::seconds(1));
    ASSERT_FALSE(made) << *made;
    EXPECT_EQ(made.failure(), (gw::Failure{.subject = ROMAN, .reason = Reason::GIVEN_UP}));
    EXPECT_EQ(converter.size(), 1U);
    EXPECT_EQ(left(), before);
    for (const std::string& id : converter) EXPECT_TRUE(goes("fontforge", id));
}

// What it has started ends with it.
TEST_F(Conversion, AConverterThatHangsIsGivenUpAtOnce) {
    tools().write("begun", "");
    std::filesystem::permissions(tools().file("begun"), perms(0666));
    fake("sleep 1234 & echo $! >" + tools().file("begun") + "; wait");
    const Names before = left();
    std::chrono::steady_clock::time_point given_up;
    const gw::test::GivingUp user([&] {
        if (!tools().read("begun").ends_with('\n')) return false;
        if (given_up == std::chrono::steady_clock::time_point()) given_up = std::chrono::steady_clock::now();
        return true;
    });
    const Result<std::string> made = convert_outlines(ROMAN);
    EXPECT_LT(std::chrono::steady_clock::now() - given_up, std::chrono::seconds(1));
    ASSERT_FALSE(made) << *made;
    EXPECT_EQ(made.failure().reason, Reason::GIVEN_UP);
    EXPECT_EQ(left(), before);
    const std::string id = tools().read("begun").substr(0, tools().read("begun").find('\n'));
    EXPECT_TRUE(goes("sleep", id));
}

TEST_F(Conversion, AConverterThatWritesWithoutEndIsStopped) {
    fake("ulimit -f >" + tools().file("limit") + "; cat /dev/zero >\"$6\"");
    tools().write("limit", "");
    std::filesystem::permissions(tools().file("limit"), perms(0666));
    expect_refusal(ROMAN, Reason::NOT_CONVERTED);
    EXPECT_EQ(tools().read("limit"), "262144\n");
}

TEST_F(Conversion, TheConverterIsNobodyWhenThisProcessIsTheSuperusers) {
    tools().write("who", "");
    std::filesystem::permissions(tools().file("who"), perms(0666));
    const bool has_power = ::geteuid() == 0 && ::chown(tools().file("who").c_str(), 65534, 65534) == 0;
    fake("{ id -u; echo $HOME; grep NoNewPrivs /proc/self/status; } >" + tools().file("who"));
    EXPECT_FALSE(convert_outlines(ROMAN));
    const std::string who = tools().read("who");
    EXPECT_TRUE(who.starts_with((has_power ? "65534" : std::to_string(::geteuid())) + "\n/dev/null\n"))
        << who;
}

}  // namespace
