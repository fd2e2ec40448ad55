// SPDX-License-Identifier: MIT
//
// The summary: how many fonts were installed or deleted, how many are read-only, how many need a decision.
// Where windows sum work up, it is another one, which tells everything: see worksummarydlg.h.
#pragma once

#include <string>
#include <vector>

#include "app/program/failures.h"
#include "core/gw_list.h"
#include "model/font_report.h"
#include "model/gw_conflict.h"
#include "texts/messages.h"

#include <X11/Intrinsic.h>

extern Widget wi_preconflict_dlg;

/// Something else that a summary tells, below a heading.
struct SummaryNote {
    gw::Message heading;
    std::vector<std::string> lines;
};

/// The result of an installation or a deletion.
struct WorkSummary {
    GWConflict::TYPE type;
    unsigned success = 0;  ///< fonts that were done
    GW_LIST<GWConflict>* conflicts = nullptr;
    std::vector<gw::FailureText> failures;   ///< what was not done
    std::vector<SummaryNote> notes = {};     ///< shown behind the failures
    const gw::FontReport* report = nullptr;  ///< has the names of the fonts that were done; not kept
};

/// Says in the summary that the user has stopped the work, unless `untried` is empty or the summary has
/// nothing else to tell: then the status line is enough.
void add_untried(WorkSummary& summary, const std::string& untried);

Widget create_preconflict_dlg(const char* name, Widget parent);
/// Shows the summary of `list` (not owned, not empty); `success` fonts were done.
void start_preconflict_dlg(unsigned success, GW_LIST<GWConflict>* list);
/// Shows the summary when there is something to tell: conflicts or, where windows sum work up, failures or
/// notes. There the conflict dialog comes first if anything can be decided. Returns whether a window comes.
bool start_summary(const WorkSummary& summary);
/// An installation or a deletion begins: failures of the work before are forgotten, and so is a summary of
/// nothing but those.
void begin_summary();
/// Writes the main window's status line and hides the summary.
void stop_preconflict_dlg();
