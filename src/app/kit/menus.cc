// SPDX-License-Identifier: MIT
#include "app/kit/menus.h"

#include "app/kit/busy_windows.h"
#include "app/kit/handles.h"
#include "app/kit/widgets.h"

#include <Xm/CascadeB.h>
#include <Xm/PushB.h>
#include <Xm/RowColumn.h>

namespace gw {

namespace {

void add_entries(Widget pulldown, std::span<const MenuEntry> entries) {
    for (const MenuEntry& entry : entries) {
        if (entry.callback == nullptr) {
            separator(pulldown, entry.name);
            continue;
        }
        Widget button = menu_button(pulldown, entry.name, text_of(entry.text));
        XtAddCallback(button, XmNactivateCallback, entry.callback, nullptr);
        if (entry.handle != nullptr) *entry.handle = button;
    }
}

}  // namespace

Menu pulldown_menu(Widget menu_bar, const MenuNames& names, Message title,
                   std::span<const MenuEntry> entries) {
    Widget pulldown = XmCreatePulldownMenu(menu_bar, name_arg(names.pulldown), nullptr, 0);
    add_entries(pulldown, entries);
    const XmText text = xm_text(text_of(title));
    Arg args[2];
    XtSetArg(args[0], XmNlabelString, text.get());
    XtSetArg(args[1], XmNsubMenuId, pulldown);
    Widget cascade = XmCreateCascadeButton(menu_bar, name_arg(names.cascade), args, 2);
    XtManageChild(cascade);
    return {pulldown, cascade};
}

OptionMenu option_menu(Widget parent, const char* name, const char* pulldown_name,
                       const std::string& first_entry) {
    Widget pulldown = XmCreatePulldownMenu(parent, name_arg(pulldown_name), nullptr, 0);
    Widget first = menu_button(pulldown, "_initial_entry", first_entry);
    const XmText empty = xm_text("");
    Arg args[3];
    XtSetArg(args[0], XmNsubMenuId, pulldown);
    XtSetArg(args[1], XmNmenuHistory, first);
    XtSetArg(args[2], XmNlabelString, empty.get());
    Widget menu = XmCreateOptionMenu(parent, name_arg(name), args, 3);
    XtManageChild(menu);
    return {menu, pulldown};
}

OptionMenu option_menu(Widget parent, const char* name, const char* pulldown_name, Message text,
                       std::span<const MenuEntry> entries) {
    Widget pulldown = XmCreatePulldownMenu(parent, name_arg(pulldown_name), nullptr, 0);
    add_entries(pulldown, entries);
    const XmText label = xm_text(text_of(text));
    Arg args[2];
    XtSetArg(args[0], XmNsubMenuId, pulldown);
    XtSetArg(args[1], XmNlabelString, label.get());
    Widget menu = XmCreateOptionMenu(parent, name_arg(name), args, 2);
    XtManageChild(menu);
    return {menu, pulldown};
}

Widget menu_button(Widget pulldown, const char* name, const std::string& text) {
    const XmText string = xm_text(text);
    Arg args[1];
    XtSetArg(args[0], XmNlabelString, string.get());
    Widget button = XmCreatePushButton(pulldown, name_arg(name), args, 1);
    XtManageChild(button);
    return button;
}

std::vector<Widget> entries_of(Widget pulldown) {
    WidgetList children = nullptr;
    Cardinal count = 0;
    XtVaGetValues(pulldown, XmNchildren, &children, XmNnumChildren, &count, nullptr);
    std::vector<Widget> entries(children, children + count);
    std::erase_if(entries, [](Widget entry) { return !XtIsManaged(entry); });
    return entries;
}

void take_entry_away(Widget button) {
    XtUnmanageChild(button);
    BusyWindows::destroy(button);
}

std::string chosen_entry(Widget option_menu) {
    Widget button = nullptr;
    XtVaGetValues(option_menu, XmNmenuHistory, &button, nullptr);
    return button != nullptr ? label_of(button) : std::string();
}

}  // namespace gw
