// SPDX-License-Identifier: MIT
//
// The media dialog: asks for a floppy or a CD-ROM, asks the host's service whether there is one, and ejects
// it.
#pragma once

#include <X11/Intrinsic.h>

extern Widget wi_rmedia_dlg;

/// The media that can be chosen, as the caller's callback gets them. NO_MEDIUM means that one was ejected.
enum RmediaChoice : int { NO_MEDIUM = 0, CDROM_MEDIUM = 1, FLOPPY_MEDIUM = 2 };

Widget create_rmedia_dlg(const char* name, Widget parent);
/// Shows the dialog. `cb` is called whenever a medium was found or ejected.
void popup_rmedia_dlg(void (*cb)(int));
/// Hides the dialog and forgets the callback.
void popdown_rmedia_dlg();
/// "cd_rom" or "floppy".
const char* get_current_rmedia_choice();
