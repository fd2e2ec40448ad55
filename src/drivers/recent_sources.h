// SPDX-License-Identifier: MIT
//
// The directories from which this user has lately taken fonts. They are kept between runs, in a file of
// "file:" addresses, so that a name may have any bytes.
#pragma once

#include <string>
#include <vector>

#include "core/failure.h"

namespace gw {

inline constexpr std::size_t MOST_RECENT_SOURCES = 5;

/// The last one first; absolute paths, without a slash at their end. None when there is no such file.
[[nodiscard]] std::vector<std::string> recent_sources();

/// From now on `dir`, an absolute path, is the last one. What other instances have added meanwhile stays.
Outcome remember_recent_source(const std::string& dir);

}  // namespace gw
