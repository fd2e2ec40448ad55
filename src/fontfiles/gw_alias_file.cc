// SPDX-License-Identifier: MIT
#include "fontfiles/gw_alias_file.h"

#include <algorithm>
#include <string_view>

#include "core/font_policy.h"
#include "platform/host_paths.h"

namespace {

constexpr int LISTING_BUFFER = 510;
// Kept: a long alias line is not found by its font name.
constexpr int ALIAS_LOOKUP_BUFFER = 120;
// Kept: a line of three characters is found but not listed.
constexpr std::size_t SHORTEST_ALIAS_LINE = 4;  // its newline included
constexpr std::string_view BLANKS = " \t";

/// Removes an opening double quote together with the closing one. Kept: every backslash of an alias line is
/// removed.
std::string cleaned(std::string_view field) {
    if (field.starts_with('"')) {
        field.remove_prefix(1);
        if (field.ends_with('"')) field.remove_suffix(1);
    }
    std::string text(field);
    std::erase(text, '\\');
    return text;
}

std::string_view without_leading_blanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(BLANKS), text.size()));
}

// Kept: comments in an alias file are aliases.
bool is_comment(std::string_view line) {
    return gw::font_policy().knows_alias_comments() && without_leading_blanks(line).starts_with('!');
}

/// Calls `take(alias, font_name)` for each line of at least `shortest` bytes, until it answers false.
template <class Take>
void for_each_line(GW_FILE& file, int buffer_size, std::size_t shortest, Take take) {
    char line[LISTING_BUFFER];
    bool comment_goes_on = false;
    while (file.get_line(line, buffer_size) != nullptr) {
        const std::string_view piece(line);
        const bool comment = comment_goes_on || is_comment(piece);
        comment_goes_on = comment && !piece.ends_with('\n');  // a long line is read in pieces
        if (comment || piece.size() < shortest) continue;
        std::string alias;
        std::string font_name;
        GW_ALIAS_FILE::split_line(line, alias, font_name);
        if (!take(alias, font_name)) break;
    }
    file.close();
}

}  // namespace

GW_ALIAS_FILE::GW_ALIAS_FILE(const char* alias_dir, int type)
    : GW_FILE(gw::ALIAS_FILE_NAME, alias_dir, type) {}

void GW_ALIAS_FILE::split_line(const char* line, std::string& alias, std::string& font_name) {
    std::string_view rest(line);
    rest = rest.substr(0, rest.find('\n'));
    if (rest.starts_with('"')) {
        const std::size_t closing = rest.find('"', 1);
        alias = cleaned(rest.substr(1, closing == std::string_view::npos ? closing : closing - 1));
        rest = closing == std::string_view::npos ? std::string_view() : rest.substr(closing + 1);
        font_name = cleaned(without_leading_blanks(rest));
        return;
    }
    rest = without_leading_blanks(rest);
    const std::size_t separator = rest.find_first_of(BLANKS);
    alias = cleaned(rest.substr(0, separator));
    font_name = separator == std::string_view::npos ? std::string() : cleaned(rest.substr(separator + 1));
}

int GW_ALIAS_FILE::get_alias_list(GW_STRING_LIST& aliases) {
    if (open("r") == 0) return -1;
    for_each_line(*this, LISTING_BUFFER, SHORTEST_ALIAS_LINE,
                  [&](const std::string& alias, const std::string&) {
                      return aliases.append(new GW_STRING(alias.c_str())) != 0;
                  });
    return 1;
}

int GW_ALIAS_FILE::get_alias_font_name_list(GW_STRING_LIST& aliases, GW_STRING_LIST& font_names) {
    if (open("r") == 0) return -1;
    for_each_line(*this, LISTING_BUFFER, SHORTEST_ALIAS_LINE,
                  [&](const std::string& alias, const std::string& font_name) {
                      aliases.append(new GW_STRING(alias.c_str()));
                      return font_names.append(new GW_STRING(font_name.c_str())) != 0;
                  });
    return 1;
}

std::unique_ptr<GW_STRING> GW_ALIAS_FILE::get_font_name(const char* wanted_alias) {
    std::unique_ptr<GW_STRING> found;
    if (open("r") == 0) return found;
    for_each_line(*this, LISTING_BUFFER, 0, [&](const std::string& alias, const std::string& font_name) {
        if (alias == wanted_alias) found = std::make_unique<GW_STRING>(font_name.c_str());
        return found == nullptr;
    });
    return found;
}

std::unique_ptr<GW_STRING> GW_ALIAS_FILE::get_alias_name(const char* wanted_name) {
    std::unique_ptr<GW_STRING> found;
    if (open("r") == 0) return found;
    for_each_line(*this, ALIAS_LOOKUP_BUFFER, SHORTEST_ALIAS_LINE,
                  [&](const std::string& alias, const std::string& font_name) {
                      if (font_name == wanted_name) found = std::make_unique<GW_STRING>(alias.c_str());
                      return found == nullptr;
                  });
    return found;
}
