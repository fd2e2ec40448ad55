// SPDX-License-Identifier: MIT
//
// The help dialog: the manual page, read once: at start-up, or when the dialog is first opened.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_help_dlg;
extern Widget wi_text;

/// Creates the dialog, and runs man(1) for its text unless that is done when it is opened.
Widget create_help_dlg(const char* name, Widget parent);
void start_help_dlg();
/// Shows the dialog, and the page from the line `heading` on, if it has that line.
void start_help_dlg_at(const char* heading);

/// Sets `*text` (freed with XtFree) to the content of the regular file at `path`, or to the text that says
/// that there is no help.
void read_from_file(const char* path, char** text);
