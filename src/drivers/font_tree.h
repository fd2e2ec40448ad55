// SPDX-License-Identifier: MIT
//
// The directories with fonts below one that the user has given as a whole.
#pragma once

#include <string>
#include <vector>

namespace gw {

/// However large a tree is: so many directories are looked at, so many are used, and none is deeper.
struct TreeLimits {
    std::size_t looked_at = 2000;
    std::size_t used = 200;
    int depth = 12;
};

struct FontTree {
    std::vector<std::string> dirs;  ///< without slashes at their ends
    bool is_whole = true;           ///< false when a limit was in the way
};

/// `dir` itself, whatever is in it, and behind it the directories below that have font files, the nearest
/// first. Links to directories are not followed, and hidden directories and those that this user may not read
/// are left out.
[[nodiscard]] FontTree find_font_tree(const std::string& dir, const TreeLimits& limits = {});

}  // namespace gw
