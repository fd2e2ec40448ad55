// SPDX-License-Identifier: MIT
//
// Gathers the aliases of the configured font path into one sorted list.
#pragma once

#include "core/gw_list.h"
#include "model/gw_alias.h"

class GWAliasDriver {
  public:
    /// Adds every alias to `out`, which is not cleared first. The aliases belong to `out`'s owner.
    /// Directories that did not answer to the last list of installed fonts are not asked again.
    void get_alias_list(GW_SORTED_LIST<GWAlias>& out);
};
