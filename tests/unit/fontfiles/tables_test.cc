// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "fontfiles/gw_foundry_file.h"
#include "fontfiles/gw_upr_file.h"
#include "support/temp_dir.h"

namespace {

TEST(FoundryTable, ListsTwelveNamesInOrder) {
    GW_STRING_LIST names;
    const gw::ElementsOwner owner(names);
    EXPECT_EQ(GW_FOUNDRY_FILE().get_foundry_name_list(names), 1);
    ASSERT_EQ(names.get_count(), 12);
    EXPECT_STREQ(names.get_elem_at_pos(1)->get_str(), "Adobe");
    EXPECT_STREQ(names.get_elem_at_pos(2)->get_str(), "Linotype AG");
    EXPECT_STREQ(names.get_elem_at_pos(5)->get_str(), "daewoo");
    EXPECT_STREQ(names.get_elem_at_pos(12)->get_str(), "URW");
}

TEST(FoundryTable, TranslatesBothWays) {
    const GW_FOUNDRY_FILE table;
    EXPECT_STREQ(table.get_foundry_symbol("Linotype")->get_str(), "linotype");
    EXPECT_STREQ(table.get_foundry_symbol("Linotype AG")->get_str(), "linotype");
    EXPECT_STREQ(table.get_foundry_name("linotype")->get_str(), "Linotype AG");
    EXPECT_STREQ(table.get_foundry_name("urw")->get_str(), "URW");
    EXPECT_EQ(table.get_foundry_symbol("adobe"), nullptr);
    EXPECT_EQ(table.get_foundry_name("Adobe"), nullptr);
}

TEST(FoundryTable, RecognisesTheFirstRowThatALineMentions) {
    const struct {
        const char* line;
        const char* symbol;
    } cases[] = {
        {"Notice (Copyright 1990 Linotype AG)", "linotype"},
        {"ITC Stone is a trademark; Adobe Systems", "adobe"},
        {"a DECADENT face", "dec"},
        {"by URW Software", "urw"},
        {"adobe in lower case", ""},
        {"", ""},
    };
    const GW_FOUNDRY_FILE table;
    for (const auto& c : cases) {
        std::string symbol = "before";
        const bool known = *c.symbol != '\0';
        EXPECT_EQ(table.get_foundry_symbol_from_line(symbol, c.line), known) << c.line;
        EXPECT_EQ(symbol, known ? c.symbol : "before") << c.line;
    }
}

TEST(FoundryTable, SplitsQuotedAndPlainLines) {
    const struct {
        const char* line;
        const char* name;
        const char* symbol;
    } cases[] = {
        {"'Linotype AG'\t'linotype'", "Linotype AG", "linotype"},
        {"'Adobe'\t\t'adobe'\n", "Adobe", "adobe"},
        {"Plain symbol", "Plain", "symbol"},
        {"'Open", "Open", ""},
        {"Back\\slash sym\\bol", "Backslash", "symbol"},
        {"", "", ""},
    };
    for (const auto& c : cases) {
        std::string name;
        std::string symbol;
        GW_FOUNDRY_FILE::split_line(c.line, name, symbol);
        EXPECT_EQ(name, c.name) << c.line;
        EXPECT_EQ(symbol, c.symbol) << c.line;
    }
}

TEST(FoundryTable, CleansAField) {
    for (const auto& [before, after] : {std::pair<const char*, const char*>{"'quoted'", "quoted"},
                                        {"'open", "open"},
                                        {"back\\slash", "backslash"},
                                        {"it's", "it's"},
                                        {"'", ""}}) {
        std::string text = before;
        EXPECT_EQ(remove_sp_char(text), after) << before;
    }
}

TEST(UprFile, ClassifiesHeadersByTheirKeywordAlone) {
    const GW_UPR_FILE file("glyphwd.upr", "/x", 0);
    const struct {
        const char* line;
        int section;
    } cases[] = {
        {"FontOutline\n", 0},
        {"FontPrebuilt\n", 1},
        {"FontAFM\n", 2},
        {"FontBDF\n", 3},
        {"FontFamily\n", 4},
        {"Form\n", 5},
        {"Pattern\n", 6},
        {"Encoding\n", 7},
        {"ProcSet\n", 8},
        {"mkpsresPrivate\n", 9},
        {"fontafm\n", 10},
        {"FontAFM \n", 10},
        {"Times-Roman=Times-Roman.afm\n", 10},
        {"\n", 10},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(GW_UPR_FILE("glyphwd.upr", "/x", 0).get_line_res_type(c.line), c.section) << c.line;
    }
    for (int section = 0; section <= 9; ++section) EXPECT_EQ(file.get_context(section), section);
}

TEST(UprFile, ReadsTheOpenFileToItsEnd) {
    const gw::test::TempDir dir;
    dir.write("glyphwd.upr", "PS-Resources-1.0\nFontAFM\n.\n" + std::string(400, 'x') + "\n.\n");
    GW_UPR_FILE file("glyphwd.upr", dir.c_str(), 0);
    ASSERT_EQ(file.open("r"), 1);
    EXPECT_EQ(file.put_res_data_line(GW_UPR_FILE::FONT_AFM, "x=y"), 1);
    char rest[8];
    EXPECT_EQ(file.get_line(rest, sizeof rest), nullptr);
}

}  // namespace
