// SPDX-License-Identifier: MIT
//
// The PostScript name of a font, from the beginning of its outline or metrics file.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace gw::psres {

/// How many bytes of a file are searched for its font name. The clear text of real fonts is much shorter.
inline constexpr std::size_t SEARCHED_BYTES = 65536;
/// The longest name that a PostScript interpreter accepts.
inline constexpr std::size_t LONGEST_FONT_NAME = 127;

/// The name after /FontName in the clear text of a Type 1 font, which ends at "eexec"; comments and strings
/// are skipped. `head` is the beginning of a .pfa file (text) or of a .pfb file (text in segments, each after
/// a header of six bytes: 128, kind, length with the lowest byte first); the first byte shows which. No value
/// when there is no usable name: it is missing, cut off, too long, or has control characters.
[[nodiscard]] std::optional<std::string> outline_font_name(std::string_view head);

/// The text after "FontName" on its line in an Adobe Font Metrics file; only the part before the character
/// metrics is searched. Lines end with a line feed, a carriage return, or both.
[[nodiscard]] std::optional<std::string> metrics_font_name(std::string_view head);

}  // namespace gw::psres
