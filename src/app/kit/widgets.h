// SPDX-License-Identifier: MIT
//
// Builders for the simple widgets in dialogs, and ways to get and set what they show. Each builder creates
// one managed widget of that name.
#pragma once

#include <string>

#include "texts/messages.h"

#include <X11/Intrinsic.h>

namespace gw {

Widget form(Widget parent, const char* name);
Widget label(Widget parent, const char* name, Message text);
Widget label(Widget parent, const char* name, const std::string& text);
Widget push_button(Widget parent, const char* name, Message text);
/// A toggle button that is not set.
Widget toggle(Widget parent, const char* name, const std::string& text);
Widget separator(Widget parent, const char* name);
Widget text_field(Widget parent, const char* name);
Widget scrolled_window(Widget parent, const char* name);

std::string label_of(Widget w);
/// Sets the label's text.
void set_label(Widget w, const std::string& text);
std::string field_text(Widget text_field);

}  // namespace gw
