// SPDX-License-Identifier: MIT
#include "app/kit/gw_gui_util.h"

#include <string>

#include "app/kit/events.h"
#include "app/kit/handles.h"
#include "app/kit/looks.h"
#include "app/kit/mnemonics.h"
#include "app/kit/toolkit.h"
#include "app/kit/window_titles.h"
#include "core/text.h"

#include <X11/cursorfont.h>
#include <Xm/DialogS.h>

namespace {

constexpr std::size_t LABEL_LIMIT = 10000;

struct Size {
    Dimension width;
    Dimension height;
};

Size size_of(Widget w) {
    Size size = {};
    XtVaGetValues(w, XmNwidth, &size.width, XmNheight, &size.height, nullptr);
    return size;
}

/// The size that the whole text needs.
Size natural_size(Widget w) {
    XtWidgetGeometry natural = {};
    XtQueryGeometry(w, nullptr, &natural);
    return {natural.width, natural.height};
}

/// Asks the parent for a size that the widget already has.
void ask_again(Widget w, const char* resource, Dimension size) {
    XtVaSetValues(w, resource, size + 1, nullptr);
    XtVaSetValues(w, resource, static_cast<int>(size), nullptr);
}

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
    gw::tell_title(XtParent(dialog), title);
}

void show_watch_cursor(Widget w, bool on) {
    if (watch_cursor == 0) watch_cursor = XCreateFontCursor(display, XC_watch);
    if (w == nullptr || !XtIsManaged(w) || XtWindow(w) == None) return;
    XDefineCursor(display, XtWindow(w), on ? watch_cursor : None);
}

void set_watch_cursor(Widget w, int on) {
    if (w == nullptr || !XtIsManaged(w) || XtWindow(w) == None) return;
    show_watch_cursor(w, on != 0);
    process_xt_events();
}

void activate(Widget w, char on) {
    XtSetSensitive(w, on != 0 ? True : False);
    gw::show_sensitivity(w);
}

Widget get_constraint_widget(Widget w, Widget ancestor) {
    while (w != nullptr && XtParent(w) != ancestor) w = XtParent(w);
    return w;
}

void update_label(Widget w, const char* a, const char* b) {
    std::string text = a != nullptr ? a : "";
    if (b != nullptr) text += b;
    const gw::XmText string = gw::xm_text(gw::truncated(text, LABEL_LIMIT - 1));
    const Size before = size_of(w);
    const Size needed_before = natural_size(w);
    XtVaSetValues(w, XmNlabelString, string.get(), nullptr);
    // A form keeps the size that each child has asked for last. A label whose new text fits its box exactly
    // asks for nothing, and when the form gets smaller, it would give that label the size of the old text.
    const Size needed = natural_size(w);
    if (needed.width == before.width && needed.width != needed_before.width)
        ask_again(w, XmNwidth, needed.width);
    if (needed.height == before.height && needed.height != needed_before.height)
        ask_again(w, XmNheight, needed.height);
    gw::assign_mnemonics_around(w);
}
