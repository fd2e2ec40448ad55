// SPDX-License-Identifier: MIT
//
// A text that somebody has pasted, made fit to be read: from terminals, mails and logs come colours,
// typographic quotes, line ends of other systems, and bytes that are no text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace gw::diagnosis {

/// At most `most` bytes of `pasted`, as UTF-8: typographic quotes are ASCII ones, line ends "\n", lines that
/// end in a backslash are joined with the next. Quotes that HTML or JSON have marked are quotes. Escape
/// sequences of terminals, the marks of quoted mails and the numbers in front of lines, and characters that
/// nobody sees are gone. Other control characters are blanks, and a byte
/// that is not UTF-8 is a "?", which in a pattern stands for any character.
[[nodiscard]] std::string readable(std::string_view pasted, std::size_t most);

/// A part of such a text that was wrapped, as one line: without its line ends and the indentation behind
/// them. A blank stays between two words of a name, but not where the line was cut at the edge of a terminal.
/// `before` is the length of what stands in front of the part in its first line.
[[nodiscard]] std::string unwrapped(std::string_view text, std::size_t before = 0);

/// `text` without blanks, quotes and punctuation around it that belongs to the sentence and not to a name. Of
/// brackets those go that are around all of it, or have no other one in it.
[[nodiscard]] std::string_view bare(std::string_view text);

[[nodiscard]] std::string_view without_blanks(std::string_view text);
[[nodiscard]] bool is_blank(char c);
[[nodiscard]] bool is_quote(char c);

}  // namespace gw::diagnosis
