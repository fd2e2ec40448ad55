// SPDX-License-Identifier: MIT
#include "fontfiles/index_text.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <utility>

namespace gw {

namespace {

std::string_view first_line(std::string_view text) {
    return text.substr(0, text.find('\n'));
}

/// The font library reads the count, and the rest of that line is of no use to it.
bool is_entry(std::string_view line) {
    std::string file;
    std::string font;
    split_index_line(line, file, font);
    const bool is_number = file.find_first_not_of("0123456789") == std::string::npos;
    return !file.empty() && !font.empty() && !is_number;
}

int lines_in(std::string_view text) {
    const auto newlines = std::count(text.begin(), text.end(), '\n');
    return static_cast<int>(newlines) + (text.empty() || text.ends_with('\n') ? 0 : 1);
}

/// The text with a first line that can be counted on, also when `more` is added to it.
std::string with_sound_count(std::string_view text, int more) {
    if (is_entry(first_line(text))) return std::to_string(lines_in(text)) + '\n' + std::string(text);
    if (!index_count_overflows(text, more)) return std::string(text);
    return with_index_count(text, lines_in(text.substr(index_line_end(text, 0))));
}

/// Where the entries begin: behind the count, if there is one.
std::size_t first_entry(std::string_view text) {
    return is_entry(first_line(text)) ? 0 : index_line_end(text, 0);
}

std::string_view without_newline(std::string_view line) {
    return line.substr(0, line.find('\n'));
}

std::string_view line_at(std::string_view text, std::size_t start) {
    return text.substr(start, index_line_end(text, start) - start);
}

/// Removes the last entry with this text, and counts it off.
bool remove_last(std::string& text, std::string_view line) {
    std::size_t last = std::string::npos;
    for (std::size_t start = index_line_end(text, 0); start < text.size();
         start = index_line_end(text, start)) {
        if (without_newline(line_at(text, start)) == without_newline(line)) last = start;
    }
    if (last == std::string::npos) return false;
    text.erase(last, line_at(text, last).size());
    text = with_index_count(text, index_count(text) - 1);
    return true;
}

}  // namespace

IndexedFile indexed_file(std::string_view field) {
    const std::size_t colon = field.rfind(':');
    if (!field.starts_with(':') || colon == 0) return {0, field, {}};
    // Other options may stand beside the number ("fn=1", "ai=0.2").
    std::string_view options = field.substr(1, colon - 1);
    IndexedFile file{0, field.substr(colon + 1), field.substr(0, colon + 1)};
    while (!options.empty()) {
        std::string_view option = options.substr(0, options.find(':'));
        options.remove_prefix(std::min(option.size() + 1, options.size()));
        if (option.starts_with("fn=")) option.remove_prefix(3);
        int number = 0;
        const auto [end, error] = std::from_chars(option.data(), option.data() + option.size(), number);
        if (error == std::errc() && end == option.data() + option.size()) file.face = number;
    }
    return file;
}

std::string index_field(const std::string& name, int face) {
    return face == 0 ? name : ':' + std::to_string(face) + ':' + name;
}

bool begins_with_an_entry(std::string_view text) {
    return is_entry(first_line(text));
}

bool index_count_overflows(std::string_view text, int more) {
    const long count = std::strtol(std::string(first_line(text)).c_str(), nullptr, 10);
    return count > std::numeric_limits<int>::max() - more || count < std::numeric_limits<int>::min();
}

std::size_t index_line_end(std::string_view text, std::size_t start) {
    const std::size_t newline = text.find('\n', start);
    return newline == std::string_view::npos ? text.size() : newline + 1;
}

std::vector<IndexEntryView> index_entry_views(std::string_view text) {
    constexpr std::size_t PIECE = INDEX_LINE_BUFFER - 1;
    std::vector<IndexEntryView> entries;
    bool is_first = true;
    while (!text.empty()) {
        const std::string_view piece = text.substr(0, std::min(index_line_end(text, 0), PIECE));
        text.remove_prefix(piece.size());
        if (std::exchange(is_first, false)) continue;
        entries.push_back(split_index_line(piece));
    }
    return entries;
}

std::vector<IndexEntry> index_entries(std::string_view text) {
    std::vector<IndexEntry> entries;
    for (const IndexEntryView& entry : index_entry_views(text))
        entries.push_back({std::string(entry.file_name), std::string(entry.font_name)});
    return entries;
}

int index_count(std::string_view text) {
    return std::atoi(std::string(first_line(text)).c_str());
}

std::string with_index_count(std::string_view text, int count) {
    std::string result = std::to_string(count) + '\n';
    result += text.substr(index_line_end(text, 0));
    return result;
}

std::string with_entries(std::string_view text, std::string_view lines, int count) {
    const std::string sound = with_sound_count(text, count);
    std::string result = with_index_count(sound, index_count(sound) + count);
    if (!result.ends_with('\n')) result += '\n';
    result += lines;
    return result;
}

std::vector<std::string> strike_out(std::string& text, std::string_view file_name, int most) {
    std::vector<std::string> struck;
    std::string rest = with_sound_count(text, 0);
    for (std::size_t start = index_line_end(rest, 0);
         start < rest.size() && static_cast<int>(struck.size()) < most;) {
        const std::size_t end = index_line_end(rest, start);
        std::string file;
        std::string font;
        split_index_line(std::string_view(rest).substr(start, INDEX_LINE_BUFFER - 1), file, font);
        if (file == file_name) {
            struck.push_back(rest.substr(start, end - start));
            rest.erase(start, end - start);
        } else {
            start = end;
        }
    }
    if (!struck.empty()) text = with_index_count(rest, index_count(rest) - static_cast<int>(struck.size()));
    return struck;
}

bool withdraw(std::string& text, std::string_view line) {
    return !line.empty() && remove_last(text, line);
}

LineNumbers occurrences(std::string_view text, const LineNumbers& lines) {
    LineNumbers numbers;
    for (const auto& [line, number] : lines) numbers[line] = 0;
    std::string line;
    for (std::size_t start = first_entry(text); start < text.size(); start = index_line_end(text, start)) {
        line = without_newline(line_at(text, start));
        if (const auto found = numbers.find(line += '\n'); found != numbers.end()) ++found->second;
    }
    return numbers;
}

LineNumbers index_differences(std::string_view before, std::string_view after) {
    LineNumbers differences;
    const auto count = [&](std::string_view text, int step) {
        for (std::size_t start = first_entry(text); start < text.size(); start = index_line_end(text, start))
            differences[std::string(without_newline(line_at(text, start))) + '\n'] += step;
    };
    count(before, -1);
    count(after, 1);
    std::erase_if(differences, [](const auto& line) { return line.second == 0; });
    return differences;
}

std::string with_occurrences(std::string_view text, const LineNumbers& wanted) {
    LineNumbers missing = occurrences(text, wanted);
    bool is_right = true;
    for (auto& [line, number] : missing) {
        const int wanted_number = wanted.find(line)->second;
        is_right = is_right && number == wanted_number;
        number = wanted_number;
    }
    if (is_right) return std::string(text);
    const std::string sound = with_sound_count(text, 0);
    std::string kept(line_at(sound, 0));
    int removed = 0;
    std::string line;
    for (std::size_t start = kept.size(); start < sound.size(); start = index_line_end(sound, start)) {
        line = without_newline(line_at(sound, start));
        const auto found = missing.find(line += '\n');
        const bool is_too_much = found != missing.end() && found->second-- <= 0;
        if (is_too_much) {
            ++removed;
        } else {
            kept += line_at(sound, start);
        }
    }
    kept = with_index_count(kept, index_count(kept) - removed);
    std::string more;
    int entered = 0;
    for (const auto& [text_of_line, number] : missing) {
        for (int i = 0; i < number; ++i, ++entered) more += text_of_line;
    }
    return entered > 0 ? with_entries(kept, more, entered) : kept;
}

IndexEntryView split_index_line(std::string_view line) {
    std::string_view rest = line.substr(0, line.find('\n'));
    // Blanks in front of the file name are skipped.
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    const std::size_t blank = rest.find(' ');
    return {rest.substr(0, blank),
            blank == std::string_view::npos ? std::string_view() : rest.substr(blank + 1)};
}

void split_index_line(std::string_view line, std::string& file_name, std::string& font_name) {
    const IndexEntryView entry = split_index_line(line);
    file_name = entry.file_name;
    font_name = entry.font_name;
}

}  // namespace gw
