// SPDX-License-Identifier: MIT
#include "app/font_path/modifyfpdlg.h"

#include <sys/utsname.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "app/common/dirdlg.h"
#include "app/common/warningdlg.h"
#include "app/kit/attach.h"
#include "app/kit/dialogs.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/messages.h"
#include "app/kit/widgets.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "app/program/work_record.h"
#include "app/samples/installed_list.h"
#include "core/text.h"
#include "platform/host_paths.h"

#include <Xm/Form.h>
#include <Xm/List.h>
#include <Xm/RowColumn.h>
#include <Xm/TextF.h>
#include <Xm/ToggleB.h>

Widget wi_modify_fp_dlg = nullptr;

namespace {

using gw::Attach;
using gw::Message;
using namespace modifyfpdlg;

constexpr int GAP = 8;
constexpr int VISIBLE_ELEMENTS = 10;
constexpr std::size_t ELEMENT_LENGTH = 50;  // characters that fit into the list when the dialog appears

/// The stored font path of one installation.
struct EditSet {
    std::optional<std::string> root;  ///< as the user chose it; none before
    std::unique_ptr<GWFontPath> font_path;
    std::vector<std::string> elements;
};
EditSet default_inst;
EditSet other_inst;
EditSet* current = &default_inst;
int current_fp_is_writeable = 0;

// What the list shows, with the edits that are not applied yet. It is kept here because the strings of the
// widget lose tabs.
std::vector<std::string> displayed;
bool fpe_is_selected = false;  // true after the first selection

Widget _default_fp_toggle, _other_inst_fp_toggle, _vantor_dir_dlg_button;
Widget _fpe_list_label, _fpe_list;
Widget _move_up_button, _move_down_button, _delete_button, _add_new_button;
Widget _new_fp_textfield, _dir_dlg_button;
Widget _ok_button, _apply_button, _reset_button, _msg_label;

// --- sets --------------------------------------------------------------------

void clear_and_set_fpe_list(EditSet& set, const char* root) {
    set = {};
    if (root == nullptr) return;
    set.root = root;
    set.font_path = std::make_unique<GWFontPath>(std::string(gw::without_trailing_slashes(root)).c_str());
    unsigned count = 0;
    for (const GW_STRING* element : *set.font_path->get_fpe_list(GWFontPath::ALL_FP, count))
        set.elements.emplace_back(element->get_str());
}

void set_current_fpe_list(EditSet& set) {
    current = &set;
    activate(_vantor_dir_dlg_button, current == &other_inst ? 1 : 0);
    current_fp_is_writeable =
        current->font_path ? current->font_path->is_writeable(GWFontPath::INSTALLATION_FP) : 0;
    const bool writeable = current_fp_is_writeable != 0;
    for (Widget w : {_add_new_button, _new_fp_textfield, _dir_dlg_button}) activate(w, writeable ? 1 : 0);
    gw::set_label(_msg_label, writeable ? "" : gw::text_of(Message::FP_READ_ONLY));
}

// --- the list ----------------------------------------------------------------

void display_fpe_list() {
    displayed = current->elements;
    gw::fill_list(_fpe_list, displayed);
}

void set_fpe_list_label() {
    gw::set_label(_fpe_list_label,
                  gw::text_of(Message::FPE_LIST_FOR) + gw::escaped(current->root.value_or("")));
}

int displayed_fpe_count() {
    return static_cast<int>(displayed.size());
}

/// Inserts an element at the 1-based position and selects it, calling the selection callback.
void put_at(int position, const std::string& element) {
    displayed.insert(displayed.begin() + (position - 1), element);
    const gw::XmText item = gw::xm_text(gw::escaped(element));
    XmListAddItemUnselected(_fpe_list, item.get(), position);
    XmListSelectPos(_fpe_list, position, True);
    gw::show_position(_fpe_list, position);
}

void take_away(int position) {
    displayed.erase(displayed.begin() + (position - 1));
    XmListDeletePos(_fpe_list, position);
}

void activate_all(std::initializer_list<Widget> widgets, bool on) {
    for (Widget w : widgets) activate(w, on ? 1 : 0);
}

void note_change() {
    activate_all({_ok_button, _apply_button, _reset_button}, true);
}

void init_widget_activation() {
    activate_all(
        {_ok_button, _apply_button, _reset_button, _move_up_button, _move_down_button, _delete_button},
        false);
}

// --- callbacks ---------------------------------------------------------------

void reset_cb(Widget, XtPointer, XtPointer) {
    display_fpe_list();
    init_widget_activation();
}

void fp_toggle_cb(Widget, XtPointer client_data, XtPointer call_data) {
    auto* set = static_cast<EditSet*>(client_data);
    if (static_cast<XmToggleButtonCallbackStruct*>(call_data)->set == XmUNSET || set == current) return;
    init_widget_activation();
    set_current_fpe_list(*set);
    display_fpe_list();
    set_fpe_list_label();
}

void fpe_list_cb(Widget, XtPointer, XtPointer call_data) {
    const auto* event = static_cast<XmListCallbackStruct*>(call_data);
    if (event->selected_item_count > 0) fpe_is_selected = true;
    const int position = event->item_position;
    const bool can_edit = fpe_is_selected && current_fp_is_writeable != 0;
    activate(_move_up_button, can_edit && position != 1 ? 1 : 0);
    activate(_move_down_button, can_edit && position != displayed_fpe_count() ? 1 : 0);
    activate(_delete_button, can_edit ? 1 : 0);
}

void move_by(int step) {
    const int position = gw::selected_position(_fpe_list);
    const int target = position + step;
    if (position == 0 || target < 1 || target > displayed_fpe_count()) return;
    const std::string element = std::move(displayed[static_cast<std::size_t>(position) - 1]);
    take_away(position);
    put_at(target, element);
    note_change();
}

void move_up_cb(Widget, XtPointer, XtPointer) {
    move_by(-1);
}

void move_down_cb(Widget, XtPointer, XtPointer) {
    move_by(1);
}

void delete_cb(Widget, XtPointer, XtPointer) {
    const int position = gw::selected_position(_fpe_list);
    if (position == 0) return;
    take_away(position);
    if (displayed.empty()) {
        activate_all({_move_up_button, _move_down_button, _delete_button}, false);
    } else {
        XmListSelectPos(_fpe_list, std::min(position, displayed_fpe_count()), True);
    }
    note_change();
}

// Kept: new elements are compared with the stored path only.
void add_new_cb(Widget, XtPointer, XtPointer) {
    const std::string element = gw::field_text(_new_fp_textfield);
    const bool has_comma = element.find(',') != std::string::npos;
    gw::set_label(_msg_label, has_comma ? gw::text_of(Message::REASON_COMMA_IN_NAME) : "");
    if (has_comma || element.empty() || fpe_exists(element.c_str(), current->elements) != 0) return;
    put_at(displayed_fpe_count() + 1, element);
    note_change();
}

/// Lists the fonts of the new path in the main window.
void relist_installed_fonts() {
    delete the_font_path;
    the_font_path = new GWFontPath(gw::INSTALLATION_ROOT);
    fill_program_lists();
    update_wi_installed_hrn_list();
    forget_selection();
}

void apply_cb(Widget w, XtPointer client_data, XtPointer call_data) {
    // A running installation or deletion uses the lists that would be filled again here.
    if (!current->font_path || the_wp_cl_data.is_in_progress()) return;
    GW_LIST<GW_STRING> list;
    const gw::ElementsOwner owner(list);
    for (const std::string& element : displayed) list.append(new GW_STRING(element.c_str()));
    const gw::Outcome written =
        current->font_path
            ->replace(GWFontPath::INSTALLATION_FP, list, gw::window_policy().stores_an_empty_path())
            .with(gw::Sequel::FONT_PATH_STAYS);
    if (gw::tell_unless_done(written)) {
        current->elements = displayed;
        if (current == &default_inst) relist_installed_fonts();
    } else {
        reset_cb(w, client_data, call_data);
        std::string warning = gw::text_of(Message::FP_UNWRITEABLE);
        if (gw::window_policy().shows_reasons()) warning += '\n' + gw::failure_line(written.failure());
        start_warning_dlg(gw::text_of(Message::FP_WARNING_TITLE), warning.c_str());
    }
    activate_all({_ok_button, _apply_button, _reset_button}, false);
}

void ok_cb(Widget w, XtPointer client_data, XtPointer call_data) {
    apply_cb(w, client_data, call_data);
    XtUnmanageChild(wi_modify_fp_dlg);
}

void cancel_cb(Widget w, XtPointer client_data, XtPointer call_data) {
    reset_cb(w, client_data, call_data);
    XtUnmanageChild(wi_modify_fp_dlg);
}

void other_inst_loc_dlg_cb(Widget, XtPointer, XtPointer) {
    popup_dir_dlg(other_inst_specified_cb, gw::text_of(Message::CHOOSE_INSTALLATION_TITLE));
}

void new_fpe_dir_dlg_cb(Widget, XtPointer, XtPointer) {
    popup_dir_dlg(new_fpe_dir_specified_cb, gw::text_of(Message::CHOOSE_FPE_TITLE));
}

// The dialog always opens with the default installation, without earlier edits.
void begin_cb(Widget w, XtPointer client_data, XtPointer call_data) {
    XmToggleButtonSetState(_default_fp_toggle, True, True);
    reset_cb(w, client_data, call_data);
    XmTextFieldSetString(_new_fp_textfield, gw::name_arg(""));
    init_widget_activation();
}

// --- creation ----------------------------------------------------------------

std::string node_name() {
    struct utsname host = {};
    return ::uname(&host) == 0 ? host.nodename : "";
}

Widget create_toggle(Widget parent, const char* name, Message text, EditSet& set) {
    // Kept: two blanks stand before the host's name.
    const gw::XmText label = gw::xm_text(std::string(gw::text_of(text)) + ' ' + node_name());
    Arg args[1];
    XtSetArg(args[0], XmNlabelString, label.get());
    Widget toggle = XmCreateToggleButton(parent, gw::name_arg(name), args, 1);
    XtManageChild(toggle);
    XtAddCallback(toggle, XmNvalueChangedCallback, fp_toggle_cb, &set);
    return toggle;
}

Widget create_choice(Widget dialog) {
    Widget label = gw::label(dialog, "_modify_label", Message::MODIFY_FP_FOR);
    Attach(label).top_form(GAP).left_form(GAP);
    Widget box = XmCreateRadioBox(dialog, gw::name_arg("radioBox"), nullptr, 0);
    XtManageChild(box);
    Attach(box).below(label, 0).left_form(2 * GAP);
    _default_fp_toggle =
        create_toggle(box, "_default_fp_toggle", Message::DEFAULT_INSTALLATION, default_inst);
    _other_inst_fp_toggle =
        create_toggle(box, "_other_inst_fp_toggle", Message::OTHER_INSTALLATION, other_inst);
    _vantor_dir_dlg_button =
        gw::push_button(dialog, "_vantor_dir_dlg_button", Message::INSTALLATION_DIRECTORY);
    Attach(_vantor_dir_dlg_button).right_of(box, GAP).below(label, 3 * GAP);
    XtAddCallback(_vantor_dir_dlg_button, XmNactivateCallback, other_inst_loc_dlg_cb, nullptr);
    Widget line = gw::separator(dialog, "separator");
    Attach(line).below(box, GAP).sides(0);
    return line;
}

Widget create_list(Widget dialog, Widget above) {
    _fpe_list_label = gw::label(dialog, "_fpe_list_label", Message::FPE_LIST);
    Attach(_fpe_list_label).below(above, GAP).sides(GAP);
    _fpe_list = gw::scrolled_list(dialog, "_fpe_list");
    XtVaSetValues(_fpe_list, XmNselectionPolicy, XmSINGLE_SELECT, XmNvisibleItemCount, VISIBLE_ELEMENTS,
                  nullptr);
    gw::set_list_columns(_fpe_list, ELEMENT_LENGTH);
    XtAddCallback(_fpe_list, XmNsingleSelectionCallback, fpe_list_cb, nullptr);

    Arg args[1];
    XtSetArg(args[0], XmNorientation, XmVERTICAL);
    Widget column = XmCreateWorkArea(dialog, gw::name_arg("_fpe_modify_rowcol"), args, 1);
    XtManageChild(column);
    const auto button = [column](const char* name, Message text, XtCallbackProc callback) {
        Widget w = gw::push_button(column, name, text);
        XtAddCallback(w, XmNactivateCallback, callback, nullptr);
        return w;
    };
    _move_up_button = button("_move_up_button", Message::MOVE_UP, move_up_cb);
    _move_down_button = button("_move_down_button", Message::MOVE_DOWN, move_down_cb);
    _delete_button = button("_delete_button", Message::DELETE_FPE, delete_cb);
    _add_new_button = button("_add_new_button", Message::ADD_NEW_FPE, add_new_cb);
    Attach(column).below(_fpe_list_label, 2).right_form(GAP);
    Attach(XtParent(_fpe_list)).below(_fpe_list_label, 2).left_form(GAP).left_of(column, GAP);
    return column;
}

/// Returns the separator above them.
Widget create_buttons(Widget dialog) {
    const gw::BottomRow row = gw::bottom_row(dialog, {"_msg_label", "_button_form", "separator1"},
                                             {{"_ok_button", Message::MODIFY_FP_OK, ok_cb},
                                              {"_apply_button", Message::MODIFY_FP_APPLY, apply_cb},
                                              {"_reset_button", Message::MODIFY_FP_RESET, reset_cb},
                                              {"_cancel_button", Message::MODIFY_FP_CANCEL, cancel_cb},
                                              {"_help_button", Message::MODIFY_FP_HELP, nullptr}});
    _msg_label = row.message;
    _ok_button = row.buttons[0];
    _apply_button = row.buttons[1];
    _reset_button = row.buttons[2];
    gw::end_dialog(
        dialog, {.cancel_button = row.buttons[3], .initial_focus = XtParent(_fpe_list), .close = cancel_cb});
    return row.separator;
}

void create_lower_part(Widget dialog) {
    Widget line = create_buttons(dialog);
    _dir_dlg_button = gw::push_button(dialog, "_dir_dlg_button", Message::NEW_FPE_DIRECTORY);
    Attach(_dir_dlg_button).right_form(GAP).above(line, GAP);
    XtAddCallback(_dir_dlg_button, XmNactivateCallback, new_fpe_dir_dlg_cb, nullptr);
    Widget label = gw::label(dialog, "_new_fp_label", Message::NEW_FPE);
    Attach(label).left_form(GAP).above(line, GAP + 5);
    _new_fp_textfield = gw::text_field(dialog, "_new_fp_textfield");
    Attach(_new_fp_textfield).right_of(label, GAP).left_of(_dir_dlg_button, GAP).above(line, GAP);
    // The Return key in the field adds what was typed.
    XtAddCallback(_new_fp_textfield, XmNactivateCallback, add_new_cb, nullptr);
}

}  // namespace

namespace modifyfpdlg {

void other_inst_specified_cb(const char* dir) {
    clear_and_set_fpe_list(other_inst, dir);
    init_widget_activation();
    set_current_fpe_list(other_inst);
    display_fpe_list();
    set_fpe_list_label();
}

// The element is added when the user presses "Add new".
void new_fpe_dir_specified_cb(const char* dir) {
    XmTextFieldSetString(_new_fp_textfield, gw::name_arg(dir));
}

int fpe_exists(const char* s, const std::vector<std::string>& list) {
    return s != nullptr && std::find(list.begin(), list.end(), s) != list.end() ? 1 : 0;
}

}  // namespace modifyfpdlg

Widget create_modify_fp_dlg(const char* name, Widget parent) {
    wi_modify_fp_dlg = gw::form_dialog(parent, name, Message::MODIFY_FP_TITLE);
    Widget line = create_choice(wi_modify_fp_dlg);
    create_list(wi_modify_fp_dlg, line);
    create_lower_part(wi_modify_fp_dlg);
    Attach(XtParent(_fpe_list)).above(_new_fp_textfield, GAP);
    XtVaSetValues(wi_modify_fp_dlg, XmNresizePolicy, XmRESIZE_GROW, nullptr);

    clear_and_set_fpe_list(default_inst, gw::INSTALLATION_ROOT);
    clear_and_set_fpe_list(other_inst, nullptr);
    fpe_is_selected = false;
    set_current_fpe_list(default_inst);
    display_fpe_list();
    set_fpe_list_label();
    XmToggleButtonSetState(_default_fp_toggle, True, True);
    init_widget_activation();
    XtAddCallback(XtParent(wi_modify_fp_dlg), XmNpopupCallback, begin_cb, nullptr);
    return wi_modify_fp_dlg;
}

void start_modify_fp_dlg() {
    XtManageChild(wi_modify_fp_dlg);
}
