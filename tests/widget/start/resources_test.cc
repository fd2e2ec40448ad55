// SPDX-License-Identifier: MIT
//
// The built-in resources are complete, and the installed resource file has all of them too: when a file is
// found, none of the built-in resources is used.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "app/start/fallback_resources.h"

namespace {

using Resources = std::map<std::string, std::string>;

void add_line(Resources& resources, const std::string& line) {
    const std::size_t colon = line.find(':');
    ASSERT_NE(colon, std::string::npos) << line;
    const std::size_t value = line.find_first_not_of(" \t", colon + 1);
    const bool is_new =
        resources.emplace(line.substr(0, colon), value != std::string::npos ? line.substr(value) : "").second;
    EXPECT_TRUE(is_new) << "twice: " << line;
}

Resources built_in() {
    Resources result;
    for (String* line = fallback_res; *line != nullptr; ++line) add_line(result, *line);
    return result;
}

Resources file() {
    Resources result;
    std::ifstream in(GLYPHWARD_TREE "/data/app-defaults/Glyphward");
    EXPECT_TRUE(in.is_open());
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line[0] != '!') add_line(result, line);
    }
    return result;
}

/// Sizes that the file gives in font units, so that they grow with the interface's font; the built-in ones
/// are pixels.
const std::set<std::string> SIZES = {
    "mainWindow.width",
    "mainWindow*_sample_textfield.height",
    "mainWindow*_size_option_menu.width",
    "mainWindow*_size_option_menu.height",
    "mainWindow*_res_option_menu.width",
    "mainWindow*_res_option_menu.height",
    "install_dlg.width",
    "install_dlg*_sample_textfield.height",
    "progress_dlg.width",
    "progress_dlg.height",
    "help_dlg.width",
    "help_dlg.height",
    "attr_dlg*_font_xlfd_scroll.width",
    "attr_dlg*_font_xlfd_scroll.height",
    "attr_dlg*_font_loc_scroll.width",
    "attr_dlg*_font_loc_scroll.height",
    "attr_dlg*_alias_xlfd_scroll.width",
    "attr_dlg*_alias_xlfd_scroll.height",
    "attr_dlg*_alias_loc_scroll.width",
    "attr_dlg*_alias_loc_scroll.height",
};

TEST(ResourcesTest, TheInstalledFileSaysWhatIsBuiltInAndGivesSizesInFontUnits) {
    const std::string prefix = "Glyphward*";
    const Resources installed = file();
    std::set<std::string> in_font_units;
    for (const auto& [name, value] : built_in()) {
        const auto found = installed.find(name);
        if (found == installed.end()) {
            ADD_FAILURE() << "not in the file: " << name;
        } else if (found->second.ends_with("fu")) {
            in_font_units.insert(name.substr(prefix.size()));
        } else {
            EXPECT_EQ(found->second, value) << name;
        }
    }
    EXPECT_EQ(in_font_units, SIZES);
}

TEST(ResourcesTest, TheBuiltInListIsComplete) {
    static const char* const LIST_FONT = "-*-lucidatypewriter-medium-r-normal-sans-0-140-0-0-m-0-iso8859-1";
    static const Resources EXPECTED = {
        {"gw_fontset_support", "False"},
        {"gw_printer_support", "False"},
        {"menuBar._fonts_cascade.mnemonic", "F"},
        {"menuBar._options_cascade.mnemonic", "O"},
        {"menuBar._printer_cascade.mnemonic", "P"},
        {"menuBar._help_cascade.mnemonic", "H"},
        {"_fonts_pulldown._delete_button.mnemonic", "D"},
        {"_fonts_pulldown._install_dlg_button.mnemonic", "I"},
        {"_fonts_pulldown._attributes_dlg_button.mnemonic", "A"},
        {"_fonts_pulldown._exit_button.mnemonic", "E"},
        {"_options_pulldown._modify_fp_dlg_button.mnemonic", "M"},
        {"_options_pulldown._fontsets_dlg_button.mnemonic", "F"},
        {"_options_pulldown._properties_dlg_button.mnemonic", "S"},
        {"_printer_pulldown._pr_install_dlg_button.mnemonic", "I"},
        {"_printer_pulldown._pr_delete_dlg_button.mnemonic", "D"},
        {"_printer_pulldown._pr_modify_fp_dlg_button.mnemonic", "M"},
        {"_help_pulldown._help_dlg_button.mnemonic", "H"},
        {"_help_pulldown._about_dlg_button.mnemonic", "A"},
        {"mainWindow.width", "650"},
        {"mainWindow*_sample_textfield.height", "60"},
        {"mainWindow*_size_option_menu.width", "60"},
        {"mainWindow*_size_option_menu.height", "40"},
        {"mainWindow*_res_option_menu.width", "60"},
        {"mainWindow*_res_option_menu.height", "40"},
        {"install_dlg.width", "650"},
        {"install_dlg*_sample_textfield.height", "60"},
        {"progress_dlg.width", "370"},
        {"progress_dlg.height", "110"},
        {"help_dlg.width", "500"},
        {"help_dlg.height", "400"},
        {"attr_dlg*_font_xlfd_scroll.width", "200"},
        {"attr_dlg*_font_xlfd_scroll.height", "50"},
        {"attr_dlg*_font_loc_scroll.width", "200"},
        {"attr_dlg*_font_loc_scroll.height", "50"},
        {"attr_dlg*_alias_xlfd_scroll.width", "200"},
        {"attr_dlg*_alias_xlfd_scroll.height", "50"},
        {"attr_dlg*_alias_loc_scroll.width", "200"},
        {"attr_dlg*_alias_loc_scroll.height", "50"},
        {"mainWindow*_hrn_list*fontList", LIST_FONT},
        {"install_dlg*_hrn_list*fontList", LIST_FONT},
        {"modify_fp_dlg*_fpe_list*fontList", LIST_FONT},
        {"conflict_dlg*_conflicts_list*fontList", LIST_FONT},
        {"props_dlg*sample_textField*fontList", "-*-charter-medium-r-normal--*-180-75-75-p-*-iso8859-1"},
        {"init_dlg*fontList", "-*-charter-bold-r-normal--*-180-75-75-p-*-iso8859-1"},
    };
    Resources expected;
    for (const auto& [name, value] : EXPECTED) expected.emplace("Glyphward*" + name, value);
    EXPECT_EQ(built_in(), expected);
}

}  // namespace
