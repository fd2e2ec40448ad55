// SPDX-License-Identifier: MIT
#include "app/kit/gw_gui_util.h"

#include <string>

#include "app/kit/events.h"
#include "app/kit/handles.h"
#include "app/kit/toolkit.h"
#include "core/text.h"

#include <X11/cursorfont.h>
#include <Xm/DialogS.h>

namespace {

constexpr std::size_t LABEL_LIMIT = 10000;

}  // namespace

void popup_cb(Widget w, void* /*client_data*/, void* /*call_data*/) {
    Widget shell = w;
    while (shell != nullptr && XtClass(shell) != xmDialogShellWidgetClass) shell = XtParent(shell);
    if (shell == nullptr) return;
    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(shell, XmNwidth, &width, XmNheight, &height, nullptr);
    XtVaSetValues(shell, XmNx, (WidthOfScreen(XtScreen(shell)) - width) / 2, XmNy,
                  (HeightOfScreen(XtScreen(shell)) - height) / 2, nullptr);
}

void set_window_title(Widget dialog, const char* title) {
    const gw::XmText string = gw::xm_text(title);
    XtVaSetValues(dialog, XmNdialogTitle, string.get(), nullptr);
}

void set_watch_cursor(Widget w, int on) {
    if (watch_cursor == 0) watch_cursor = XCreateFontCursor(display, XC_watch);
    if (w == nullptr || !XtIsManaged(w) || XtWindow(w) == None) return;
    XDefineCursor(display, XtWindow(w), on != 0 ? watch_cursor : None);
    process_xt_events();
}

void activate(Widget w, char on) {
    XtSetSensitive(w, on != 0 ? True : False);
}

Widget get_constraint_widget(Widget w, Widget ancestor) {
    while (w != nullptr && XtParent(w) != ancestor) w = XtParent(w);
    return w;
}

void update_label(Widget w, const char* a, const char* b) {
    std::string text = a != nullptr ? a : "";
    if (b != nullptr) text += b;
    const gw::XmText string = gw::xm_text(gw::truncated(text, LABEL_LIMIT - 1));
    XtVaSetValues(w, XmNlabelString, string.get(), nullptr);
}
