// SPDX-License-Identifier: MIT
//
// The dialog that lists which files of a source are not offered for installation, and why.
#pragma once

#include "app/installing/not_offered.h"

#include <X11/Intrinsic.h>

extern Widget wi_not_offered_dlg;  ///< null where windows do not show this

Widget create_not_offered_dlg(const char* name, Widget parent);
/// Shows the dialog.
void start_not_offered_dlg(const gw::NotOffered& what);
/// Shows this instead, if the dialog is open.
void update_not_offered_dlg(const gw::NotOffered& what);
void stop_not_offered_dlg();
