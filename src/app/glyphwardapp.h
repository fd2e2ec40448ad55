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

/// Leaves the program with status 0.
void exit_btn_cb(Widget w, XtPointer client_data, XtPointer call_data);
