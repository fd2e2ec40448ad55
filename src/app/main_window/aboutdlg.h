// SPDX-License-Identifier: MIT
//
// The about box.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_about_dlg;

Widget create_about_dlg(const char* name, Widget parent);
void start_about_dlg();
