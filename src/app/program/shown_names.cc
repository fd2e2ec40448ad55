// SPDX-License-Identifier: MIT
#include "app/program/shown_names.h"

#include <wchar.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

#include "app/program/window_policy.h"
#include "texts/messages.h"

namespace gw {

namespace {

constexpr std::string_view MARK = "[Read Only]";

/// The marks of fonts of a source, as the engine writes them.
constexpr std::array<std::pair<std::string_view, Message>, 8> SOURCE_MARKS = {{
    {"[Damaged]", Message::DAMAGED_MARK},
    {"[Not a Font]", Message::NOT_A_FONT_MARK},
    {"[Empty]", Message::EMPTY_MARK},
    {"[Not for X]", Message::NOT_FOR_X_MARK},
    {"[Unreadable]", Message::UNREADABLE_MARK},
    {"[No Name]", Message::NO_NAME_MARK},
    {"[Installed]", Message::INSTALLED_MARK},
    {"[Name Taken]", Message::NAME_TAKEN_MARK},
}};

constexpr std::size_t GAP = 2;
constexpr std::size_t MOST_COLUMNS = 64;  // longer names are followed by their marks at once

/// How many columns of a fixed-width font the text takes.
std::size_t columns_of(const std::string& text) {
    std::wstring wide(text.size(), L'\0');
    const std::size_t count = std::mbstowcs(wide.data(), text.c_str(), wide.size());
    if (count == static_cast<std::size_t>(-1)) return text.size();
    const int columns = ::wcswidth(wide.data(), count);
    return columns < 0 ? text.size() : static_cast<std::size_t>(columns);
}

void append_in_column(std::string& line, std::size_t column, const std::string& text) {
    const std::size_t length = columns_of(line);
    line.append(length < column ? column - length : GAP, ' ');
    line += text;
}

/// The column behind the longest of the names that are not too long.
std::size_t column_behind(const std::vector<std::string>& names) {
    std::size_t column = 0;
    for (const std::string& name : names) {
        if (const std::size_t length = columns_of(name); length <= MOST_COLUMNS)
            column = std::max(column, length);
    }
    return column + GAP;
}

/// The name without the mark at its end, if it has that one, and the blanks in front of it.
std::string without_mark(std::string_view name, std::string_view mark) {
    if (!name.ends_with(mark)) return std::string(name);
    name.remove_suffix(mark.size());
    const std::size_t end = name.find_last_not_of(' ');
    return std::string(name.substr(0, end == std::string_view::npos ? 0 : end + 1));
}

struct MarkedName {
    std::string name;
    std::string mark;  ///< in the user's language
};

/// The name of a font of a source: what may be removed is not the question there.
MarkedName parts_for_source(std::string_view name) {
    for (const auto& [mark, message] : SOURCE_MARKS) {
        if (name.ends_with(mark)) return {without_mark(name, mark), text_of(message)};
    }
    return {without_mark(name, MARK), ""};
}

}  // namespace

std::string without_read_only_mark(std::string_view name) {
    return without_mark(name, MARK);
}

std::string name_for_window(std::string_view name) {
    if (!window_policy().speaks_in_sentences()) return std::string(name);
    if (name.ends_with(MARK)) return without_read_only_mark(name) + ' ' + text_of(Message::READ_ONLY_MARK);
    const auto [alone, mark] = parts_for_source(name);
    return mark.empty() ? alone : alone + ' ' + mark;
}

std::size_t mark_column_for_source(const std::vector<std::string>& names) {
    std::vector<std::string> alone;
    alone.reserve(names.size());
    for (const std::string& name : names) alone.push_back(parts_for_source(name).name);
    return column_behind(alone);
}

std::string name_for_source(std::string_view name, std::size_t mark_column) {
    if (!window_policy().speaks_in_sentences()) return std::string(name);
    auto [row, mark] = parts_for_source(name);
    if (!mark.empty()) append_in_column(row, mark_column, mark);
    return row;
}

std::vector<std::string> names_in_columns(const std::vector<std::string>& names,
                                          const std::vector<std::string>& marks) {
    std::vector<std::string> rows;
    rows.reserve(names.size());
    for (const std::string& name : names) rows.push_back(without_read_only_mark(name));
    const std::size_t first = column_behind(rows);
    const std::string read_only = text_of(Message::READ_ONLY_MARK);
    const std::size_t second = first + columns_of(read_only) + GAP;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (std::string_view(names[i]).ends_with(MARK)) append_in_column(rows[i], first, read_only);
        if (i < marks.size() && !marks[i].empty()) append_in_column(rows[i], second, marks[i]);
    }
    return rows;
}

}  // namespace gw
