// SPDX-License-Identifier: MIT
//
// The only function with which this program fills fixed buffers, and the string operations that several files
// need. The copy truncates and terminates, and never writes beyond the buffer.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace gw {

/// Copies at most `capacity - 1` bytes of `src` into `dst` and terminates it. Returns the number of bytes
/// copied. A capacity of 0 writes nothing.
std::size_t copy_text(char* dst, std::size_t capacity, std::string_view src);

/// The same for an array, whose size bounds the copy.
template <std::size_t N>
std::size_t copy_text(char (&dst)[N], std::string_view src) {
    return copy_text(dst, N, src);
}

/// `text` cut to at most `limit` bytes.
[[nodiscard]] std::string truncated(std::string_view text, std::size_t limit);

/// `text` with a "/" appended unless it ends in one already.
[[nodiscard]] std::string with_trailing_slash(std::string_view text);

/// `path` without the "/" at its end, however many there are; the root stays "/". A part of `path`.
[[nodiscard]] std::string_view without_trailing_slashes(std::string_view path);

/// `text` with its first byte in upper case (ASCII letters only: XLFD fields are Latin-1 or ASCII).
[[nodiscard]] std::string capitalized(std::string_view text);

/// `text` with the first letter of each word in upper case.
[[nodiscard]] std::string capitalized_words(std::string_view text);

/// An ASCII letter in lower case; any other byte as it is.
[[nodiscard]] constexpr char ascii_lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// `text` with its ASCII letters in lower case; equal results mean equal for `strcasecmp` in the C locale.
[[nodiscard]] std::string lower_case(std::string_view text);

/// The extension of a font file with its dot, as the X server knows it: in lower case, but for the "Z" of a
/// compressed file (".ttf", ".pcf.gz", ".pcf.Z"). "" for a name without a dot.
[[nodiscard]] std::string font_extension(std::string_view file_name);

/// The lines of `text`, parts of it, without their newlines; a last line without one counts.
[[nodiscard]] std::vector<std::string_view> lines_of(std::string_view text);

/// `text` with the words in the places of its "%s", in order. It is no format: nothing else is a place.
[[nodiscard]] std::string filled(std::string text, const std::vector<std::string>& words);

/// `text` with its control characters as "\x0A", so that a name neither breaks a line nor imitates one.
[[nodiscard]] std::string escaped(std::string_view text);

}  // namespace gw
