// SPDX-License-Identifier: MIT
//
// Edits of the text of an index ("fonts.dir": a count, then a line for each entry). The count follows every
// edit. The bytes of all other lines stay as they are.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace gw {

/// One entry line, split.
struct IndexEntry {
    std::string file_name;
    std::string font_name;
};

/// The same as parts of the text that it was read from.
struct IndexEntryView {
    std::string_view file_name;
    std::string_view font_name;
};

/// The file of an entry with what stands in front of it: ":1:NAME" is the second font of the collection NAME
/// (format: the X server's font library, FreeType renderer).
struct IndexedFile {
    int face = 0;              ///< 0-based place of the font in the file
    std::string_view name;     ///< of the file
    std::string_view options;  ///< what stands in front of it, with both colons
};
[[nodiscard]] IndexedFile indexed_file(std::string_view file_field);
/// The field for that font of the file: the bare name for the first one.
[[nodiscard]] std::string index_field(const std::string& name, int face);

/// The entries as readers see them, who take a long line for several.
[[nodiscard]] std::vector<IndexEntry> index_entries(std::string_view text);
[[nodiscard]] std::vector<IndexEntryView> index_entry_views(std::string_view text);

/// The number at the beginning of the text; 0 when there is none.
[[nodiscard]] int index_count(std::string_view text);

/// Appends `count` entry lines, each with its newline. A last line without a newline gets one first. A first
/// line that is an entry instead of a count stays as an entry.
[[nodiscard]] std::string with_entries(std::string_view text, std::string_view lines, int count);

/// Removes the entries of the file, but at most the first `most`. Returns the removed lines with their
/// newlines.
std::vector<std::string> strike_out(std::string& text, std::string_view file_name, int most);

/// Removes the last line with exactly this text (newline included); false when there is none.
bool withdraw(std::string& text, std::string_view line);

/// Line texts (newline included) with a number for each.
using LineNumbers = std::map<std::string, int, std::less<>>;

/// How many lines have each of these texts; the numbers in `lines` do not matter.
[[nodiscard]] LineNumbers occurrences(std::string_view text, const LineNumbers& lines);
/// Removes the last or appends as many lines of each of these texts that there is that number of them.
[[nodiscard]] std::string with_occurrences(std::string_view text, const LineNumbers& wanted);

/// For every line of which `after` has another number than `before`, how many more or fewer it has.
[[nodiscard]] LineNumbers index_differences(std::string_view before, std::string_view after);

/// Whether the first line is an entry instead of a count.
[[nodiscard]] bool begins_with_an_entry(std::string_view text);
/// Whether the first line is a number that an `int` cannot hold once `more` is added to it.
[[nodiscard]] bool index_count_overflows(std::string_view text, int more);

/// `text` with the number `count` as its first line.
[[nodiscard]] std::string with_index_count(std::string_view text, int count);

/// The end of the line that begins at `start`, its newline included.
[[nodiscard]] std::size_t index_line_end(std::string_view text, std::size_t start);

/// Splits an entry line at the first blank; the font name keeps further blanks and loses its newline.
void split_index_line(std::string_view line, std::string& file_name, std::string& font_name);
[[nodiscard]] IndexEntryView split_index_line(std::string_view line);

/// Readers take a line in pieces of at most this many characters; an entry with its newline must be shorter.
/// Kept: an index line has at most 119 characters.
inline constexpr int INDEX_LINE_BUFFER = 120;

}  // namespace gw
