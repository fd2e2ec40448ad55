// SPDX-License-Identifier: MIT
//
// The menus of a menu bar, given as tables, and option menus.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "texts/messages.h"

#include <X11/Intrinsic.h>

namespace gw {

/// One entry of a menu. An entry without a callback is a separator.
struct MenuEntry {
    const char* name;
    Message text{};
    XtCallbackProc callback = nullptr;
    Widget* handle = nullptr;  ///< set to the entry, when it is needed later
};

struct Menu {
    Widget pulldown;
    Widget cascade;  ///< its button in the menu bar
};
struct MenuNames {
    const char* pulldown;
    const char* cascade;
};
/// A menu of a menu bar, with its entries in order.
Menu pulldown_menu(Widget menu_bar, const MenuNames& names, Message title,
                   std::span<const MenuEntry> entries);

struct OptionMenu {
    Widget menu;
    Widget pulldown;
};
/// An option menu with one entry; its label is a widget of its own.
OptionMenu option_menu(Widget parent, const char* name, const char* pulldown_name,
                       const std::string& first_entry);
/// An option menu with these entries and a label.
OptionMenu option_menu(Widget parent, const char* name, const char* pulldown_name, Message text,
                       std::span<const MenuEntry> entries);

/// A push button in a pulldown, under `name`, showing `text`.
Widget menu_button(Widget pulldown, const char* name, const std::string& text);
/// The buttons of a pulldown, without those that were taken away.
std::vector<Widget> entries_of(Widget pulldown);
/// Takes a button out of its pulldown. It is destroyed when no callback can use it any more.
void take_entry_away(Widget button);
/// The text of the entry that an option menu shows; empty without one.
std::string chosen_entry(Widget option_menu);

}  // namespace gw
