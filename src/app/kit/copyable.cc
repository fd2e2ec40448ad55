// SPDX-License-Identifier: MIT
#include "app/kit/copyable.h"

#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/widgets.h"
#include "core/text.h"

#include <Xm/List.h>
#include <Xm/TextF.h>

namespace gw {

Widget copyable_field(Widget parent, const char* name) {
    Widget field = text_field(parent, name);
    Pixel background = 0;
    XtVaGetValues(parent, XmNbackground, &background, nullptr);
    XtVaSetValues(field, XmNeditable, False, XmNcursorPositionVisible, False, XmNbackground, background,
                  nullptr);
    static const XtTranslations CTRL_C = XtParseTranslationTable("Ctrl<Key>c: copy-clipboard()");
    XtOverrideTranslations(field, CTRL_C);
    return field;
}

void show_in_field(Widget field, const std::string& text) {
    XmTextFieldSetString(field, escaped(text).data());
    XmTextFieldShowPosition(field, 0);
}

Widget copyable_list(Widget parent, const char* name) {
    Widget list = scrolled_list(parent, name);
    XtVaSetValues(list, XmNprimaryOwnership, XmOWN_ALWAYS, nullptr);
    static const XtTranslations CTRL_C = XtParseTranslationTable("Ctrl<Key>c: ListCopyToClipboard()");
    XtOverrideTranslations(list, CTRL_C);
    return list;
}

bool copy_field(Widget field) {
    return XmTextFieldCopy(field, XtLastTimestampProcessed(XtDisplay(field))) != False;
}

bool copy_list(Widget list) {
    if (selected_count(list) == 0) return false;
    // The action takes the time from its event.
    XEvent event = {};
    event.xkey.type = KeyPress;
    event.xkey.display = XtDisplay(list);
    event.xkey.window = XtWindow(list);
    event.xkey.time = XtLastTimestampProcessed(XtDisplay(list));
    XtCallActionProc(list, "ListCopyToClipboard", &event, nullptr, 0);
    return true;
}

}  // namespace gw
