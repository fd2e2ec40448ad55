// SPDX-License-Identifier: MIT
//
// Asks before fonts are deleted.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_del_warning_dlg;

Widget create_del_warning_dlg(const char* name, Widget parent);
/// Shows the question; `cb` is called once, with 1 when the user confirms and 0 when not.
void start_del_warning_dlg(void (*cb)(char));
