// SPDX-License-Identifier: MIT
#include "app/kit/window_titles.h"

#include "app/kit/handles.h"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <Xm/BulletinB.h>

namespace gw {

namespace {

bool& are_in_utf8() {
    static bool yes = false;
    return yes;
}

}  // namespace

void give_titles_in_utf8() {
    are_in_utf8() = true;
}

void tell_title(Widget shell, const std::string& title) {
    if (!are_in_utf8() || !XtIsRealized(shell)) return;
    Display* connection = XtDisplay(shell);
    char* text = name_arg(title.c_str());
    XTextProperty property = {};
    if (XmbTextListToTextProperty(connection, &text, 1, XUTF8StringStyle, &property) < Success) return;
    for (const char* name : {"_NET_WM_NAME", "_NET_WM_ICON_NAME"})
        XSetTextProperty(connection, XtWindow(shell), &property, XInternAtom(connection, name, False));
    XFree(property.value);
}

void tell_title_of(Widget dialog) {
    XmString title = nullptr;
    XtVaGetValues(dialog, XmNdialogTitle, &title, nullptr);
    const XmText owned(title);
    if (owned) tell_title(XtParent(dialog), text_of(title));
}

}  // namespace gw
