// SPDX-License-Identifier: MIT
//
// Which fonts are files of a package of the distribution. Their package manager misses them when they are
// deleted or replaced, and brings them back at its next update.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "core/failure.h"
#include "core/gw_list.h"
#include "model/gw_conflict.h"
#include "model/gw_font.h"

namespace gw {

/// The packages that the font's files belong to. A failure when the package manager does not answer.
Result<std::set<std::string>> packages_of(const GWFont& font);

/// The names, separated by ", ".
[[nodiscard]] std::string enumeration(const std::set<std::string>& names);

/// Asks about the files of these fonts in one call; `packages_of` then knows the answers.
void ask_packages_of(const std::vector<const GWFont*>& fonts);

/// Marks the conflicts whose installed fonts belong to packages. Asks about all of them in one call. A
/// failure when the package manager does not answer; then none is marked.
Outcome mark_packages(GW_LIST<GWConflict>& conflicts);

}  // namespace gw
