// SPDX-License-Identifier: MIT
//
// The list of all installed fonts and aliases in the main window, with the sample, the sizes and the
// resolutions of the selected one, and the disk space of all that are selected.
#pragma once

#include "app/kit/signal.h"

#include <X11/Intrinsic.h>

// Null until the list has been created.
extern Widget wi_hrn_list;
extern Widget wi_installed_sample_textfield;

namespace gw {

/// Create the list with its sample and menus in a form of its own, and the line with the disk space above
/// `below`, of which the value is returned.
void create_installed_list(Widget form);
Widget create_disk_space_line(Widget parent, Widget below);
/// Fills the list and begins to show samples.
void start_installed_list();

/// Callback: shows the attributes of the first selected entry.
void show_selected_attributes_cb(Widget w, XtPointer client_data, XtPointer call_data);

/// How many entries are selected now; 0 too when an operation forbids to use the selection.
Signal<int>& selection_changes();

}  // namespace gw

/// Shows all installed fonts and behind them the aliases, none of them selected.
void update_wi_installed_hrn_list();

/// What the controls of the main window allow with so many entries selected.
void activate_selection_controls(int selected);
/// Deselects everything in the list and shows what that means: no sample, no sizes, no disk space.
void forget_selection();
/// Has the list's sample shown after its other selection callbacks have run.
void show_main_samples_last();
