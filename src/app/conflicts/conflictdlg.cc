// SPDX-License-Identifier: MIT
#include "app/conflicts/conflictdlg.h"

#include <vector>

#include "app/common/help_requests.h"
#include "app/common/status_line.h"
#include "app/conflicts/comparingdlg.h"
#include "app/conflicts/decisions.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/kit/attach.h"
#include "app/kit/callbacks.h"
#include "app/kit/dialogs.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/widgets.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "app/samples/installed_list.h"
#include "model/hrn_words.h"
#include "texts/messages.h"

#include <Xm/Form.h>
#include <Xm/List.h>
#include <Xm/RowColumn.h>

Widget wi_conflict_dlg = nullptr;

namespace {

using gw::Attach;
using gw::decisions;
using gw::Message;
using gw::Resolution;

constexpr int GAP = 8;
constexpr int VISIBLE_CONFLICTS = 8;
constexpr int DETAIL_LINES = 8;
constexpr std::size_t LINE_LENGTH = 60;  // characters of a line with its resolution

Widget wi_conflicts_list = nullptr;
Widget wi_keep_button, wi_not_keep_button, wi_ok_button;
Widget wi_conflict_detail_label = nullptr;

bool installs() {
    return decisions().installs();
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
    const GWConflict* conflict = decisions().conflict_at(position);
    if (conflict == nullptr) return;
    activate_resolutions(decisions().at(position) != Resolution::READ_ONLY);
    show_detail(gw::conflict_detail(*conflict));
}

void resolve_selected(Resolution resolution) {
    const int position = gw::selected_position(wi_conflicts_list);
    if (decisions().conflict_at(position) == nullptr) return;
    decisions().decide(position, resolution);
    const gw::XmText entry = gw::xm_text(get_conflict_list_entry(static_cast<unsigned>(position)));
    XmString item = entry.get();
    // Motif loses the selection when a selected item is replaced.
    XmListDeselectPos(wi_conflicts_list, position);
    XmListReplaceItemsPos(wi_conflicts_list, &item, 1, position);
    XmListSelectPos(wi_conflicts_list, position, False);
    if (!decisions().has_undecided()) activate(wi_ok_button, 1);
}

void keep_cb(Widget, XtPointer, XtPointer) {
    resolve_selected(Resolution::KEEP_AS_IS);
}

void not_keep_cb(Widget, XtPointer, XtPointer) {
    resolve_selected(Resolution::FORCE);
}

void ok_cb(Widget, XtPointer, XtPointer) {
    if (decisions().list() == nullptr) return;
    gw::forget_failures();
    gw::FontReport report;
    decisions().carry_out(report);
    const unsigned done = decisions().success_count();
    const std::string status = installs() ? gw::installed_text(done) : gw::deleted_text(done);
    update_wi_installed_hrn_list();
    forget_selection();
    update_label(wi_main_window_status_label, status.c_str(), nullptr);
    stop_conflict_dlg();
    if (gw::font_path_waits_for_superuser()) start_fp_info_dlg();
}

void cancel_cb(Widget, XtPointer, XtPointer) {
    GW_LIST<GWConflict>* list = decisions().list();
    stop_conflict_dlg();
    if (list != nullptr) start_preconflict_dlg(decisions().success_count(), list);
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
    const std::vector<Widget> buttons =
        gw::make_buttons(dialog, {{"ok_button", Message::CONFLICT_FINISH, ok_cb, nullptr, 4, 34},
                                  {"cancel_button", Message::CONFLICT_CANCEL, cancel_cb, nullptr, 39, 64},
                                  gw::help_button("help_dlg_button", Message::CONFLICT_HELP,
                                                  gw::HelpSection::CONFLICTS, gw::do_nothing_cb, 69, 94)});
    for (Widget button : buttons) Attach(button).below(above, GAP).above(message, 0);
    wi_ok_button = buttons[0];
    gw::end_dialog(dialog, {wi_ok_button, buttons[1], XtParent(wi_conflicts_list), cancel_cb});
}

}  // namespace

Widget create_conflict_dlg(const char* name, Widget parent) {
    wi_conflict_dlg = gw::form_dialog(parent, name, Message::CONFLICT_TITLE);
    if (gw::window_policy().compares_conflicts()) {
        gw::create_comparing_dlg(wi_conflict_dlg);
        return wi_conflict_dlg;
    }
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
    decisions().begin(success, list);
    if (gw::window_policy().compares_conflicts()) return gw::start_comparing_dlg();
    if (decisions().has_undecided()) activate(wi_ok_button, 0);
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
    decisions().forget();
    XtUnmanageChild(wi_conflict_dlg);
}

void update_wi_conflict_list() {
    if (gw::window_policy().compares_conflicts()) return gw::show_decisions();
    std::vector<std::string> lines;
    for (int position = 1; position <= decisions().count(); ++position)
        lines.push_back(get_conflict_list_entry(static_cast<unsigned>(position)));
    gw::fill_list(wi_conflicts_list, lines);
}

std::string get_conflict_list_entry(unsigned position) {
    const int at = static_cast<int>(position);
    const GWConflict* conflict = decisions().conflict_at(at);
    if (conflict == nullptr) return "";
    std::string entry = conflict->get_name();
    gw::append_at_column(entry, gw::resolution_word(decisions().at(at), installs()));
    return entry;
}
