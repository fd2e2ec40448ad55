// SPDX-License-Identifier: MIT
//
// The main window: every installed font and every alias of the font path in one list, with a sample of the
// selected one.
#pragma once

#include <X11/Intrinsic.h>

// Null until the window has been created.
extern Widget wi_mainwindow;
extern Widget wi_hrn_list;
extern Widget wi_installed_sample_textfield;
extern Widget wi_main_window_status_label;

namespace gw {

/// What may be done with so many selected entries of the list.
struct SelectionRights {
    bool may_delete;
    bool may_show_attributes;
};
[[nodiscard]] constexpr SelectionRights selection_rights(int selected) {
    return {selected >= 1, selected == 1};
}

}  // namespace gw

/// Creates the window as a child of the application shell, fills its list and installs its callbacks.
void create_font_admin_main_window();

/// What the controls of the main window allow with so many entries selected.
void activate_selection_controls(int selected);
/// Deselects everything in the list and shows what that means: no sample, no sizes, no disk space.
void forget_selection();
/// Has the list's sample shown after its other selection callbacks have run.
void show_main_samples_last();

/// An installation and a deletion share the lists: while one runs, no other can be started.
void forbid_other_work();
void permit_other_work();

/// Leaves the program with status 0.
void exit_btn_cb(Widget w, XtPointer client_data, XtPointer call_data);
