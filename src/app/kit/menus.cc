// SPDX-License-Identifier: MIT
#include "app/kit/menus.h"

#include "app/kit/handles.h"

#include <Xm/PushB.h>
#include <Xm/RowColumn.h>

namespace gw {

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

Widget menu_button(Widget pulldown, const char* name, const std::string& text) {
    const XmText string = xm_text(text);
    Arg args[1];
    XtSetArg(args[0], XmNlabelString, string.get());
    Widget button = XmCreatePushButton(pulldown, name_arg(name), args, 1);
    XtManageChild(button);
    return button;
}

}  // namespace gw
