// SPDX-License-Identifier: MIT
//
// The line at the bottom of the main window: the status, and beside it the button that undoes the last work.
#pragma once

#include <X11/Intrinsic.h>

namespace gw {

/// Makes the line with the label, in `parent`. Returns the whole line: the label alone where windows bring
/// nothing back.
Widget create_status_line(Widget parent);

}  // namespace gw
