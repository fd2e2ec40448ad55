// SPDX-License-Identifier: MIT
#include "widget/widget_test_support.h"

#include <dlfcn.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>

#include "app/kit/events.h"
#include "app/kit/handles.h"
#include "app/kit/menus.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/start/main_start.h"
#include "support/window_fonts.h"

// X headers come last.
#include <X11/Shell.h>
#include <Xm/FileSB.h>
#include <Xm/List.h>
#include <Xm/MessageB.h>
#include <Xm/Protocols.h>
#include <Xm/Screen.h>
#include <Xm/TextF.h>

namespace {

std::vector<gw::test::CursorChange>& recorded_changes() {
    static std::vector<gw::test::CursorChange> changes;
    return changes;
}

}  // namespace

// The server cannot be asked for a window's cursor, so the request is intercepted.
extern "C" int XDefineCursor(Display* connection, Window window, Cursor cursor) {
    using Function = int (*)(Display*, Window, Cursor);
    static const auto real = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "XDefineCursor"));
    recorded_changes().push_back({window, cursor});
    return real(connection, window, cursor);
}

namespace gw::test {

void start_toolkit(const std::vector<std::string>& arguments) {
    static std::vector<std::string> words;
    static std::vector<char*> argv;
    words.assign(1, "glyphward");
    words.insert(words.end(), arguments.begin(), arguments.end());
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    int argc = static_cast<int>(words.size());
    use_window_fonts();
    begin_program();
    init_gui(&argc, argv.data());
}

void finish_start() {
    build_program();
    pump_until([] { return is_viewable(wi_toplevel); });
}

void start_program(const std::vector<std::string>& arguments) {
    if (wi_toplevel != nullptr) return;
    const bool decides = std::any_of(arguments.begin(), arguments.end(), [](const std::string& argument) {
        return argument.find("gw_modern_windows") != std::string::npos;
    });
    std::vector<std::string> all = arguments;
    if (!decides) all.insert(all.end(), {"-xrm", "Glyphward*gw_modern_windows: False"});
    start_toolkit(all);
    finish_start();
}

bool pump_until(const std::function<bool()>& condition, int milliseconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    const Ticker ticker;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        // Only with XtIMAll work procedures run.
        XtAppProcessEvent(app, XtIMAll);
    }
    return true;
}

void pump() {
    process_xt_events();
}

Widget find(Widget root, const std::string& name) {
    return XtNameToWidget(root, ("*" + name).c_str());
}

bool is_viewable(Widget widget) {
    Widget shell = widget;
    while (!XtIsShell(shell)) shell = XtParent(shell);
    if (!XtIsRealized(shell) || !XtIsManaged(widget)) {
        if (widget != shell || !XtIsRealized(shell)) return false;
    }
    XWindowAttributes attributes;
    return XGetWindowAttributes(display, XtWindow(shell), &attributes) != 0 &&
           attributes.map_state == IsViewable;
}

std::string title_of(Widget widget) {
    Widget shell = widget;
    while (!XtIsShell(shell)) shell = XtParent(shell);
    if (XtIsRealized(shell)) {
        XTextProperty property = {};
        if (XGetWMName(display, XtWindow(shell), &property) != 0) {
            const std::string title(reinterpret_cast<char*>(property.value));
            XFree(property.value);
            return title;
        }
    }
    String title = nullptr;
    XtVaGetValues(shell, XmNtitle, &title, nullptr);
    return title != nullptr ? title : "";
}

bool press(Widget button) {
    if (button == nullptr || !XtIsManaged(button) || !XtIsSensitive(button)) return false;
    XmPushButtonCallbackStruct call = {};
    call.reason = XmCR_ACTIVATE;
    XtCallCallbacks(button, XmNactivateCallback, &call);
    pump();
    return true;
}

bool choose(Widget option_menu, const std::string& text) {
    Widget pulldown = nullptr;
    XtVaGetValues(option_menu, XmNsubMenuId, &pulldown, nullptr);
    WidgetList children = nullptr;
    Cardinal count = 0;
    XtVaGetValues(pulldown, XmNchildren, &children, XmNnumChildren, &count, nullptr);
    for (Cardinal i = 0; i < count; ++i) {
        if (!XtIsManaged(children[i]) || label_of(children[i]) != text) continue;
        Widget entry = children[i];
        XtVaSetValues(option_menu, XmNmenuHistory, entry, nullptr);
        return press(entry);
    }
    return false;
}

std::vector<std::string> choices(Widget pulldown) {
    std::vector<std::string> result;
    WidgetList children = nullptr;
    Cardinal count = 0;
    XtVaGetValues(pulldown, XmNchildren, &children, XmNnumChildren, &count, nullptr);
    for (Cardinal i = 0; i < count; ++i) {
        if (XtIsManaged(children[i])) result.push_back(label_of(children[i]));
    }
    return result;
}

std::string chosen(Widget option_menu) {
    Widget entry = nullptr;
    XtVaGetValues(option_menu, XmNmenuHistory, &entry, nullptr);
    return entry != nullptr ? label_of(entry) : "";
}

int in_pixels(int font_units, unsigned char orientation) {
    int unit = 0;
    XtVaGetValues(XmGetXmScreen(screen),
                  orientation == XmHORIZONTAL ? XmNhorizontalFontUnit : XmNverticalFontUnit, &unit, nullptr);
    return font_units * unit;
}

void close_box(Widget widget) {
    Widget shell = widget;
    while (!XtIsShell(shell)) shell = XtParent(shell);
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.window = XtWindow(shell);
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    XSendEvent(display, XtWindow(shell), False, NoEventMask, &event);
    pump();
}

void press_key(Widget widget, const char* key, unsigned modifiers) {
    XEvent event = {};
    event.xkey.window = XtWindow(widget);
    event.xkey.root = RootWindowOfScreen(XtScreen(widget));
    event.xkey.time = XtLastTimestampProcessed(display);
    event.xkey.keycode = XKeysymToKeycode(display, XStringToKeysym(key));
    event.xkey.same_screen = True;
    event.xkey.state = modifiers;
    for (const int type : {KeyPress, KeyRelease}) {
        event.type = type;
        // The key press may have unmapped the window, but the window still exists.
        XSendEvent(display, XtWindow(widget), False, NoEventMask, &event);
    }
    pump();
}

std::string message_of(Widget message_box) {
    XmString message = nullptr;
    XtVaGetValues(message_box, XmNmessageString, &message, nullptr);
    const XmText owned(message);
    return owned ? text_of(owned.get()) : std::string();
}

Widget part_of(Widget box, unsigned char part) {
    return XmIsFileSelectionBox(box) ? XmFileSelectionBoxGetChild(box, part)
                                     : XmMessageBoxGetChild(box, part);
}

void select(Widget list, std::initializer_list<int> positions) {
    XmListDeselectAllItems(list);
    XtVaSetValues(list, XmNselectionPolicy, XmMULTIPLE_SELECT, nullptr);
    int last = 0;
    for (const int position : positions) {
        XmListSelectPos(list, position, False);
        last = position;
    }
    XtVaSetValues(list, XmNselectionPolicy, XmEXTENDED_SELECT, nullptr);
    XmListCallbackStruct call = {};
    call.reason = XmCR_EXTENDED_SELECT;
    call.item_position = last;
    call.selected_item_count = static_cast<int>(positions.size());
    XtCallCallbacks(list, XmNextendedSelectionCallback, &call);
    pump();
}

std::vector<std::string> items(Widget list) {
    std::vector<std::string> result;
    XmStringTable strings = nullptr;
    int count = 0;
    XtVaGetValues(list, XmNitems, &strings, XmNitemCount, &count, nullptr);
    for (int i = 0; i < count; ++i) {
        const XtOwned<char> text(static_cast<char*>(
            XmStringUnparse(strings[i], nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL)));
        result.emplace_back(text.get());
    }
    return result;
}

std::string shown_text(Widget field) {
    return field_text(field);
}

void type_into(Widget field, const std::string& text) {
    // The program sees a user's edit as a change with an event.
    XEvent event = {};
    event.type = KeyPress;
    std::string own = text;
    XmTextFieldSetString(field, own.data());
    XmAnyCallbackStruct call = {XmCR_VALUE_CHANGED, &event};
    XtCallCallbacks(field, XmNvalueChangedCallback, &call);
    pump();
}

const std::vector<CursorChange>& cursor_changes() {
    return recorded_changes();
}

}  // namespace gw::test
