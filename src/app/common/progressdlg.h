// SPDX-License-Identifier: MIT
//
// The progress dialog: a scale that shows how many fonts have been installed or deleted so far.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_progress_dlg;

Widget create_progress_dlg(const char* name, Widget parent);
/// Shows the dialog with a scale from `min` to `max`, set to `min`, and draws it. Nothing happens when `min`
/// is greater than `max`.
void start_progress_dlg(int min, int max, const char* title, const char* label);
void update_progress_dlg(int value);
void stop_progress_dlg();
