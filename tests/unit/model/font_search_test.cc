// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "model/font_search.h"

namespace {

using gw::FontSearch;
using gw::Ref;
using gw::SearchedFormat;
using gw::SearchedRow;

constexpr const char* BOLD_12 = "-Adobe-Helvetica-Bold-R-Normal--12-120-75-75-P-70-ISO8859-1";
constexpr const char* BOLD_18 = "-Adobe-Helvetica-Bold-R-Normal--18-180-75-75-P-103-ISO8859-1";

GWFont* bitmap(const char* name, const char* file, const char* dir) {
    auto* font = new GWFont(GWFont::BITMAP_FONT);
    font->set_xlfd_name(name);
    font->set_dir_name(dir);
    auto files = std::make_unique<GW_FSPEC_LIST>();
    files->append(new GW_FILE_SPEC(file, dir, gw::FILE_TYPE_REGULAR, gw::EXT_PCF));
    font->set_font_file_list(std::move(files));
    return font;
}

SearchedRow helvetica() {
    const Ref<GWHRNElement> element(new GWHRNElement(bitmap(BOLD_12, "helvB12.pcf.gz", "/fonts/75dpi/")));
    element->add_font(bitmap(BOLD_18, "helvB18.pcf.gz", "/fonts/75dpi/"), 0);
    return gw::searched_row(*element);
}

TEST(FontSearchTest, AllWordsMustBeThereInAnyOrderAndCase) {
    const SearchedRow row = helvetica();
    for (const char* typed : {"helv bold 12 8859-1", "8859-1 HELV", "  Bold\t", "bitmap", "adobe",
                              "helvb18.pcf", "/fonts/75dpi", "18-180", "bold bold"})
        EXPECT_TRUE(FontSearch(typed).finds(row)) << typed;
    for (const char* typed : {"helv italic", "14-140", "times", "helvb12 courier"})
        EXPECT_FALSE(FontSearch(typed).finds(row)) << typed;
}

TEST(FontSearchTest, NothingTypedFindsAll) {
    EXPECT_TRUE(FontSearch("").is_empty());
    EXPECT_TRUE(FontSearch(" \t ").is_empty());
    EXPECT_TRUE(FontSearch(" ").finds(helvetica()));
    EXPECT_FALSE(FontSearch("x").is_empty());
}

TEST(FontSearchTest, CharactersOfPatternsAreCharacters) {
    for (const char* typed : {".*", "h.lv", "[a-z]", "helv*", "(helv", "\\", "^helv", "bold$", "?"})
        EXPECT_FALSE(FontSearch(typed).finds(helvetica())) << typed;
}

TEST(FontSearchTest, NoWordIsFoundAcrossTwoNames) {
    EXPECT_FALSE(FontSearch("iso8859-1-adobe").finds(helvetica()));
    EXPECT_FALSE(FontSearch("iso8859-1helvb12").finds(helvetica()));
}

TEST(FontSearchTest, AVeryLongSearchFindsNothing) {
    EXPECT_FALSE(FontSearch(std::string(10000, 'h')).finds(helvetica()));
    std::string words;
    for (int i = 0; i < 2000; ++i) words += "helv ";
    EXPECT_TRUE(FontSearch(words).finds(helvetica()));
}

TEST(FontSearchTest, ARowSaysItsFormatAndItsDirectoriesOnce) {
    const SearchedRow row = helvetica();
    EXPECT_EQ(row.format, SearchedFormat::BITMAP);
    EXPECT_EQ(row.directories, std::vector<std::string>{"/fonts/75dpi/"});
}

TEST(FontSearchTest, AnAliasIsFoundByItsNameAndByItsFonts) {
    const SearchedRow row = gw::searched_row(GWAlias("variable", BOLD_12, "/fonts/misc/"));
    EXPECT_EQ(row.format, SearchedFormat::ALIAS);
    for (const char* typed : {"variable", "helvetica", "8859-1", "/fonts/misc"})
        EXPECT_TRUE(FontSearch(typed).finds(row)) << typed;
    EXPECT_FALSE(FontSearch("fixed").finds(row));
}

}  // namespace
