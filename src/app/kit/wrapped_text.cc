// SPDX-License-Identifier: MIT
#include "app/kit/wrapped_text.h"

#include <algorithm>
#include <cctype>

#include "app/kit/handles.h"
#include "app/kit/toolkit.h"
#include "core/text.h"

#include <Xm/Text.h>

namespace gw {

namespace {

constexpr const char* READING_KEYS = "Ctrl<Key>c: copy-clipboard()\nCtrl<Key>a: select-all()";
constexpr const char* WRITING_KEYS =
    "Ctrl<Key>c: copy-clipboard()\n"
    "Ctrl<Key>x: cut-clipboard()\n"
    "Ctrl<Key>v: paste-clipboard()\n"
    "Ctrl<Key>a: select-all()\n"
    "Shift<Key>Tab: prev-tab-group()\n"
    "~Shift<Key>Tab: next-tab-group()\n"
    "Shift<Key>Return: newline()\n"
    "~Shift<Key>Return: Entered()\n"
    "~Shift<Key>KP_Enter: Entered()";

Widget scrolled_text(Widget parent, const char* name, short rows, Boolean editable) {
    Arg args[7];
    Cardinal count = 0;
    XtSetArg(args[count], XmNeditMode, XmMULTI_LINE_EDIT), ++count;
    XtSetArg(args[count], XmNeditable, editable), ++count;
    XtSetArg(args[count], XmNcursorPositionVisible, editable), ++count;
    XtSetArg(args[count], XmNwordWrap, True), ++count;
    XtSetArg(args[count], XmNscrollHorizontal, False), ++count;
    XtSetArg(args[count], XmNrows, rows), ++count;
    Widget text = XmCreateScrolledText(parent, name_arg(name), args, count);
    XtManageChild(text);
    return text;
}

/// In the encodings of all locales that have catalogues, these bytes are control characters and nothing else.
void blank_control_characters(char* bytes, int length) {
    std::replace_if(
        bytes, bytes + length,
        [](char c) {
            return c != '\n' && c != '\t' && std::iscntrl(static_cast<unsigned char>(c)) != 0 &&
                   (c & 0x80) == 0;
        },
        ' ');
}

/// Cuts what is inserted down to the room that is left, between two characters of the locale.
void verify_cb(Widget text, XtPointer, XtPointer call_data) {
    const auto* change = static_cast<XmTextVerifyCallbackStruct*>(call_data);
    if (change == nullptr || change->text == nullptr || change->text->ptr == nullptr) return;
    const long room = MOST_WRITTEN - XmTextGetLastPosition(text) + (change->endPos - change->startPos);
    change->text->length = static_cast<int>(std::clamp<long>(room, 0, change->text->length));
    blank_control_characters(change->text->ptr, change->text->length);
}

void entered_action(Widget text, XEvent* event, String*, Cardinal*) {
    XmAnyCallbackStruct call = {XmCR_ACTIVATE, event};
    XtCallCallbacks(text, XmNactivateCallback, &call);
}

XtTranslations writing_keys() {
    static XtActionsRec actions[] = {{name_arg("Entered"), entered_action}};
    static const XtTranslations keys = [] {
        XtAppAddActions(app, actions, XtNumber(actions));
        return XtParseTranslationTable(WRITING_KEYS);
    }();
    return keys;
}

}  // namespace

Widget wrapped_text(Widget parent, const char* name, short rows) {
    Widget text = scrolled_text(parent, name, rows, False);
    Pixel background = 0;
    XtVaGetValues(parent, XmNbackground, &background, nullptr);
    XtVaSetValues(text, XmNbackground, background, nullptr);
    static const XtTranslations keys = XtParseTranslationTable(READING_KEYS);
    XtOverrideTranslations(text, keys);
    return text;
}

void show_wrapped(Widget text, const std::string& shown) {
    std::string lines;
    for (const std::string_view line : lines_of(shown)) {
        if (!lines.empty()) lines += '\n';
        lines += escaped(line);
    }
    XmTextSetString(text, lines.data());
    XmTextSetTopCharacter(text, 0);
}

Widget pasted_text(Widget parent, const char* name, short rows, XtCallbackProc entered,
                   XtPointer client_data) {
    Widget text = scrolled_text(parent, name, rows, True);
    XtOverrideTranslations(text, writing_keys());
    XtAddCallback(text, XmNmodifyVerifyCallback, verify_cb, nullptr);
    XtAddCallback(text, XmNactivateCallback, entered, client_data);
    return text;
}

std::string wrapped_text_of(Widget text) {
    const XtOwned<char> content(XmTextGetString(text));
    return content ? content.get() : "";
}

}  // namespace gw
