// SPDX-License-Identifier: MIT
#include "app/conflicts/conflictdlg.h"

#include <algorithm>
#include <vector>

#include "app/common/status_line.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/kit/attach.h"
#include "app/kit/callbacks.h"
#include "app/kit/dialogs.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/messages.h"
#include "app/kit/widgets.h"
#include "app/program/conflict_lists.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "app/program/work_record.h"
#include "app/samples/installed_list.h"
#include "core/text.h"
#include "model/hrn_words.h"

#include <Xm/Form.h>
#include <Xm/List.h>
#include <Xm/RowColumn.h>

Widget wi_conflict_dlg = nullptr;

namespace {

using gw::Attach;
using gw::Message;

constexpr int GAP = 8;
constexpr int VISIBLE_CONFLICTS = 8;
constexpr int DETAIL_LINES = 8;
constexpr std::size_t LINE_LENGTH = 60;  // characters of a line with its resolution

enum Resolution : int { UNDECIDED = 1, KEEP_AS_IS = 2, FORCE = 3, READ_ONLY = 4 };

Widget wi_conflicts_list = nullptr;
Widget wi_keep_button, wi_not_keep_button, wi_ok_button;
Widget wi_conflict_detail_label = nullptr;

gw::ConflictView shown;
unsigned success_count = 0;
GWConflict::TYPE conflict_type = GWConflict::INSTALL;
std::vector<Resolution> res_list;  // by list position - 1

bool installs() {
    return conflict_type == GWConflict::INSTALL;
}

/// The conflict at the 1-based position; null when there is none.
GWConflict* conflict_at(int position) {
    return shown.list() != nullptr ? shown.list()->get_elem_at_pos(position) : nullptr;
}

std::string resolution_word(Resolution resolution) {
    switch (resolution) {
        case KEEP_AS_IS:
            return gw::text_of(installs() ? Message::KEEP_OLD : Message::KEEP);
        case FORCE:
            return gw::text_of(installs() ? Message::INSTALL_NEW : Message::DELETE);
        default:
            return "";
    }
}

/// Which package it is and, where windows say more, what its package manager will do.
std::string package_detail(const GWConflict& conflict) {
    std::string text = gw::text_of(Message::IS_IN_PACKAGE);
    if (const std::string names = conflict.get_packages(); !names.empty())
        text.append("\n").append(gw::text_of(Message::PACKAGE)).append(gw::escaped(names));
    if (gw::window_policy().shows_packages()) text += gw::text_of(Message::PACKAGE_MANAGER);
    return text;
}

std::string detail_of(const GWConflict& conflict) {
    std::string text;
    if (conflict.is_conflict(GWConflict::SAME_NAME) != 0) {
        if (installs()) text += gw::text_of(Message::EXISTS_ALREADY);
        text += gw::escaped(conflict.get_conflict_dir_name());
    }
    if (conflict.is_conflict(GWConflict::READ_ONLY) != 0) text += gw::text_of(Message::IS_READ_ONLY);
    if (conflict.is_conflict(GWConflict::SYSTEM_FONT) != 0) text += gw::text_of(Message::IS_SYSTEM_FONT);
    if (conflict.is_conflict(GWConflict::PACKAGE) != 0) text += package_detail(conflict);
    if (conflict.is_conflict(GWConflict::ALIAS) != 0) text += gw::text_of(Message::IS_ALIAS);
    return text;
}

/// The label is always eight lines high. Only its width grows.
void show_detail(const std::string& text) {
    gw::set_label(wi_conflict_detail_label, text);
    XtWidgetGeometry preferred = {};
    XtQueryGeometry(wi_conflict_detail_label, nullptr, &preferred);
    Dimension width = 0;
    XtVaGetValues(wi_conflict_detail_label, XmNwidth, &width, nullptr);
    if (preferred.width > width) XtVaSetValues(wi_conflict_detail_label, XmNwidth, preferred.width, nullptr);
}

void activate_resolutions(bool on) {
    for (Widget w : {wi_keep_button, wi_not_keep_button}) activate(w, on ? 1 : 0);
}

void list_cb(Widget, XtPointer, XtPointer call_data) {
    const auto* event = static_cast<XmListCallbackStruct*>(call_data);
    const int position = event != nullptr ? event->item_position : gw::selected_position(wi_conflicts_list);
    const GWConflict* conflict = conflict_at(position);
    if (conflict == nullptr) return;
    activate_resolutions(res_list[static_cast<std::size_t>(position) - 1] != READ_ONLY);
    show_detail(detail_of(*conflict));
}

void resolve_selected(Resolution resolution) {
    const int position = gw::selected_position(wi_conflicts_list);
    if (conflict_at(position) == nullptr) return;
    res_list[static_cast<std::size_t>(position) - 1] = resolution;
    const gw::XmText entry = gw::xm_text(get_conflict_list_entry(static_cast<unsigned>(position)));
    XmString item = entry.get();
    // Motif loses the selection when a selected item is replaced.
    XmListDeselectPos(wi_conflicts_list, position);
    XmListReplaceItemsPos(wi_conflicts_list, &item, 1, position);
    XmListSelectPos(wi_conflicts_list, position, False);
    if (std::find(res_list.begin(), res_list.end(), UNDECIDED) == res_list.end()) activate(wi_ok_button, 1);
}

void keep_cb(Widget, XtPointer, XtPointer) {
    resolve_selected(KEEP_AS_IS);
}

void not_keep_cb(Widget, XtPointer, XtPointer) {
    resolve_selected(FORCE);
}

/// Puts the element of a font that was installed by force where it belongs in the list. It may have left the
/// list, because its fonts were deleted, and its name may have changed.
void list_in_order(GWHRNElement* elem, const std::string& name_before) {
    const gw::Ref<GWHRNElement> owner(elem);
    const bool is_listed = std::find(the_installed_hrn_list.begin(), the_installed_hrn_list.end(), elem) !=
                           the_installed_hrn_list.end();
    if (is_listed && name_before == elem->get_name()) return;
    the_installed_hrn_list.delete_hrn_elem(elem);
    if (elem->get_representative() != nullptr) the_installed_hrn_list.insert(elem);
}

void force(GWConflict& conflict, gw::FontReport& report) {
    if (!installs()) {
        conflict.delete_force(the_fsm_list, report);
        return;
    }
    GWHRNElement* other = conflict.get_other_element();
    const std::string name = other != nullptr ? other->get_name() : "";
    conflict.install_force(the_fsm_list, report);
    if (other != nullptr) list_in_order(other, name);
}

std::size_t font_count(const GWConflict& conflict) {
    std::size_t count = 0;
    if (conflict.get_element() == nullptr) return count;
    for (const GWHRNElement::PointSize& size : conflict.get_element()->get_slots())
        count += size.fonts.size();
    return count;
}

/// Carries out the decision; whether that counts.
bool force_and_tell(GWConflict& conflict, gw::FontReport& all) {
    const std::size_t fonts = font_count(conflict);
    gw::FontReport report;
    force(conflict, report);
    all.append(report);
    gw::hear_new_failures(all);
    // Kept: a font that is decided by force counts as done.
    if (!gw::window_policy().shows_reasons()) return true;
    // As at first, a name counts when one of its fonts was installed, and when all of them were deleted.
    return report.failed().empty() || (installs() && report.failed().size() < fonts);
}

/// As with single fonts, what fails counts as done unless the windows show reasons.
void make_final(gw::FontReport& report) {
    const gw::Sequel sequel = installs() ? gw::Sequel::FONT_LEFT_OUT : gw::Sequel::FONT_STAYS;
    const auto failed = static_cast<unsigned>(gw::commit_font_action(report, sequel));
    gw::hear_new_failures(report);
    // A name of which a part had failed before was not counted.
    if (gw::window_policy().shows_reasons()) success_count -= std::min(failed, success_count);
}

void carry_out() {
    std::string destination;
    int position = 0;
    gw::FontReport report;
    gw::begin_font_action();
    for (GWConflict* conflict : *shown.list()) {
        if (res_list[static_cast<std::size_t>(position++)] != FORCE) continue;
        if (force_and_tell(*conflict, report)) ++success_count;
        if (conflict->get_dir_name() != nullptr) destination = conflict->get_dir_name();
    }
    make_final(report);
    count_installed_fonts();
    if (installs() && !destination.empty()) {
        for (const gw::Failure& failure : show_installation_to_server(destination)) gw::tell(failure);
    }
    if (!installs()) the_font_path->rehash_session_fp();
}

void ok_cb(Widget, XtPointer, XtPointer) {
    if (shown.list() == nullptr) return;
    gw::forget_failures();
    carry_out();
    update_label(
        wi_main_window_status_label,
        gw::count_text(success_count, installs() ? Message::FONTS_INSTALLED : Message::FONTS_DELETED).c_str(),
        nullptr);
    update_wi_installed_hrn_list();
    forget_selection();
    stop_conflict_dlg();
    if (!add_to_summary({conflict_type, success_count, nullptr, gw::gathered_failures()}) &&
        gw::user_is_superuser())
        start_fp_info_dlg();
}

void cancel_cb(Widget, XtPointer, XtPointer) {
    GW_LIST<GWConflict>* list = shown.list();
    stop_conflict_dlg();
    if (list != nullptr) start_preconflict_dlg(success_count, list);
}

void create_list(Widget dialog) {
    Widget title = gw::label(dialog, "list_label", Message::CONFLICT_LIST);
    Attach(title).top_form(GAP).sides(GAP);
    wi_conflicts_list = gw::scrolled_list(dialog, "_conflicts_list");
    XtVaSetValues(wi_conflicts_list, XmNselectionPolicy, XmSINGLE_SELECT, XmNvisibleItemCount,
                  VISIBLE_CONFLICTS, nullptr);
    gw::set_list_columns(wi_conflicts_list, LINE_LENGTH);
    // The words of the title stand above the columns of the list.
    XmFontList fonts = nullptr;
    XtVaGetValues(wi_conflicts_list, XmNfontList, &fonts, nullptr);
    XtVaSetValues(title, XmNfontList, fonts, nullptr);
    Attach(XtParent(wi_conflicts_list)).below(title, 2).sides(GAP);
    XtAddCallback(wi_conflicts_list, XmNsingleSelectionCallback, list_cb, nullptr);
}

/// Empty lines have no height, so each has a letter.
std::string eight_lines() {
    std::string lines = "n";
    for (int i = 1; i < DETAIL_LINES; ++i) lines += "\nn";
    return lines;
}

Widget create_resolutions(Widget dialog, Widget above) {
    Widget title = gw::label(dialog, "resolve_label", Message::CHOOSE_RESOLUTION);
    Attach(title).below(above, GAP + 8).left_form(GAP);
    Arg args[2];
    XtSetArg(args[0], XmNorientation, XmHORIZONTAL);
    XtSetArg(args[1], XmNpacking, XmPACK_COLUMN);
    Widget row = XmCreateWorkArea(dialog, gw::name_arg("button_rowcol"), args, 2);
    XtManageChild(row);
    Attach(row).below(above, GAP).right_of(title, GAP);
    wi_keep_button = gw::push_button(row, "keep_button", Message::CONFLICT_KEEP);
    wi_not_keep_button = gw::push_button(row, "not_keep_button", Message::CONFLICT_NOT_KEEP);
    XtAddCallback(wi_keep_button, XmNactivateCallback, keep_cb, nullptr);
    XtAddCallback(wi_not_keep_button, XmNactivateCallback, not_keep_cb, nullptr);
    return row;
}

/// The buttons are attached at the top and at the bottom, so that they are equally high whatever their labels
/// are.
void create_buttons(Widget dialog, Widget above) {
    Widget message = gw::label(dialog, "msg_label", " ");
    Attach(message).sides(GAP).bottom_form(0);
    const std::vector<Widget> buttons = gw::make_buttons(
        dialog, {{"ok_button", Message::CONFLICT_FINISH, ok_cb, nullptr, 4, 34},
                 {"cancel_button", Message::CONFLICT_CANCEL, cancel_cb, nullptr, 39, 64},
                 {"help_dlg_button", Message::CONFLICT_HELP, gw::do_nothing_cb, nullptr, 69, 94}});
    for (Widget button : buttons) Attach(button).below(above, GAP).above(message, 0);
    wi_ok_button = buttons[0];
    gw::end_dialog(dialog, {wi_ok_button, buttons[1], XtParent(wi_conflicts_list), cancel_cb});
}

}  // namespace

Widget create_conflict_dlg(const char* name, Widget parent) {
    wi_conflict_dlg = gw::form_dialog(parent, name, Message::CONFLICT_TITLE);
    create_list(wi_conflict_dlg);
    Widget resolutions = create_resolutions(wi_conflict_dlg, XtParent(wi_conflicts_list));
    wi_conflict_detail_label = gw::label(wi_conflict_dlg, "conflict_detail_label", eight_lines());
    XtVaSetValues(wi_conflict_detail_label, XmNrecomputeSize, False, nullptr);
    Attach(wi_conflict_detail_label).below(resolutions, GAP).sides(GAP);
    Widget line = gw::separator(wi_conflict_dlg, "separator");
    Attach(line).below(wi_conflict_detail_label, GAP).sides(0);
    create_buttons(wi_conflict_dlg, line);
    // The dialog keeps the size that a long text gave it: it must not change its size from font to font.
    XtVaSetValues(wi_conflict_dlg, XmNresizePolicy, XmRESIZE_GROW, nullptr);
    return wi_conflict_dlg;
}

void start_conflict_dlg(unsigned success, GW_LIST<GWConflict>* list) {
    if (list->is_empty()) return;
    shown.show(list);
    success_count = success;
    conflict_type = (*list->begin())->get_type();
    res_list.clear();
    for (const GWConflict* conflict : *list) {
        const bool read_only = conflict->is_conflict(GWConflict::READ_ONLY) != 0;
        res_list.push_back(read_only ? READ_ONLY : UNDECIDED);
        if (!read_only) activate(wi_ok_button, 0);
    }
    gw::set_label(wi_ok_button,
                  gw::text_of(installs() ? Message::FINISH_INSTALLATION : Message::FINISH_DELETION));
    gw::set_label(wi_keep_button, gw::text_of(installs() ? Message::KEEP_OLD : Message::KEEP));
    gw::set_label(wi_not_keep_button, gw::text_of(installs() ? Message::INSTALL_NEW : Message::DELETE));
    show_detail(std::string(DETAIL_LINES, '\n'));
    update_wi_conflict_list();
    activate_resolutions(false);
    XtManageChild(wi_conflict_dlg);
}

void stop_conflict_dlg() {
    res_list.clear();
    shown.let_go();
    XtUnmanageChild(wi_conflict_dlg);
}

void update_wi_conflict_list() {
    std::vector<std::string> lines;
    for (unsigned position = 1; position <= res_list.size(); ++position)
        lines.push_back(get_conflict_list_entry(position));
    gw::fill_list(wi_conflicts_list, lines);
}

std::string get_conflict_list_entry(unsigned position) {
    const GWConflict* conflict = conflict_at(static_cast<int>(position));
    if (conflict == nullptr) return "";
    std::string entry = conflict->get_name();
    gw::append_at_column(entry, resolution_word(res_list[position - 1]));
    return entry;
}
