// SPDX-License-Identifier: MIT
#include "store/line_register.h"

#include <algorithm>

#include "store/journal.h"

namespace gw {

namespace {

std::string field_of(std::string_view line) {
    std::string field;
    std::string font;
    split_index_line(line, field, font);
    return field;
}

std::string file_of(std::string_view line) {
    return std::string(indexed_file(field_of(line)).name);
}

bool is_an_index_line(std::string_view line) {
    const bool is_printable = std::none_of(
        line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; });
    const std::string file = file_of(line);
    return is_printable && begins_with_an_entry(line) && line.size() + 1 < INDEX_LINE_BUFFER &&
           file.find('/') == std::string::npos && journal::can_name(file);
}

}  // namespace

LineRegister LineRegister::parse(std::string_view text) {
    LineRegister lines;
    if (!text.starts_with(HEADING)) return lines;
    for (std::size_t start = HEADING.size(); start < text.size(); start = index_line_end(text, start)) {
        std::string_view rest = text.substr(start, text.find('\n', start) - start);
        const std::optional<FileIdentity> file = take_stamp(rest, true);
        if (file && is_an_index_line(rest) && lines.files_.size() < MOST_LINES)
            lines.files_.emplace(std::string(rest) + '\n', *file);
    }
    return lines;
}

std::string LineRegister::text() const {
    std::string text(HEADING);
    for (const auto& [line, file] : files_) text += file.text() + ' ' + line;
    return text;
}

void LineRegister::put_back(IndexEdit& index, const Directory& fonts) {
    std::vector<std::string> lost;
    std::erase_if(files_, [&](const auto& entry) {
        if (!index.font_names(field_of(entry.first)).empty()) return false;
        const std::string file = file_of(entry.first);
        struct stat info = {};
        const bool is_there = fonts.look_at(file, info) && entry.second.fits(info);
        if (is_there) lost.push_back(entry.first);
        return !is_there;
    });
    for (const std::string& line : lost) index.enter(line);
}

void LineRegister::follow(const LineNumbers& before, const LineNumbers& differences, const Directory& fonts) {
    for (const auto& [line, difference] : differences) {
        files_.erase(line);
        const bool is_there = before.find(line)->second + difference > 0;
        struct stat info = {};
        const std::string_view text = std::string_view(line).substr(0, line.find('\n'));
        if (is_there && is_an_index_line(text) && files_.size() < MOST_LINES &&
            fonts.look_at(file_of(line), info) && S_ISREG(info.st_mode))
            files_.emplace(line, FileIdentity::of(info));
    }
}

}  // namespace gw
