// SPDX-License-Identifier: MIT
//
// What the program answers on the terminal, without a display.
#pragma once

namespace gw {

/// Prints the help for "--help", and the version for "--version", as the first argument. False for any other
/// arguments; nothing is printed then.
bool answers_on_the_terminal(int argc, char** argv);

}  // namespace gw
