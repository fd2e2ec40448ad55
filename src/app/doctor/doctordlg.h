// SPDX-License-Identifier: MIT
//
// The window "Why Is a Font Missing?": the user pastes the message of a program, and gets the answer of the
// diagnosis, what helps, and the way back.
#pragma once

#include <string>

#include <X11/Intrinsic.h>

extern Widget wi_doctor_dlg;  ///< null where windows do not find missing fonts

Widget create_doctor_dlg(const char* name, Widget parent);
void start_doctor_dlg();
/// Shows the window, and asks for the font of that name.
void start_doctor_dlg_about(const std::string& name);
