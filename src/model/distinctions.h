// SPDX-License-Identifier: MIT
//
// What is added to entries of a list that read the same: as little as tells them apart.
#pragma once

#include <vector>

#include "core/gw_list.h"

class GWAlias;
class GWHRNElement;

namespace gw {

/// Adds to names that occur more than once the charset, the foundry, the file, the directory, or at last the
/// whole XLFD name: the first of these in which they differ, and the next if that is not enough.
void tell_apart(const std::vector<GWHRNElement*>& elements);
/// The same with charset, foundry, size and directory.
void tell_apart(const std::vector<GWAlias*>& aliases);

}  // namespace gw
