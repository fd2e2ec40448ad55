// SPDX-License-Identifier: MIT
//
// The conflict dialog with the fonts side by side, in which several conflicts are decided at once. It is the
// dialog of conflictdlg.h where windows compare conflicts.
#pragma once

#include <vector>

#include "app/conflicts/work_account.h"
#include "app/kit/signal.h"
#include "core/ref.h"
#include "model/gw_hrn_list.h"

#include <X11/Intrinsic.h>

namespace gw {

/// Decisions that another program carries out (see `GWConflict::entrust`).
struct EntrustedWork {
    std::vector<Ref<GWHRNElement>> replacing;  ///< the entries that are to be installed
    std::vector<WorkLine> planned;             ///< as `planned_lines` gives them
};
/// Emitted when the user has finished deciding, and the dialog is closed.
Signal<const EntrustedWork&>& entrusted_work();

/// Fills the dialog.
void create_comparing_dlg(Widget dialog);
/// Shows the dialog's decisions; there are some.
void start_comparing_dlg();
/// Shows them in the list again.
void show_decisions();

}  // namespace gw
