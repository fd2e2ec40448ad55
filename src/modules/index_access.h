// SPDX-License-Identifier: MIT
//
// What the type modules do with a directory's index: entering a font, removing it, and looking up names
// without reading the index again for each font.
#pragma once

#include <functional>
#include <initializer_list>
#include <memory_resource>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/failure.h"
#include "core/gw_string_list.h"
#include "fontpath/gw_fpe.h"
#include "model/gw_font.h"
#include "store/directory_change.h"

namespace gw {

/// The index line of the font with the file name `file_name`. Fails when a reader could not read the line
/// back (a blank or newline in the file name, a line of 120 characters or more); the caller must then skip
/// the font before anything is written.
Result<std::string> index_line(GWFont& font, const std::string& file_name);

/// The lines of a font that has several names.
struct IndexLines {
    std::vector<std::string> lines;
    std::size_t left_out = 0;  ///< names whose line a reader could not read back
};
/// A line for each name of the font; the lines that a reader could not read back are left out. Fails when
/// none is left.
Result<IndexLines> index_lines(GWFont& font, const std::string& file_name);

/// Whether the font has a file and no obstacle, and `index_lines` would give a line.
Outcome can_be_indexed(GWFont& font);

/// Whether the directory's index, as it will be, lists that file, but never with the name of this font. A
/// file that is listed with several names belongs to all these fonts.
bool is_file_of_another(const char* file_name, GWFont& font, const DirectoryChange& change);

/// Enters the font in the element's index with the file name `file_name`.
Outcome enter_in_index(GWFont& font, GW_FPE& fpe, const std::string& file_name);

/// The font's first file, or null.
const GW_FILE_SPEC* first_file(const GWFont& font);

/// Removes the font's line from the index of its files' directory, and its files. The line is that of the
/// first file that the index knows; for an outline that is listed once, all lines of that file are removed.
/// After a failure the font stays as it was. `afterwards` runs when the font is gone for good.
Outcome remove_files_and_entry(const GWFont& font, const std::function<void()>& afterwards = {});

/// The names of the files that an index lists and that match one of `patterns`: grouped by pattern, and in
/// index order within a group.
[[nodiscard]] std::vector<std::string_view> indexed_names(const GW_FONTDIR_FILE::Contents& index,
                                                          std::initializer_list<const char*> patterns);
/// Appends the specifications of files of the element.
void append_specs(GW_FSPEC_LIST& out, const std::vector<std::string_view>& names, GW_FPE& fpe);
/// The same for those files of its index that match one of `patterns`.
void list_indexed_files(GW_FSPEC_LIST& out, GW_FPE& fpe, std::initializer_list<const char*> patterns);

/// The files of the element's index for which `takes` is true, each once, in index order, with all its names.
struct ListedFile {
    std::string name;
    std::vector<IndexName> names;
};
std::vector<ListedFile> listed_files(GW_FPE& fpe, const std::function<bool(std::string_view)>& takes);

/// The font name of each file in an index: that of the file's first entry. Where an outline is listed once,
/// its entry for ISO 8859-1 is preferred, because every locale can draw it.
class FontNames {
  public:
    explicit FontNames(const GW_FONTDIR_FILE::Contents& index);
    /// A part of the index; none when it does not list the file.
    [[nodiscard]] std::optional<std::string_view> of(std::string_view file);

  private:
    std::vector<IndexEntryView> names_;  // in the order of their files' first entries
    std::size_t next_ = 0;               // most files are asked for in this order
    std::pmr::monotonic_buffer_resource memory_;
    std::pmr::unordered_map<std::string_view, std::size_t> places_{&memory_};
};

/// Appends the font names of the files `files` in their order; files without an entry are skipped.
void append_font_names(GW_STRING_LIST& out, const GW_FSPEC_LIST& files, GW_FPE& fpe);

}  // namespace gw
