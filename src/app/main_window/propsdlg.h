// SPDX-License-Identifier: MIT
//
// The dialog in which a user sets the sample text that the program saves.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_props_dlg;

Widget create_props_dlg(const char* name, Widget parent);
/// Shows the dialog with the saved sample text.
void start_props_dlg();
