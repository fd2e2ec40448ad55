// SPDX-License-Identifier: MIT
//
// Which files of the source are not offered for installation, and why.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace gw {

struct NotOffered {
    std::size_t files = 0;           ///< the regular files of the source, but for its indexes
    std::vector<std::string> lines;  ///< for each file that looks like a font: its name, and why
    std::size_t others = 0;          ///< files that do not have the extension of a font

    [[nodiscard]] std::size_t count() const { return lines.size() + others; }
    /// "Not offered: 3 of 300 files"; "" if all files are offered.
    [[nodiscard]] std::string summary() const;
    /// The lines, and one for the other files if there are any.
    [[nodiscard]] std::vector<std::string> all_lines() const;
};

/// Looks at the source as it was listed. Reads its directories, but no file.
[[nodiscard]] NotOffered find_not_offered();

}  // namespace gw
