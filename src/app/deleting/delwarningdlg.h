// SPDX-License-Identifier: MIT
//
// Asks before fonts are deleted.
#pragma once

#include <string>

#include <X11/Intrinsic.h>

extern Widget wi_del_warning_dlg;

Widget create_del_warning_dlg(const char* name, Widget parent);
/// Replaces the question.
void set_del_warning(const std::string& question);
/// Shows the question. `cb` is called once: with 1 if the user confirms, else with 0.
void start_del_warning_dlg(void (*cb)(char));
/// Takes the question away, as if it was answered with 0.
void stop_del_warning_dlg();
