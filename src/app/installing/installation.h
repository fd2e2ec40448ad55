// SPDX-License-Identifier: MIT
//
// The installation of fonts from the source, one font per idle step, up to the summary.
#pragma once

#include <vector>

#include "core/gw_list.h"
#include "model/gw_conflict.h"

#include <X11/Intrinsic.h>

namespace installdlg {

/// Starts to install the fonts at these positions of the source (1-based), at least one, in the destination.
void start_installation(std::vector<int> positions);

/// The new fonts of these conflicts keep their files when another source is chosen: they were found through a
/// link, which is another one then.
void hold_on_to_sources(const GW_LIST<GWConflict>& conflicts);

/// The work procedure of an installation: true when there is nothing more to do.
Boolean install_work_proc(XtPointer work);

}  // namespace installdlg
