// SPDX-License-Identifier: MIT
//
// Signals that ask the program to end.
#pragma once

#include <X11/Intrinsic.h>

namespace gw {

/// From now on SIGINT, SIGTERM and SIGHUP call `end` from the event loop, where everything can be tidied up.
/// The same signal a second time ends the program at once, wherever it hangs. A signal that the program was
/// started to ignore (as by `nohup`) stays ignored.
void end_on_signals(XtAppContext context, void (*end)());

}  // namespace gw
