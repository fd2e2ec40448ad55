// SPDX-License-Identifier: MIT
//
// Tells the superuser to update the font path, which their installations do not change.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_fp_info_dlg;

Widget create_fp_info_dlg(const char* name, Widget parent);
void start_fp_info_dlg();
void stop_fp_info_dlg();
