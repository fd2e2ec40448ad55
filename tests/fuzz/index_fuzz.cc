// SPDX-License-Identifier: MIT
//
// The index of a font directory. The first line of an input is a line to edit it with, the rest is the index.
#include <algorithm>

#include "fontfiles/gw_fontdir_file.h"
#include "fontfiles/index_edit.h"
#include "fontfiles/index_text.h"
#include "fuzz.h"

namespace {

constexpr int MANY = 1000000;

std::string file_of(std::string_view line) {
    std::string file;
    std::string font;
    gw::split_index_line(line.substr(0, gw::INDEX_LINE_BUFFER - 1), file, font);
    return file;
}

bool is_entry_line(std::string_view line) {
    std::string file;
    std::string font;
    gw::split_index_line(line, file, font);
    return !file.empty() && !font.empty() && file.find_first_not_of("0123456789") != std::string::npos;
}

/// The lines that an edit must keep: all but the count.
std::vector<std::string> entry_lines(std::string_view text) {
    std::vector<std::string> lines = gw::fuzz::lines_of(text);
    if (!lines.empty() && !is_entry_line(lines[0])) lines.erase(lines.begin());
    if (!lines.empty() && !lines.back().ends_with('\n')) lines.back() += '\n';
    return lines;
}

bool has_sound_count(std::string_view text) {
    const std::vector<std::string> lines = gw::fuzz::lines_of(text);
    return !lines.empty() && lines[0] == std::to_string(lines.size() - 1) + '\n';
}

/// With another entry: no line is lost, and the new one is the last.
void try_appending(std::string_view text, const std::string& line) {
    const std::string more = gw::with_entries(text, line, 1);
    std::vector<std::string> expected = entry_lines(text);
    expected.push_back(line);
    std::vector<std::string> lines = gw::fuzz::lines_of(more);
    GW_MUST_HOLD(!lines.empty(), more);
    lines.erase(lines.begin());
    GW_MUST_HOLD(lines == expected, more);
    GW_MUST_HOLD(!has_sound_count(text) || has_sound_count(more), more);

    std::string less = more;
    GW_MUST_HOLD(gw::withdraw(less, line), more);
    GW_MUST_HOLD(entry_lines(less) == entry_lines(text), less);
    GW_MUST_HOLD(!has_sound_count(text) || has_sound_count(less), less);
}

/// Without a file: its lines go, all of them and no other.
void try_striking_out(std::string_view text, const std::string& file) {
    std::string rest(text);
    const std::vector<std::string> struck = gw::strike_out(rest, file, MANY);
    std::vector<std::string> expected = entry_lines(text);
    const auto gone = std::remove_if(expected.begin(), expected.end(),
                                     [&](const std::string& line) { return file_of(line) == file; });
    GW_MUST_HOLD(expected.end() - gone == static_cast<std::ptrdiff_t>(struck.size()), text);
    expected.erase(gone, expected.end());
    GW_MUST_HOLD(entry_lines(rest) == expected, rest);
    GW_MUST_HOLD(!has_sound_count(text) || has_sound_count(rest), rest);
    if (struck.empty()) GW_MUST_HOLD(rest == text, rest);
}

void try_occurrences(std::string_view text, const std::string& line) {
    for (const int number : {2, 0, 1}) {
        const gw::LineNumbers wanted = {{line, number}};
        const std::string edited = gw::with_occurrences(text, wanted);
        GW_MUST_HOLD(gw::occurrences(edited, wanted) == wanted, edited);
        std::vector<std::string> expected = entry_lines(text);
        std::erase(expected, line);
        std::vector<std::string> lines = entry_lines(edited);
        std::erase(lines, line);
        GW_MUST_HOLD(lines == expected, edited);
    }
}

/// The same edits, each made to the whole text, give the same.
void try_editing(std::string_view text, const std::string& line) {
    gw::IndexEdit edit{std::string(text)};
    std::string plain(text);
    const std::string file = file_of(line);
    const int struck = edit.strike_out(file, 1);
    GW_MUST_HOLD(struck == static_cast<int>(gw::strike_out(plain, file, 1).size()), text);
    GW_MUST_HOLD(edit.text() == plain, edit.text());
    edit.enter(line);
    plain = gw::with_entries(plain, line, 1);
    GW_MUST_HOLD(edit.text() == plain, edit.text());
    edit.take_back_to(0);
    GW_MUST_HOLD(edit.text() == text, edit.text());
}

/// Entries that are read from the file are those of the text.
void try_file(std::string_view text, const std::string& line) {
    gw::fuzz::directory().write("fonts.dir", text);
    GW_FONTDIR_FILE index(gw::fuzz::directory().c_str(), gw::FILE_TYPE_REGULAR);
    std::vector<GW_FONTDIR_FILE::Entry> entries;
    GW_MUST_HOLD(index.get_entries(entries), text);
    const std::vector<gw::IndexEntry> expected = gw::index_entries(text);
    GW_MUST_HOLD(entries.size() == expected.size() || text.find('\0') != std::string_view::npos, text);
    for (std::size_t i = 0; i < entries.size() && text.find('\0') == std::string_view::npos; ++i) {
        GW_MUST_HOLD(entries[i].file_name == expected[i].file_name, text);
        GW_MUST_HOLD(entries[i].font_name == expected[i].font_name, text);
    }
    const gw::Outcome entered = index.enter(line.c_str());
    GW_MUST_HOLD(static_cast<bool>(entered), text);
    const std::string written = gw::fuzz::directory().read("fonts.dir");
    GW_MUST_HOLD(written == gw::with_entries(text, line, 1), text);
    const gw::Result<int> struck = index.strike_out(file_of(line).c_str());
    GW_MUST_HOLD(struck && *struck >= 1, written);
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    std::string_view text = input;
    const std::string edit(before_nul(take_line(text)));
    (void)index_count(text);
    try_striking_out(text, edit);
    // Only such lines are entered: those that a reader reads back.
    const bool fits = is_entry_line(edit) && edit.front() != ' ' &&
                      edit.size() + 1 < static_cast<std::size_t>(INDEX_LINE_BUFFER);
    if (!fits) return;
    try_appending(text, edit + '\n');
    try_occurrences(text, edit + '\n');
    try_editing(text, edit + '\n');
    try_file(text, edit + '\n');
}
