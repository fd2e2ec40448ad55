// SPDX-License-Identifier: MIT
#include "fontfiles/scalable_index.h"

#include <algorithm>
#include <array>

#include "core/text.h"

namespace gw {

namespace {

constexpr std::array<std::string_view, 6> OUTLINES = {".pfa", ".pfb", ".ttf", ".ttc", ".otf", ".otc"};

std::string line_of(const IndexEntry& entry) {
    return entry.file_name + ' ' + entry.font_name + '\n';
}

/// Every outline of the index, with a count of 0.
LineNumbers outlines_of(std::string_view index) {
    LineNumbers lines;
    for (const IndexEntry& entry : index_entries(index)) {
        if (has_outlines(entry.file_name)) lines.emplace(line_of(entry), 1);
    }
    return lines;
}

/// mkfontscale may have given a file more names than the index has, and longer lines.
void strike_out_leaving(std::string_view text, const std::function<bool(const std::string&)>& leaves,
                        LineNumbers& wanted) {
    std::string file;
    std::string font;
    std::size_t start = begins_with_an_entry(text) ? 0 : index_line_end(text, 0);
    for (std::size_t end = 0; start < text.size(); start = end) {
        end = index_line_end(text, start);
        std::string line(text.substr(start, end - start));
        if (!line.ends_with('\n')) line += '\n';
        split_index_line(line, file, font);
        if (leaves(std::string(indexed_file(file).name))) wanted[std::move(line)] = 0;
    }
}

}  // namespace

bool concern_outlines(const LineNumbers& differences) {
    return std::any_of(differences.begin(), differences.end(), [](const auto& line) {
        std::string file;
        std::string font;
        split_index_line(line.first, file, font);
        return line.second != 0 && has_outlines(file);
    });
}

bool has_outlines(std::string_view file_field) {
    const std::string name = lower_case(file_field);
    return std::any_of(OUTLINES.begin(), OUTLINES.end(),
                       [&](std::string_view extension) { return name.ends_with(extension); });
}

std::optional<std::string> scalable_index(const std::optional<std::string>& text, std::string_view index,
                                          const LineNumbers& differences,
                                          const std::function<bool(const std::string&)>& leaves) {
    LineNumbers wanted;
    for (const auto& [line, difference] : differences) {
        std::string file;
        std::string font;
        split_index_line(line, file, font);
        if (difference != 0 && has_outlines(file)) wanted.emplace(line, 0);
    }
    if (wanted.empty()) return std::nullopt;
    const LineNumbers in_index = occurrences(index, wanted);
    if (!text) {
        LineNumbers all = outlines_of(index);
        if (all.empty()) return std::nullopt;
        return with_occurrences("0\n", all);
    }
    LineNumbers there = occurrences(*text, wanted);
    for (auto& [line, number] : wanted) {
        const bool stays = in_index.find(line)->second > 0;
        number = stays ? std::max(1, there[line]) : 0;
    }
    strike_out_leaving(*text, leaves, wanted);
    std::string changed = with_occurrences(*text, wanted);
    if (changed == *text) return std::nullopt;
    return changed;
}

}  // namespace gw
