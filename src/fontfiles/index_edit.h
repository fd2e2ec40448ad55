// SPDX-License-Identifier: MIT
//
// Any number of edits of one index. An edit does not look at every line again, so thousands of them are
// possible in an index of thousands of lines; and the last ones can be taken back.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "fontfiles/index_text.h"

namespace gw {

class IndexEdit {
  public:
    explicit IndexEdit(std::string text = {});
    IndexEdit(const IndexEdit&) = delete;
    IndexEdit& operator=(const IndexEdit&) = delete;

    /// The text without the edits.
    [[nodiscard]] const std::string& before() const { return before_; }
    /// The text with them. A first line that is an entry stays one, behind a count.
    [[nodiscard]] std::string text() const;

    /// Appends an entry line, newline included.
    void enter(const std::string& line);
    /// Removes the entries of the file, but at most the first `most`; returns their number.
    int strike_out(const std::string& file_name, int most);
    /// The names that the index has for the file, as readers see them, who take a long line for several.
    [[nodiscard]] std::vector<std::string> font_names(const std::string& file_name) const;

    /// How many edits there were.
    [[nodiscard]] std::size_t edits() const { return edits_.size(); }
    /// Whether any but the first `edits` of them enters a line.
    [[nodiscard]] bool enters_behind(std::size_t edits) const;
    /// Takes back all but the first `edits`.
    void take_back_to(std::size_t edits);
    /// For every line that was entered or removed (newline included) how many more or fewer there are now.
    /// Zero for one that has only another place.
    [[nodiscard]] LineNumbers differences() const;

  private:
    struct Line {
        std::string_view text;  // without its newline
        bool is_gone = false;
    };
    struct Edit {
        std::size_t line;
        bool enters;
        std::optional<int> count;  // before it
    };
    struct Piece {
        std::size_t line;
        std::size_t start;  // in the line
    };

    [[nodiscard]] int sound_count(int more) const;
    [[nodiscard]] int living_lines() const;
    void know_files() const;
    void know_files_of(std::size_t line) const;
    void forget_files_of(std::size_t line);

    std::string before_;
    std::string_view head_;  // the first line, if it is no entry
    std::vector<Line> lines_;
    std::deque<std::string> entered_;
    std::vector<Edit> edits_;
    std::optional<int> count_;  // once there was an edit
    std::size_t original_lines_ = 0;
    // Where the index names a file; filled when it is needed first.
    mutable std::unordered_map<std::string, std::vector<Piece>> places_;
    mutable bool knows_files_ = false;
};

}  // namespace gw
