// SPDX-License-Identifier: MIT
#include "glyphward-fonts/toml_guard.h"

#include <algorithm>
#include <string>

namespace gw::fonts {

namespace {

constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
constexpr std::string_view BLANKS = " \t";
constexpr std::string_view BLANKS_AND_ENDS = " \t\r\n";
constexpr std::string_view BEGIN_OF_KEY =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_\"'";

bool is_ascii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

bool is_in(std::string_view set, char c) {
    return set.find(c) != std::string_view::npos;
}

class Guard {
  public:
    explicit Guard(std::string_view text) : text_(text) {
        if (text_.starts_with(BYTE_ORDER_MARK)) at_ = BYTE_ORDER_MARK.size();
    }

    std::optional<TomlMistake> mistake() {
        while (!what_ && at_ < text_.size()) pass_one();
        if (!what_) return {};
        const std::string_view before = text_.substr(0, at_);
        return TomlMistake{1 + static_cast<int>(std::count(before.begin(), before.end(), '\n')), *what_};
    }

  private:
    [[nodiscard]] std::string_view rest() const { return text_.substr(at_); }
    void pass_all(std::string_view set) { at_ = std::min(text_.find_first_not_of(set, at_), text_.size()); }

    void pass_one() {
        const char c = text_[at_];
        if (c == '#') {
            at_ = std::min(text_.find('\n', at_), text_.size());
        } else if (is_in(BLANKS_AND_ENDS, c)) {
            if (c == '\n') is_line_begun_ = false;
            ++at_;
        } else {
            pass_part(c);
            is_line_begun_ = true;
            last_ = c;
        }
    }
    /// What is neither white space nor a comment.
    void pass_part(char c) {
        if (c == '"' || c == '\'') {
            pass_quoted(c);
        } else if (c == '[' && !is_line_begun_) {
            pass_begin_of_header();
        } else if (c == '}' && (last_ == '[' || last_ == ',')) {
            what_ = Message::SAYS_MISPLACED_BRACKET;
        } else if (c > ' ' && c <= '~') {
            ++at_;
        } else {
            what_ = Message::SAYS_STRAY_CHARACTER;
        }
    }
    void pass_quoted(char quote) {
        const std::string three(3, quote);
        if (rest().starts_with(three)) {
            pass_lines(three);
        } else {
            pass_line(quote);
        }
    }
    /// "[" or "[[", which goes on with a key. The parser knows what "[]" is.
    void pass_begin_of_header() {
        ++at_;
        pass_all(BLANKS);
        if (at_ < text_.size() && text_[at_] == '[') {
            ++at_;
            pass_all(BLANKS);
        }
        if (at_ < text_.size() && text_[at_] != ']' && !is_in(BEGIN_OF_KEY, text_[at_]))
            what_ = Message::SAYS_MISPLACED_BRACKET;
    }
    /// A text in one line, or what is there of it.
    void pass_line(char quote) {
        ++at_;
        while (at_ < text_.size() && text_[at_] != quote && text_[at_] != '\n')
            at_ += quote == '"' && text_[at_] == '\\' ? std::size_t(2) : std::size_t(1);
        if (at_ < text_.size() && text_[at_] == quote) ++at_;
    }
    /// A text of several lines, which may end in two quotation marks of its own.
    void pass_lines(const std::string& quotes) {
        at_ += quotes.size();
        while (!what_ && at_ < text_.size() && !rest().starts_with(quotes)) {
            if (quotes[0] == '"' && text_[at_] == '\\') {
                pass_escape();
            } else {
                ++at_;
            }
        }
        if (what_ || at_ >= text_.size()) return;
        const std::size_t end = text_.find_first_not_of(quotes[0], at_);
        at_ = std::min({end, text_.size(), at_ + quotes.size() + 2});
    }
    void pass_escape() {
        ++at_;
        const bool has_white_space = at_ < text_.size() && is_in(BLANKS_AND_ENDS, text_[at_]);
        if (has_white_space) pass_all(BLANKS_AND_ENDS);
        if (at_ >= text_.size()) return;
        if (!is_ascii(text_[at_])) {
            what_ = Message::SAYS_STRAY_CHARACTER;
        } else if (!has_white_space) {
            ++at_;
        }
    }

    std::string_view text_;
    std::size_t at_ = 0;
    bool is_line_begun_ = false;
    char last_ = 0;  // of the parts
    std::optional<Message> what_;
};

}  // namespace

std::optional<TomlMistake> mistake_before_parsing(std::string_view toml) {
    return Guard(toml).mistake();
}

}  // namespace gw::fonts
