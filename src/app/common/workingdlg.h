// SPDX-License-Identifier: MIT
//
// The busy notice for work that takes long: a symbol and a text that the user cannot close.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_working_dlg;

Widget create_working_dlg(const char* name, Widget parent);
/// Show the notice with `text`, or change its text; null is an empty text. Both draw it.
void start_working_dlg(const char* text);
void update_working_dlg(const char* text);
void stop_working_dlg();
