// SPDX-License-Identifier: MIT
//
// The alias file "fonts.alias" of a font directory, read only: each line gives a second name for a font.
#pragma once

#include <memory>
#include <string>

#include "core/gw_file.h"
#include "core/gw_string_list.h"

class GW_ALIAS_FILE : public GW_FILE {
  public:
    GW_ALIAS_FILE(const char* dir, int file_type);

    /// Splits a line into alias and font name, quotes and backslashes removed. Comment and keyword lines are
    /// split like any other.
    static void split_line(const char* line, std::string& alias, std::string& font_name);

    /// Appends the alias of every line of more than 3 characters, in file order. Returns 1, or -1 when the
    /// file cannot be opened.
    int get_alias_list(GW_STRING_LIST& aliases);
    /// The same, with each line's font name at the same position of `font_names`.
    int get_alias_font_name_list(GW_STRING_LIST& aliases, GW_STRING_LIST& font_names);
    /// The font name of the first line with that alias (case-sensitive), or null. Lines of 3 characters and
    /// fewer count here.
    std::unique_ptr<GW_STRING> get_font_name(const char* alias);
    /// The alias of the first line of more than 3 characters with that font name, or null. Reads lines in
    /// pieces of 119 characters, so a longer line is not found.
    std::unique_ptr<GW_STRING> get_alias_name(const char* font_name);
};
