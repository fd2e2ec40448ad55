// SPDX-License-Identifier: MIT
//
// The install dialog: a source of fonts with its list ("install_source.h"), a sample, a destination with the
// disk space there ("install_destination.h"), and the installation ("installation.h").
#pragma once

#include <string>
#include <vector>

#include "app/installing/install_destination.h"
#include "app/installing/install_source.h"

#include <X11/Intrinsic.h>

extern Widget wi_install_dlg;

Widget create_install_dlg(const char* name, Widget parent);
/// Shows the dialog with the fonts of a directory.
void start_install_dlg_from(const std::string& dir);
/// The same with the fonts of files and directories, at least one.
void start_install_dlg_from(const std::vector<std::string>& paths);

namespace installdlg {

/// A callback of the directory chooser.
void install_dir_specified_cb(const char* dir);

}  // namespace installdlg
