// SPDX-License-Identifier: MIT
//
// The words of "fonts.alias", as an X server divides the file (libXfont2). A line has pairs of words, an
// alias and the font that it stands for. Spaces and tabs are between words; "\n" and "\r" end a line, also
// within quotes. Quotes keep blanks in a word, a backslash takes the meaning from the next character, and a
// word that would begin with "!" is a comment to the end of the line. So a backslash in front of a line's
// end, in a word or in a comment, lets the line go on.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace gw {

struct AliasWord {
    std::string text;       ///< without its quotes and backslashes
    std::size_t start = 0;  ///< where it is in the file
    std::size_t end = 0;    ///< behind it
    int line = 1;           ///< where it begins, 1-based, by the newlines of the file
};

/// An alias and its font; or what makes the server refuse the directory.
struct AliasPair {
    enum class Kind {
        SOUND,
        FILE_NAMES,  ///< no pair: the word by which names of files are aliases, alone in its line
        NO_TARGET,   ///< an alias with no font behind it
        TOO_LONG,    ///< a word is longer than the server's buffer
        OF_ITSELF,   ///< the alias is its own font
    };
    Kind kind = Kind::SOUND;
    AliasWord alias;
    AliasWord target;

    [[nodiscard]] bool is_fault() const { return kind != Kind::SOUND && kind != Kind::FILE_NAMES; }
};

/// A line as the server sees it; it may be several of an editor's.
struct AliasLine {
    std::size_t start = 0;
    std::size_t end = 0;  ///< behind the character that ends it
    std::vector<AliasPair> pairs;
    bool has_comment = false;
};

/// All lines, without gaps, those behind a fault, too: there the server has stopped. A text without a line's
/// end at its own has a last line without one.
[[nodiscard]] std::vector<AliasLine> alias_lines(std::string_view text);

/// The name as the server compares it: each byte in lower case, as a letter of ISO 8859-1 whatever it means.
[[nodiscard]] std::string server_lower_case(std::string_view name);

/// The longest word for which the server has room (libXfont2: MAXFONTNAMELEN).
inline constexpr std::size_t LONGEST_SERVER_WORD = 1023;

}  // namespace gw
