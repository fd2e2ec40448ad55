// SPDX-License-Identifier: MIT
//
// The resolve dialog: every conflict of an installation or a deletion with its resolution, and the button
// that carries out the resolutions.
#pragma once

#include <string>

#include "core/gw_list.h"
#include "model/gw_conflict.h"

#include <X11/Intrinsic.h>

extern Widget wi_conflict_dlg;

Widget create_conflict_dlg(const char* name, Widget parent);
/// Shows the conflicts of `list` (not owned, not empty), all of them undecided. `success` fonts are done
/// already.
void start_conflict_dlg(unsigned success, GW_LIST<GWConflict>* list);
/// Forgets the resolutions and hides the dialog.
void stop_conflict_dlg();

/// Fills the list widget again.
void update_wi_conflict_list();
/// The line for the conflict at the 1-based position: its name, and the resolution from column 46 on.
std::string get_conflict_list_entry(unsigned position);
