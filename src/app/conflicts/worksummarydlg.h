// SPDX-License-Identifier: MIT
//
// The one window that tells, when all is decided, what an installation or a deletion has done. It is the
// summary of preconflictdlg.h where windows sum work up.
#pragma once

#include <vector>

#include "app/conflicts/preconflictdlg.h"
#include "app/conflicts/work_account.h"

namespace gw {

/// Fills the dialog.
void create_work_summary(Widget dialog);

/// Work is done. What can be decided is asked for at once, and everything is told later; otherwise it is told
/// now, if there is more to tell than success. Returns whether a window shows anything.
bool sum_work_up(const WorkSummary& summary);
/// Nothing more is decided now about these conflicts (not owned): tells what is done, and offers them again.
void show_work_summary(unsigned success, GW_LIST<GWConflict>* conflicts);
/// The decisions are carried out: tells everything.
void finish_work_summary(GWConflict::TYPE type, const std::vector<WorkLine>& lines,
                         const std::vector<SummaryNote>& notes);
/// Other work begins: what was told is forgotten, unless conflicts still wait for the user.
void begin_work_summary();
/// Hides the window and forgets what it told.
void stop_work_summary();

}  // namespace gw
