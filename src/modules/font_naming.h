// SPDX-License-Identifier: MIT
//
// What a font file that no index lists is called.
#pragma once

#include <optional>
#include <string>

namespace gw {

/// The line, newline included, with which an installation would enter the file NAME of the directory in its
/// index; none when the file is no font that a module knows, or its line would not fit into an index.
[[nodiscard]] std::optional<std::string> line_of_font_file(const std::string& dir, const std::string& name);

}  // namespace gw
