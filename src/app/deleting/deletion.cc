// SPDX-License-Identifier: MIT
#include "app/deleting/deletion.h"

#include <algorithm>
#include <vector>

#include "app/common/progressdlg.h"
#include "app/common/status_line.h"
#include "app/common/work_control.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/deleting/deletion_question.h"
#include "app/deleting/delwarningdlg.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/program/conflict_lists.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/shown_list.h"
#include "app/program/window_policy.h"
#include "app/program/work_record.h"
#include "app/samples/attrdlg.h"
#include "app/samples/installed_list.h"
#include "model/packaged_fonts.h"
#include "platform/package_owner.h"
#include "texts/messages.h"

#include <Xm/List.h>

namespace {

using gw::Message;

/// Deletes the font at that position, or records the conflict. Aliases are never deleted. Returns whether the
/// font is deleted.
bool delete_entry(int position, WorkRecord& work) {
    const gw::ShownList entries = gw::installed_entries();
    if (GWAlias* alias = entries.alias_at(position); alias != nullptr) {
        the_conflict_list.append(
            new GWConflict(GWConflict::DELETE, nullptr, alias, nullptr, nullptr, nullptr));
    }
    if (entries.font_at(position) == nullptr) return false;
    const int result = the_installed_hrn_list.delete_at_pos(static_cast<unsigned>(position), the_fsm_list,
                                                            the_conflict_list);
    gw::hear_new_failures(the_installed_hrn_list.get_report());
    if (result != GWHRNElement::DONE) return false;
    count_installed_fonts();
    gw::delete_row(wi_hrn_list, position);
    gw::show_done(++work.done);
    return true;
}

std::string name_at(int position) {
    const gw::ShownList entries = gw::installed_entries();
    const GWHRNElement* element = entries.font_at(position);
    return element != nullptr ? element->get_name() : "";
}

/// Each deletion so far has moved the later entries up by one.
void delete_next(WorkRecord& work) {
    const int position = work.positions[work.index] - work.done;
    if (!gw::begin_entry(work, name_at(position))) return;
    const gw::FontReport& report = the_installed_hrn_list.get_report();
    const std::size_t failures = report.failed().size();
    const bool is_done = delete_entry(position, work);
    gw::end_entry(work, is_done, gw::reasons_since(report, failures));
}

/// Asks the package manager once about all fonts that are to be deleted.
void ask_about_packages(const std::vector<int>& positions) {
    const gw::ShownList entries = gw::installed_entries();
    std::vector<const GWFont*> fonts;
    for (const int position : positions) {
        const GWHRNElement* element = entries.font_at(position);
        if (element == nullptr) continue;
        for (const GWHRNElement::PointSize& slot : element->get_slots()) {
            for (const gw::Ref<GWFont>& font : slot.fonts) {
                if (!font->is_read_only()) fonts.push_back(font.get());
            }
        }
    }
    gw::forget_package_owners();
    gw::ask_packages_of(fonts);
}

/// Returns how many of the names that were deleted stay after all.
int make_deletion_final() {
    const int staying = gw::commit_font_action(the_installed_hrn_list.get_report(), gw::Sequel::FONT_STAYS);
    gw::hear_new_failures(the_installed_hrn_list.get_report());
    if (staying > 0) update_wi_installed_hrn_list();
    return staying;
}

void finish_deletion(int deleted) {
    const std::string untried = gw::untried_text(gw::end_control(the_wp_cl_data));
    show_main_samples_last();
    stop_progress_dlg();
    permit_other_work();
    if (deleted > 0) the_font_path->rehash_session_fp();
    WorkSummary summary = {GWConflict::DELETE,
                           static_cast<unsigned>(deleted),
                           &the_conflict_list,
                           gw::gathered_failure_texts(),
                           {},
                           &the_installed_hrn_list.get_report()};
    add_untried(summary, untried);
    start_summary(summary);
    update_label(wi_main_window_status_label,
                 gw::with_untried(gw::deleted_text(static_cast<unsigned>(deleted)), untried).c_str(),
                 nullptr);
}

void start_deletion(std::vector<int> positions) {
    const int count = static_cast<int>(positions.size());
    the_wp_cl_data = {std::move(positions), 0, 0};
    forbid_other_work();
    forget_selection();
    gw::begin_control(Message::DELETING_COUNT);
    start_progress_dlg(0, count, gw::text_of(Message::DELETE_PROGRESS_TITLE),
                       gw::text_of(Message::DELETE_PROGRESS));
    // This comes last: drawing the progress dialog would already run the work procedure.
    XtAppAddWorkProc(app, delete_work_proc, &the_wp_cl_data);
}

/// While the question is there, it names what is selected then: that is what will be deleted.
void follow_selection(int selected) {
    if (!gw::window_policy().names_what_is_deleted() || !XtIsManaged(wi_del_warning_dlg)) return;
    if (selected == 0) return stop_del_warning_dlg();
    set_del_warning(gw::question_in_words(gw::plan_deletion(gw::selected_positions(wi_hrn_list))));
}

}  // namespace

void delete_btn_cb(Widget, XtPointer, XtPointer) {
    if (gw::window_policy().names_what_is_deleted()) {
        set_del_warning(gw::question_in_words(gw::plan_deletion(gw::selected_positions(wi_hrn_list))));
        gw::selection_changes().connect(follow_selection);
    }
    start_del_warning_dlg(delete_confirmed_cb);
}

void delete_confirmed_cb(char confirmed) {
    if (confirmed == 0 || the_wp_cl_data.is_in_progress()) return;
    clear_attributes();
    std::vector<int> positions = gw::selected_positions(wi_hrn_list);
    if (!positions.empty()) start_deletion(std::move(positions));
    activate_selection_controls(0);
}

Boolean delete_work_proc(XtPointer data) {
    auto* work = static_cast<WorkRecord*>(data);
    if (work->index == 0) {
        gw::clear_conflict_list();
        the_installed_hrn_list.get_report().clear();
        begin_summary();
        gw::begin_font_action();
        ask_about_packages(work->positions);
    }
    delete_next(*work);
    if (work->is_in_progress()) return False;
    gw::begin_to_finish();
    // A name of which a part had failed before was not counted.
    finish_deletion(std::max(0, work->done - make_deletion_final()));
    return True;
}
