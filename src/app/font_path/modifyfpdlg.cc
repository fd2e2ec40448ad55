// SPDX-License-Identifier: MIT
#include "app/font_path/modifyfpdlg.h"

#include <sys/utsname.h>

#include <algorithm>
#include <set>
#include <utility>

#include "app/common/dirdlg.h"
#include "app/common/help_requests.h"
#include "app/common/warningdlg.h"
#include "app/font_path/added_element.h"
#include "app/font_path/apply_now.h"
#include "app/font_path/edited_path.h"
#include "app/font_path/element_views.h"
#include "app/font_path/path_list.h"
#include "app/font_path/path_set.h"
#include "app/kit/attach.h"
#include "app/kit/dialogs.h"
#include "app/kit/generation.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/looks.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/kit/wrapped_text.h"
#include "app/program/directory_input.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/server_watch.h"
#include "app/program/window_policy.h"
#include "app/program/work_record.h"
#include "app/samples/installed_list.h"
#include "core/text.h"
#include "platform/host_paths.h"
#include "texts/messages.h"

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
constexpr short NOTE_ROWS = 4;
constexpr unsigned long SHORT_WAIT = 200;  // milliseconds, until a burst of changes in a directory is over

gw::PathSet default_inst;
gw::PathSet other_inst;
gw::PathSet* current = &default_inst;
bool current_fp_is_writeable = false;

gw::EditedPath displayed;  // with the edits that are not applied yet
bool has_edits = false;
bool fpe_is_selected = false;      // true after the first selection
bool notes_are_on_element = true;  // or on what "Apply Now" has done

Widget _default_fp_toggle, _other_inst_fp_toggle, _vantor_dir_dlg_button;
Widget _fpe_list_label;
gw::PathList _fpe_list;
Widget _state_text;  // null unless the dialog shows the running server
Widget _move_up_button, _move_down_button, _delete_button, _add_new_button;
Widget _new_fp_textfield, _dir_dlg_button;
Widget _ok_button, _apply_button, _apply_now_button, _reset_button, _msg_label;

bool is_live() {
    return _state_text != nullptr;
}

// --- sets --------------------------------------------------------------------

void set_current_fpe_list(gw::PathSet& set) {
    current = &set;
    if (_vantor_dir_dlg_button != nullptr) activate(_vantor_dir_dlg_button, current == &other_inst ? 1 : 0);
    current_fp_is_writeable = current->is_writeable();
    for (Widget w : {_add_new_button, _new_fp_textfield, _dir_dlg_button})
        activate(w, current_fp_is_writeable ? 1 : 0);
    gw::set_label(_msg_label, current_fp_is_writeable ? "" : gw::text_of(Message::FP_READ_ONLY));
}

// --- the list ----------------------------------------------------------------

/// Shows what the server has besides the configured elements.
void add_servers_elements() {
    if (!is_live() || current != &default_inst) return;
    const gw::PathHost host = gw::host_of(gw::server_place());
    std::set<gw::ElementIdentity> configured;
    gw::find_newly_silent(displayed.configured());
    for (const std::string& element : displayed.configured())
        configured.insert(gw::identity_of_element(element, host));
    std::vector<std::string> others;
    for (const std::string& element : gw::served_path()) {
        if (!configured.contains(gw::identity_of_element(element, host))) others.push_back(element);
    }
    displayed.set_servers(others);
}

void display_fpe_list() {
    displayed = current->stored();
    add_servers_elements();
    _fpe_list.fill(displayed);
}

void set_fpe_list_label() {
    if (!gw::user_is_superuser()) return gw::set_label(_fpe_list_label, gw::text_of(Message::FP_OF_USER));
    gw::set_label(_fpe_list_label, gw::text_of(Message::FPE_LIST_FOR) + gw::escaped(current->root()));
}

void activate_all(std::initializer_list<Widget> widgets, bool on) {
    for (Widget w : widgets) activate(w, on ? 1 : 0);
}

void set_edited(bool edited) {
    has_edits = edited;
    activate_all({_ok_button, _apply_button, _reset_button}, edited);
}

void init_widget_activation() {
    set_edited(false);
    activate_all({_move_up_button, _move_down_button, _delete_button}, false);
}

/// A text that is there already stays as the user has scrolled it.
void show_in_notes(const std::string& text) {
    if (gw::wrapped_text_of(_state_text) != text) gw::show_wrapped(_state_text, text);
}

/// Says about the selected element what its line has no room for.
void show_notes() {
    if (!is_live()) return;
    notes_are_on_element = true;
    const int position = _fpe_list.selected();
    if (position == 0) return show_in_notes("");
    const gw::PathRow& row = displayed.rows()[static_cast<std::size_t>(position) - 1];
    const gw::ElementView& view = _fpe_list.view(position);
    std::string notes = row.element + ": " + gw::text_of(view.state);
    if (!view.why.empty()) notes += '\n' + view.why;
    if (row.origin == gw::Origin::SERVER) {
        notes += '\n' + std::string(gw::text_of(Message::FP_ONLY_SERVED));
    } else if (!row.is_editable()) {
        notes += '\n' + std::string(gw::text_of(Message::FP_ELEMENT_IS_FIXED));
    }
    show_in_notes(notes);
}

void activate_edits(int position) {
    const bool can_edit = fpe_is_selected && current_fp_is_writeable && displayed.is_editable(position);
    activate(_move_up_button, can_edit && displayed.target(position, -1) != 0 ? 1 : 0);
    activate(_move_down_button, can_edit && displayed.target(position, 1) != 0 ? 1 : 0);
    activate(_delete_button, can_edit ? 1 : 0);
}

// --- callbacks ---------------------------------------------------------------

void reset_cb(Widget, XtPointer, XtPointer) {
    if (is_live()) {
        (void)current->catch_up();
        if (current_fp_is_writeable) gw::set_label(_msg_label, "");
    }
    display_fpe_list();
    init_widget_activation();
    show_notes();
}

void fp_toggle_cb(Widget, XtPointer client_data, XtPointer call_data) {
    auto* set = static_cast<gw::PathSet*>(client_data);
    if (static_cast<XmToggleButtonCallbackStruct*>(call_data)->set == XmUNSET || set == current) return;
    init_widget_activation();
    set_current_fpe_list(*set);
    display_fpe_list();
    set_fpe_list_label();
}

void fpe_list_cb(Widget, XtPointer, XtPointer call_data) {
    const auto* event = static_cast<XmListCallbackStruct*>(call_data);
    if (event->selected_item_count > 0) fpe_is_selected = true;
    activate_edits(event->item_position);
    show_notes();
}

void move_by(int step) {
    const int position = _fpe_list.selected();
    const int target = displayed.target(position, step);
    if (target == 0) return;
    displayed.move(position, target);
    _fpe_list.moved(position, target, displayed);
    set_edited(true);
}

void move_up_cb(Widget, XtPointer, XtPointer) {
    move_by(-1);
}

void move_down_cb(Widget, XtPointer, XtPointer) {
    move_by(1);
}

void delete_cb(Widget, XtPointer, XtPointer) {
    const int position = _fpe_list.selected();
    if (!displayed.is_editable(position)) return;
    displayed.erase(position);
    add_servers_elements();
    _fpe_list.erased(position, displayed);
    if (displayed.count() == 0) {
        activate_all({_move_up_button, _move_down_button, _delete_button}, false);
    } else {
        XmListSelectPos(_fpe_list.widget(), std::min(position, displayed.count()), True);
    }
    set_edited(true);
}

/// Whether the element can be added. If not, the dialog may say why.
bool may_be_added(const std::string& element) {
    if (is_live()) {
        const std::string why = gw::why_not_added(element, displayed, gw::origin_of_new_elements());
        gw::set_label(_msg_label, why);
        return why.empty();
    }
    const std::string comma = gw::text_of(Message::REASON_COMMA_IN_NAME);
    if (element.find(',') != std::string::npos) {
        gw::set_label(_msg_label, comma);
        return false;
    }
    if (gw::label_of(_msg_label) == comma) gw::set_label(_msg_label, "");
    // Kept: new elements are compared with the stored path only.
    return !element.empty() && fpe_exists(element.c_str(), current->stored().configured()) == 0;
}

void add_new_cb(Widget, XtPointer, XtPointer) {
    const std::string element = gw::field_text(_new_fp_textfield);
    if (!may_be_added(element)) return;
    const int position = displayed.add(element, gw::origin_of_new_elements());
    add_servers_elements();
    _fpe_list.added(position, displayed);
    set_edited(true);
}

/// Lists the fonts of the new path in the main window.
void relist_installed_fonts() {
    delete the_font_path;
    the_font_path = new GWFontPath(gw::INSTALLATION_ROOT);
    fill_program_lists();
    update_wi_installed_hrn_list();
    forget_selection();
}

void tell_not_stored(const gw::Failure& failure) {
    std::string warning = gw::text_of(Message::FP_UNWRITEABLE);
    if (gw::window_policy().shows_reasons()) warning += '\n' + gw::failure_line(failure);
    start_warning_dlg(gw::text_of(Message::FP_WARNING_TITLE), warning.c_str());
}

/// Shows `path` with the states of its elements. What is selected stays so.
void show_path(gw::EditedPath path) {
    const int position = _fpe_list.selected();
    const gw::PathRow selected =
        position > 0 ? displayed.rows()[static_cast<std::size_t>(position) - 1] : gw::PathRow{};
    displayed = std::move(path);
    add_servers_elements();
    const int now = position > 0 ? displayed.position_of(selected) : 0;
    if (now == 0) XmListDeselectAllItems(_fpe_list.widget());
    _fpe_list.show_states(displayed, now);
    activate_edits(now);
    if (notes_are_on_element) show_notes();
}

/// Shows the stored path, which may have got more elements from another program.
void show_stored() {
    show_path(current->stored());
}

/// False when it was not stored.
bool store(Widget w) {
    // A running installation or deletion uses the lists that would be filled again here.
    if (!current->is_read() || the_wp_cl_data.is_in_progress()) return false;
    const gw::Outcome written = current->store(displayed).with(gw::Sequel::FONT_PATH_STAYS);
    const bool is_stored = gw::tell_unless_done(written);
    if (is_stored) {
        if (current == &default_inst) relist_installed_fonts();
        if (is_live()) show_stored();
    } else {
        reset_cb(w, nullptr, nullptr);
        tell_not_stored(written.failure());
    }
    set_edited(false);
    return is_stored;
}

void apply_cb(Widget w, XtPointer, XtPointer) {
    store(w);
}

// Edits are stored first, so that the server never has what the next session will not have.
void apply_now_cb(Widget w, XtPointer, XtPointer) {
    if (has_edits && !store(w)) return;
    if (current_fp_is_writeable) gw::set_label(_msg_label, "");
    const std::string told =
        gw::apply_now(std::string(gw::without_trailing_slashes(current->root())), current->removed());
    show_stored();
    show_in_notes(told);
    notes_are_on_element = false;
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
    if (_default_fp_toggle != nullptr) XmToggleButtonSetState(_default_fp_toggle, True, True);
    reset_cb(w, client_data, call_data);
    XmTextFieldSetString(_new_fp_textfield, gw::name_arg(""));
    init_widget_activation();
}

// --- what other programs change ----------------------------------------------

XtIntervalId waiting = 0;

void watch_directories();
void waited_cb(XtPointer, XtIntervalId*);

void show_soon() {
    if (waiting == 0) waiting = XtAppAddTimeOut(app, SHORT_WAIT, waited_cb, nullptr);
}

/// Shows the states again. The selection stays, and so do edits. The states are those of the path that the
/// server has now, so this asks for it before and after: a change back would not be seen as one otherwise.
/// What changes meanwhile is shown later, so that a program that does nothing else but change the path leaves
/// time for the user.
void show_again() {
    static gw::Generation showing;
    const gw::Turn turn(showing);
    if (!turn.is_first()) return show_soon();
    if (!XtIsManaged(wi_modify_fp_dlg)) return;
    gw::ask_server();
    show_path(displayed);
    watch_directories();
    gw::ask_server();
}

void waited_cb(XtPointer, XtIntervalId*) {
    waiting = 0;
    show_again();
}

void directories_changed(const std::set<std::string>&) {
    show_soon();
}

void watch_directories() {
    static gw::DirectoryInput input(directories_changed);
    std::vector<std::string> elements = displayed.configured();
    elements.insert(elements.end(), gw::served_path().begin(), gw::served_path().end());
    input.watch(elements);
}

/// Shows what another program has stored, unless there are edits: these are not thrown away, and are put
/// together with what it has stored when they are applied.
void look_at_stored_path() {
    if (!XtIsManaged(wi_modify_fp_dlg) || the_wp_cl_data.is_in_progress()) return;
    if (has_edits) {
        if (current->is_out_of_date()) gw::set_label(_msg_label, gw::text_of(Message::STORED_PATH_MOVED_ON));
    } else if (current->catch_up()) {
        show_stored();
        watch_directories();
    }
}

void look_at_server_cb(Widget, XtPointer, XtPointer) {
    gw::ask_server();
    look_at_stored_path();
    show_again();
}

void watch_what_others_change() {
    gw::ask_server_while_shown(XtParent(wi_modify_fp_dlg));
    gw::served_path_changes().connect(show_again);
    gw::server_ticks().connect(look_at_stored_path);
    XtAddCallback(wi_modify_fp_dlg, XmNmapCallback, look_at_server_cb, nullptr);
}

// --- creation ----------------------------------------------------------------

std::string node_name() {
    struct utsname host = {};
    return ::uname(&host) == 0 ? host.nodename : "";
}

Widget create_toggle(Widget parent, const char* name, Message text, gw::PathSet& set) {
    // Kept: two blanks stand before the host's name.
    const gw::XmText label = gw::xm_text(std::string(gw::text_of(text)) + ' ' + node_name());
    Arg args[1];
    XtSetArg(args[0], XmNlabelString, label.get());
    Widget toggle = XmCreateToggleButton(parent, gw::name_arg(name), args, 1);
    XtManageChild(toggle);
    gw::show_choice(toggle);
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

/// `above` is null when nothing is above the list.
void create_list(Widget dialog, Widget above) {
    _fpe_list_label = gw::label(dialog, "_fpe_list_label", Message::FPE_LIST);
    Attach(_fpe_list_label).sides(GAP);
    if (above != nullptr) {
        Attach(_fpe_list_label).below(above, GAP);
    } else {
        Attach(_fpe_list_label).top_form(GAP);
    }
    _fpe_list = gw::PathList(dialog, "_fpe_list", gw::window_policy().shows_live_path());
    XtAddCallback(_fpe_list.widget(), XmNsingleSelectionCallback, fpe_list_cb, nullptr);

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
    Attach(XtParent(_fpe_list.widget())).below(_fpe_list_label, 2).left_form(GAP).left_of(column, GAP);
}

/// Returns the separator above them.
Widget create_buttons(Widget dialog) {
    std::vector<gw::RowButton> buttons = {
        {"_ok_button", Message::MODIFY_FP_OK, ok_cb},
        {"_apply_button", Message::MODIFY_FP_APPLY, apply_cb},
        {"_reset_button", Message::MODIFY_FP_RESET, reset_cb},
        {"_cancel_button", Message::MODIFY_FP_CANCEL, cancel_cb},
        gw::help_button("_help_button", Message::MODIFY_FP_HELP, gw::HelpSection::MODIFY_FONT_PATH)};
    const bool live = gw::window_policy().shows_live_path();
    if (live) buttons.push_back({"_apply_now_button", Message::FP_APPLY_NOW, apply_now_cb});
    if (live) std::rotate(buttons.begin() + 2, buttons.end() - 1, buttons.end());
    const gw::BottomRow row = gw::bottom_row(dialog, {"_msg_label", "_button_form", "separator1"}, buttons);
    _msg_label = row.message;
    _ok_button = row.buttons[0];
    _apply_button = row.buttons[1];
    _apply_now_button = live ? row.buttons[2] : nullptr;
    _reset_button = row.buttons[live ? 3 : 2];
    gw::end_dialog(dialog, {.cancel_button = row.buttons[live ? 4 : 3],
                            .initial_focus = XtParent(_fpe_list.widget()),
                            .close = cancel_cb});
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

    Widget above = _new_fp_textfield;
    _state_text = nullptr;
    if (gw::window_policy().shows_live_path()) {
        _state_text = gw::wrapped_text(dialog, "_state_text", NOTE_ROWS);
        above = XtParent(_state_text);
        Attach(above).sides(GAP).above(_new_fp_textfield, GAP);
    }
    Attach(XtParent(_fpe_list.widget())).above(above, GAP);
}

}  // namespace

namespace modifyfpdlg {

void other_inst_specified_cb(const char* dir) {
    other_inst.read(dir);
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
    _default_fp_toggle = _other_inst_fp_toggle = _vantor_dir_dlg_button = nullptr;
    // Only the superuser has the choice between installations.
    create_list(wi_modify_fp_dlg, gw::user_is_superuser() ? create_choice(wi_modify_fp_dlg) : nullptr);
    create_lower_part(wi_modify_fp_dlg);
    XtVaSetValues(wi_modify_fp_dlg, XmNresizePolicy, XmRESIZE_GROW, nullptr);

    default_inst.read(gw::INSTALLATION_ROOT);
    other_inst.read(nullptr);
    fpe_is_selected = false;
    set_current_fpe_list(default_inst);
    display_fpe_list();
    set_fpe_list_label();
    if (_default_fp_toggle != nullptr) XmToggleButtonSetState(_default_fp_toggle, True, True);
    init_widget_activation();
    XtAddCallback(XtParent(wi_modify_fp_dlg), XmNpopupCallback, begin_cb, nullptr);
    if (is_live()) watch_what_others_change();
    return wi_modify_fp_dlg;
}

void start_modify_fp_dlg() {
    XtManageChild(wi_modify_fp_dlg);
}
