// SPDX-License-Identifier: MIT
//
// Start-up: environment, catalogue, display, resources, lists, windows. In the library and not in main.cc, so
// that tests take the same road.
#pragma once

#include <string_view>

/// The whole program; returns only when the event loop does.
int gw_main(int argc, char** argv);

/// The very first steps: what happens when memory runs out and at exit, and who runs the program.
void begin_program();

/// Locale, environment, catalogue, display and resources; ends with the start-up notice on the screen.
void init_gui(int* argc, char** argv);

/// Gives NLSPATH and XFILESEARCHPATH their defaults where the environment has none, and puts the
/// installation's commands on PATH.
void set_env();

namespace gw {

/// Whether a warning of the toolkit is only about a font that the server does not have, or about what a font
/// lacks.
[[nodiscard]] bool is_font_noise(std::string_view warning);

}  // namespace gw

/// The steps behind `init_gui`: font path, modules, lists, the main window, every dialog; takes the notice
/// down and maps the window.
void build_program();
