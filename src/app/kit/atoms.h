// SPDX-License-Identifier: MIT
//
// The names of properties and messages, which the server knows as numbers.
#pragma once

#include <array>

#include <X11/Xlib.h>

namespace gw {

/// The messages and properties of drops from other programs (see drop_target.h).
inline constexpr std::array DROP_NAMES = {"XdndAware",    "XdndEnter",     "XdndPosition", "XdndStatus",
                                          "XdndLeave",    "XdndDrop",      "XdndFinished", "XdndSelection",
                                          "XdndTypeList", "XdndActionCopy"};

/// Asks the server for all names that windows need at the start, in one round trip. Xlib remembers the
/// answers, so whoever asks for one of them later does not wait.
void ask_for_atoms(Display* display);

}  // namespace gw
