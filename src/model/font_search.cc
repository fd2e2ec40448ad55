// SPDX-License-Identifier: MIT
#include "model/font_search.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "core/text.h"

namespace gw {

namespace {

SearchedFormat format_of(const GWFont& font) {
    switch (font.get_type()) {
        case GWFont::TRUETYPE_FONT:
            return SearchedFormat::TRUETYPE;
        case GWFont::OPENTYPE_FONT:
            return SearchedFormat::OPENTYPE;
        case GWFont::BITMAP_FONT:
            return SearchedFormat::BITMAP;
        default:
            return SearchedFormat::TYPE1;
    }
}

void add(SearchedRow& row, const char* text) {
    // A line feed ends each text, so that no word is found across two of them.
    if (text != nullptr) row.text += lower_case(text) + '\n';
}

void add_directory(SearchedRow& row, const char* directory) {
    if (directory == nullptr) return;
    if (std::find(row.directories.begin(), row.directories.end(), directory) != row.directories.end()) return;
    row.directories.emplace_back(directory);
    add(row, directory);
}

void add_font(SearchedRow& row, GWFont& font) {
    row.format = format_of(font);
    for (const IndexName& name : font.get_all_names()) add(row, name.xlfd.c_str());
    if (const GW_FSPEC_LIST* files = font.get_font_file_list(); files != nullptr) {
        for (const GW_FILE_SPEC* file : *files) add(row, file->get_name());
    }
    add_directory(row, font.get_dir_name());
}

}  // namespace

SearchedRow searched_row(const GWHRNElement& element) {
    SearchedRow row;
    add(row, element.get_name());
    for (const GWHRNElement::PointSize& size : element.get_slots()) {
        for (const Ref<GWFont>& font : size.fonts) add_font(row, *font);
    }
    return row;
}

SearchedRow searched_row(const GWAlias& alias) {
    SearchedRow row;
    row.format = SearchedFormat::ALIAS;
    for (const char* text :
         {alias.get_hrn_name(), alias.get_alias_name(), alias.get_font_name(), alias.get_font_hrn_name()})
        add(row, text);
    add_directory(row, alias.get_dir_name());
    return row;
}

FontSearch::FontSearch(std::string_view typed) {
    std::istringstream words(lower_case(typed));
    for (std::string word; words >> word;) words_.push_back(word);
    // The longest ones leave the fewest rows.
    std::sort(words_.begin(), words_.end(), [](const std::string& one, const std::string& other) {
        return std::pair(other.size(), one) < std::pair(one.size(), other);
    });
    words_.erase(std::unique(words_.begin(), words_.end()), words_.end());
}

bool FontSearch::finds(const SearchedRow& row) const {
    return std::all_of(words_.begin(), words_.end(),
                       [&row](const std::string& word) { return row.text.find(word) != std::string::npos; });
}

}  // namespace gw
