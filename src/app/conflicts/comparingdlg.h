// SPDX-License-Identifier: MIT
//
// The conflict dialog with the fonts side by side, in which several conflicts are decided at once. It is the
// dialog of conflictdlg.h where windows compare conflicts.
#pragma once

#include <X11/Intrinsic.h>

namespace gw {

/// Fills the dialog.
void create_comparing_dlg(Widget dialog);
/// Shows the dialog's decisions; there are some.
void start_comparing_dlg();
/// Shows them in the list again.
void show_decisions();

}  // namespace gw
