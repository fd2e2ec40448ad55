// SPDX-License-Identifier: MIT
//
// The text of "fonts.scale", which has the form of "fonts.dir" and lists the outline fonts of a directory.
// mkfontdir takes outlines from it alone, and drops every other one from "fonts.dir" (see mkfontdir(1)).
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "fontfiles/index_text.h"

namespace gw {

/// Whether the file of an index entry has outlines: ".pfa", ".pfb", ".ttf", ".ttc", ".otf", ".otc".
[[nodiscard]] bool has_outlines(std::string_view file_field);

/// Whether any of these lines, which a change has entered or removed, is that of an outline.
[[nodiscard]] bool concern_outlines(const LineNumbers& differences);

/// The text after a change of the directory. `text` is as it was, none when there is no such file; `index` is
/// "fonts.dir" after the change, and `differences` has the lines that the change has entered or removed.
/// `leaves` says whether a file goes with the change. A new text has every outline of the index. None when
/// there is nothing to write.
[[nodiscard]] std::optional<std::string> scalable_index(
    const std::optional<std::string>& text, std::string_view index, const LineNumbers& differences,
    const std::function<bool(const std::string&)>& leaves);

}  // namespace gw
