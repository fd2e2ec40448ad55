// SPDX-License-Identifier: MIT
//
// TrueType, OpenType and BDF fonts, and Type 1 fonts with all their names, from a source to the index of a
// directory and away from it, with fonts of Debian's packages.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "model/gw_font.h"
#include "modules/font_modules.h"
#include "modules/gw_fsm_list.h"
#include "support/temp_dir.h"
#include "support/under_policy.h"

namespace {

using gw::test::TempDir;
using gw::test::UnderPolicy;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::SizeIs;
using testing::UnorderedElementsAreArray;
using Texts = std::vector<std::string>;

const std::string SANS = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
const std::string BOLD = "/usr/share/fonts/truetype/dejavu/DejaVuSansMono-Bold.ttf";
const std::string TEX = "/usr/share/texmf/fonts/type1/public/lm/lmr10.pfb";
const std::string PCF = "/usr/share/fonts/X11/misc/6x13-ISO8859-1.pcf.gz";
const std::string BDF =
    "STARTFONT 2.1\nFONT -x-tiny-medium-r-normal--10-100-75-75-c-80-iso8859-1\nSIZE 10 75 75\n"
    "FONTBOUNDINGBOX 8 8 0 0\nSTARTPROPERTIES 2\nFONT_ASCENT 8\nFONT_DESCENT 0\nENDPROPERTIES\nCHARS 1\n"
    "STARTCHAR A\nENCODING 65\nSWIDTH 800 0\nDWIDTH 8 0\nBBX 8 8 0 "
    "0\nBITMAP\n18\n3C\n66\n66\n7E\n66\n66\n66\n"
    "ENDCHAR\nENDFONT\n";

/// What a tool writes for that directory, without the count; sorted.
Texts tool_lines(const char* tool, const std::string& dir, const char* index) {
    if (std::system((std::string(tool) + " '" + dir + "'").c_str()) != 0) throw std::runtime_error(tool);
    std::ifstream file(dir + '/' + index);
    std::string line;
    std::getline(file, line);
    Texts lines;
    while (std::getline(file, line)) lines.push_back(line);
    std::sort(lines.begin(), lines.end());
    return lines;
}

class TodaysFormats : public testing::Test {
  protected:
    TodaysFormats() { gw::append_font_modules(modules); }

    void bring(const std::string& path, const std::string& name) const {
        std::filesystem::copy_file(path, source.file(name));
    }
    /// The fonts of the source, which live as long as the test.
    std::vector<GWFont*> list_source() {
        GW_DIR dir(source.c_str());
        GW_LIST<GWFont> found;
        modules.make_font_list(found, &dir, 0);
        return keep(found);
    }
    std::vector<GWFont*> list_installed() {
        GW_FPE element(fonts.c_str());
        GW_LIST<GWFont> found;
        modules.make_installed_font_list(found, &element);
        return keep(found);
    }
    void install_all() {
        for (GWFont* font : list_source()) {
            const gw::Outcome installed = font->install(fonts.path(), modules);
            EXPECT_TRUE(installed) << font->get_hrn_name() << ": "
                                   << (installed ? "" : installed.failure().text());
        }
    }
    [[nodiscard]] Texts index_lines(const char* index = "fonts.dir") const {
        std::istringstream text(fonts.read(index));
        std::string line;
        std::getline(text, line);
        Texts lines;
        while (std::getline(text, line)) lines.push_back(line);
        EXPECT_EQ(text.str().substr(0, text.str().find('\n')), std::to_string(lines.size()));
        std::sort(lines.begin(), lines.end());
        return lines;
    }

    TempDir source;
    TempDir fonts;
    GW_FSM_LIST modules;

  private:
    std::vector<GWFont*> keep(const GW_LIST<GWFont>& found) {
        std::vector<GWFont*> made;
        for (GWFont* font : found) {
            kept_.emplace_back(font);
            made.push_back(font);
        }
        return made;
    }
    UnderPolicy policy_{true};
    std::vector<gw::Ref<GWFont>> kept_;
};

Texts names_in_lists(const std::vector<GWFont*>& fonts) {
    Texts names;
    for (GWFont* font : fonts) names.push_back(font->get_hrn_name());
    std::sort(names.begin(), names.end());
    return names;
}

TEST_F(TodaysFormats, AreListedUnderTheNameInTheFontAndInstalledUnderThatOfTheIndex) {
    bring(BOLD, "DejaVuSansMono-Bold.ttf");
    bring(PCF, "6x13.pcf.gz");
    source.write("tiny.bdf", BDF);
    EXPECT_THAT(names_in_lists(list_source()), ElementsAre("DejaVu Sans Mono Bold [TrueType]",
                                                           "Fixed Medium [Bitmap]", "Tiny Medium [Bitmap]"));
    install_all();
    EXPECT_THAT(
        names_in_lists(list_installed()),
        ElementsAre("Dejavu Sans Mono Bold [TrueType]", "Fixed Medium [Bitmap]", "Tiny Medium [Bitmap]"));
}

TEST_F(TodaysFormats, HaveAllTheNamesThatTheToolsGiveThem) {
    bring(SANS, "DejaVuSans.ttf");
    bring(TEX, "lmr10.pfb");
    install_all();
    const Texts expected = tool_lines("mkfontscale", source.path(), "fonts.scale");
    ASSERT_GT(expected.size(), 20U);
    EXPECT_EQ(index_lines(), expected);
    EXPECT_EQ(index_lines("fonts.scale"), expected);
}

TEST_F(TodaysFormats, StayInTheIndexesWhicheverToolSomebodyRunsFirst) {
    bring(SANS, "DejaVuSans.ttf");
    bring(BOLD, "Bold.TTF");
    bring(TEX, "lmr10.pfb");
    bring("/usr/share/texmf/fonts/type1/public/lm/lmbx12.pfb", "lmbx12.PFB");
    bring(PCF, "6x13.pcf.gz");
    bring("/usr/share/fonts/X11/misc/7x13-ISO8859-1.pcf.gz", "7x13.pcf.gz");
    bring("/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf", "Liberation Sans.ttf");
    source.write("tiny.bdf", BDF);
    install_all();
    const Texts before = index_lines();
    ASSERT_THAT(list_installed(), SizeIs(8));
    for (const char* tool : {"mkfontdir", "mkfontscale", "mkfontdir", "mkfontscale", "mkfontdir"}) {
        ASSERT_EQ(std::system((std::string(tool) + " '" + fonts.path() + "'").c_str()), 0);
        EXPECT_EQ(index_lines(), before) << tool;
    }
}

TEST_F(TodaysFormats, GoWithAllTheirLinesInBothIndexes) {
    bring(SANS, "DejaVuSans.ttf");
    bring(BOLD, "DejaVuSansMono-Bold.ttf");
    install_all();
    for (GWFont* font : list_installed()) {
        if (font->get_hrn_name() == "Dejavu Sans Book [TrueType]" ||
            font->get_hrn_name() == "Dejavu Sans Medium [TrueType]") {
            EXPECT_TRUE(font->remove(modules));
        }
    }
    EXPECT_FALSE(fonts.exists("DejaVuSans.ttf"));
    for (const char* index : {"fonts.dir", "fonts.scale"}) {
        const Texts left = index_lines(index);
        EXPECT_THAT(left, testing::Each(testing::StartsWith("DejaVuSansMono-Bold.ttf "))) << index;
        EXPECT_GT(left.size(), 5U) << index;
    }
}

TEST_F(TodaysFormats, OfAnAdministratorsScalableIndexKeepTheirLines) {
    const std::string line = "other.ttf -x-other-medium-r-normal--0-0-0-0-p-0-iso8859-1";
    fonts.write("fonts.scale", "1\n" + line + '\n');
    fonts.write("fonts.dir", "1\n" + line + '\n');
    fonts.write("other.ttf", "x");
    bring(BOLD, "Bold.ttf");
    install_all();
    EXPECT_THAT(index_lines("fonts.scale"), Contains(line));
    EXPECT_EQ(index_lines("fonts.scale"), index_lines());
}

TEST_F(TodaysFormats, GetNamesThatAnIndexCanHave) {
    bring(BOLD, "Open Sans Bold.TTF");
    bring(TEX, "Foo.v2.pfb");
    for (GWFont* font : list_source()) {
        EXPECT_TRUE(font->install(fonts.path(), modules));
        const std::vector<gw::Failure> remarks = font->take_remarks();
        if (font->get_type() == GWFont::TYPE1_FONT) {
            EXPECT_THAT(remarks, IsEmpty());
        } else {
            ASSERT_THAT(remarks, SizeIs(1));
            EXPECT_EQ(remarks.front().reason, gw::Reason::RENAMED_IN_COPY);
            EXPECT_EQ(remarks.front().detail, "Open_Sans_Bold.ttf");
        }
    }
    EXPECT_TRUE(fonts.exists("Open_Sans_Bold.ttf"));
    EXPECT_TRUE(fonts.exists("Foo.v2.pfb"));
    EXPECT_THAT(list_installed(), SizeIs(2));
    EXPECT_TRUE(source.exists("Open Sans Bold.TTF"));
}

TEST_F(TodaysFormats, AreNoFontsWithoutThePolicy) {
    bring(BOLD, "Bold.ttf");
    source.write("tiny.bdf", BDF);
    fonts.write("fonts.dir", "1\nBold.ttf -x-bold-medium-r-normal--0-0-0-0-p-0-iso8859-1\n");
    const UnderPolicy plain(false);
    EXPECT_THAT(list_source(), IsEmpty());
    EXPECT_THAT(list_installed(), IsEmpty());
}

TEST_F(TodaysFormats, ACollectionIsOneFontWithTheNamesOfAllItsFaces) {
    const std::string first = "-x-first-medium-r-normal--0-0-0-0-p-0-iso8859-1";
    const std::string second = "-x-second-medium-r-normal--0-0-0-0-p-0-iso8859-1";
    fonts.write("fonts.dir", "4\n:1:two.ttc " + second + "\ntwo.ttc " + first +
                                 "\n:fn=1:two.ttc -x-odd\nother.pcf -x-other\n");
    fonts.write("two.ttc", "ttcf");
    std::vector<GWFont*> listed = list_installed();
    std::erase_if(listed, [](const GWFont* font) { return font->is_bitmap(); });
    ASSERT_THAT(listed, SizeIs(1));
    EXPECT_THAT(listed[0]->get_index_names(),
                ElementsAre(gw::IndexName{1, second, ":1:"}, gw::IndexName{0, first},
                            gw::IndexName{1, "-x-odd", ":fn=1:"}));
    EXPECT_EQ(listed[0]->get_xlfd_name(), first);
    EXPECT_TRUE(listed[0]->remove(modules));
    EXPECT_FALSE(fonts.exists("two.ttc"));
    EXPECT_EQ(fonts.read("fonts.dir"), "1\nother.pcf -x-other\n");
}

}  // namespace
