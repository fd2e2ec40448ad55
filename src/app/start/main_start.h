// SPDX-License-Identifier: MIT
//
// Start-up: environment, catalogue, display, resources, lists, windows. It is in the library and not in
// main.cc, so that tests can run the same code.
#pragma once

#include <string_view>

/// The whole program. Returns only when its arguments were answered on the terminal.
int gw_main(int argc, char** argv);

/// The very first steps: handlers for the end of memory and for exit, and the question who runs the program.
void begin_program();

/// Locale, environment, catalogue, display and resources; ends with the start-up notice on the screen.
void init_gui(int* argc, char** argv);

/// Sets NLSPATH and XFILESEARCHPATH to their defaults if they are not set, and adds the installation's
/// commands to PATH.
void set_env();

/// The steps after `init_gui`: font path, modules, lists, the main window, every dialog unless these are left
/// to `run_with_dialogs`. Then hides the notice and shows the window.
void build_program(bool makes_dialogs_later = false);
