// SPDX-License-Identifier: MIT
#include "fontfiles/alias_lexer.h"

#include <algorithm>
#include <utility>

#include "core/text.h"

namespace gw {

namespace {

constexpr std::string_view FILE_NAMES_ARE_ALIASES = "FILE_NAMES_ALIASES";

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}
bool is_end_of_line(char c) {
    return c == '\n' || c == '\r';
}

class Lexer {
  public:
    enum class Token { WORD, COMMENT, LINE_END, END };

    explicit Lexer(std::string_view text) : text_(text) {}

    [[nodiscard]] std::size_t position() const { return at_; }
    /// The last word that was read.
    [[nodiscard]] AliasWord& word() { return word_; }

    Token next() {
        while (at_ < text_.size() && is_blank(text_[at_])) ++at_;
        if (at_ == text_.size()) return Token::END;
        if (is_end_of_line(text_[at_])) {
            take();
            return Token::LINE_END;
        }
        if (text_[at_] == '!') {
            skip_comment();
            return Token::COMMENT;
        }
        return read_word();
    }

  private:
    char take() {
        if (text_[at_] == '\n') ++line_;
        return text_[at_++];
    }

    void skip_comment() {
        while (at_ < text_.size() && !is_end_of_line(text_[at_])) {
            const bool takes_next = take() == '\\';
            if (takes_next && at_ < text_.size()) take();
        }
    }

    Token read_word() {
        word_ = {"", at_, at_, line_};
        // A backslash at the very end begins no word, and adds nothing to one.
        if (text_.substr(at_) == "\\") {
            ++at_;
            return Token::END;
        }
        bool is_quoted = false;
        while (at_ < text_.size() && !is_end_of_line(text_[at_]) && (is_quoted || !is_blank(text_[at_]))) {
            const char c = take();
            if (c == '"') {
                is_quoted = !is_quoted;
            } else if (c != '\\') {
                word_.text += c;
            } else if (at_ < text_.size()) {
                word_.text += take();
            }
        }
        word_.end = at_;
        // The server takes a NUL for the end of the word, wherever the word ends in the file.
        word_.text.resize(std::min(word_.text.find('\0'), word_.text.size()));
        return Token::WORD;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    int line_ = 1;
    AliasWord word_;
};

AliasPair::Kind kind_of(const AliasPair& pair) {
    using Kind = AliasPair::Kind;
    if (std::max(pair.alias.text.size(), pair.target.text.size()) > LONGEST_SERVER_WORD)
        return Kind::TOO_LONG;
    const bool is_of_itself = server_lower_case(pair.alias.text) == server_lower_case(pair.target.text);
    return is_of_itself ? Kind::OF_ITSELF : Kind::SOUND;
}

/// An alias at the end of a line.
AliasPair::Kind kind_of_lonely(const AliasWord& alias, Lexer::Token behind) {
    using Kind = AliasPair::Kind;
    if (alias.text.size() > LONGEST_SERVER_WORD) return Kind::TOO_LONG;
    const bool ends_line = behind == Lexer::Token::LINE_END;
    return ends_line && alias.text == FILE_NAMES_ARE_ALIASES ? Kind::FILE_NAMES : Kind::NO_TARGET;
}

/// Reads to the end of the line, or of the text, and says which it was.
Lexer::Token read_line(Lexer& lexer, AliasLine& line) {
    bool is_target = false;
    for (Lexer::Token token = lexer.next();; token = lexer.next()) {
        if (token == Lexer::Token::COMMENT) {
            line.has_comment = true;
        } else if (token == Lexer::Token::WORD) {
            if (!is_target) line.pairs.emplace_back();
            AliasPair& pair = line.pairs.back();
            (is_target ? pair.target : pair.alias) = std::move(lexer.word());
            if (is_target) pair.kind = kind_of(pair);
            is_target = !is_target;
        } else {
            if (is_target) line.pairs.back().kind = kind_of_lonely(line.pairs.back().alias, token);
            line.end = lexer.position();
            return token;
        }
    }
}

}  // namespace

std::vector<AliasLine> alias_lines(std::string_view text) {
    std::vector<AliasLine> lines;
    Lexer lexer(text);
    for (Lexer::Token token = Lexer::Token::LINE_END;
         token == Lexer::Token::LINE_END && lexer.position() < text.size();) {
        AliasLine line;
        line.start = lexer.position();
        token = read_line(lexer, line);
        lines.push_back(std::move(line));
    }
    return lines;
}

std::string server_lower_case(std::string_view name) {
    std::string lower = lower_case(name);
    for (char& c : lower) {
        const auto byte = static_cast<unsigned char>(c);
        constexpr unsigned char MULTIPLICATION_SIGN = 0xD7;
        if (byte >= 0xC0 && byte <= 0xDE && byte != MULTIPLICATION_SIGN) c = static_cast<char>(byte + 0x20);
    }
    return lower;
}

}  // namespace gw
