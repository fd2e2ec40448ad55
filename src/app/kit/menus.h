// SPDX-License-Identifier: MIT
//
// Option menus and the entries of menus.
#pragma once

#include <string>

#include <X11/Intrinsic.h>

namespace gw {

struct OptionMenu {
    Widget menu;
    Widget pulldown;
};
/// An option menu with one entry; its label stands in a widget of its own.
OptionMenu option_menu(Widget parent, const char* name, const char* pulldown_name,
                       const std::string& first_entry);
/// A push button in a pulldown, under `name`, showing `text`.
Widget menu_button(Widget pulldown, const char* name, const std::string& text);

}  // namespace gw
