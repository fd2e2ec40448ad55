// SPDX-License-Identifier: MIT
//
// The progress dialog: a scale that counts the fonts that an installation or a deletion has done.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_progress_dlg;

Widget create_progress_dlg(const char* name, Widget parent);
/// Shows the dialog with a scale from `min` to `max` that stands at `min`, and has it drawn. Nothing happens
/// when `min` is greater than `max`.
void start_progress_dlg(int min, int max, const char* title, const char* label);
void update_progress_dlg(int value);
void stop_progress_dlg();
