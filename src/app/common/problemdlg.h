// SPDX-License-Identifier: MIT
//
// The question after a font that failed: why, and whether the work goes on without it.
#pragma once

#include <string>
#include <vector>

#include <X11/Intrinsic.h>

extern Widget wi_problem_dlg;

enum class Decision { NONE, SKIP, SKIP_ALL, STOP };

Widget create_problem_dlg(const char* name, Widget parent);
/// Shows the question with these lines: what failed, and why. No other window takes input until it is
/// answered.
void start_problem_dlg(const std::vector<std::string>& lines);
void stop_problem_dlg();
/// What the user has answered; `NONE` until then. Closing the window is `STOP`.
[[nodiscard]] Decision problem_decision();
