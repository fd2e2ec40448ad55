// SPDX-License-Identifier: MIT
//
// Which packages of the distribution would bring a font. What is in them is a table, made by
// scripts/font-packages from the packages themselves; what is installed is asked of dpkg.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "diagnosis/answer.h"

namespace gw::diagnosis {

inline constexpr std::size_t MOST_PACKAGES = 5;

/// Whether a package is installed on this host. An empty one asks dpkg.
using IsInstalled = std::function<bool(const std::string& package)>;

/// The packages that have a font which `wanted` matches: a pattern, a full name or an alias. At most `most`
/// and none that is installed; those of bitmaps come before those of outlines, which programs find only
/// when their directory is put on the font path. `command` installs it; it is "" on a host without apt.
[[nodiscard]] std::vector<PackageHint> packages_for(const std::string& wanted,
                                                    std::size_t most = MOST_PACKAGES,
                                                    const IsInstalled& is_installed = {});

/// The same for a charset ("jisx0208.1983-0") that a fontset lacks.
[[nodiscard]] std::vector<PackageHint> packages_for_charset(const std::string& charset,
                                                            std::size_t most = MOST_PACKAGES,
                                                            const IsInstalled& is_installed = {});

}  // namespace gw::diagnosis
