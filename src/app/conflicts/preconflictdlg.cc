// SPDX-License-Identifier: MIT
#include "app/conflicts/preconflictdlg.h"

#include <string>
#include <vector>

#include "app/common/help_requests.h"
#include "app/common/status_line.h"
#include "app/conflicts/conflictdlg.h"
#include "app/conflicts/worksummarydlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/kit/attach.h"
#include "app/kit/callbacks.h"
#include "app/kit/dialogs.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/lists.h"
#include "app/kit/widgets.h"
#include "app/program/conflict_lists.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "texts/messages.h"

#include <Xm/Form.h>

Widget wi_preconflict_dlg = nullptr;

namespace {

using gw::Attach;
using gw::Message;

constexpr int GAP = 10;

Widget wi_success_label, wi_read_only_label, wi_conflict_label, wi_detail_label;
Widget wi_ok_button, wi_resolve_button;

gw::ConflictView shown;
unsigned success_count = 0;
unsigned read_only_conflict_count = 0;
unsigned other_conflict_count = 0;

/// The texts of one of the two operations.
struct Texts {
    Message success, read_only, conflicts, some, none;
};
constexpr Texts INSTALL_TEXTS = {Message::INSTALLED_COUNT, Message::NOT_OVERWRITTEN_COUNT,
                                 Message::INSTALL_CONFLICT_COUNT, Message::INSTALL_CONFLICTS,
                                 Message::NO_INSTALL_CONFLICTS};
constexpr Texts DELETE_TEXTS = {Message::DELETED_COUNT, Message::NOT_DELETED_COUNT,
                                Message::DELETE_CONFLICT_COUNT, Message::DELETE_CONFLICTS,
                                Message::NO_DELETE_CONFLICTS};
const Texts* texts = &INSTALL_TEXTS;

void count_conflicts() {
    read_only_conflict_count = 0;
    other_conflict_count = 0;
    if (shown.list() == nullptr) return;
    for (const GWConflict* conflict : *shown.list())
        ++(conflict->is_conflict(GWConflict::READ_ONLY) != 0 ? read_only_conflict_count
                                                             : other_conflict_count);
}

// The asterisks show which text belongs to which count.
void show_counts() {
    const std::string others = std::to_string(other_conflict_count);
    gw::set_label(wi_success_label, gw::text_of(texts->success) + std::to_string(success_count));
    gw::set_label(wi_read_only_label,
                  gw::text_of(texts->read_only) + std::to_string(read_only_conflict_count));
    gw::set_label(wi_conflict_label,
                  gw::text_of(texts->conflicts) + others + (shown.list() != nullptr ? " *" : ""));
    std::string detail = " ";
    if (other_conflict_count > 0) {
        detail = "* " + others + gw::text_of(texts->some);
    } else if (shown.list() != nullptr) {
        detail = gw::text_of(texts->none);
    }
    gw::set_label(wi_detail_label, detail);
}

void ok_cb(Widget, XtPointer, XtPointer) {
    stop_preconflict_dlg();
    // Kept: the superuser is told to update the font path after deletions too.
    if (gw::font_path_waits_for_superuser()) start_fp_info_dlg();
}

void resolve_cb(Widget, XtPointer, XtPointer) {
    GW_LIST<GWConflict>* list = shown.list();
    stop_preconflict_dlg();
    if (list != nullptr) start_conflict_dlg(success_count, list);
}

/// A label of the dialog's width, `offset` pixels below `above`, or below the top if `above` is null.
Widget text_line(const char* name, Widget above, int offset) {
    Widget w = gw::label(wi_preconflict_dlg, name, " ");
    Attach(w).sides(GAP);
    if (above != nullptr) {
        Attach(w).below(above, offset);
    } else {
        Attach(w).top_form(offset);
    }
    return w;
}

}  // namespace

Widget create_preconflict_dlg(const char* name, Widget parent) {
    const bool sums_up = gw::window_policy().sums_work_up();
    wi_preconflict_dlg =
        gw::form_dialog(parent, name, sums_up ? Message::SUMMARY_TITLE : Message::PRECONFLICT_TITLE);
    if (sums_up) {
        gw::create_work_summary(wi_preconflict_dlg);
        return wi_preconflict_dlg;
    }
    wi_success_label = text_line("success_label", nullptr, GAP);
    wi_read_only_label = text_line("read_only_label", wi_success_label, 2);
    wi_conflict_label = text_line("conflict_label", wi_read_only_label, 2);
    wi_detail_label = text_line("detail_label", wi_conflict_label, 2 * GAP);
    Widget line = gw::separator(wi_preconflict_dlg, "separator");
    Attach(line).below(wi_detail_label, GAP).sides(0);

    Widget message = gw::label(wi_preconflict_dlg, "msg_label", " ");
    Attach(message).sides(GAP).bottom_form(0);
    const std::vector<Widget> buttons = gw::make_buttons(
        wi_preconflict_dlg, {{"ok_button", Message::PRECONFLICT_OK, ok_cb, nullptr, 4, 30},
                             {"resolve_button", Message::REVIEW, resolve_cb, nullptr, 37, 63},
                             gw::help_button("help_dlg_button", Message::PRECONFLICT_HELP,
                                             gw::HelpSection::SUMMARY, gw::do_nothing_cb, 70, 96)});
    // The buttons are attached at the top and at the bottom, so that they are equally high whatever their
    // labels are.
    for (Widget button : buttons) Attach(button).below(line, GAP).above(message, 0);
    wi_ok_button = buttons[0];
    wi_resolve_button = buttons[1];
    // OK changes nothing, so every other way to leave the window does the same.
    gw::end_dialog(wi_preconflict_dlg, {wi_ok_button, wi_ok_button, wi_ok_button, ok_cb});
    return wi_preconflict_dlg;
}

void start_preconflict_dlg(unsigned success, GW_LIST<GWConflict>* list) {
    if (list->is_empty()) return;
    if (gw::window_policy().sums_work_up()) return gw::show_work_summary(success, list);
    (void)start_summary({(*list->begin())->get_type(), success, list, {}});
}

void begin_summary() {
    gw::forget_failures();
    if (gw::window_policy().sums_work_up()) return gw::begin_work_summary();
    // Conflicts that wait for the user's decision stay in view.
    if (shown.list() == nullptr) XtUnmanageChild(wi_preconflict_dlg);
}

bool start_summary(const WorkSummary& summary) {
    if (gw::window_policy().sums_work_up()) return gw::sum_work_up(summary);
    if (summary.conflicts == nullptr || summary.conflicts->is_empty()) return false;
    shown.show(summary.conflicts);
    success_count = summary.success;
    texts = summary.type == GWConflict::INSTALL ? &INSTALL_TEXTS : &DELETE_TEXTS;
    count_conflicts();
    const bool undecided = other_conflict_count > 0;
    gw::set_label(wi_ok_button, gw::text_of(undecided ? Message::LEAVE_ORIGINALS : Message::PRECONFLICT_OK));
    gw::set_label(wi_resolve_button, gw::text_of(undecided ? Message::CHOOSE : Message::REVIEW));
    activate(wi_resolve_button, shown.list() != nullptr ? 1 : 0);
    show_counts();
    XtManageChild(wi_preconflict_dlg);
    return true;
}

void add_untried(WorkSummary& summary, const std::string& untried) {
    const bool has_conflicts = summary.conflicts != nullptr && !summary.conflicts->is_empty();
    if (untried.empty() || (!has_conflicts && summary.failures.empty() && summary.notes.empty())) return;
    summary.notes.insert(summary.notes.begin(), {Message::STOPPED, {untried}});
}

void stop_preconflict_dlg() {
    if (gw::window_policy().sums_work_up()) return gw::stop_work_summary();
    const bool deletes = texts == &DELETE_TEXTS;
    const std::string status = deletes ? gw::deleted_text(success_count) : gw::installed_text(success_count);
    update_label(wi_main_window_status_label, status.c_str(), nullptr);
    shown.let_go();
    XtUnmanageChild(wi_preconflict_dlg);
}
