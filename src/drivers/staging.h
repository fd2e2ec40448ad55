// SPDX-License-Identifier: MIT
//
// The staging directory of fonts that are not installed yet: an index that the server can read, and links
// through which it finds the fonts.
#pragma once

#include <deque>
#include <string>

#include "model/gw_hrn_list.h"
#include "modules/gw_fsm_list.h"

namespace gw {

/// Prepares the directory `staging`: makes it (mode 0711) unless this process has made it
/// already, makes the link `link_name` in it point to `link_target`, and writes an index without entries. A
/// failure when another process has made something of this name.
Outcome prepare_staging(const std::string& staging, const std::string& link_name,
                        const std::string& link_target);

/// Adds every font that the modules find in `sources` to the index of `staging` and to `out`, which owns it.
void stage_fonts(GWHRNList& out, GW_FSM_LIST& modules, std::deque<GW_DIR>& sources, int recursive,
                 const std::string& staging);
/// The same for one source.
void stage_fonts(GWHRNList& out, GW_FSM_LIST& modules, const char* source, int recursive,
                 const std::string& staging);

}  // namespace gw
