// SPDX-License-Identifier: MIT
//
// The list of installed fonts and aliases in the main window; with it the sample, sizes and resolutions of
// the selected font, and the disk space of the selection.
#pragma once

#include <string>
#include <vector>

#include "app/kit/signal.h"

#include <X11/Intrinsic.h>

// Null until the list has been created.
extern Widget wi_hrn_list;
extern Widget wi_installed_sample_textfield;

namespace gw {

/// Create the list with its sample and menus in a form of its own, and the line with the disk space above
/// `below`; this returns the widget that shows the disk space.
void create_installed_list(Widget form);
Widget create_disk_space_line(Widget parent, Widget below);
/// Fills the list and connects it to the samples.
void start_installed_list();

/// Callback: shows the attributes of the first selected entry.
void show_selected_attributes_cb(Widget w, XtPointer client_data, XtPointer call_data);

/// Emitted with the number of selected entries; with 0 too while an operation does not allow the selection to
/// be used.
Signal<int>& selection_changes();

/// Emitted with the name of the font that has no sample, when the user asks why.
Signal<const std::string&>& why_requests();

}  // namespace gw

/// Shows all installed fonts and after them the aliases. None of them is selected. If the list lacks the
/// fonts of a directory, the status line says so.
void update_wi_installed_hrn_list();

/// Makes the controls of the main window sensitive or not, as it fits so many selected entries.
void activate_selection_controls(int selected);
/// Deselects everything in the list, and shows no sample, no sizes and no disk space.
void forget_selection();
/// Selects these positions and nothing else, as the user would, and scrolls to the first. The search shows
/// all entries again if it hides one of them.
void select_in_installed_list(const std::vector<int>& positions);
/// Makes the callback that shows the sample the last one of the list's selection callbacks.
void show_main_samples_last();
