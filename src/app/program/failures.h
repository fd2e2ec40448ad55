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

/// For a window, in the user's language: what failed and why.
std::string failure_line(const Failure& failure);
/// The same; if something follows from the failure, a second line says so.
std::vector<std::string> failure_lines(const Failure& failure);
/// Two lines for each font: its name with the reason, and the file or directory where it failed.
std::vector<std::string> failure_lines(const FontReport& report);

/// Prints all failures of a report to standard error.
void say_on_standard_error(const FontReport& report);

}  // namespace gw
