// SPDX-License-Identifier: MIT
//
// The start-up notice, shown while the font lists are read.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_init_dlg;

/// The notice, unmanaged. It is centred on the screen when it appears.
Widget create_init_dlg(const char* name, Widget parent);
void start_init_dlg();
void stop_init_dlg();
