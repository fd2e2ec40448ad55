// SPDX-License-Identifier: MIT
//
// The question before an installation that converts fonts, because no X server opens them as they are.
#pragma once

#include <string>
#include <vector>

#include "model/gw_hrn_list.h"

#include <X11/Intrinsic.h>

extern Widget wi_convert_dlg;  ///< null where windows do not ask

Widget create_convert_dlg(const char* name, Widget parent);
/// Asks; `go_on` is called when the user agrees.
void start_convert_dlg(const std::vector<std::string>& lines, void (*go_on)());
/// Hides the question; `go_on` is not called any more.
void stop_convert_dlg();

namespace gw {

/// What becomes of the fonts at these positions of `list` that will be converted, a line for each: the file,
/// its format, and the file that it becomes.
[[nodiscard]] std::vector<std::string> conversions(const GWHRNList& list, const std::vector<int>& positions);

}  // namespace gw
