// SPDX-License-Identifier: MIT
#include "app/installing/installation.h"

#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <utility>

#include "app/common/progressdlg.h"
#include "app/common/status_line.h"
#include "app/common/work_control.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/installing/font_source.h"
#include "app/installing/install_destination.h"
#include "app/installing/not_offered.h"
#include "app/installing/source_verdicts.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/toolkit.h"
#include "app/program/conflict_lists.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/work_record.h"
#include "app/samples/installed_list.h"
#include "app/samples/new_fonts.h"
#include "core/font_policy.h"
#include "core/rights.h"
#include "model/packaged_fonts.h"
#include "platform/package_owner.h"
#include "texts/messages.h"

#include <Xm/TextF.h>

namespace {

using gw::Message;
using installdlg::current_install_dir;

bool all_were_chosen = false;  // the installation is of all that the source offers

/// The same files, with all links in their directory's path followed.
std::unique_ptr<GW_FSPEC_LIST> without_links(const GW_FSPEC_LIST& files) {
    auto real = std::make_unique<GW_FSPEC_LIST>();
    for (const GW_FILE_SPEC* spec : files) {
        std::error_code gone;
        const std::filesystem::path dir = std::filesystem::canonical(spec->get_dir(), gone);
        real->append(new GW_FILE_SPEC(spec->get_name(), gone ? spec->get_dir() : dir.c_str(),
                                      spec->get_file_type(), spec->get_ext_type()));
    }
    return real;
}

/// What the summary tells besides the failures: remarks on fonts that were installed and, when there is
/// something to tell anyway or all was chosen, what the source has besides.
std::vector<SummaryNote> notes_on_installation(bool has_something_to_tell) {
    std::vector<SummaryNote> notes;
    if (!current_hrn_list.get_report().remarks().empty())
        notes.push_back({Message::REMARKS, gw::remark_lines(current_hrn_list.get_report())});
    if (!gw::font_policy().marks_what_is_unfit()) return notes;
    if (!has_something_to_tell && !all_were_chosen && notes.empty()) return notes;
    if (gw::NotOffered what = gw::find_not_offered(); !what.lines.empty())
        notes.push_back({Message::NOT_OFFERED_LINES, std::move(what.lines)});
    return notes;
}

void finish_installation(int installed) {
    const std::string untried = gw::untried_text(gw::end_control(the_wp_cl_data));
    installdlg::hold_on_to_sources(the_conflict_list);
    gw::forget_package_owners();
    gw::tell_unless_done(gw::mark_packages(the_conflict_list));
    stop_progress_dlg();
    permit_other_work();
    update_wi_installed_hrn_list();
    forget_selection();
    if (installed > 0) {
        for (const gw::Failure& failure : show_installation_to_server(current_install_dir()))
            gw::tell(failure);
    }
    const std::vector<gw::FailureText>& failures = gw::gathered_failure_texts();
    WorkSummary summary{GWConflict::INSTALL,
                        static_cast<unsigned>(installed),
                        &the_conflict_list,
                        failures,
                        notes_on_installation(!failures.empty() || !the_conflict_list.is_empty()),
                        &current_hrn_list.get_report()};
    add_untried(summary, untried);
    if (!start_summary(summary) && gw::font_path_waits_for_superuser()) start_fp_info_dlg();
    XmTextFieldSetString(wi_installed_sample_textfield, gw::name_arg(" "));
    gw::show_new_fonts(current_hrn_list.get_report(), current_install_dir());
    std::string status = gw::with_untried(gw::installed_text(static_cast<unsigned>(installed)), untried);
    if (const std::string trouble = gw::take_scratch_failure(); !trouble.empty()) status += "  " + trouble;
    update_label(wi_main_window_status_label, status.c_str(), nullptr);
}

/// Installs the next font of the work, unless the user has stopped it.
void install_next(WorkRecord& work) {
    const int position = work.positions[work.index];
    const GWHRNElement* element = current_hrn_list.get_elem_at_pos(position);
    if (!gw::begin_entry(work, element != nullptr ? element->get_name() : "")) return;
    gw::FontReport& report = current_hrn_list.get_report();
    const std::size_t failures = report.failed().size();
    const int result = current_hrn_list.install_at_pos(static_cast<unsigned>(position),
                                                       current_install_dir().c_str(), the_installed_hrn_list,
                                                       the_alias_list, the_fsm_list, the_conflict_list);
    gw::hear_new_failures(report);
    if (result == GWHRNElement::DONE) {
        // Counted anew, because another size of an installed face adds no name.
        count_installed_fonts();
        gw::show_done(++work.done);
    }
    // This comes last: showing the progress handles events, and they must see that the work is not done yet.
    gw::end_entry(work, result == GWHRNElement::DONE, gw::reasons_since(report, failures));
}

}  // namespace

namespace installdlg {

// A font that waits for the user's decision must not be replaced by a file of the same name from another
// source.
void hold_on_to_sources(const GW_LIST<GWConflict>& conflicts) {
    for (const GWConflict* conflict : conflicts) {
        if (conflict->get_element() == nullptr) continue;
        for (const GWHRNElement::PointSize& size : conflict->get_element()->get_slots()) {
            for (const gw::Ref<GWFont>& font : size.fonts) {
                if (font->get_font_file_list() != nullptr)
                    font->set_font_file_list(without_links(*font->get_font_file_list()));
            }
        }
    }
}

void start_installation(std::vector<int> positions) {
    all_were_chosen = positions == gw::offered_positions();
    const int count = static_cast<int>(positions.size());
    the_wp_cl_data = {std::move(positions), 0, 0};
    forbid_other_work();
    gw::stop_source_checks_for_changes();
    gw::begin_control(Message::INSTALLING_COUNT);
    start_progress_dlg(0, count, gw::text_of(Message::INSTALL_PROGRESS_TITLE),
                       gw::text_of(Message::INSTALL_PROGRESS));
    // This comes last: drawing the progress dialog would already run the work procedure.
    XtAppAddWorkProc(app, install_work_proc, &the_wp_cl_data);
}

Boolean install_work_proc(XtPointer data) {
    auto* work = static_cast<WorkRecord*>(data);
    if (work->index == 0) {
        gw::clear_conflict_list();
        current_hrn_list.get_report().clear();
        gw::note_listed_fonts();
        begin_summary();
        gw::begin_font_action(make_destination_anew);
    }
    install_next(*work);
    if (work->is_in_progress()) return False;
    gw::begin_to_finish();
    work->done -= gw::commit_font_action(current_hrn_list.get_report(), gw::Sequel::FONT_LEFT_OUT);
    gw::hear_new_failures(current_hrn_list.get_report());
    finish_installation(work->done);
    return True;
}

}  // namespace installdlg
