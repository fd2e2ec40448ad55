// SPDX-License-Identifier: MIT
//
// The summary: how many fonts were installed or deleted, how many are read-only, how many need a decision.
// Where windows show reasons, also which fonts were left out and why.
#pragma once

#include <string>
#include <vector>

#include "core/gw_list.h"
#include "model/gw_conflict.h"

#include <X11/Intrinsic.h>

extern Widget wi_preconflict_dlg;

/// The result of an installation or a deletion.
struct WorkSummary {
    GWConflict::TYPE type;
    unsigned success = 0;  ///< fonts that were done
    GW_LIST<GWConflict>* conflicts = nullptr;
    std::vector<std::string> failures;  ///< lines for what was not done
};

Widget create_preconflict_dlg(const char* name, Widget parent);
/// Shows the summary of `list` (not owned, not empty); `success` fonts were done.
void start_preconflict_dlg(unsigned success, GW_LIST<GWConflict>* list);
/// Shows the summary when there is something to tell: conflicts or, where windows show reasons, failures.
/// Returns whether it does.
bool start_summary(const WorkSummary& summary);
/// The same behind what the last summary has shown, where there are failures.
bool add_to_summary(WorkSummary summary);
/// An installation or a deletion begins: failures of the work before are forgotten, and so is a summary of
/// nothing but those.
void begin_summary();
/// Writes the main window's status line and hides the summary.
void stop_preconflict_dlg();
