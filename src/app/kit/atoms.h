// SPDX-License-Identifier: MIT
//
// The names of properties and messages, which the server knows as numbers.
#pragma once

#include <X11/Xlib.h>

namespace gw {

/// Asks the server for all names that windows need at the start, in one round trip. Xlib remembers the
/// answers, so whoever asks for one of them later does not wait.
void ask_for_atoms(Display* display);

}  // namespace gw
