// SPDX-License-Identifier: MIT
//
// The help dialog: the manual page, read once at start-up.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_help_dlg;
extern Widget wi_text;

/// Runs man(1) to have something to show.
Widget create_help_dlg(const char* name, Widget parent);
void start_help_dlg();

/// Gives `*text` (freed with XtFree) the content of the regular file at `path`, or the text that says that
/// there is no help.
void read_from_file(const char* path, char** text);
