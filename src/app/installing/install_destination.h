// SPDX-License-Identifier: MIT
//
// The destination in the install dialog: its directory, and the disk space there.
#pragma once

#include <string>

#include "core/failure.h"

#include <X11/Intrinsic.h>

namespace installdlg {

/// Creates these parts of the dialog from the bottom upwards, above `below`. Returns the separator above
/// them.
Widget create_destination(Widget dialog, Widget below);

/// The directory in which fonts are installed, with a slash at its end.
[[nodiscard]] const std::string& current_install_dir();
/// Makes `dir`, with a slash at its end, the destination.
void set_current_install_dir(const char* dir);
/// The same, and shows it with the space that is available there.
void choose_destination(const char* dir);
/// The same with the directory that is proposed to this user. A change of it that a killed run has left
/// unfinished is brought to its end.
void choose_default_destination();

/// Tells a user who would install for everyone, on a machine that cannot ask for a password, what an
/// administrator would type. Returns whether there was something to tell.
bool explain_everyone(const char* dir);
/// Creates the destination when it is missing. Returns "", or why nothing can be installed there.
[[nodiscard]] std::string prepare_destination();
/// Creates the directory, if it is the destination: another program may have removed it since it was
/// prepared. With `gw_modern_windows` off, and for any other directory, it fails as missing.
gw::Outcome make_destination_anew(const std::string& dir);

/// Shows how many kilobytes the selected fonts need.
void show_required_space(unsigned kilobytes);
/// Shows the space that is available when the dialog appears.
void show_space_on_opening();

/// The number of free blocks for ordinary users in the file system of `path`. Kept: free blocks are shown as
/// kilobytes. 0 when the system does not tell.
int get_avail_space(const char* path);

}  // namespace installdlg
