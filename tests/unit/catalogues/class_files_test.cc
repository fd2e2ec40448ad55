// SPDX-License-Identifier: MIT
//
// The mnemonics of the menus: each is a letter of its entry's text, and no two entries of a menu share one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "support/temp_dir.h"
#include "translations.h"

namespace {

using namespace gw::catalogue;
using gw::test::TempDir;

struct MenuText {
    const char* menu;
    const char* button;
    int number;  ///< in the catalogue
    int set = 1;
};
constexpr MenuText MENU_TEXTS[] = {
    {"menuBar", "_fonts_cascade", 3},
    {"menuBar", "_options_cascade", 4},
    {"menuBar", "_printer_cascade", 5},
    {"menuBar", "_tools_cascade", 1, 25},
    {"menuBar", "_help_cascade", 6},
    {"_fonts_pulldown", "_delete_button", 7},
    {"_fonts_pulldown", "_install_dlg_button", 8},
    {"_fonts_pulldown", "_attributes_dlg_button", 9},
    {"_fonts_pulldown", "_exit_button", 10},
    {"_options_pulldown", "_modify_fp_dlg_button", 11},
    {"_options_pulldown", "_fontsets_dlg_button", 12},
    {"_options_pulldown", "_properties_dlg_button", 13},
    {"_printer_pulldown", "_pr_install_dlg_button", 14},
    {"_printer_pulldown", "_pr_delete_dlg_button", 15},
    {"_printer_pulldown", "_pr_modify_fp_dlg_button", 16},
    {"_tools_pulldown", "_doctor_dlg_button", 2, 25},
    {"_tools_pulldown", "_deleted_fonts_dlg_button", 220, 25},
    {"_help_pulldown", "_help_dlg_button", 17},
    {"_help_pulldown", "_about_dlg_button", 18},
};

using Letters = std::map<std::string, std::string>;  // by "menu.button"

/// Adds the mnemonics of a resource file.
void read_letters(const std::string& file, Letters& letters) {
    std::istringstream in(TempDir::read_bytes(file));
    const std::string start = "Glyphward*";
    const std::string end = ".mnemonic: ";
    for (std::string line; std::getline(in, line);) {
        const std::size_t place = line.find(end);
        if (!line.starts_with(start) || place == std::string::npos) continue;
        letters[line.substr(start.size(), place - start.size())] = line.substr(place + end.size());
    }
}

/// The mnemonics of a language: the installation's class file with the language's own on top.
Letters letters_of(const std::string& language) {
    Letters letters;
    read_letters(GLYPHWARD_TREE "/data/app-defaults/Glyphward", letters);
    if (language != "english")
        read_letters(GLYPHWARD_TREE "/data/app-defaults/locale/keys." + language, letters);
    return letters;
}

std::string text_of(const Texts& texts, const MenuText& menu) {
    const auto found = std::find_if(texts.begin(), texts.end(), [&](const Entry& entry) {
        return entry.set == menu.set && entry.number == menu.number;
    });
    return found != texts.end() ? std::string(found->text) : "";
}

void check_letters(const std::string& language, const Texts& texts) {
    SCOPED_TRACE(language);
    const Letters letters = letters_of(language);
    EXPECT_EQ(letters.size(), std::size(MENU_TEXTS)) << "no other widget has one";
    std::set<std::string> taken;
    for (const MenuText& entry : MENU_TEXTS) {
        const auto found = letters.find(std::string(entry.menu) + '.' + entry.button);
        ASSERT_NE(found, letters.end()) << entry.button;
        const std::string& letter = found->second;
        ASSERT_EQ(letter.size(), 1U) << entry.button;
        const std::string text = text_of(texts, entry);
        EXPECT_NE(text.find(letter), std::string::npos) << letter << " is not in: " << text;
        const char small = static_cast<char>(letter[0] | 0x20);
        EXPECT_TRUE(taken.insert(entry.menu + std::string(1, small)).second) << letter << " twice: " << text;
    }
}

TEST(ClassFilesTest, MnemonicsAreInTheirTexts) {
    check_letters("english", english());
    for (const Language& language : languages()) check_letters(std::string(language.name), language.texts);
}

}  // namespace
