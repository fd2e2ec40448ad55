// SPDX-License-Identifier: MIT
//
// The dialog that tells which of the files and directories that were given to the program cannot be used.
#pragma once

#include <string>
#include <vector>

#include <X11/Intrinsic.h>

extern Widget wi_not_taken_dlg;  ///< null where nothing can be given

Widget create_not_taken_dlg(const char* name, Widget parent);
/// Shows the dialog with these lines, or with the first of them when there are very many.
void start_not_taken_dlg(const std::vector<std::string>& lines);
void stop_not_taken_dlg();
