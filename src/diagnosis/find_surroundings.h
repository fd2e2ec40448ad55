// SPDX-License-Identifier: MIT
//
// What a diagnosis must know besides the server, found out for the user of this process.
#pragma once

#include <string>
#include <vector>

#include "diagnosis/surroundings.h"

namespace gw::diagnosis {

/// No more directories are looked at, and none deeper below a root.
inline constexpr std::size_t MOST_DIRECTORIES = 2000;
inline constexpr int DEEPEST_DIRECTORY = 8;

/// The configuration as the files have it now, the user, and the directories where fonts usually lie.
[[nodiscard]] Surroundings find_surroundings();

/// The directories, ending in "/", at and below `roots` that have an index or a file with the extension of a
/// font, in the order of their names below each root. Links to directories and hidden directories are not
/// followed.
[[nodiscard]] std::vector<std::string> directories_with_fonts(const std::vector<std::string>& roots);

}  // namespace gw::diagnosis
