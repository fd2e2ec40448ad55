// SPDX-License-Identifier: MIT
#include "fontfiles/index_edit.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace gw {

namespace {

constexpr std::size_t PIECE = INDEX_LINE_BUFFER - 1;

std::string_view without_newline(std::string_view line) {
    return line.substr(0, line.find('\n'));
}

std::string file_in(std::string_view piece) {
    std::string file;
    std::string font;
    split_index_line(piece, file, font);
    return file;
}

}  // namespace

IndexEdit::IndexEdit(std::string text) : before_(std::move(text)) {
    const std::string_view all = before_;
    std::size_t start = 0;
    if (!begins_with_an_entry(all)) {
        start = index_line_end(all, 0);
        head_ = all.substr(0, start);
    }
    while (start < all.size()) {
        const std::size_t end = index_line_end(all, start);
        lines_.push_back({without_newline(all.substr(start, end - start))});
        start = end;
    }
    original_lines_ = lines_.size();
}

std::string IndexEdit::text() const {
    if (!count_) return before_;
    std::string text = std::to_string(*count_) + '\n';
    text.reserve(before_.size() + text.size());
    const bool is_open_ended = !before_.ends_with('\n') && lines_.size() == original_lines_;
    for (const Line& line : lines_) {
        if (line.is_gone) continue;
        text += line.text;
        if (!is_open_ended || &line != &lines_.back()) text += '\n';
    }
    return text;
}

int IndexEdit::living_lines() const {
    return static_cast<int>(
        std::count_if(lines_.begin(), lines_.end(), [](const Line& line) { return !line.is_gone; }));
}

/// The count, or the number of lines where there is no count that `more` can be added to.
int IndexEdit::sound_count(int more) const {
    if (count_) return *count_ > std::numeric_limits<int>::max() - more ? living_lines() : *count_;
    if (begins_with_an_entry(before_) || index_count_overflows(before_, more)) return living_lines();
    return index_count(before_);
}

void IndexEdit::enter(const std::string& line) {
    const int count = sound_count(1);
    entered_.emplace_back(without_newline(line));
    lines_.push_back({entered_.back()});
    edits_.push_back({lines_.size() - 1, true, count_});
    count_ = count + 1;
    if (knows_files_) know_files_of(lines_.size() - 1);
}

int IndexEdit::strike_out(const std::string& file_name, int most) {
    know_files();
    const auto found = places_.find(file_name);
    if (found == places_.end()) return 0;
    int struck = 0;
    for (const Piece& piece : found->second) {
        Line& line = lines_[piece.line];
        if (struck == most) break;
        if (piece.start != 0 || line.is_gone) continue;
        const int count = sound_count(0);
        edits_.push_back({piece.line, false, count_});
        line.is_gone = true;
        count_ = count - 1;
        ++struck;
    }
    return struck;
}

std::vector<std::string> IndexEdit::font_names(const std::string& file_name) const {
    know_files();
    std::vector<std::string> names;
    const auto found = places_.find(file_name);
    if (found == places_.end()) return names;
    for (const Piece& piece : found->second) {
        // Readers take the first line for a count, whatever it is.
        const bool is_first = !count_ && head_.empty() && piece.line == 0 && piece.start == 0;
        if (lines_[piece.line].is_gone || is_first) continue;
        std::string file;
        split_index_line(lines_[piece.line].text.substr(piece.start, PIECE), file, names.emplace_back());
    }
    return names;
}

void IndexEdit::know_files() const {
    if (std::exchange(knows_files_, true)) return;
    for (std::size_t line = 0; line < lines_.size(); ++line) know_files_of(line);
}

void IndexEdit::know_files_of(std::size_t line) const {
    const std::string_view text = lines_[line].text;
    // The newline is in the last piece, or is one of its own.
    for (std::size_t start = 0; start <= text.size(); start += PIECE)
        places_[file_in(text.substr(start, PIECE))].push_back({line, start});
}

/// The same for the last line, which goes.
void IndexEdit::forget_files_of(std::size_t line) {
    const std::string_view text = lines_[line].text;
    for (std::size_t start = 0; start <= text.size(); start += PIECE)
        places_[file_in(text.substr(start, PIECE))].pop_back();
}

bool IndexEdit::enters_behind(std::size_t edits) const {
    const auto first = edits_.begin() + static_cast<std::ptrdiff_t>(std::min(edits, edits_.size()));
    return std::any_of(first, edits_.end(), [](const Edit& edit) { return edit.enters; });
}

void IndexEdit::take_back_to(std::size_t edits) {
    while (edits_.size() > edits) {
        const Edit& edit = edits_.back();
        if (edit.enters) {
            if (knows_files_) forget_files_of(edit.line);
            lines_.pop_back();
            entered_.pop_back();
        } else {
            lines_[edit.line].is_gone = false;
        }
        count_ = edit.count;
        edits_.pop_back();
    }
}

LineNumbers IndexEdit::differences() const {
    LineNumbers differences;
    for (const Edit& edit : edits_)
        differences[std::string(lines_[edit.line].text) + '\n'] += edit.enters ? 1 : -1;
    return differences;
}

}  // namespace gw
