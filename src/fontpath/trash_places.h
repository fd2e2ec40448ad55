// SPDX-License-Identifier: MIT
//
// The directories in which a user may find deleted fonts: those of the font path, the default destinations,
// and those in a list of the user's own, which has every directory where the user has deleted something. So
// fonts can come back whose directory has left the font path since.
#pragma once

#include <string>
#include <vector>

#include "core/failure.h"

namespace gw {

/// The longest list; the oldest directories are dropped.
inline constexpr std::size_t MOST_TRASH_PLACES = 1000;

/// All those directories that are there and answer, each once, ending in "/": those of the font path first,
/// whose elements these are.
[[nodiscard]] std::vector<std::string> trash_places(const std::vector<std::string>& font_path);

/// Adds a directory to the user's list, if it is not there.
Outcome remember_trash_place(const std::string& dir);
/// The user's list.
[[nodiscard]] std::vector<std::string> remembered_trash_places();

}  // namespace gw
