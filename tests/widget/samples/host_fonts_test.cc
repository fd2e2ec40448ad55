// SPDX-License-Identifier: MIT
//
// The machine's own fonts, unmodified, with the font policy of an installation: their names in the list, and
// a sample of every one. Each test runs in a process of its own, in which the program lists only these fonts.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "app/kit/toolkit.h"
#include "app/samples/installed_list.h"
#include "app/samples/sample_text.h"
#include "core/font_policy.h"
#include "support/temp_dir.h"

#include "widget/dialogs_test_support.h"

namespace {

using namespace gw::test;

// The result of the process, as its exit status.
enum Verdict { GOOD = 0, FEW_FONTS = 2, NAME_TOO_OFTEN, COMMENT_AS_ALIAS, NO_SAMPLE, NO_INK };

constexpr const char* HOST_DIRECTORIES[] = {"/usr/share/fonts/X11/misc/", "/usr/share/fonts/X11/75dpi/",
                                            "/usr/share/fonts/X11/100dpi/", "/usr/share/fonts/X11/Type1/"};
constexpr int MOST_OF_A_NAME = 1;

/// Starts the program; it and the server use only the machine's font directories.
void start_on_host_fonts() {
    start_at_home();
    std::string joined;
    std::vector<char*> elements;
    std::vector<std::string> path(std::begin(HOST_DIRECTORIES), std::end(HOST_DIRECTORIES));
    for (std::string& element : path) {
        joined += (joined.empty() ? "" : ",") + element;
        elements.push_back(element.data());
    }
    XSetFontPath(display, elements.data(), static_cast<int>(elements.size()));
    const TempDir installation;
    installation.write("server/etc/VTconfig", "XDISPLAY.0.fontpath:\t" + joined + "\n");
    delete the_font_path;
    the_font_path = new GWFontPath(installation.path().substr(0, installation.path().size() - 1).c_str());
    fill_program_lists();
    update_wi_installed_hrn_list();
}

[[noreturn]] void end(Verdict verdict, const std::string& about = "") {
    std::fprintf(stderr, "%s\n", about.c_str());
    std::_Exit(verdict);
}

void look_at_names() {
    if (the_installed_hrn_count < 100 || the_alias_count < 20) end(FEW_FONTS);
    std::map<std::string, int> names;
    for (const GWHRNElement* elem : the_installed_hrn_list) ++names[elem->get_name()];
    for (const auto& [name, times] : names) {
        if (times > MOST_OF_A_NAME) end(NAME_TOO_OFTEN, name + ": " + std::to_string(times));
    }
    for (const GWAlias* alias : the_alias_list) {
        if (alias->get_alias_name()[0] == '!') end(COMMENT_AS_ALIAS, alias->get_alias_name());
    }
}

/// Whether the single-byte font has a glyph of three pixels or more for the character.
bool has_glyph(const XFontStruct& font, char c) {
    const auto code = static_cast<unsigned char>(c);
    if (font.min_byte1 != 0 || code < font.min_char_or_byte2 || code > font.max_char_or_byte2) return false;
    const XCharStruct& glyph =
        font.per_char != nullptr ? font.per_char[code - font.min_char_or_byte2] : font.max_bounds;
    return glyph.rbearing - glyph.lbearing > 2;
}

/// Whether the server's font has the sample's characters: a few have Kanji, ligatures or pictures instead.
bool has_sample(const GWHRNElement& elem) {
    GWFont* font = elem.get_representative();
    if (font->get_type() != GWFont::BITMAP_FONT) return true;
    XFontStruct* loaded = XLoadQueryFont(display, font->get_xlfd_name());
    if (loaded == nullptr) end(NO_SAMPLE, elem.get_name());
    const bool has_all = std::all_of(sample_text.begin(), sample_text.end(),
                                     [&](char c) { return c == ' ' || has_glyph(*loaded, c); });
    XFreeFont(display, loaded);
    return has_all;
}

/// Checks the samples of all fonts, or of one font of each charset: in some locales opening a font is slow.
void look_at_samples(bool of_every_font) {
    int position = 0;
    int shown = 0;
    std::set<std::string> charsets;
    for (const GWHRNElement* elem : the_installed_hrn_list) {
        ++position;
        if (!has_sample(*elem)) continue;
        const bool is_new = charsets.insert(elem->get_representative()->get_charset_hrn_name()).second;
        if (!of_every_font && !is_new) continue;
        select(wi_hrn_list, {position});
        pump();
        if (shown_text(wi_installed_sample_textfield) != sample_text) end(NO_SAMPLE, elem->get_name());
        if (ink(wi_installed_sample_textfield) < 50) end(NO_INK, elem->get_name());
        ++shown;
    }
    if (shown < (of_every_font ? 100 : 20)) end(FEW_FONTS, std::to_string(shown));
}

class HostFonts : public testing::TestWithParam<const char*> {};

TEST_P(HostFonts, AreListedUnderNamesThatTellThemApartAndDrawn) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            ::setenv("LC_ALL", GetParam(), 1);
            start_on_host_fonts();
            look_at_names();
            look_at_samples(GetParam() == std::string("C"));
            std::_Exit(GOOD);
        },
        testing::ExitedWithCode(GOOD), "");
}

INSTANTIATE_TEST_SUITE_P(Locales, HostFonts, testing::Values("C", "de_DE.UTF-8"));

TEST(HostFontsWithoutThePolicy, AreNoBitmapsButCommentsThatAreAliases) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            start_program({"-xrm", "Glyphward*gw_modern_fonts: False"});
            start_on_host_fonts();
            for (const GWHRNElement* elem : the_installed_hrn_list) {
                if (elem->get_representative()->get_type() == GWFont::BITMAP_FONT) std::_Exit(FEW_FONTS);
            }
            int comments = 0;
            for (const GWAlias* alias : the_alias_list) comments += alias->get_alias_name()[0] == '!' ? 1 : 0;
            std::_Exit(comments > 0 ? GOOD : COMMENT_AS_ALIAS);
        },
        testing::ExitedWithCode(GOOD), "")
        << "there are no .pcf files";
}

}  // namespace
