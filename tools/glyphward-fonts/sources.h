// SPDX-License-Identifier: MIT
//
// The fonts in files and directories that the user names.
#pragma once

#include <string>
#include <vector>

#include "model/gw_hrn_list.h"

#include "glyphward-fonts/report.h"

namespace gw::fonts {

/// Adds the fonts of the files, with their metrics, and of the directories to the list. What has none is a
/// trouble, and a failure of the tally.
void find_sources(const std::vector<std::string>& paths, GWHRNList& out, Report& report, Tally& tally);

}  // namespace gw::fonts
