// SPDX-License-Identifier: MIT
#include "app/conflicts/preconflictdlg.h"

#include <string>
#include <vector>

#include "app/common/status_line.h"
#include "app/conflicts/conflictdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/kit/attach.h"
#include "app/kit/callbacks.h"
#include "app/kit/dialogs.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/lists.h"
#include "app/kit/messages.h"
#include "app/kit/widgets.h"
#include "app/program/conflict_lists.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"

#include <Xm/Form.h>

Widget wi_preconflict_dlg = nullptr;

namespace {

using gw::Attach;
using gw::Message;

constexpr int GAP = 10;
constexpr int VISIBLE_FAILURES = 6;
constexpr std::size_t FAILURE_COLUMNS = 70;

Widget wi_success_label, wi_read_only_label, wi_conflict_label, wi_detail_label;
Widget wi_failed_label, wi_failed_list;  // null where windows show no reasons
Widget wi_separator;
Widget wi_ok_button, wi_resolve_button;

gw::ConflictView shown;
std::vector<std::string> failures_shown;
unsigned success_count = 0;
unsigned read_only_conflict_count = 0;
unsigned other_conflict_count = 0;

/// The texts of one of the two operations.
struct Texts {
    Message success, read_only, conflicts, some, none, status;
};
constexpr Texts INSTALL_TEXTS = {Message::INSTALLED_COUNT,        Message::NOT_OVERWRITTEN_COUNT,
                                 Message::INSTALL_CONFLICT_COUNT, Message::INSTALL_CONFLICTS,
                                 Message::NO_INSTALL_CONFLICTS,   Message::FONTS_INSTALLED};
constexpr Texts DELETE_TEXTS = {Message::DELETED_COUNT,         Message::NOT_DELETED_COUNT,
                                Message::DELETE_CONFLICT_COUNT, Message::DELETE_CONFLICTS,
                                Message::NO_DELETE_CONFLICTS,   Message::FONTS_DELETED};
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
    if (gw::user_is_superuser()) start_fp_info_dlg();
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

/// Below the counts: the fonts that were not installed or deleted, and why.
void create_failures() {
    wi_failed_label = gw::label(wi_preconflict_dlg, "failed_label", Message::NOT_DONE);
    Attach(wi_failed_label).below(wi_detail_label, 2 * GAP).sides(GAP);
    wi_failed_list = gw::scrolled_list(wi_preconflict_dlg, "failed_list");
    XtVaSetValues(wi_failed_list, XmNvisibleItemCount, VISIBLE_FAILURES, nullptr);
    gw::set_list_columns(wi_failed_list, FAILURE_COLUMNS);
    Attach(XtParent(wi_failed_list)).below(wi_failed_label, 2).sides(GAP);
}

void show_failures(const std::vector<std::string>& lines) {
    if (wi_failed_list == nullptr) return;
    Widget scrolled = XtParent(wi_failed_list);
    gw::fill_list(wi_failed_list, lines);
    for (Widget w : {wi_failed_label, scrolled}) {
        if (lines.empty()) {
            XtUnmanageChild(w);
        } else {
            XtManageChild(w);
        }
    }
    // The separator must be attached to a widget that is managed.
    Attach(wi_separator).below(lines.empty() ? wi_detail_label : scrolled, GAP);
}

}  // namespace

Widget create_preconflict_dlg(const char* name, Widget parent) {
    wi_preconflict_dlg = gw::form_dialog(parent, name, Message::PRECONFLICT_TITLE);
    wi_success_label = text_line("success_label", nullptr, GAP);
    wi_read_only_label = text_line("read_only_label", wi_success_label, 2);
    wi_conflict_label = text_line("conflict_label", wi_read_only_label, 2);
    wi_detail_label = text_line("detail_label", wi_conflict_label, 2 * GAP);
    if (gw::window_policy().shows_reasons()) create_failures();
    wi_separator = gw::separator(wi_preconflict_dlg, "separator");
    Attach(wi_separator).below(wi_detail_label, GAP).sides(0);

    Widget message = gw::label(wi_preconflict_dlg, "msg_label", " ");
    Attach(message).sides(GAP).bottom_form(0);
    const std::vector<Widget> buttons = gw::make_buttons(
        wi_preconflict_dlg,
        {{"ok_button", Message::PRECONFLICT_OK, ok_cb, nullptr, 4, 30},
         {"resolve_button", Message::REVIEW, resolve_cb, nullptr, 37, 63},
         {"help_dlg_button", Message::PRECONFLICT_HELP, gw::do_nothing_cb, nullptr, 70, 96}});
    // The buttons are attached at the top and at the bottom, so that they are equally high whatever their
    // labels are.
    for (Widget button : buttons) Attach(button).below(wi_separator, GAP).above(message, 0);
    wi_ok_button = buttons[0];
    wi_resolve_button = buttons[1];
    // OK changes nothing, so every other way to leave the window does the same.
    gw::end_dialog(wi_preconflict_dlg, {wi_ok_button, wi_ok_button, wi_ok_button, ok_cb});
    return wi_preconflict_dlg;
}

// The conflict dialog comes back here when nothing is decided in it: what was not done stays so.
void start_preconflict_dlg(unsigned success, GW_LIST<GWConflict>* list) {
    if (!list->is_empty()) start_summary({(*list->begin())->get_type(), success, list, failures_shown});
}

void begin_summary() {
    gw::forget_failures();
    failures_shown.clear();
    // Conflicts that wait for the user's decision stay in view.
    if (shown.list() == nullptr) XtUnmanageChild(wi_preconflict_dlg);
    show_failures({});
}

bool start_summary(const WorkSummary& summary) {
    const bool has_conflicts = summary.conflicts != nullptr && !summary.conflicts->is_empty();
    const bool has_failures = !summary.failures.empty() && gw::window_policy().shows_reasons();
    if (!has_conflicts && !has_failures) return false;
    failures_shown = summary.failures;
    // A summary with conflicts that are still to be decided keeps them, and shows the new failures too.
    if (has_conflicts || shown.list() == nullptr) {
        if (has_conflicts) shown.show(summary.conflicts);
        success_count = summary.success;
        texts = summary.type == GWConflict::INSTALL ? &INSTALL_TEXTS : &DELETE_TEXTS;
        count_conflicts();
    }
    const bool undecided = other_conflict_count > 0;
    gw::set_label(wi_ok_button, gw::text_of(undecided ? Message::LEAVE_ORIGINALS : Message::PRECONFLICT_OK));
    gw::set_label(wi_resolve_button, gw::text_of(undecided ? Message::CHOOSE : Message::REVIEW));
    activate(wi_resolve_button, shown.list() != nullptr ? 1 : 0);
    show_counts();
    show_failures(failures_shown);
    XtManageChild(wi_preconflict_dlg);
    return true;
}

bool add_to_summary(WorkSummary summary) {
    if (summary.failures.empty()) return false;
    summary.failures.insert(summary.failures.begin(), failures_shown.begin(), failures_shown.end());
    return start_summary(summary);
}

void stop_preconflict_dlg() {
    update_label(wi_main_window_status_label, gw::count_text(success_count, texts->status).c_str(), nullptr);
    shown.let_go();
    XtUnmanageChild(wi_preconflict_dlg);
}
