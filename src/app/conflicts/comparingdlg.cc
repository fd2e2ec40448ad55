// SPDX-License-Identifier: MIT
#include "app/conflicts/comparingdlg.h"

#include <algorithm>
#include <vector>

#include "app/common/help_requests.h"
#include "app/common/status_line.h"
#include "app/common/work_control.h"
#include "app/conflicts/conflictdlg.h"
#include "app/conflicts/decisions.h"
#include "app/conflicts/font_comparison.h"
#include "app/conflicts/work_account.h"
#include "app/conflicts/worksummarydlg.h"
#include "app/kit/attach.h"
#include "app/kit/busy_windows.h"
#include "app/kit/callbacks.h"
#include "app/kit/dialogs.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/table_list.h"
#include "app/kit/widgets.h"
#include "app/program/failures.h"
#include "app/program/work_record.h"
#include "app/samples/installed_list.h"
#include "app/samples/new_fonts.h"
#include "texts/messages.h"

#include <Xm/Form.h>
#include <Xm/List.h>
#include <Xm/RowColumn.h>

namespace gw {

namespace {

constexpr int GAP = 8;
constexpr int VISIBLE_CONFLICTS = 6;
constexpr std::size_t LIST_COLUMNS = 96;
constexpr int NO_CONFLICT = 0;

/// The parts of the dialog.
struct Dialog {
    Widget title = nullptr;
    Widget list = nullptr;
    Widget keep = nullptr;
    Widget replace = nullptr;
    Widget keep_all = nullptr;
    Widget replace_all = nullptr;
    Widget finish = nullptr;
    Widget message = nullptr;
    TableList table;
    FontComparison comparison;
    std::vector<int> conflicts;  // positions of conflicts, by row - 1; `NO_CONFLICT` for a heading
};

Dialog& dialog() {
    static Dialog of_the_program;
    return of_the_program;
}

bool is_open(int position) {
    return position != NO_CONFLICT && decisions().at(position) != Resolution::READ_ONLY;
}

int conflict_of_row(int row) {
    const std::vector<int>& conflicts = dialog().conflicts;
    const auto index = static_cast<std::size_t>(row) - 1;
    return row > 0 && index < conflicts.size() ? conflicts[index] : NO_CONFLICT;
}

/// Of those that are selected.
std::vector<int> open_conflicts_selected() {
    std::vector<int> open;
    for (const int row : selected_positions(dialog().list)) {
        if (is_open(conflict_of_row(row))) open.push_back(conflict_of_row(row));
    }
    return open;
}

// --- the list ------------------------------------------------------------------

/// What must be decided comes first; what cannot be is set apart from it.
std::vector<int> in_order() {
    std::vector<int> open;
    std::vector<int> closed;
    for (int position = 1; position <= decisions().count(); ++position)
        (is_open(position) ? open : closed).push_back(position);
    if (!open.empty() && !closed.empty()) open.push_back(NO_CONFLICT);
    open.insert(open.end(), closed.begin(), closed.end());
    return open;
}

Cell decision_cell(int position) {
    const Resolution resolution = decisions().at(position);
    if (resolution == Resolution::UNDECIDED) return {text_of(Message::NOT_DECIDED), Tone::DOUBTFUL};
    const Tone tone = resolution == Resolution::FORCE ? Tone::GOOD : Tone::PLAIN;
    return {resolution_word(resolution, decisions().installs()), tone};
}

std::string directory_of(const GWConflict& conflict) {
    const GWFont* font = conflict.get_compared_fonts().installed;
    return font != nullptr && font->get_dir_name() != nullptr ? font->get_dir_name() : "";
}

TableRow row_of(int position) {
    const GWConflict& conflict = *decisions().conflict_at(position);
    const std::string name = name_without_mark(conflict.get_name());
    if (is_open(position)) return {decision_cell(position), {name}, {directory_of(conflict)}};
    return {{text_of(Message::KIND_KEPT), Tone::FAINT},
            {name, Tone::FAINT},
            {obstacle_in_words(conflict), Tone::FAINT}};
}

unsigned count_open(bool undecided_only) {
    unsigned count = 0;
    for (int position = 1; position <= decisions().count(); ++position) {
        const Resolution resolution = decisions().at(position);
        if (undecided_only ? resolution == Resolution::UNDECIDED : resolution != Resolution::READ_ONLY)
            ++count;
    }
    return count;
}

/// What happens to those that are not decided.
void show_count_of_undecided() {
    const unsigned undecided = count_open(true);
    set_label(
        dialog().message,
        undecided == 0 ? " " : text_of(Message::ONE_LEFT_UNDECIDED, Message::MANY_LEFT_UNDECIDED, undecided));
}

void activate_buttons() {
    Dialog& d = dialog();
    const bool can_decide = !open_conflicts_selected().empty();
    for (Widget w : {d.keep, d.replace}) activate(w, can_decide ? 1 : 0);
    const bool any_open = count_open(false) > 0;
    for (Widget w : {d.keep_all, d.replace_all}) activate(w, any_open ? 1 : 0);
}

void select_cb(Widget, XtPointer, XtPointer call_data) {
    const auto* event = static_cast<XmListCallbackStruct*>(call_data);
    const std::vector<int> selected = selected_positions(dialog().list);
    int row = event != nullptr ? event->item_position : 0;
    // A click that takes a row out of the selection shows one that is still in it.
    if (std::find(selected.begin(), selected.end(), row) == selected.end())
        row = selected.empty() ? 0 : selected.front();
    activate_buttons();
    if (const int position = conflict_of_row(row); position != NO_CONFLICT) {
        dialog().comparison.show(*decisions().conflict_at(position));
    } else {
        dialog().comparison.clear();
    }
}

// --- deciding ------------------------------------------------------------------

void decide(const std::vector<int>& positions, Resolution resolution) {
    for (const int position : positions) decisions().decide(position, resolution);
    show_decisions();
}

template <Resolution RESOLUTION>
void decide_cb(Widget, XtPointer, XtPointer) {
    decide(open_conflicts_selected(), RESOLUTION);
}

template <Resolution RESOLUTION>
void decide_all_cb(Widget, XtPointer, XtPointer) {
    std::vector<int> all;
    for (int position = 1; position <= decisions().count(); ++position) {
        if (is_open(position)) all.push_back(position);
    }
    decide(all, RESOLUTION);
}

void show_result(const FontReport& report, const std::string& untried) {
    const unsigned done = decisions().success_count();
    const std::string status =
        with_untried(decisions().installs() ? installed_text(done) : deleted_text(done), untried);
    update_wi_installed_hrn_list();
    forget_selection();
    if (decisions().installs()) show_new_fonts(report, "");
    update_label(wi_main_window_status_label, status.c_str(), nullptr);
}

/// What the summary tells besides what became of each font.
std::vector<SummaryNote> notes_on(const FontReport& report, const std::string& untried) {
    std::vector<SummaryNote> notes;
    if (!untried.empty()) notes.push_back({Message::STOPPED, {untried}});
    if (!report.remarks().empty()) notes.push_back({Message::REMARKS, remark_lines(report)});
    return notes;
}

void hand_over() {
    EntrustedWork work;
    work.planned = planned_lines(decisions());
    for (const int position : decisions().forced())
        work.replacing.emplace_back(decisions().conflict_at(position)->get_element());
    stop_conflict_dlg();
    entrusted_work().emit(work);
}

void finish_cb(Widget, XtPointer, XtPointer) {
    // This comes first: it handles events, and the user may begin other work in them.
    const BusyWindows busy;
    if (decisions().list() == nullptr) return;
    if (the_wp_cl_data.is_in_progress()) return set_label(dialog().message, text_of(Message::DOCTOR_NOT_NOW));
    forget_failures();
    if (decisions().are_entrusted() && !decisions().forced().empty()) return hand_over();
    std::vector<WorkLine> planned = planned_lines(decisions());
    FontReport report;
    const std::vector<int> not_tried = decisions().carry_out(report);
    for (const int position : not_tried) give_up(planned[static_cast<std::size_t>(position) - 1]);
    const std::string untried = untried_text(static_cast<unsigned>(not_tried.size()));
    show_result(report, untried);
    stop_conflict_dlg();
    finish_work_summary(decisions().type(), lines_after(planned, report), notes_on(report, untried));
}

/// Nothing is decided: the summary offers the same conflicts again.
void cancel_cb(Widget, XtPointer, XtPointer) {
    GW_LIST<GWConflict>* list = decisions().list();
    stop_conflict_dlg();
    if (list != nullptr) start_preconflict_dlg(decisions().success_count(), list);
}

// --- the window ----------------------------------------------------------------

/// Below the list: what can be done with the fonts that are selected, and with all.
Widget create_resolutions(Widget parent) {
    Dialog& d = dialog();
    Widget title = label(parent, "resolve_label", Message::CHOOSE_RESOLUTION);
    Arg args[3];
    XtSetArg(args[0], XmNorientation, XmHORIZONTAL);
    XtSetArg(args[1], XmNpacking, XmPACK_TIGHT);
    XtSetArg(args[2], XmNmarginHeight, 0);
    Widget row = XmCreateWorkArea(parent, name_arg("button_rowcol"), args, 3);
    XtManageChild(row);
    d.keep = push_button(row, "keep_button", Message::KEEP_OLD);
    d.replace = push_button(row, "not_keep_button", Message::INSTALL_NEW);
    d.keep_all = push_button(row, "keep_all_button", Message::KEEP_ALL_OLD);
    d.replace_all = push_button(row, "not_keep_all_button", Message::INSTALL_ALL_NEW);
    XtAddCallback(d.keep, XmNactivateCallback, decide_cb<Resolution::KEEP_AS_IS>, nullptr);
    XtAddCallback(d.replace, XmNactivateCallback, decide_cb<Resolution::FORCE>, nullptr);
    XtAddCallback(d.keep_all, XmNactivateCallback, decide_all_cb<Resolution::KEEP_AS_IS>, nullptr);
    XtAddCallback(d.replace_all, XmNactivateCallback, decide_all_cb<Resolution::FORCE>, nullptr);
    Attach(title).left_form(GAP);
    Attach(row).right_of(title, GAP);
    return row;
}

void create_list(Widget parent) {
    Dialog& d = dialog();
    d.title = label(parent, "list_label", Message::NOTHING_TO_DECIDE);
    Attach(d.title).top_form(GAP).sides(GAP);
    d.list = scrolled_list(parent, "_conflicts_list");
    XtVaSetValues(d.list, XmNvisibleItemCount, VISIBLE_CONFLICTS, nullptr);
    d.table = TableList(d.list);
    set_list_columns(d.list, LIST_COLUMNS);
    XtAddCallback(d.list, XmNextendedSelectionCallback, select_cb, nullptr);
}

void set_texts() {
    Dialog& d = dialog();
    const bool installs = decisions().installs();
    set_label(d.keep, text_of(installs ? Message::KEEP_OLD : Message::KEEP));
    set_label(d.replace, text_of(installs ? Message::INSTALL_NEW : Message::DELETE));
    set_label(d.keep_all, text_of(installs ? Message::KEEP_ALL_OLD : Message::KEEP_ALL));
    set_label(d.replace_all, text_of(installs ? Message::INSTALL_ALL_NEW : Message::DELETE_ALL));
    set_label(d.finish, text_of(installs ? Message::FINISH_INSTALLATION : Message::FINISH_DELETION));
    const unsigned open = count_open(false);
    set_label(d.title, open == 0 ? text_of(Message::NOTHING_TO_DECIDE)
                                 : text_of(Message::ONE_TO_DECIDE, Message::MANY_TO_DECIDE, open));
}

}  // namespace

Signal<const EntrustedWork&>& entrusted_work() {
    static Signal<const EntrustedWork&> signal;
    return signal;
}

void create_comparing_dlg(Widget parent) {
    Dialog& d = dialog();
    create_list(parent);
    Widget resolutions = create_resolutions(parent);
    Widget comparison = form(parent, "comparison_form");
    d.comparison.create(comparison);
    const BottomRow row =
        bottom_row(parent, {"msg_label", "button_form", "separator"},
                   {{"ok_button", Message::FINISH_INSTALLATION, finish_cb},
                    {"cancel_button", Message::CONFLICT_CANCEL, cancel_cb},
                    help_button("help_dlg_button", Message::CONFLICT_HELP, HelpSection::CONFLICTS)});
    d.message = row.message;
    d.finish = row.buttons[0];
    Attach(comparison).sides(GAP).above(row.separator, GAP);
    Attach(resolutions).above(comparison, GAP);
    Widget title = XtNameToWidget(parent, "resolve_label");
    Attach(title).above(comparison, GAP + centring_offset(title, resolutions));
    Attach(XtParent(d.list)).below(d.title, 2).sides(GAP).above(resolutions, GAP);
    XtVaSetValues(parent, XmNresizePolicy, XmRESIZE_GROW, nullptr);
    end_dialog(parent, {d.finish, row.buttons[1], XtParent(d.list), cancel_cb});
    BusyWindows::include(wi_conflict_dlg);
}

void start_comparing_dlg() {
    Dialog& d = dialog();
    set_texts();
    d.comparison.show_both_sides(decisions().installs());
    XmListDeselectAllItems(d.list);
    show_decisions();
    set_top_position(d.list, 1);
    XtManageChild(wi_conflict_dlg);
    // The first one is compared at once.
    select_only(d.list, 1);
}

void show_decisions() {
    Dialog& d = dialog();
    const std::vector<int> selected = selected_positions(d.list);
    d.conflicts = in_order();
    const auto closed = static_cast<unsigned>(decisions().count()) - count_open(false);
    std::vector<TableRow> rows;
    for (const int position : d.conflicts) {
        if (position != NO_CONFLICT) {
            rows.push_back(row_of(position));
        } else {
            rows.push_back({{text_of(Message::ONE_STAYS, Message::MANY_STAY, closed)}});
        }
    }
    XmListDeselectAllItems(d.list);
    d.table.show(rows);
    XmListDeselectAllItems(d.list);
    select_too(d.list, selected);
    show_count_of_undecided();
    activate_buttons();
}

}  // namespace gw
