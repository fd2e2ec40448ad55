// SPDX-License-Identifier: MIT
//
// The PostScript name of a font, from the beginning of its outline or metrics file.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace gw::psres {

/// How much of a file is searched for its font name. Clear text of real fonts ends long before.
inline constexpr std::size_t SEARCHED_BYTES = 65536;
/// The longest name that a PostScript interpreter takes.
inline constexpr std::size_t LONGEST_FONT_NAME = 127;

/// The name behind /FontName in the clear text of a Type 1 font, which ends at "eexec"; comments and strings
/// do not count. `head` is the beginning of a .pfa file (text) or of a .pfb file (text in segments, each
/// behind six bytes: 128, kind, length with the lowest byte first); which of them, its first byte tells.
/// Nothing when there is no name, or none that can be one: cut off, too long, or with control characters.
[[nodiscard]] std::optional<std::string> outline_font_name(std::string_view head);

/// The rest of the line "FontName ..." of an Adobe Font Metrics file, from the part in front of the
/// characters' metrics. Lines end with a line feed, a carriage return, or both.
[[nodiscard]] std::optional<std::string> metrics_font_name(std::string_view head);

}  // namespace gw::psres
