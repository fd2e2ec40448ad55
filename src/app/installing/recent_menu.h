// SPDX-License-Identifier: MIT
//
// The menu of the install dialog with the sources that were used lately.
#pragma once

#include <string>

#include <X11/Intrinsic.h>

namespace installdlg {

/// Creates the menu in this form. Returns the widget that the caller attaches.
Widget create_recent_menu(Widget form);

/// A directory has become the source: it is kept, and is the first entry from now on.
void keep_recent_source(const std::string& dir);

}  // namespace installdlg
