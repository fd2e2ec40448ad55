// SPDX-License-Identifier: MIT
//
// Texts for failures: on standard error, and in the user's language for the windows.
#pragma once

#include <string>
#include <vector>

#include "core/failure.h"
#include "model/font_report.h"

namespace gw {

/// Prints one line to standard error. This is the program's listener for failures.
void say_on_standard_error(const Failure& failure);

/// For a window, in the user's language: what and why.
std::string failure_line(const Failure& failure);
/// The same and, where something follows from it, that in a line of its own.
std::vector<std::string> failure_lines(const Failure& failure);
/// Two lines for each font: its name and why nothing was done to it; the file or directory that this is
/// about.
std::vector<std::string> failure_lines(const FontReport& report);

/// Says a whole report on standard error.
void say_on_standard_error(const FontReport& report);

}  // namespace gw
