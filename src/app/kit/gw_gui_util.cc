// SPDX-License-Identifier: MIT
#include "app/kit/gw_gui_util.h"

#include <algorithm>
#include <chrono>

#include "app/program/program_objects.h"
#include "app/samples/sample_text_cb.h"

#include <X11/Xatom.h>
#include <X11/cursorfont.h>
#include <Xm/AtomMgr.h>
#include <Xm/DialogS.h>
#include <Xm/Form.h>
#include <Xm/Label.h>
#include <Xm/List.h>
#include <Xm/MessageB.h>
#include <Xm/Protocols.h>
#include <Xm/PushB.h>
#include <Xm/RowColumn.h>
#include <Xm/ScrolledW.h>
#include <Xm/Separator.h>
#include <Xm/TextF.h>

namespace gw {

void XmStringDeleter::operator()(XmString s) const {
    XmStringFree(s);
}

void XtDeleter::operator()(void* storage) const {
    XtFree(static_cast<char*>(storage));
}

void FontListDeleter::operator()(XmFontList list) const {
    XmFontListFree(list);
}

void free_entry(XmFontListEntry entry) {
    XmFontListEntryFree(&entry);
}

XmText xm_text(const std::string& text) {
    return XmText(XmStringCreateLocalized(name_arg(text.c_str())));
}

namespace {

struct ParseMappingDeleter {
    void operator()(XmParseMapping mapping) const { XmParseMappingFree(mapping); }
};
using ParseMapping = std::unique_ptr<std::remove_pointer_t<XmParseMapping>, ParseMappingDeleter>;

/// Has `character` stand in a text where a string has the component `substitute`.
ParseMapping make_mapping(const char* character, XmString substitute) {
    const XmText owned(substitute);
    Arg args[4];
    XtSetArg(args[0], XmNpattern, character);
    XtSetArg(args[1], XmNpatternType, XmCHARSET_TEXT);
    XtSetArg(args[2], XmNsubstitute, owned.get());
    XtSetArg(args[3], XmNincludeStatus, XmINSERT);
    return ParseMapping(XmParseMappingCreate(args, 4));
}

}  // namespace

std::string text_of(XmString string) {
    // Without them the separators between lines, and tabs, would vanish. Made once: Motif loses a piece of
    // storage with about every sixtieth that is made.
    static const ParseMapping newline = make_mapping("\n", XmStringSeparatorCreate());
    static const ParseMapping tab =
        make_mapping("\t", XmStringComponentCreate(XmSTRING_COMPONENT_TAB, 0, nullptr));
    XmParseMapping table[] = {newline.get(), tab.get()};
    const XtOwned<char> text(static_cast<char*>(XmStringUnparse(
        string, nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, table, XtNumber(table), XmOUTPUT_ALL)));
    return text ? text.get() : "";
}

std::string label_of(Widget w) {
    XmString string = nullptr;
    XtVaGetValues(w, XmNlabelString, &string, nullptr);
    const XmText owned(string);
    return owned ? text_of(owned.get()) : std::string();
}

std::string field_text(Widget field) {
    const XtOwned<char> text(XmTextFieldGetString(field));
    return text ? text.get() : "";
}

std::vector<int> selected_positions(Widget list) {
    int* positions = nullptr;
    int count = 0;
    if (XmListGetSelectedPos(list, &positions, &count) == False) return {};
    const XtOwned<int> owned(positions);
    std::vector<int> result(positions, positions + count);
    std::sort(result.begin(), result.end());
    return result;
}

int selected_count(Widget list) {
    int count = 0;
    XtVaGetValues(list, XmNselectedItemCount, &count, nullptr);
    return count;
}

namespace {

Widget managed(Widget w) {
    XtManageChild(w);
    return w;
}

void name_windows_cb(Widget dialog, XtPointer, XtPointer) {
    name_windows(dialog);
}

void press_ok(Widget dialog, XEvent*, String*, Cardinal*) {
    if (!XtIsManaged(XmMessageBoxGetChild(dialog, XmDIALOG_OK_BUTTON))) return;
    XtUnmanageChild(dialog);
    XtCallCallbacks(dialog, XmNokCallback, nullptr);
}

/// A message box knows its own Cancel button only, and that is not there.
void let_escape_press_ok(Widget dialog) {
    static XtActionsRec actions[] = {{name_arg("PressOk"), press_ok}};
    static const XtTranslations ON_ESCAPE = [] {
        XtAppAddActions(app, actions, XtNumber(actions));
        return XtParseTranslationTable("<Key>osfCancel: PressOk()");
    }();
    XtOverrideTranslations(dialog, ON_ESCAPE);
}

}  // namespace

Widget form(Widget parent, const char* name) {
    return managed(XmCreateForm(parent, name_arg(name), nullptr, 0));
}

Widget form_dialog(Widget parent, const char* name, Message title) {
    Arg args[2];
    XtSetArg(args[0], XmNautoUnmanage, False);
    XtSetArg(args[1], XmNdefaultPosition, False);
    Widget dialog = XmCreateFormDialog(parent, name_arg(name), args, 2);
    set_window_title(dialog, text_of(title));
    add_map_callbacks(dialog);
    return dialog;
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

Widget separator(Widget parent, const char* name) {
    return managed(XmCreateSeparator(parent, name_arg(name), nullptr, 0));
}

Widget text_field(Widget parent, const char* name) {
    return managed(XmCreateTextField(parent, name_arg(name), nullptr, 0));
}

Widget scrolled_list(Widget parent, const char* name) {
    Arg args[3];
    XtSetArg(args[0], XmNselectionPolicy, XmEXTENDED_SELECT);
    XtSetArg(args[1], XmNlistSizePolicy, XmCONSTANT);
    XtSetArg(args[2], XmNscrollBarDisplayPolicy, XmSTATIC);
    return managed(XmCreateScrolledList(parent, name_arg(name), args, 3));
}

void set_list_columns(Widget list, std::size_t columns) {
    XmFontList fonts = nullptr;
    XtVaGetValues(list, XmNfontList, &fonts, nullptr);
    const XmText line = xm_text(std::string(columns, 'n'));
    XtVaSetValues(list, XmNwidth, XmStringWidth(fonts, line.get()), nullptr);
}

void show_position(Widget list, int position) {
    int top = 0;
    int visible = 0;
    XtVaGetValues(list, XmNtopItemPosition, &top, XmNvisibleItemCount, &visible, nullptr);
    if (position < top) XmListSetPos(list, position);
    if (position >= top + visible) XmListSetBottomPos(list, position);
}

Widget scrolled_window(Widget parent, const char* name) {
    Arg args[1];
    XtSetArg(args[0], XmNscrollingPolicy, XmAUTOMATIC);
    return managed(XmCreateScrolledWindow(parent, name_arg(name), args, 1));
}

Widget message_dialog(Widget parent, const char* name, unsigned char type, const std::string& title,
                      const std::string& message, std::initializer_list<unsigned char> without) {
    const XmText text = xm_text(message);
    // Return presses OK even where it has been taken away: a dialog without it stays.
    const bool has_ok = std::find(without.begin(), without.end(), XmDIALOG_OK_BUTTON) == without.end();
    Arg args[3];
    XtSetArg(args[0], XmNmessageString, text.get());
    XtSetArg(args[1], XmNdefaultPosition, False);
    XtSetArg(args[2], XmNautoUnmanage, has_ok);
    Widget dialog = XmCreateMessageDialog(parent, name_arg(name), args, 3);
    // The function that creates it has a type of its own.
    XtVaSetValues(dialog, XmNdialogType, type, nullptr);
    set_window_title(dialog, title.c_str());
    for (const unsigned char part : without) {
        if (Widget w = XmMessageBoxGetChild(dialog, part); w != nullptr) XtUnmanageChild(w);
    }
    if (!XtIsManaged(XmMessageBoxGetChild(dialog, XmDIALOG_CANCEL_BUTTON))) let_escape_press_ok(dialog);
    add_map_callbacks(dialog);
    return dialog;
}

std::vector<Widget> fill_with_buttons(Widget form, const std::vector<RowButton>& buttons) {
    const int step = 100 / static_cast<int>(buttons.size());
    int column = 0;
    std::vector<Widget> made;
    for (const RowButton& button : buttons) {
        Widget w = push_button(form, button.name, button.text);
        Attach(w).top_form(0).bottom_form(0).columns(column + 2, column + step - 2);
        if (button.callback != nullptr) {
            XtAddCallback(w, XmNactivateCallback, button.callback, button.client_data);
        } else {
            activate(w, 0);
        }
        made.push_back(w);
        column += step;
    }
    return made;
}

std::vector<Widget> button_row(Widget dialog, Widget above, const std::vector<RowButton>& buttons,
                               Widget* message) {
    constexpr int GAP = 8;
    Widget line = separator(dialog, "separator");
    Attach(line).below(above, GAP).sides(0);
    Widget row = form(dialog, "button_form");
    Attach(row).below(line, GAP).sides(0);
    std::vector<Widget> made = fill_with_buttons(row, buttons);
    Widget text = label(dialog, "msg_label", " ");
    Attach(text).below(row, 2).sides(GAP).bottom_form(2);
    if (message != nullptr) *message = text;
    return made;
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
    return {managed(XmCreateOptionMenu(parent, name_arg(name), args, 3)), pulldown};
}

Widget menu_button(Widget pulldown, const char* name, const std::string& text) {
    const XmText string = xm_text(text);
    Arg args[1];
    XtSetArg(args[0], XmNlabelString, string.get());
    return managed(XmCreatePushButton(pulldown, name_arg(name), args, 1));
}

const Attach& Attach::to_form(const char* attachment, const char* offset_name, int offset) const {
    XtVaSetValues(w_, attachment, XmATTACH_FORM, offset_name, offset, nullptr);
    return *this;
}

const Attach& Attach::to_widget(const char* attachment, const char* widget_name, const char* offset_name,
                                Widget w, int offset) const {
    XtVaSetValues(w_, attachment, XmATTACH_WIDGET, widget_name, w, offset_name, offset, nullptr);
    return *this;
}

const Attach& Attach::columns(int left, int right) const {
    XtVaSetValues(w_, XmNleftAttachment, XmATTACH_POSITION, XmNleftPosition, left, XmNrightAttachment,
                  XmATTACH_POSITION, XmNrightPosition, right, nullptr);
    return *this;
}

int natural_height(Widget w) {
    XtWidgetGeometry natural = {};
    XtQueryGeometry(w, nullptr, &natural);
    return natural.height;
}

int centring_offset(Widget low, Widget tall) {
    return std::max((natural_height(tall) - natural_height(low)) / 2, 0);
}

namespace {

/// A dialog whose size a resource gives has it, and its shell not yet: left alone, the shell would make the
/// dialog as small as its parts allow.
void fit_shell_cb(Widget dialog, XtPointer, XtPointer) {
    Dimension width = 0;
    Dimension height = 0;
    XtVaGetValues(dialog, XmNwidth, &width, XmNheight, &height, nullptr);
    XtVaSetValues(XtParent(dialog), XmNwidth, width, XmNheight, height, nullptr);
}

}  // namespace

void add_map_callbacks(Widget dialog) {
    XtAddCallback(dialog, XmNmapCallback, fit_shell_cb, nullptr);
    XtAddCallback(dialog, XmNmapCallback, popup_cb, nullptr);
    XtAddCallback(dialog, XmNmapCallback, name_windows_cb, nullptr);
}

void set_label(Widget w, const std::string& text) {
    update_label(w, text.c_str(), nullptr);
}

void name_windows(Widget w) {
    if (!XtIsComposite(w)) return;
    WidgetList children = nullptr;
    Cardinal count = 0;
    XtVaGetValues(w, XmNchildren, &children, XmNnumChildren, &count, nullptr);
    for (Cardinal i = 0; i < count; ++i) {
        Widget child = children[i];
        if (!XtIsWidget(child) || !XtIsRealized(child)) continue;  // a gadget has no window of its own
        XStoreName(XtDisplay(child), XtWindow(child), XtName(child));
        name_windows(child);
    }
}

void on_close_box(Widget dialog, XtCallbackProc callback) {
    Widget shell = dialog;
    while (!XtIsShell(shell)) shell = XtParent(shell);
    XtVaSetValues(shell, XmNdeleteResponse, XmDO_NOTHING, nullptr);
    XmAddWMProtocolCallback(shell, XmInternAtom(XtDisplay(shell), name_arg("WM_DELETE_WINDOW"), False),
                            callback, nullptr);
}

namespace {

bool is_on_screen(Widget w) {
    XWindowAttributes attributes;
    return XGetWindowAttributes(XtDisplay(w), XtWindow(w), &attributes) != 0 &&
           attributes.map_state == IsViewable;
}

}  // namespace

void Ticker::start() {
    constexpr unsigned long MILLISECONDS = 20;
    id_ = XtAppAddTimeOut(
        app, MILLISECONDS, [](XtPointer ticker, XtIntervalId*) { static_cast<Ticker*>(ticker)->start(); },
        this);
}

void draw_at_once(Widget dialog) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    const Ticker ticker;
    while (!is_on_screen(dialog) && std::chrono::steady_clock::now() < limit) XtAppProcessEvent(app, XtIMAll);
    process_xt_events();
}

}  // namespace gw

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
