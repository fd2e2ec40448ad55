// SPDX-License-Identifier: MIT
//
// Fills list widgets with the names of fonts and of aliases.
#pragma once

#include "core/gw_list.h"
#include "model/gw_alias.h"
#include "model/gw_hrn_list.h"

#include <X11/Intrinsic.h>

/// Replaces the lines of the list with the names of `hrn_list`.
void update_wi_hrn_list(Widget list, const GWHRNList& hrn_list);
/// Adds the aliases at the end of the list.
void display_alias_list(Widget list, const GW_SORTED_LIST<GWAlias>& aliases);
