// SPDX-License-Identifier: MIT
//
// The directory chooser: a file selection dialog that shows directories only.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_dir_dlg;
extern Widget wi_dir_list;  ///< its list of directories

Widget create_dir_dlg(const char* name, Widget parent);
/// What becomes of a typed directory that does not exist. The chooser says that it is not there, and stays;
/// or the caller gets it.
enum class MissingDirectory { REFUSED, TAKEN };

/// Shows the chooser, with `title` as its title unless that is null. `cb` gets the directory that the user
/// selects, and replaces the previous callback. The text belongs to the chooser.
void popup_dir_dlg(void (*cb)(const char*), const char* title,
                   MissingDirectory missing = MissingDirectory::REFUSED);
/// Hides the chooser without calling the callback.
void popdown_dir_dlg();
