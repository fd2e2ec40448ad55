// SPDX-License-Identifier: MIT
#include "app/kit/widgets.h"

#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"

#include <Xm/Form.h>
#include <Xm/Label.h>
#include <Xm/PushB.h>
#include <Xm/ScrolledW.h>
#include <Xm/Separator.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>

namespace gw {

namespace {

Widget managed(Widget w) {
    XtManageChild(w);
    return w;
}

}  // namespace

Widget form(Widget parent, const char* name) {
    return managed(XmCreateForm(parent, name_arg(name), nullptr, 0));
}

Widget label(Widget parent, const char* name, const std::string& text) {
    const XmText string = xm_text(text);
    Arg args[2];
    XtSetArg(args[0], XmNlabelString, string.get());
    XtSetArg(args[1], XmNalignment, XmALIGNMENT_BEGINNING);
    return managed(XmCreateLabel(parent, name_arg(name), args, 2));
}

Widget label(Widget parent, const char* name, Message text) {
    return label(parent, name, text_of(text));
}

Widget push_button(Widget parent, const char* name, Message text) {
    const XmText string = xm_text(text_of(text));
    Arg args[1];
    XtSetArg(args[0], XmNlabelString, string.get());
    return managed(XmCreatePushButton(parent, name_arg(name), args, 1));
}

Widget toggle(Widget parent, const char* name, const std::string& text) {
    const XmText string = xm_text(text);
    Arg args[2];
    XtSetArg(args[0], XmNlabelString, string.get());
    XtSetArg(args[1], XmNindicatorOn, XmINDICATOR_CHECK_BOX);
    return managed(XmCreateToggleButton(parent, name_arg(name), args, 2));
}

Widget separator(Widget parent, const char* name) {
    return managed(XmCreateSeparator(parent, name_arg(name), nullptr, 0));
}

Widget text_field(Widget parent, const char* name) {
    return managed(XmCreateTextField(parent, name_arg(name), nullptr, 0));
}

Widget scrolled_window(Widget parent, const char* name) {
    Arg args[1];
    XtSetArg(args[0], XmNscrollingPolicy, XmAUTOMATIC);
    return managed(XmCreateScrolledWindow(parent, name_arg(name), args, 1));
}

std::string label_of(Widget w) {
    XmString string = nullptr;
    XtVaGetValues(w, XmNlabelString, &string, nullptr);
    const XmText owned(string);
    return owned ? text_of(owned.get()) : std::string();
}

void set_label(Widget w, const std::string& text) {
    update_label(w, text.c_str(), nullptr);
}

std::string field_text(Widget field) {
    const XtOwned<char> text(XmTextFieldGetString(field));
    return text ? text.get() : "";
}

}  // namespace gw
