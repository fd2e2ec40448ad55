// SPDX-License-Identifier: MIT
//
// Fonts with names that people give to files, and with names inside that no index can have.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "fontfiles/index_text.h"
#include "model/gw_font.h"
#include "modules/font_modules.h"
#include "modules/gw_fsm_list.h"
#include "modules/source_fonts.h"
#include "support/heard_failures.h"
#include "support/sfnt_maker.h"
#include "support/temp_dir.h"
#include "support/under_policy.h"

namespace {

using gw::test::SfntMaker;
using gw::test::TempDir;
using gw::test::UnderPolicy;
using gw::test::windows_names;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Fonts = std::vector<GWFont*>;

class TodaysNames : public testing::Test {
  protected:
    TodaysNames() { gw::append_font_modules(modules); }

    static SfntMaker latin(const std::string& family, const std::string& style = "Regular") {
        SfntMaker maker;
        maker.names = windows_names(family, style);
        maker.characters.clear();
        maker.charmap = 1;
        for (char32_t c = 0x20; c <= 0xFF; ++c) {
            if (c < 0x7F || c >= 0xA0) maker.characters += c;
        }
        return maker;
    }
    static std::string named(const std::string& family, const std::string& style = "Regular") {
        return latin(family, style).make();
    }
    Fonts list_source(int recursive = 0) {
        GW_DIR dir(source.c_str());
        GW_LIST<GWFont> found;
        modules.make_font_list(found, &dir, recursive);
        return keep(found);
    }
    Fonts list_installed() {
        GW_FPE element(fonts.c_str());
        GW_LIST<GWFont> found;
        modules.make_installed_font_list(found, &element);
        return keep(found);
    }
    gw::Outcome install(GWFont& font) { return font.install(fonts.path(), modules); }
    /// The files and options of an index, each once.
    [[nodiscard]] std::set<std::string> fields(const char* index) const {
        std::set<std::string> found;
        for (const gw::IndexEntry& entry : gw::index_entries(fonts.read(index)))
            found.insert(entry.file_name);
        return found;
    }
    /// What stands in the directory of fonts besides the indexes.
    [[nodiscard]] std::set<std::string> files() const {
        std::set<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(fonts.path())) {
            const std::string name = entry.path().filename();
            if (name != ".glyphward" && !name.starts_with("fonts.")) found.insert(name);
        }
        return found;
    }

    TempDir source;
    TempDir fonts;
    GW_FSM_LIST modules;

  private:
    Fonts keep(const GW_LIST<GWFont>& found) {
        Fonts made;
        for (GWFont* font : found) {
            kept_.emplace_back(font);
            made.push_back(font);
        }
        return made;
    }
    UnderPolicy policy_{true};
    std::vector<gw::Ref<GWFont>> kept_;
};

TEST_F(TodaysNames, OfBothFontsOfACollectionComeAndGo) {
    source.write("two.ttc", SfntMaker::collection_of({latin("First"), latin("Second", "Bold")}));
    const Fonts found = list_source();
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0]->get_hrn_name(), "First Medium [TrueType]");
    const std::string first = "-misc-first-medium-r-normal--0-0-0-0-p-0-iso8859-1";
    const std::string second = "-misc-second-bold-r-normal--0-0-0-0-p-0-iso8859-1";
    found[0]->set_index_names({{0, first}, {1, second}});  // as tools do that know collections
    ASSERT_TRUE(install(*found[0]));
    const std::string lines = "2\ntwo.ttc " + first + "\n:1:two.ttc " + second + '\n';
    EXPECT_EQ(fonts.read("fonts.dir"), lines);
    EXPECT_THAT(fields("fonts.scale"), ElementsAre(":1:two.ttc", "two.ttc"));
    const Fonts listed = list_installed();
    ASSERT_THAT(listed, SizeIs(1));
    EXPECT_EQ(listed[0]->get_xlfd_name(), first);
    ASSERT_TRUE(listed[0]->remove(modules));
    EXPECT_EQ(fonts.read("fonts.dir"), "0\n");
    EXPECT_EQ(fonts.read("fonts.scale"), "0\n");
    EXPECT_THAT(files(), IsEmpty());
}

/// Readers end a file's name at any blank of the C locale, and take ":1:" for an option.
TEST_F(TodaysNames, OfFilesAreThoseThatAnIndexCanHave) {
    const std::map<std::string, std::string> copies = {
        {"a.ttf", "a.ttf"},
        {"A.ttf", "A.ttf"},
        {"X.TTF", "X.ttf"},
        {":1:x.ttf", "_1:x.ttf"},
        {"a b\tc.ttf", "a_b_c.ttf"},
        {"a\rb\vc\fd.ttf", "a_b_c_d.ttf"},
        {"\x1b[31m.ttf", "_[31m.ttf"},
        {".hidden.ttf", ".hidden.ttf"},
        {"caf\xc3\xa9.ttf", "caf\xc3\xa9.ttf"},
        {"a;touch b.ttf", "a;touch_b.ttf"},
        {"-x.ttf", "-x.ttf"},
    };
    std::set<std::string> expected;
    int number = 0;
    for (const auto& [name, copy] : copies) {
        source.write(name, named("Family" + std::to_string(number++)));
        expected.insert(copy);
    }
    for (GWFont* font : list_source()) {
        const std::string name = (*font->get_font_file_list()->begin())->get_name();
        EXPECT_TRUE(install(*font)) << name;
        const std::vector<gw::Failure> remarks = font->take_remarks();
        EXPECT_EQ(remarks.empty(), copies.at(name) == name) << name;
        for (const gw::Failure& remark : remarks) EXPECT_EQ(remark.detail, copies.at(name));
    }
    EXPECT_EQ(files(), expected);
    EXPECT_EQ(fields("fonts.dir"), expected);
    EXPECT_EQ(fields("fonts.scale"), expected);
    for (GWFont* font : list_installed()) EXPECT_TRUE(font->remove(modules)) << font->get_hrn_name();
    EXPECT_THAT(files(), IsEmpty());
    EXPECT_EQ(fonts.read("fonts.dir"), "0\n");
    EXPECT_EQ(fonts.read("fonts.scale"), "0\n");
}

TEST_F(TodaysNames, OfTwoFilesThatBecomeOneAreGivenToOneFontOnly) {
    source.write("a b.ttf", named("Alpha"));
    source.write("a_b.ttf", named("Beta"));
    int installed = 0;
    for (GWFont* font : list_source()) {
        const gw::Outcome outcome = install(*font);
        if (outcome) {
            ++installed;
        } else {
            EXPECT_EQ(outcome.failure().reason, gw::Reason::FILE_OF_ANOTHER_FONT);
        }
    }
    EXPECT_EQ(installed, 1);
    EXPECT_THAT(files(), ElementsAre("a_b.ttf"));
    EXPECT_THAT(list_installed(), SizeIs(1));
}

TEST_F(TodaysNames, InTheirOwnDirectoryAreEntered) {
    source.write("a b.ttf", named("Alpha"));
    source.write("c.ttf", named("Beta"));
    for (GWFont* font : list_source()) EXPECT_TRUE(font->install(source.path(), modules));
    std::set<std::string> listed;
    for (const gw::IndexEntry& entry : gw::index_entries(source.read("fonts.dir")))
        listed.insert(entry.file_name);
    EXPECT_THAT(listed, ElementsAre("a_b.ttf", "c.ttf"));
    EXPECT_EQ(source.read("a_b.ttf"), source.read("a b.ttf"));
}

/// A bitmap font of a subdirectory was left out when the index above it lists a file of the same name.
TEST_F(TodaysNames, OfTheIndexAreThoseOfItsOwnDirectory) {
    const std::string bitmap = "/usr/share/fonts/X11/misc/6x13-ISO8859-1.pcf.gz";
    source.make_dir("sub");
    for (const char* name : {"a.pcf.gz", "sub/a.pcf.gz"})
        std::filesystem::copy_file(bitmap, source.file(name));
    source.write("fonts.dir", "1\na.pcf.gz -x-a-medium-r-normal--10-100-75-75-p-50-iso8859-1\n");
    std::set<std::string> families;
    for (GWFont* font : list_source(1)) families.insert(font->get_field(GWFont::TYPEFACE_NAME));
    EXPECT_THAT(families, ElementsAre("a", "fixed"));
}

TEST_F(TodaysNames, ThatAreTooLongAreLeftOut) {
    source.write("some.ttf", named(std::string(66, 's')));
    source.write("none.ttf", named(std::string(300, 'n')));
    for (GWFont* font : list_source()) {
        const gw::Outcome outcome = install(*font);
        const std::vector<gw::Failure> remarks = font->take_remarks();
        const bool has_some = std::string(font->get_xlfd_name()).find("-sss") != std::string::npos;
        ASSERT_EQ(static_cast<bool>(outcome), has_some);
        if (has_some) {
            ASSERT_THAT(remarks, SizeIs(1));
            EXPECT_EQ(remarks[0].reason, gw::Reason::NAMES_LEFT_OUT);
            EXPECT_EQ(remarks[0].detail, "2");
        } else {
            EXPECT_EQ(outcome.failure().reason, gw::Reason::NAME_UNFIT_FOR_INDEX);
        }
    }
    EXPECT_THAT(files(), ElementsAre("some.ttf"));
    EXPECT_THAT(fields("fonts.dir"), ElementsAre("some.ttf"));
}

/// What is known of a font of a source: its names, its family, its mark, and whether it may be installed.
std::string known_of(GWFont& font) {
    const gw::Outcome sound = gw::check_source_font(font);
    std::string known = font.get_hrn_name() + (font.get_conversion() ? " converted" : "");
    for (const gw::IndexName& name : font.get_index_names()) known += ' ' + name.xlfd;
    return known + (sound ? " good" : ' ' + sound.failure().text());
}

TEST_F(TodaysNames, AreTheSameForFontsThatAreJudgedWhenNamed) {
    const std::string whole = named("Alpha");
    source.write("whole.ttf", whole);
    source.write("cut.ttf", whole.substr(0, whole.size() - 40));
    source.write("noise.ttf", std::string(300, 'x'));
    source.write("empty.pfb", "");
    for (const char* font :
         {"X11/Type1/c0419bt_.pfb", "opentype/urw-base35/P052-Roman.otf", "X11/misc/6x13-ISO8859-1.pcf.gz"})
        std::filesystem::copy(std::string("/usr/share/fonts/") + font, source.path());
    std::vector<std::string> later;
    for (GWFont* font : list_source()) {
        EXPECT_TRUE(font->get_index_names().empty() || !font->is_checked());
        later.push_back(known_of(*font));
    }
    const gw::JudgedWhenNamed at_once;
    std::vector<std::string> now;
    int judged = 0;
    for (GWFont* font : list_source()) {
        judged += !font->get_index_names().empty() && font->is_checked() ? 1 : 0;
        now.push_back(known_of(*font));
    }
    EXPECT_EQ(now, later);
    EXPECT_GE(judged, 4) << "those with names";
    EXPECT_THAT(now, testing::Contains(HasSubstr("cut.ttf")));
}

/// They were installed under a name of fourteen hyphens.
TEST_F(TodaysNames, NeedTheTools) {
    source.write("a.ttf", named("Alpha"));
    const std::string path = std::getenv("PATH");
    ::setenv("PATH", "/nowhere", 1);
    const gw::test::HeardFailures heard;
    const Fonts found = list_source();
    ::setenv("PATH", path.c_str(), 1);
    EXPECT_THAT(heard.text(), HasSubstr("mkfontscale"));
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_TRUE(found[0]->get_obstacle());
    EXPECT_FALSE(install(*found[0]));
    EXPECT_THAT(files(), IsEmpty());
}

}  // namespace
