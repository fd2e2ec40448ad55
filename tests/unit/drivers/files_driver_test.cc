// SPDX-License-Identifier: MIT
//
// Fonts that were chosen file by file: which are listed, through which links, and what is found beside them.
#include "drivers/gw_files_driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "drivers/engine_globals.h"
#include "fontpath/gw_font_path.h"
#include "modules/font_modules.h"
#include "modules/gw_fsm_list.h"
#include "platform/scratch.h"
#include "support/heard_failures.h"
#include "support/temp_dir.h"
#include "support/type1_header.h"
#include "support/under_policy.h"

namespace {

using gw::test::TempDir;
using gw::test::type1_header;
using testing::ElementsAre;
using testing::UnorderedElementsAre;
using Texts = std::vector<std::string>;

std::string xlfd(const std::string& family) {
    return "-x-" + family + "-medium-r-normal--8-80-75-75-c-80-iso8859-1";
}

class FilesDriver : public testing::Test {
  protected:
    FilesDriver() {
        ::setenv("HOME", home.path().c_str(), 1);
        gw::append_font_modules(the_fsm_list);
        home.write("root/server/etc/VTconfig", "XDISPLAY.0.fontpath:\t/x/\n");
        the_font_path = new GWFontPath(home.file("root").c_str());
    }
    ~FilesDriver() override {
        the_fsm_list.clear();
        delete the_font_path;
        the_font_path = nullptr;
        gw::remove_scratch();
    }
    static Texts names(GWFilesDriver& driver) {
        GWHRNList list(0);
        driver.get_hrn_list(list);
        Texts all;
        for (const GWHRNElement* elem : list) all.emplace_back(elem->get_name());
        return all;
    }
    static Texts files_of_first(GWHRNList& list) {
        Texts all;
        const GWFont* font = list.get_elem_at_pos(1)->get_representative();
        for (const GW_FILE_SPEC* spec : *font->get_font_file_list()) all.emplace_back(spec->get_name());
        return all;
    }
    static std::string index() { return TempDir::read_bytes("/tmp/gw_dir/fonts.dir"); }

    TempDir home;
    TempDir fonts;
    TempDir others;
};

TEST_F(FilesDriver, OnlyTheChosenFilesAreListed) {
    for (const char* name : {"one", "two", "three"})
        fonts.write(std::string(name) + ".pfa", type1_header(name));
    GWFilesDriver driver({fonts.file("one.pfa"), fonts.file("three.pfa")});
    EXPECT_THAT(names(driver), UnorderedElementsAre("One Bold [Type-1]", "Three Bold [Type-1]"));
    EXPECT_NE(index().find("1/one.pfa "), std::string::npos) << index();
    EXPECT_EQ(index().find("two"), std::string::npos) << index();
}

TEST_F(FilesDriver, TheIndexOfTheirDirectoryNamesThem) {
    fonts.write("fonts.dir", "2\na.pcf " + xlfd("alpha") + "\nb.pcf " + xlfd("beta") + "\n");
    GWFilesDriver driver({fonts.file("b.pcf")});
    const Texts found = names(driver);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_TRUE(found[0].starts_with("Beta Medium [Bitmap]")) << found[0];
}

TEST_F(FilesDriver, FilesOfManyDirectoriesAreOneSource) {
    fonts.write("one.pfa", type1_header("One"));
    others.write("fonts.dir", "1\na.pcf " + xlfd("alpha") + "\n");
    others.write("unseen/three.pfa", type1_header("Three"));
    GWFilesDriver driver({fonts.file("one.pfa"), others.path(), others.file("a.pcf")});
    EXPECT_EQ(names(driver).size(), 2U);
    EXPECT_NE(index().find("1/one.pfa "), std::string::npos) << index();
    EXPECT_NE(index().find("2/a.pcf "), std::string::npos) << index();
    ASSERT_EQ(driver.get_places().size(), 2U);
    EXPECT_EQ(driver.get_places()[1].dir, others.path());
    EXPECT_FALSE(driver.get_places()[1].names) << "all of the directory was chosen";
    EXPECT_EQ(std::filesystem::read_symlink("/tmp/gw_dir/2"), others.path());
}

TEST_F(FilesDriver, MetricsAreFoundBesideTheFont) {
    fonts.write("one.pfb", type1_header("One"));
    fonts.write("one.afm", "StartFontMetrics 2.0\n");
    fonts.write("two.afm", "StartFontMetrics 2.0\n");
    GWFilesDriver driver({fonts.file("one.pfb")});
    GWHRNList list(0);
    driver.get_hrn_list(list);
    ASSERT_EQ(list.get_count(), 1);
    EXPECT_THAT(files_of_first(list), ElementsAre("one.pfb", "one.afm"));
    const GWFont* font = list.get_elem_at_pos(1)->get_representative();
    EXPECT_EQ(driver.original_path(**font->get_font_file_list()->begin()), fonts.file("one.pfb"));
}

TEST_F(FilesDriver, NamesAreTakenAsTheyAre) {
    const gw::test::UnderPolicy today(true);
    const Texts strange = {"a b.pfa", "100%25.pfa", "$(touch oops).pfa", "caf\xe9.pfa", "a\nb.pfa", "-x.pfa"};
    Texts paths;
    for (const std::string& name : strange) {
        fonts.write(name, type1_header("Odd"));
        paths.push_back(fonts.file(name));
    }
    GWFilesDriver driver(paths);
    GWHRNList list(0);
    driver.get_hrn_list(list);
    std::size_t found = 0;
    for (const GWHRNElement* elem : list) {
        for (const GWHRNElement::PointSize& size : elem->get_slots()) found += size.fonts.size();
    }
    EXPECT_EQ(found, strange.size());
}

TEST_F(FilesDriver, WhatHasGoneOrIsNoFontIsNotListed) {
    fonts.write("text.txt", "no font");
    GWFilesDriver driver({fonts.file("gone.pfa"), fonts.file("text.txt"), "/nonexistent/a.pfa", "/a.pfa"});
    EXPECT_TRUE(names(driver).empty());
}

TEST_F(FilesDriver, ALinkOfSomebodyElseIsNotFollowed) {
    if (::geteuid() != 0) GTEST_SKIP() << "only the superuser makes links of others";
    fonts.write("one.pfa", type1_header("One"));
    std::filesystem::create_directory_symlink(fonts.path(), others.file("link"));
    constexpr uid_t NOBODY = 65534;
    ASSERT_EQ(::lchown(others.file("link").c_str(), NOBODY, NOBODY), 0);
    GWFilesDriver driver({others.file("link/one.pfa")});
    gw::test::HeardFailures heard;
    EXPECT_TRUE(names(driver).empty());
    EXPECT_NE(heard.text().find("is not used"), std::string::npos) << heard.text();
}

}  // namespace
