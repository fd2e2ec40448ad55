// SPDX-License-Identifier: MIT
//
// The notice for long work: a symbol and a text. The user cannot close it.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_working_dlg;

Widget create_working_dlg(const char* name, Widget parent);
/// Show the notice with `text`, or change its text; null is an empty text. Both draw it.
void start_working_dlg(const char* text);
void update_working_dlg(const char* text);
void stop_working_dlg();
