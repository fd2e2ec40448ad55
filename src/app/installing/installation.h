// SPDX-License-Identifier: MIT
//
// The installation of fonts from the source, one font per idle step, up to the summary.
#pragma once

#include <vector>

#include <X11/Intrinsic.h>

namespace installdlg {

/// Starts to install the fonts at these positions of the source (1-based), at least one, in the destination.
void start_installation(std::vector<int> positions);

/// The work procedure of an installation: true when there is nothing more to do.
Boolean install_work_proc(XtPointer work);

}  // namespace installdlg
