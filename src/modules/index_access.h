// SPDX-License-Identifier: MIT
//
// What the type modules have in common in their dealings with a directory's index: entering a font, striking
// it out, and looking names up without reading the index once per font.
#pragma once

#include <initializer_list>
#include <string>
#include <unordered_map>

#include "core/failure.h"
#include "core/gw_string_list.h"
#include "fontpath/gw_fpe.h"
#include "model/gw_font.h"

namespace gw {

/// The index line of the font under `file_name`. A failure when a reader could not read it back (a blank or
/// newline in the file name, a line of 120 characters or more): the font must be left out before anything is
/// written.
Result<std::string> index_line(GWFont& font, const std::string& file_name);

/// Whether the font has a file and `index_line` a line for it.
Outcome can_be_indexed(GWFont& font);

/// Whether the element's index lists that file, and under none of its names as this font. A file that is
/// listed under several names belongs to the fonts of all of them.
bool is_file_of_another(const char* file_name, GWFont& font, GW_FPE& fpe);

/// Enters the font in the element's index under `file_name`.
Outcome enter_in_index(GWFont& font, GW_FPE& fpe, const std::string& file_name);

/// The font's first file, or null.
const GW_FILE_SPEC* first_file(const GWFont& font);

/// Strikes the font out of the index of its files' directory (one line, found by the first file that the
/// index knows; all lines of that file for an outline that is listed once) and removes its files. After a
/// failure the font stays as it was.
Outcome remove_files_and_entry(const GWFont& font);

/// Appends the specifications of the files that the element's index lists and that match one of `patterns`:
/// grouped by pattern, in index order within a group.
void list_indexed_files(GW_FSPEC_LIST& out, GW_FPE& fpe, std::initializer_list<const char*> patterns);

/// The font name of each file that the element's index lists; the first entry of a file counts. Where an
/// outline is listed once, its entry for ISO 8859-1 goes before that: every locale can draw it.
std::unordered_map<std::string, std::string> font_names_by_file(GW_FPE& fpe);

/// Appends the font names of the indexed files `files`, in their order; a file without an entry has none.
void append_font_names(GW_STRING_LIST& out, const GW_FSPEC_LIST& files, GW_FPE& fpe);

}  // namespace gw
