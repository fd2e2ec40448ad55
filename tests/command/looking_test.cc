// SPDX-License-Identifier: MIT
//
// The commands that only look: list, verify, why, doctor.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "command/fonts_command.h"
#include "drivers/engine_globals.h"
#include "drivers/gw_alias_driver.h"
#include "drivers/gw_installed_fonts_driver.h"
#include "fontpath/gw_font_path.h"
#include "model/gw_hrn_list.h"
#include "modules/font_modules.h"
#include "platform/host_paths.h"
#include "support/under_policy.h"

namespace {

using gw::test::fonts_command;
using gw::test::Json;
using gw::test::Ran;
using gw::test::SANS;
using gw::test::TempDir;
using testing::Each;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// The rows of the window's list, in its order.
std::vector<std::string> rows_of_the_window() {
    const gw::test::UnderPolicy modern(true);
    GWFontPath path(gw::INSTALLATION_ROOT);
    the_font_path = &path;
    if (the_fsm_list.is_empty()) gw::append_font_modules(the_fsm_list);
    GWHRNList fonts(0);
    GWInstalledFontsDriver().get_hrn_list(fonts);
    GW_SORTED_LIST<GWAlias> aliases(0);
    GWAliasDriver().get_alias_list(aliases);
    std::vector<std::string> rows;
    for (const GWHRNElement* element : fonts) rows.emplace_back(element->get_name());
    for (const GWAlias* alias : aliases) rows.emplace_back(alias->get_hrn_name());
    gw::delete_elements(aliases);
    the_font_path = nullptr;
    return rows;
}

TEST(CommandList, HasTheRowsOfTheWindow) {
    const Ran ran = fonts_command({"list"});
    EXPECT_EQ(ran.status, 0);
    EXPECT_EQ(ran.err, "");
    const std::vector<std::string> rows = rows_of_the_window();
    ASSERT_GT(rows.size(), 100U);
    EXPECT_EQ(ran.lines(), rows);
}

TEST(CommandList, NeedsNoDisplay) {
    const gw::test::Variable no_display("DISPLAY", nullptr);
    const Ran ran = fonts_command({"list"});
    EXPECT_EQ(ran.status, 0);
    EXPECT_EQ(ran.err, "");
    EXPECT_GT(ran.lines().size(), 100U);
}

TEST(CommandList, IsFilteredByPatternsOfNamesXlfdsAndFiles) {
    for (const char* pattern :
         {"Courier Bold [[]Bitmap]", "courier bold [[]bitmap]",
          "-adobe-courier-bold-r-normal--12-120-75-75-m-70-iso8859-1", "courB12-ISO8859-1.pcf",
          "/usr/vantor/lib/X11/fonts/75dpi/courB12-ISO8859-1.pcf"}) {
        const Ran ran = fonts_command({"list", "--json", pattern});
        EXPECT_EQ(ran.status, 0) << pattern;
        ASSERT_EQ(ran.json()["fonts"].size(), 1U) << pattern;
        EXPECT_EQ(ran.json()["fonts"][0]["name"], "Courier Bold [Bitmap]");
    }
    EXPECT_GT(fonts_command({"list", "courier*"}).lines().size(), 4U);
}

TEST(CommandList, SaysWhichPatternMatchesNothing) {
    const Ran nothing = fonts_command({"list", "no such font"});
    EXPECT_EQ(nothing.status, 1);
    EXPECT_EQ(nothing.out, "");
    EXPECT_EQ(nothing.err, "glyphward-fonts: no such font: no font has this name\n");
}

TEST(CommandList, FiltersByFormatCharsetScopeAndOwner) {
    const Json type1 = fonts_command({"list", "--json", "--format", "type1"}).json()["fonts"];
    ASSERT_FALSE(type1.empty());
    for (const Json& font : type1) EXPECT_EQ(font["format"], "type1");
    const Json aliases = fonts_command({"list", "--json", "--format", "alias"}).json()["fonts"];
    ASSERT_FALSE(aliases.empty());
    for (const Json& font : aliases) EXPECT_TRUE(font.contains("font"));
    const Json russian = fonts_command({"list", "--json", "--charset", "KOI8-R"}).json()["fonts"];
    ASSERT_FALSE(russian.empty());
    for (const Json& font : russian) EXPECT_THAT(font["xlfds"].dump(), HasSubstr("koi8-r"));
    EXPECT_EQ(fonts_command({"list", "--owner", "nobody-at-all"}).out, "");
    const auto all = fonts_command({"list"}).lines().size();
    const auto mine = fonts_command({"list", "--scope", "mine"}).lines().size();
    const auto others = fonts_command({"list", "--scope", "everyone"}).lines().size();
    EXPECT_EQ(mine + others, all);
}

TEST(CommandList, EndsNamesWithANulWhereItIsAskedTo) {
    const Ran ran = fonts_command({"list", "-0", "courier*bold*"});
    EXPECT_EQ(std::count(ran.out.begin(), ran.out.end(), '\n'), 0);
    EXPECT_GT(std::count(ran.out.begin(), ran.out.end(), '\0'), 1);
    // What it writes, it reads.
    const Ran again = fonts_command({"list", "-0", "-"}, ran.out);
    EXPECT_EQ(again.status, 0) << again.err;
    EXPECT_EQ(again.out, ran.out);
}

TEST(CommandList, PrintsNothingWhenItIsToBeQuiet) {
    const Ran ran = fonts_command({"list", "--quiet", "courier*"});
    EXPECT_EQ(ran.status, 0);
    EXPECT_EQ(ran.out + ran.err, "");
}

TEST(CommandVerify, SaysOfEachFileWhetherItIsGood) {
    const TempDir dir;
    const std::string bytes = TempDir::read_bytes(SANS);
    const std::string cut = dir.write("a/cut.ttf", bytes.substr(0, bytes.size() / 2));
    const std::string text = dir.write("a/text.ttf", "this is no font");
    const std::string empty = dir.write("a/empty.bdf", "");
    const std::string odd = dir.write("a/line\nfeed\xFF.ttf", bytes);
    (void)dir.write("a/.glyphward/kept.ttf", "what was taken out is nobody's business");
    const Ran ran = fonts_command({"verify", dir.file("a"), SANS});
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(ran.err, "");
    ASSERT_EQ(ran.lines().size(), 5U) << ran.out;
    EXPECT_THAT(ran.out, HasSubstr(cut + ": damaged ("));
    EXPECT_THAT(ran.out, HasSubstr(text + ": no font ("));
    EXPECT_THAT(ran.out, HasSubstr(empty + ": empty ("));
    EXPECT_THAT(ran.out, HasSubstr("line\\x0Afeed\\xFF.ttf: good\n"));
    EXPECT_THAT(ran.out, HasSubstr(std::string(SANS) + ": good\n"));
    EXPECT_EQ(fonts_command({"verify", SANS}).status, 0);
}

TEST(CommandVerify, GivesBytesThatAreNoTextInHexadecimal) {
    const TempDir dir;
    const std::string odd = dir.write("\xFF.ttf", "x");
    const Json json = fonts_command({"verify", "--json", odd}).json();
    ASSERT_TRUE(json.is_object());
    const std::string bytes = json["files"][0]["file"]["bytes"];
    EXPECT_TRUE(bytes.ends_with("FF2E747466")) << bytes;
    EXPECT_EQ(json["schema"], 1);
    EXPECT_EQ(json["command"], "verify");
    EXPECT_EQ(json["status"], 1);
}

TEST(CommandVerify, FailsForWhatIsNotThere) {
    const TempDir dir;
    const Ran gone = fonts_command({"verify", dir.file("gone.ttf")});
    EXPECT_EQ(gone.status, 1);
    EXPECT_THAT(gone.out, HasSubstr("gone.ttf: unreadable ("));
    const Ran nothing = fonts_command({"verify", dir.path()});
    EXPECT_EQ(nothing.status, 1);
    EXPECT_THAT(nothing.err, HasSubstr("there are no font files in it"));
}

TEST(CommandWhy, TellsByItsStatusWhetherTheServerHasTheFont) {
    const Ran has = fonts_command({"why", "fixed"});
    EXPECT_EQ(has.status, 0) << has.err;
    EXPECT_THAT(has.out, HasSubstr("fixed"));
    const std::string name = "-nobody-nothing-medium-r-normal--12-120-75-75-p-70-iso8859-1";
    const Ran has_not = fonts_command({"why", name});
    EXPECT_EQ(has_not.status, 1);
    EXPECT_THAT(has_not.out, HasSubstr(name));
    // A message of a program, as it stands in a terminal.
    const Ran pasted = fonts_command({"why", "-"}, "xterm: cannot load font '" + name + "'\n");
    EXPECT_EQ(pasted.status, 1);
    EXPECT_THAT(pasted.out, HasSubstr(name));
}

TEST(CommandWhy, RefusesWhatHasNoNameOfAFont) {
    const Ran ran = fonts_command({"why", "-"}, "\n\n");
    EXPECT_EQ(ran.status, 2);
    EXPECT_THAT(ran.err, HasSubstr("no name of a font"));
}

TEST(CommandWhy, DoesTheCureOfANumber) {
    const gw::test::OwnHome home;
    const TempDir dir;
    std::filesystem::copy_file("/usr/vantor/lib/X11/fonts/75dpi/courB12-ISO8859-1.pcf", dir.file("own.pcf"));
    (void)dir.write("fonts.dir", "1\nown.pcf -own-nothing-medium-r-normal--12-120-75-75-m-70-iso8859-1\n");
    std::filesystem::permissions(dir.path(), std::filesystem::perms(0755));
    // The superuser has no font path of his own.
    const std::string whose = ::geteuid() == 0 ? "installation" : "me";
    ASSERT_EQ(fonts_command({"path", "add", "--of", whose, dir.path()}).status, 0);
    const std::string name = "-own-nothing-medium-r-normal--12-120-75-75-m-70-iso8859-1";
    const Json asked = fonts_command({"why", "--json", name}).json();
    ASSERT_TRUE(asked.is_object());
    ASSERT_FALSE(asked["answers"][0]["cures"].empty()) << asked.dump(1);
    EXPECT_EQ(asked["answers"][0]["cures"][0]["number"], 1);
    EXPECT_EQ(fonts_command({"why", "--cure", "1", "--dry-run", name}).status, 0);
    EXPECT_EQ(fonts_command({"why", name}).status, 1);
    const Ran cured = fonts_command({"why", "--cure", "1", name});
    EXPECT_EQ(cured.status, 0) << cured.err;
    EXPECT_EQ(fonts_command({"why", name}).status, 0);
    EXPECT_EQ(fonts_command({"why", "--cure", "99", name}).status, 1);
    EXPECT_EQ(fonts_command({"path", "remove", "--of", whose, dir.path()}).status, 0);
}

TEST(CommandDoctor, LooksAtThePathAndEveryFont) {
    const Ran ran = fonts_command({"doctor", "--json"});
    const Json json = ran.json();
    ASSERT_TRUE(json.is_object());
    EXPECT_EQ(json["faults"], Json::array());
    ASSERT_GE(json["answers"][0]["path"].size(), 4U);
    EXPECT_EQ(json["answers"][0]["path"][0]["place"], 1);
}

}  // namespace
