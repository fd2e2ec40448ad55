// SPDX-License-Identifier: MIT
//
// Dialogs that are made when the user can need one, and not while he waits for the main window.
#pragma once

#include <X11/Intrinsic.h>

namespace gw {

/// A step that makes a dialog. Those that are given first are made first.
void make_later(void (*make)());

/// Makes those that are not made yet.
void make_dialogs_now();

/// The event loop of the program; it does not return. Dialogs are made before the first event that can ask
/// for one (a key, a button, a message of another program), or step by step when the program has been on the
/// screen for a moment.
[[noreturn]] void run_with_dialogs(XtAppContext context);

}  // namespace gw
