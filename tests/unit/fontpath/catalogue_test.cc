// SPDX-License-Identifier: MIT
//
// Catalogues: which directories their links stand for, and in which order. What a server makes of the same
// catalogues is compared in the oracle test.
#include "fontpath/catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "core/rights.h"
#include "fontpath/path_element.h"
#include "support/temp_dir.h"
#include "support/under_policy.h"

namespace {

namespace fs = std::filesystem;

using gw::font_directories;
using gw::identity_of_element;
using gw::test::TempDir;
using gw::test::UnderPolicy;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class CatalogueTest : public testing::Test {
  protected:
    CatalogueTest() {
        for (const char* name : {"a", "b", "c"}) dir.write(std::string(name) + "/fonts.dir", "0\n");
        fs::create_directory(catalogue);
    }
    void link(const std::string& name, const std::string& target) const {
        fs::create_symlink(target, catalogue + '/' + name);
    }
    [[nodiscard]] std::vector<std::string> names() const {
        std::vector<std::string> found;
        const auto links = gw::links_of_catalogue(catalogue);
        for (const gw::CatalogueLink& one : *links) found.push_back(one.name);
        return found;
    }
    /// What is listed of a font path that has the catalogue.
    [[nodiscard]] std::vector<std::string> listed(const std::vector<std::string>& elements) const {
        GW_LIST<GW_STRING> path;
        const gw::ElementsOwner owner(path);
        for (const std::string& text : elements) path.append(new GW_STRING(text.c_str()));
        (void)gw::find_silent(path);
        return gw::directories_to_list(path);
    }

    const TempDir dir;
    const std::string catalogue = fs::canonical(dir.path()).string() + "/cat";
    const std::string element = "catalogue:" + catalogue;
    const std::string home = fs::canonical(dir.path()).string() + '/';
};

TEST_F(CatalogueTest, LinksWithoutAPriorityComeLast) {
    link("last", "../a");
    link("second:unscaled:pri=20", "../b");
    link("first:pri=-3", "../c");
    link("third:pri=100", "../c");
    EXPECT_THAT(names(), ElementsAre("first:pri=-3", "second:unscaled:pri=20", "third:pri=100", "last"));
}

TEST_F(CatalogueTest, ALinkHasTheAttributesOfItsNameAndOfItsTarget) {
    link("x:unscaled:pri=1", home + "a");
    link("y:pri=2", home + "b:unscaled");
    const auto links = *gw::links_of_catalogue(catalogue);
    ASSERT_THAT(links, SizeIs(2));
    EXPECT_EQ(links[0].directory, home + "a");
    EXPECT_EQ(links[0].attributes, ":unscaled:pri=1");
    EXPECT_EQ(links[1].directory, home + "b");
    EXPECT_EQ(links[1].attributes, ":unscaled:pri=2");
    EXPECT_EQ(links[1].target, home + "b:unscaled");
}

TEST_F(CatalogueTest, RelativeTargetsBeginInTheCatalogue) {
    link("1:pri=1", "../a");
    link("2:pri=2", ".././b");
    link("3:pri=3", "./../c/");
    link("4:pri=4", "inside");
    link("5:pri=5", "..");
    EXPECT_THAT(font_directories(element),
                ElementsAre(home + "a", home + "b", home + "c/", catalogue + "/inside", home));
}

TEST_F(CatalogueTest, OnlyLinksCount) {
    fs::create_directory(catalogue + "/directory");
    dir.write("cat/fonts.dir", "0\n");
    dir.write("cat/file", "text");
    EXPECT_THAT(names(), IsEmpty());
    link(".hidden", home + "a");
    link("with blank", home + "b");
    EXPECT_THAT(names(), testing::UnorderedElementsAre(".hidden", "with blank"));
}

TEST_F(CatalogueTest, OneThatIsNotThereHasNoDirectories) {
    EXPECT_THAT(font_directories("catalogue:" + home + "none"), IsEmpty());
    EXPECT_THAT(font_directories("catalogue:" + home + "a/fonts.dir"), IsEmpty());
    EXPECT_THAT(font_directories("catalogue:"), IsEmpty());
    EXPECT_THAT(font_directories("catalogue:cat"), IsEmpty());
    EXPECT_EQ(gw::links_of_catalogue(home + "none").failure().error, ENOENT);
    if (gw::runs_as_superuser()) return;
    link("a", home + "a");
    ::chmod(catalogue.c_str(), 0);
    EXPECT_EQ(gw::links_of_catalogue(catalogue).failure().error, EACCES);
    EXPECT_THAT(font_directories(element), IsEmpty());
    ::chmod(catalogue.c_str(), 0755);
}

TEST_F(CatalogueTest, ItHasNoAttributes) {
    link("a", home + "a");
    EXPECT_EQ(gw::place_of_element(element + ":unscaled"), catalogue + ":unscaled");
    EXPECT_THAT(font_directories(element + ":unscaled"), IsEmpty());
    EXPECT_THAT(font_directories(element + '/'), ElementsAre(home + "a"));
}

TEST_F(CatalogueTest, ItIsTheSameByEveryPath) {
    fs::create_directory_symlink(catalogue, home + "way");
    for (const char* path : {"cat/", "way", "a/../cat"})
        EXPECT_EQ(identity_of_element("catalogue:" + home + path), identity_of_element(element)) << path;
    EXPECT_NE(identity_of_element(catalogue), identity_of_element(element));
    EXPECT_NE(identity_of_element("catalogue:" + home + "a"), identity_of_element(element));
    EXPECT_NE(identity_of_element("catalogue:/none"), identity_of_element("/nonecatalogue:"));
    EXPECT_EQ(identity_of_element("catalogue:/none/"), identity_of_element("catalogue:/none"));
}

TEST_F(CatalogueTest, ItStandsForWhatIsBehindItsLinks) {
    link("a:unscaled:pri=10", "../a");
    fs::create_directory_symlink(home + "a", home + "way");
    EXPECT_TRUE(gw::stands_for(element, home + "a/"));
    EXPECT_TRUE(gw::stands_for(element, home + "way"));
    EXPECT_FALSE(gw::stands_for(element, home + "b"));
    EXPECT_FALSE(gw::stands_for(element, catalogue));
    EXPECT_TRUE(gw::stands_for(home + "a:unscaled", home + "way/"));
    EXPECT_FALSE(gw::stands_for("built-ins", home + "a"));
}

TEST_F(CatalogueTest, ItsDirectoriesAreListedInItsPlaceAndEachOnce) {
    link("b:pri=1", "../b");
    link("a:pri=2", "../a/");
    link("again", home + "b");
    link("dead", home + "none");
    link("file", home + "a/fonts.dir");
    link("loop", "loop");
    link("itself", "../cat");
    const UnderPolicy modern(true);
    EXPECT_THAT(listed({home + "c", element, home + "a"}),
                ElementsAre(home + "c", home + "b", home + "a/", catalogue));
    EXPECT_THAT(listed({home + "a", element}), ElementsAre(home + "a", home + "b", catalogue));
}

TEST_F(CatalogueTest, OnlyWithTodaysFonts) {
    link("b:pri=1", "../b");
    EXPECT_THAT(listed({home + "c", element}), ElementsAre(home + "c"));
}

TEST_F(CatalogueTest, ThousandsOfLinks) {
    for (int i = 0; i < 5000; ++i) link("link" + std::to_string(i), i % 2 == 0 ? "../a" : "../b");
    EXPECT_THAT(names(), SizeIs(5000));
    const UnderPolicy modern(true);
    EXPECT_THAT(listed({element}), testing::UnorderedElementsAre(home + "a", home + "b"));
}

}  // namespace
