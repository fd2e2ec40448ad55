// SPDX-License-Identifier: MIT
//
// The warning dialog. The caller gives it a title and a message.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_warning_dlg;

Widget create_warning_dlg(const char* name, Widget parent);
void start_warning_dlg(const char* title, const char* message);
