// SPDX-License-Identifier: MIT
//
// What is known about the fonts of the source, beyond their names: which of them cannot be installed, which
// are installed already. Looking into font files takes time, so it is done while the program is idle, one
// font at a time. `GWFont` keeps what was found; rows of lists show it as a mark ("[Damaged]").
#pragma once

#include <string>
#include <vector>

#include "app/kit/signal.h"
#include "model/gw_hrn_list.h"

namespace gw {

/// Whether some font of the entry can be installed, as far as is known. An entry that is not offered has a
/// mark and cannot be chosen.
[[nodiscard]] bool is_offered(const GWHRNElement& elem);
/// Why an entry is not offered, as a line for a window: its file and the reason.
[[nodiscard]] std::string why_not_offered(const GWHRNElement& elem);
/// The same for one font that has an obstacle.
[[nodiscard]] std::string obstacle_line(const GWFont& font);
/// What the user should know of an entry that is offered: that it is installed, or who has its name. "" when
/// there is nothing, or nothing is known yet.
[[nodiscard]] std::string hint_about(const GWHRNElement& elem);

/// Checks the fonts of the source from now on, when the program is idle. What is installed may have changed
/// since they were last checked, so that is always looked up again. Does nothing unless the font policy marks
/// fonts of a source.
void start_source_checks();
/// Ends the checks. What was found stays, and is true as long as the source is not listed again.
void stop_source_checks();
/// The same, and takes the hints away ("[Installed]"), which an installation makes untrue.
void stop_source_checks_for_changes();
[[nodiscard]] bool are_source_checks_pending();
/// Checks the entry at a position of the source (1-based) at once.
void check_source_entry(int position);
/// The entries at these positions come next.
void check_source_entries_first(const std::vector<int>& positions);

/// Emitted with a position of the source when the name of its entry has changed, and with 0 when all fonts
/// are checked.
Signal<int>& source_entry_changes();

}  // namespace gw
