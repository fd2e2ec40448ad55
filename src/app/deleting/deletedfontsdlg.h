// SPDX-License-Identifier: MIT
//
// The window "Deleted Fonts": what can come back, and what brings it back or removes it for good.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_deleted_fonts_dlg;  ///< null where windows bring nothing back
extern Widget wi_for_good_dlg;       ///< the question before fonts are removed for good

Widget create_deleted_fonts_dlg(const char* name, Widget parent);
/// Looks what there is now, and shows it.
void start_deleted_fonts_dlg();
