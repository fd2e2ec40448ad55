// SPDX-License-Identifier: MIT
//
// The main window: the list of installed fonts with its controls, and the menus, which open everything else.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_mainwindow;  ///< null until the window has been created

namespace gw {

/// What the user may do when so many entries of the list are selected.
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
