// SPDX-License-Identifier: MIT
//
// The progress dialog: a scale that shows how many fonts have been installed or deleted so far. Where windows
// control work (see work_control.h), also which font is in work, and a button that cancels the work.
#pragma once

#include <string>

#include <X11/Intrinsic.h>

extern Widget wi_progress_dlg;

Widget create_progress_dlg(const char* name, Widget parent);
/// Shows the dialog with a scale from `min` to `max`, set to `min`, and draws it. Nothing happens when `min`
/// is greater than `max`.
void start_progress_dlg(int min, int max, const char* title, const char* label);
void update_progress_dlg(int value);
void stop_progress_dlg();

namespace gw {

// These are for work under the user's control. None of them handles events.

/// Shows the dialog for so many items.
void open_progress_dlg(int count, const char* title);
/// So many items are done; the count in words, and the name of the next item.
void show_progress(int done, const std::string& count, const std::string& name);
/// Something else in the place of the name.
void show_progress_text(const std::string& text);
/// What Cancel, Escape and the close box call; without it Cancel is insensitive, and the dialog cannot be
/// closed.
void set_progress_cancel(void (*cancel)());

}  // namespace gw
