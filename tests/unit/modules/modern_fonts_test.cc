// SPDX-License-Identifier: MIT
//
// What the font policy changes for font files and indexes: each point with and without it; and today's Debian
// fonts with it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/gw_dir.h"
#include "model/gw_font.h"
#include "modules/gw_fsm_list.h"
#include "modules/gw_pcf_fsm.h"
#include "modules/gw_t1_fsm.h"
#include "support/temp_dir.h"
#include "support/under_policy.h"

#include "support/session.h"

namespace {

using gw::test::TempDir;
using gw::test::UnderPolicy;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

const std::string GLYPH_XLFD = "-misc-fixed-medium-r-normal--13-120-75-75-c-60-iso8859-1";

/// Owns a list of fonts during a scope.
class Fonts {
  public:
    Fonts() = default;
    ~Fonts() {
        for (GWFont* font : list) const gw::Ref<GWFont> last(font);
    }
    Fonts(const Fonts&) = delete;
    Fonts& operator=(const Fonts&) = delete;

    [[nodiscard]] Texts names() const {
        Texts all;
        for (GWFont* font : list) all.emplace_back(font->get_xlfd_name());
        return all;
    }
    GW_LIST<GWFont> list;
};

std::string policy_name(const testing::TestParamInfo<bool>& run) {
    return run.param ? "Modern" : "Plain";
}

class ModernFonts : public testing::TestWithParam<bool> {
  protected:
    ModernFonts() : policy_(GetParam()) {
        modules.append(&type1);
        modules.append(&pcf);
    }
    static bool modern() { return GetParam(); }

    void list_source(Fonts& out, const std::string& path) {
        GW_DIR source(path.c_str());
        modules.make_font_list(out.list, &source, 0);
    }
    void list_installed(Fonts& out, const std::string& path) {
        GW_FPE element(path.c_str());
        modules.make_installed_font_list(out.list, &element);
    }
    [[nodiscard]] Texts installed_names(const std::string& path) {
        Fonts fonts;
        list_installed(fonts, path);
        return fonts.names();
    }

    TempDir dir;
    TempDir destination;
    GW_T1_FSM type1;
    GW_PCF_FSM pcf;
    GW_FSM_LIST modules;

  private:
    UnderPolicy policy_;
};

INSTANTIATE_TEST_SUITE_P(Policy, ModernFonts, testing::Values(false, true), policy_name);

// --- copies

TEST_P(ModernFonts, AType1FileIsCopiedExactlyOrAsText) {
    const std::string binary_header("\x80\x01\x40\x00\x00\x00", 6);
    const std::string made = binary_header + "%!PS-AdobeFont-1.0: Tiny\n/FamilyName (Tiny) def\n" +
                             std::string(1100, ' ') + "\r\ncurrentfile eexec\n" +
                             std::string("\x80\x02\r\0\x01", 5);
    // What is no whole font is not installed with the policy.
    const std::string font =
        modern() ? TempDir::read_bytes("/usr/share/texmf/fonts/type1/public/lm/lmr10.pfb") : made;
    dir.write("tiny.pfb", font);
    Fonts fonts;
    list_source(fonts, dir.path());
    ASSERT_EQ(fonts.list.get_count(), 1);
    ASSERT_FALSE(font.empty());
    ASSERT_TRUE(fonts.list.get_elem_at_pos(1)->install(destination.path(), modules));

    const std::string copy = destination.read("tiny.pfb");
    if (modern()) {
        EXPECT_EQ(copy, font);
    } else {
        EXPECT_TRUE(copy.starts_with("%!PS-AdobeFont"));
        EXPECT_EQ(copy.find('\r'), std::string::npos);
    }
}

// --- gzipped bitmaps

TEST_P(ModernFonts, AGzippedBitmapOfAnIndexIsAFontOrNone) {
    dir.write("fonts.dir", "3\na.pcf -a\nb.pcf.Z -b\nc.pcf.gz " + GLYPH_XLFD + "\n");
    for (const char* name : {"a.pcf", "b.pcf.Z", "c.pcf.gz"}) dir.write(name, "x");
    const Texts expected = modern() ? Texts{"-a", "-b", GLYPH_XLFD} : Texts{"-a", "-b"};
    Fonts fonts;
    list_source(fonts, dir.path());
    EXPECT_EQ(fonts.names(), expected);
    EXPECT_EQ(installed_names(dir.path()), expected);

    GW_FPE element(dir.c_str());
    GW_FSPEC_LIST files;
    const gw::ElementsOwner files_owner(files);
    pcf.list_installed_font_file_names(files, &element);
    EXPECT_EQ(files.get_count(), static_cast<int>(expected.size()));
    GW_STRING_LIST names;
    const gw::ElementsOwner names_owner(names);
    pcf.list_installed_font_names(names, &element);
    EXPECT_EQ(names.get_count(), static_cast<int>(expected.size()));
}

TEST_P(ModernFonts, AGzippedFileHasTheExtensionCodeEightOrIsNoFontFile) {
    dir.write("a.pcf.gz", "x");
    dir.write("a.pcf.bz2", "x");
    GW_FSPEC_LIST files;
    const gw::ElementsOwner owner(files);
    GW_DIR source(dir.c_str());
    pcf.list_font_file_names(files, &source, 0);
    ASSERT_EQ(files.get_count(), modern() ? 1 : 0);
    if (!modern()) return;
    EXPECT_STREQ(files.get_elem_at_pos(1)->get_name(), "a.pcf.gz");
    EXPECT_EQ(files.get_elem_at_pos(1)->get_ext_type(), 8);
}

TEST_P(ModernFonts, ADirectoryOfGzippedBitmapsWithoutAnIndexIsIndexedOrEmpty) {
    std::filesystem::remove_all("/tmp/pcf");
    std::filesystem::copy_file("/usr/share/fonts/X11/misc/6x13-ISO8859-1.pcf.gz", dir.file("a.pcf.gz"));
    Fonts fonts;
    list_source(fonts, dir.path());
    ASSERT_EQ(fonts.list.get_count(), modern() ? 1 : 0);
    if (!modern()) return;
    GWFont& font = *fonts.list.get_elem_at_pos(1);
    EXPECT_STREQ(font.get_dir_name(), dir.c_str());
    EXPECT_STREQ(font.get_field(GWFont::TYPEFACE_NAME), "fixed");

    ASSERT_TRUE(font.install(destination.path(), modules));
    EXPECT_EQ(destination.read("a.pcf.gz"), dir.read("a.pcf.gz"));
    EXPECT_EQ(destination.read("fonts.dir"), std::string("1\na.pcf.gz ") + font.get_xlfd_name() + "\n");
    Fonts installed;
    list_installed(installed, destination.path());
    ASSERT_EQ(installed.list.get_count(), 1);
    EXPECT_TRUE(installed.list.get_elem_at_pos(1)->remove(modules));
    EXPECT_FALSE(destination.exists("a.pcf.gz"));
    EXPECT_EQ(destination.read("fonts.dir"), "0\n");
}

// --- header keys

TEST_P(ModernFonts, AHeaderKeyMayTouchItsValueOrIsUnknown) {
    dir.write("tiny.pfa",
              "%!PS-AdobeFont-1.0: Tiny\n/Notice(Made by Adobe)readonly def\n/FamilyName(Tiny Roman)readonly "
              "def\n/Weight(Bold)readonly def\n/ItalicAngle\t-12 def\n/isFixedPitch true def\n"
              "/FullName{/FamilyName (Other)}\ncurrentfile eexec\n");
    Fonts fonts;
    list_source(fonts, dir.path());
    ASSERT_EQ(fonts.list.get_count(), 1);
    GWFont& font = *fonts.list.get_elem_at_pos(1);
    EXPECT_STREQ(font.get_field(GWFont::SPACING), "m") << "a blank ends a key whatever the policy";
    EXPECT_STREQ(font.get_field(GWFont::TYPEFACE_NAME), modern() ? "Tiny Roman" : "");
    EXPECT_STREQ(font.get_field(GWFont::WEIGHT_NAME), modern() ? "Bold" : "");
    EXPECT_STREQ(font.get_field(GWFont::FOUNDRY), modern() ? "adobe" : "");
    EXPECT_STREQ(font.get_field(GWFont::SLANT), modern() ? "i" : "");
}

// --- a file under several encodings

class ListedTwice : public ModernFonts {
  protected:
    void SetUp() override {
        for (const char* name : {"a.pfb", "b.pfa", "c.pcf"}) dir.write(name, "%!");
        dir.write("fonts.dir",
                  "7\na.pfb -x-a-adobe-standard\na.pfb -x-a-iso8859-15\na.pfb -x-a-iso8859-1\n"
                  "b.pfa -x-b-koi8-r\nb.pfa -x-b-iso8859-2\nc.pcf -x-c-iso8859-1\nc.pcf -x-c-iso8859-2\n");
    }
};

INSTANTIATE_TEST_SUITE_P(Policy, ListedTwice, testing::Values(false, true), policy_name);

TEST_P(ListedTwice, IsOneOutlineUnderItsLatinNameOrElseItsFirst) {
    const Texts bitmaps = {"-x-c-iso8859-1", "-x-c-iso8859-2"};
    Texts expected = modern() ? Texts{"-x-a-iso8859-1", "-x-b-koi8-r"}
                              : Texts{"-x-a-adobe-standard", "-x-a-adobe-standard", "-x-a-adobe-standard",
                                      "-x-b-koi8-r", "-x-b-koi8-r"};
    expected.insert(expected.end(), bitmaps.begin(), bitmaps.end());
    EXPECT_EQ(installed_names(dir.path()), expected);
}

TEST_P(ListedTwice, GoesWithAllItsLinesOrWithOne) {
    Fonts fonts;
    list_installed(fonts, dir.path());
    EXPECT_TRUE(fonts.list.get_elem_at_pos(1)->remove(modules));
    EXPECT_FALSE(dir.exists("a.pfb"));
    const std::string others =
        "b.pfa -x-b-koi8-r\nb.pfa -x-b-iso8859-2\nc.pcf -x-c-iso8859-1\nc.pcf -x-c-iso8859-2\n";
    EXPECT_EQ(dir.read("fonts.dir"),
              modern() ? "4\n" + others : "6\na.pfb -x-a-iso8859-15\na.pfb -x-a-iso8859-1\n" + others);
}

TEST_P(ListedTwice, ABitmapGoesWithOneLineWhateverThePolicy) {
    Fonts fonts;
    list_installed(fonts, dir.path());
    EXPECT_TRUE(fonts.list.get_elem_at_pos(fonts.list.get_count())->remove(modules));
    const std::string index = dir.read("fonts.dir");
    EXPECT_TRUE(index.starts_with("6\n")) << index;
    EXPECT_TRUE(index.ends_with("\nc.pcf -x-c-iso8859-2\n")) << index;
}

// --- today's fonts on the server

class TodaysFonts : public ModernFonts {
  protected:
    /// Installs all fonts of a directory and returns their number.
    int install_all(const std::string& source) {
        Fonts fonts;
        list_source(fonts, source);
        int installed = 0;
        for (GWFont* font : fonts.list) {
            installed += font->install(destination.path(), modules) ? 1 : 0;
        }
        EXPECT_EQ(installed, fonts.list.get_count());
        return installed;
    }
    /// The files in the destination's index whose font the server cannot open in 18 points.
    [[nodiscard]] Texts unopened() {
        std::vector<char*> path{destination_path_.data()};
        XSetFontPath(session_.display(), path.data(), 1);
        GW_FPE element(destination.c_str());
        std::vector<GW_FONTDIR_FILE::Entry> entries;
        element.get_fontdir_file().get_entries(entries);
        Texts failed;
        const XErrorHandler before = XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
        for (const GW_FONTDIR_FILE::Entry& entry : entries) {
            std::string name = entry.font_name;
            if (const std::size_t sizes = name.find("--0-0-0-0-"); sizes != std::string::npos) {
                name.replace(sizes, 10, "--0-180-75-75-");
            }
            XFontStruct* font = XLoadQueryFont(session_.display(), name.c_str());
            if (font == nullptr) {
                failed.push_back(entry.file_name + ' ' + name);
            } else {
                XFreeFont(session_.display(), font);
            }
        }
        XSetErrorHandler(before);
        return failed;
    }

  private:
    gw::test::Session session_;
    std::string destination_path_ = destination.path();
};

INSTANTIATE_TEST_SUITE_P(Policy, TodaysFonts, testing::Values(false, true), policy_name);

TEST_P(TodaysFonts, OfTheInstallationOpenOnTheServerOrNoneDoes) {
    const int count = install_all("/usr/vantor/lib/X11/fonts/Type1/");
    ASSERT_GT(count, 40);
    if (modern()) {
        EXPECT_THAT(unopened(), IsEmpty());
    } else {
        EXPECT_EQ(static_cast<int>(unopened().size()), count);
    }
}

TEST_P(TodaysFonts, OfTheTypesettersHaveTheirNamesAndOpenOnTheServer) {
    const int count = install_all("/usr/share/texmf/fonts/type1/public/lm/");
    ASSERT_GT(count, 90);
    if (!modern()) {
        EXPECT_EQ(static_cast<int>(unopened().size()), count);
        return;
    }
    EXPECT_THAT(unopened(), IsEmpty());
    for (const std::string& name : installed_names(destination.path())) {
        EXPECT_NE(name.find("-lm"), std::string::npos) << "the family is in the name: " << name;
    }
}

}  // namespace
