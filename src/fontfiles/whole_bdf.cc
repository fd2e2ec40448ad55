// SPDX-License-Identifier: MIT
#include "fontfiles/whole_bdf.h"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace gw {

namespace {

constexpr std::size_t BLOCK = 65536;
constexpr long UNKNOWN = -1;

/// Word number `index` of a line as a number; `UNKNOWN` if it is none.
long number_in(std::string_view line, int index) {
    for (;;) {
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        if (index-- == 0) break;
        line.remove_prefix(std::min(line.find_first_of(" \t"), line.size()));
    }
    long number = UNKNOWN;
    std::from_chars(line.data(), line.data() + line.size(), number);
    return number;
}

bool is_keyword(std::string_view line, std::string_view keyword) {
    return line.starts_with(keyword) &&
           (line.size() == keyword.size() || line[keyword.size()] == ' ' || line[keyword.size()] == '\t');
}

class BdfParts {
  public:
    void take(std::string_view line) {
        while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t'))
            line.remove_suffix(1);
        if (line.empty() || has_end_) return;
        if (is_in_bitmap_) {
            take_row(line);
        } else if (is_keyword(line, "CHARS")) {
            promised_ = number_in(line, 1);
        } else if (is_keyword(line, "STARTCHAR")) {
            ++characters_;
        } else if (is_keyword(line, "BBX")) {
            height_ = number_in(line, 2);
        } else if (is_keyword(line, "BITMAP")) {
            is_in_bitmap_ = true;
            rows_ = 0;
        } else if (is_keyword(line, "ENDFONT")) {
            has_end_ = true;
        }
    }

    [[nodiscard]] bool has_end() const { return has_end_; }
    [[nodiscard]] bool agree() const { return agree_ && characters_ == promised_ && complete_ == promised_; }

  private:
    void take_row(std::string_view line) {
        if (!is_keyword(line, "ENDCHAR")) {
            ++rows_;
            return;
        }
        is_in_bitmap_ = false;
        ++complete_;
        agree_ = agree_ && rows_ == height_;
    }

    long promised_ = UNKNOWN;
    long characters_ = 0;
    long complete_ = 0;
    long height_ = UNKNOWN;
    long rows_ = 0;
    bool is_in_bitmap_ = false;
    bool has_end_ = false;
    bool agree_ = true;
};

/// Hands all lines on, but for one that is longer than a block.
void take_lines(const FontBytes& bytes, BdfParts& parts) {
    std::string rest;
    for (std::size_t start = 0; start < bytes.size(); start += BLOCK) {
        rest += bytes.part(start, BLOCK);
        std::string_view text = rest;
        for (std::size_t end = 0; (end = text.find('\n')) != std::string_view::npos;) {
            parts.take(text.substr(0, end));
            text.remove_prefix(end + 1);
        }
        rest = text.size() < BLOCK ? std::string(text) : "";
    }
    parts.take(rest);
}

}  // namespace

Outcome is_whole_bdf(const FontBytes& bytes) {
    BdfParts parts;
    take_lines(bytes, parts);
    if (!parts.has_end()) return Failure{bytes.path(), Reason::CUT_OFF};
    return parts.agree() ? done() : Outcome(Failure{bytes.path(), Reason::DAMAGED_FONT});
}

}  // namespace gw
