// SPDX-License-Identifier: MIT
//
// The staging directory of fonts that are not installed yet: an index that the server can read, and links by
// which it reaches the fonts.
#pragma once

#include <string>

#include "model/gw_hrn_list.h"
#include "modules/gw_fsm_list.h"

namespace gw {

/// Makes the directory `staging` (mode 0777 before the umask) unless it exists, the link `link_name` in it
/// point to `link_target`, and an empty index. False, with one line on standard error, when something that is
/// not ours stands there.
[[nodiscard]] bool prepare_staging(const char* staging, const std::string& link_name,
                                   const char* link_target);

/// Enters every font that the modules find in `source` in the index of `staging` and adds it to `out`, which
/// owns it.
void stage_fonts(GWHRNList& out, GW_FSM_LIST& modules, const char* source, int recursive,
                 const char* staging);

}  // namespace gw
