// SPDX-License-Identifier: MIT
//
// The conflict summary: how many fonts were done, how many are read-only, and how many need a decision.
#pragma once

#include "core/gw_list.h"
#include "model/gw_conflict.h"

#include <X11/Intrinsic.h>

extern Widget wi_preconflict_dlg;

Widget create_preconflict_dlg(const char* name, Widget parent);
/// Shows the summary of `list` (not owned, not empty); `success` fonts were done.
void start_preconflict_dlg(unsigned success, GW_LIST<GWConflict>* list);
/// Writes the main window's status line and hides the summary.
void stop_preconflict_dlg();
