// SPDX-License-Identifier: MIT
//
// The help dialog: the manual page, read once at start-up.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_help_dlg;
extern Widget wi_text;

/// Creates the dialog and runs man(1) for its text.
Widget create_help_dlg(const char* name, Widget parent);
void start_help_dlg();

/// Sets `*text` (freed with XtFree) to the content of the regular file at `path`, or to the text that says
/// that there is no help.
void read_from_file(const char* path, char** text);
