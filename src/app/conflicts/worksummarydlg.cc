// SPDX-License-Identifier: MIT
#include "app/conflicts/worksummarydlg.h"

#include <algorithm>

#include "app/common/help_requests.h"
#include "app/conflicts/conflictdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/kit/attach.h"
#include "app/kit/callbacks.h"
#include "app/kit/dialogs.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/lists.h"
#include "app/kit/widgets.h"
#include "app/program/conflict_lists.h"
#include "app/program/program_objects.h"

#include <Xm/Form.h>
#include <Xm/List.h>

namespace gw {

namespace {

constexpr int GAP = 10;
constexpr int VISIBLE_LINES = 12;
constexpr std::size_t LIST_COLUMNS = 80;

/// What the window tells.
struct Summary {
    Widget counts = nullptr;
    Widget list = nullptr;
    Widget ok = nullptr;
    Widget review = nullptr;
    TableList table;
    WorkAccount account;
    ConflictView pending;  // conflicts that the user can look at again
    unsigned success = 0;
    bool installs = true;
};

Summary& summary() {
    static Summary of_the_program;
    return of_the_program;
}

bool can_decide_any(const GW_LIST<GWConflict>* conflicts) {
    return conflicts != nullptr &&
           std::any_of(conflicts->begin(), conflicts->end(),
                       [](const GWConflict* conflict) { return conflict->can_be_decided(); });
}

bool waits_for_user() {
    return summary().pending.list() != nullptr || XtIsManaged(wi_conflict_dlg);
}

void show() {
    Summary& s = summary();
    WorkAccount all = s.account;
    if (s.pending.list() != nullptr) {
        for (const WorkLine& line : pending_lines(*s.pending.list())) all.add(line);
    }
    set_label(s.counts, all.counts_in_words(s.installs));
    XmListDeselectAllItems(s.list);
    s.table.show(all.rows());
    set_label(s.review, text_of(can_decide_any(s.pending.list()) ? Message::CHOOSE : Message::REVIEW));
    activate(s.review, s.pending.list() != nullptr ? 1 : 0);
    XtManageChild(wi_preconflict_dlg);
}

void ok_cb(Widget, XtPointer, XtPointer) {
    stop_work_summary();
    // As after the summary of earlier releases.
    if (font_path_waits_for_superuser()) start_fp_info_dlg();
}

void review_cb(Widget, XtPointer, XtPointer) {
    Summary& s = summary();
    GW_LIST<GWConflict>* conflicts = s.pending.list();
    if (conflicts == nullptr) return;
    s.pending.let_go();
    XtUnmanageChild(wi_preconflict_dlg);
    start_conflict_dlg(s.success, conflicts);
}

void create_list(Widget dialog, Widget below) {
    Summary& s = summary();
    s.counts = label(dialog, "success_label", " ");
    XtVaSetValues(s.counts, XmNalignment, XmALIGNMENT_BEGINNING, nullptr);
    Attach(s.counts).top_form(GAP).sides(GAP);
    Widget title = label(dialog, "failed_label", Message::WHAT_HAPPENED);
    Attach(title).below(s.counts, GAP).left_form(GAP);
    s.list = scrolled_list(dialog, "failed_list");
    XtVaSetValues(s.list, XmNvisibleItemCount, VISIBLE_LINES, nullptr);
    set_list_columns(s.list, LIST_COLUMNS);
    s.table = TableList(s.list);
    Attach(XtParent(s.list)).below(title, 2).sides(GAP).above(below, GAP);
}

}  // namespace

void create_work_summary(Widget dialog) {
    Summary& s = summary();
    const BottomRow row =
        bottom_row(dialog, {"msg_label", "button_form", "separator"},
                   {{"ok_button", Message::PRECONFLICT_OK, ok_cb},
                    {"resolve_button", Message::REVIEW, review_cb},
                    help_button("help_dlg_button", Message::PRECONFLICT_HELP, HelpSection::SUMMARY)});
    s.ok = row.buttons[0];
    s.review = row.buttons[1];
    create_list(dialog, row.separator);
    // OK changes nothing, so every other way to leave the window does the same.
    end_dialog(dialog, {s.ok, s.ok, s.ok, ok_cb});
}

bool sum_work_up(const WorkSummary& work) {
    Summary& s = summary();
    s.installs = work.type == GWConflict::INSTALL;
    s.success = work.success;
    const WorkKind kind = s.installs ? WorkKind::INSTALLED : WorkKind::DELETED;
    s.account.add_done(kind, work.success,
                       work.report != nullptr ? work.report->done_names() : std::vector<std::string>());
    s.account.add(work.failures);
    for (const SummaryNote& note : work.notes) s.account.add(note);
    const bool has_conflicts = work.conflicts != nullptr && !work.conflicts->is_empty();
    if (has_conflicts && can_decide_any(work.conflicts) && !XtIsManaged(wi_conflict_dlg)) {
        start_conflict_dlg(work.success, work.conflicts);
        return true;
    }
    if (has_conflicts) s.pending.show(work.conflicts);
    const bool tells = has_conflicts || s.account.has_more_than_success();
    if (tells) {
        show();
    } else if (!waits_for_user()) {
        stop_work_summary();
    }
    return tells;
}

void show_work_summary(unsigned success, GW_LIST<GWConflict>* conflicts) {
    Summary& s = summary();
    s.success = success;
    s.installs = (*conflicts->begin())->get_type() == GWConflict::INSTALL;
    s.pending.show(conflicts);
    show();
}

void finish_work_summary(GWConflict::TYPE type, const std::vector<WorkLine>& lines,
                         const std::vector<SummaryNote>& notes) {
    Summary& s = summary();
    s.installs = type == GWConflict::INSTALL;
    for (const WorkLine& line : lines) s.account.add(line);
    s.account.add(gathered_failure_texts());
    for (const SummaryNote& note : notes) s.account.add(note);
    show();
}

void begin_work_summary() {
    if (!waits_for_user()) stop_work_summary();
}

void stop_work_summary() {
    summary().account = {};
    summary().pending.let_go();
    XtUnmanageChild(wi_preconflict_dlg);
}

}  // namespace gw
