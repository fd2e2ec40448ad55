// SPDX-License-Identifier: MIT
#include "app/installing/installdlg.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "app/common/dirdlg.h"
#include "app/common/progressdlg.h"
#include "app/common/status_line.h"
#include "app/conflicts/preconflictdlg.h"
#include "app/font_path/fpinfodlg.h"
#include "app/installing/font_source.h"
#include "app/installing/rmediadlg.h"
#include "app/kit/attach.h"
#include "app/kit/busy_windows.h"
#include "app/kit/callbacks.h"
#include "app/kit/dialogs.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/handles.h"
#include "app/kit/lists.h"
#include "app/kit/messages.h"
#include "app/kit/toolkit.h"
#include "app/kit/widgets.h"
#include "app/program/conflict_lists.h"
#include "app/program/failures.h"
#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "app/program/work_record.h"
#include "app/samples/attrdlg.h"
#include "app/samples/font_lists.h"
#include "app/samples/installed_list.h"
#include "app/samples/sample_field.h"
#include "app/samples/sample_record.h"
#include "app/samples/sample_text.h"
#include "app/samples/sample_text_cb.h"
#include "core/rights.h"
#include "core/text.h"
#include "model/packaged_fonts.h"
#include "platform/host_paths.h"
#include "platform/package_owner.h"
#include "store/directory_change.h"

#include <Xm/Form.h>
#include <Xm/List.h>
#include <Xm/TextF.h>

Widget wi_install_dlg = nullptr;

namespace {

using gw::Attach;
using gw::Message;
using namespace installdlg;

constexpr int GAP = 8;
constexpr int VISIBLE_NAMES = 10;
constexpr mode_t DIRECTORY_MODE = 0755;

Widget _media_choice, _fontlist_label, _hrn_list, _sample_textfield, _dest_label;
Widget _req_space_val, _avail_space_val, _message_label;
Widget _install_button, _attr_button;

std::string home_dir;
std::string current_install_dir;  // ends with a slash
int req_disk_space = 0;
sample_text_cb_struct sample;

void set_status(const char* text) {
    update_label(_message_label, text, nullptr);
}

void show_kilobytes(int blocks, Message unit) {
    gw::set_label(_avail_space_val, std::to_string(blocks) + gw::text_of(unit));
}

// --- destination -------------------------------------------------------------

/// The directory of the default destination. The superuser's is the directory of the whole host.
std::string find_home_dir() {
    if (!gw::user_is_superuser()) {
        const char* home = std::getenv("HOME");
        return home != nullptr ? home : gw::SCRATCH_ROOT;
    }
    struct stat info = {};
    if (::stat(gw::HOST_DIR, &info) == 0 || ::mkdir(gw::HOST_DIR, DIRECTORY_MODE) == 0) return gw::HOST_DIR;
    return gw::SCRATCH_ROOT;
}

void show_destination() {
    update_label(_dest_label, gw::text_of(Message::DESTINATION), gw::escaped(current_install_dir).c_str());
}

void set_default_destination() {
    home_dir = find_home_dir();
    show_kilobytes(get_avail_space(home_dir.c_str()), Message::HOME_SPACE);
    set_current_install_dir((home_dir + gw::DEFAULT_INSTALL_DIR).c_str());
    // A run that was killed before it put the directory on the font path has left it to nobody else.
    gw::tell_unless_done(gw::settle(current_install_dir));
    show_destination();
}

/// Creates the destination when it is missing. When nothing can be installed there, the status line says so,
/// and false is returned.
bool destination_is_ready() {
    if (current_install_dir.find(',') != std::string::npos) {
        set_status(gw::text_of(Message::REASON_COMMA_IN_NAME));
        return false;
    }
    struct stat info = {};
    if (::stat(current_install_dir.c_str(), &info) != 0) {
        if (::mkdir(current_install_dir.c_str(), DIRECTORY_MODE) == 0) return true;
        set_status(gw::text_of(Message::BAD_DESTINATION));
        return false;
    }
    if (gw::is_writeable_by(info.st_uid, info.st_mode, static_cast<uid_t>(uid))) return true;
    set_status(gw::text_of(Message::UNWRITEABLE_DESTINATION));
    return false;
}

// --- source ------------------------------------------------------------------

/// Shows that nothing is selected: the list has just been filled.
void show_no_selection() {
    req_disk_space = 0;
    gw::set_label(_req_space_val, gw::text_of(Message::REQUIRED_KILOBYTES, 0));
    activate(_attr_button, 0);
}

void set_sample_text_cb_struct() {
    sample = {};
    sample.sample_field = _sample_textfield;
    sample.list = _hrn_list;
    sample.hrn_list = &current_hrn_list;
    sample.location = install_from == FROM_DIRECTORY ? current_dir.c_str() : nullptr;
    clear_sample_textfield(_sample_textfield);
}

void show_samples_last() {
    constexpr XtCallbackProc SHOW_SAMPLE = gw::thunk<sample_text_cb_struct, hrn_list_sample_cb>;
    XtRemoveCallback(_hrn_list, XmNextendedSelectionCallback, SHOW_SAMPLE, &sample);
    set_sample_text_cb_struct();
    XtAddCallback(_hrn_list, XmNextendedSelectionCallback, SHOW_SAMPLE, &sample);
}

void show_source() {
    update_wi_hrn_list(_hrn_list, current_hrn_list);
    gw::set_label(_fontlist_label, gw::source_label());
    show_samples_last();
    show_no_selection();
    set_status(gw::take_scratch_failure().c_str());
}

void other_media_dlg_cb(Widget, XtPointer, XtPointer) {
    popup_rmedia_dlg(rmedia_specified_cb);
}

void from_dir_dlg_cb(Widget, XtPointer, XtPointer) {
    popup_dir_dlg(from_dir_specified_cb, gw::text_of(Message::CHOOSE_SOURCE_TITLE));
}

void install_dir_dlg_cb(Widget, XtPointer, XtPointer) {
    popup_dir_dlg(install_dir_specified_cb, gw::text_of(Message::CHOOSE_DESTINATION_TITLE));
}

// --- selection ---------------------------------------------------------------

void calc_disk_space_cb(Widget list, XtPointer, XtPointer) {
    req_disk_space = 0;
    for (const int position : gw::selected_positions(list)) {
        req_disk_space += static_cast<int>(current_hrn_list.get_disk_space(static_cast<unsigned>(position)));
    }
    gw::set_label(_req_space_val,
                  gw::text_of(Message::REQUIRED_KILOBYTES, static_cast<unsigned>(req_disk_space)));
}

void clear_status_label_cb(Widget, XtPointer, XtPointer) {
    set_status(" ");
}

void hrn_list_activate_cb(Widget list, XtPointer, XtPointer) {
    const int selected = gw::selected_count(list);
    activate(_install_button, selected >= 1 && !current_install_dir.empty() ? 1 : 0);
    activate(_attr_button, selected == 1 ? 1 : 0);
}

// Kept: "Select All" adds nothing up. The selection callbacks are not called.
void select_all_cb(Widget, XtPointer, XtPointer) {
    gw::select_all_of_source(_hrn_list);
}

void attr_dlg_cb(Widget, XtPointer, XtPointer) {
    gw::show_source_attributes(_hrn_list);
}

// --- installation ------------------------------------------------------------

void close_dialog() {
    popdown_rmedia_dlg();
    popdown_dir_dlg();
    clear_attributes();
    XtUnmanageChild(wi_install_dlg);
}

void start_installation(std::vector<int> positions) {
    const int count = static_cast<int>(positions.size());
    the_wp_cl_data = {std::move(positions), 0, 0};
    forbid_other_work();
    XmListDeselectAllItems(_hrn_list);
    start_progress_dlg(0, count, gw::text_of(Message::INSTALL_PROGRESS_TITLE),
                       gw::text_of(Message::INSTALL_PROGRESS));
    // This comes last: drawing the progress dialog would already run the work procedure.
    XtAppAddWorkProc(app, install_work_proc, &the_wp_cl_data);
}

void install_cb(Widget, XtPointer, XtPointer) {
    // During a lookup the selection may be of fonts that the list will no longer show.
    if (gw::is_lookup_pending() || the_wp_cl_data.is_in_progress() || !destination_is_ready()) return;
    std::vector<int> positions = gw::selected_positions(_hrn_list);
    activate(_install_button, 0);
    close_dialog();
    if (!positions.empty()) start_installation(std::move(positions));
}

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

/// The fonts were found through a link, and choosing another source changes the link. A font that waits for
/// the user's decision must not then be replaced by a file of the same name from the new source.
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

void finish_installation(int installed) {
    hold_on_to_sources(the_conflict_list);
    gw::forget_package_owners();
    gw::mark_packages(the_conflict_list);
    stop_progress_dlg();
    permit_other_work();
    update_wi_installed_hrn_list();
    forget_selection();
    if (installed > 0) {
        for (const gw::Failure& failure : show_installation_to_server(current_install_dir)) gw::tell(failure);
    }
    const WorkSummary summary{GWConflict::INSTALL, static_cast<unsigned>(installed), &the_conflict_list,
                              gw::gathered_failures()};
    if (!start_summary(summary) && gw::user_is_superuser()) start_fp_info_dlg();
    XmTextFieldSetString(wi_installed_sample_textfield, gw::name_arg(" "));
    std::string status = gw::count_text(static_cast<unsigned>(installed), Message::FONTS_INSTALLED);
    if (const std::string trouble = gw::take_scratch_failure(); !trouble.empty()) status += "  " + trouble;
    update_label(wi_main_window_status_label, status.c_str(), nullptr);
}

void cancel_cb(Widget, XtPointer, XtPointer) {
    close_dialog();
}

// --- creation ----------------------------------------------------------------

Widget create_media_choice(Widget dialog) {
    Widget form = _media_choice = gw::form(dialog, "MediaChoiceTemplate");
    Attach(form).top_form(GAP).sides(GAP);
    Widget label = gw::label(form, "_media_label", Message::LIST_FONTS_FROM);
    Attach(label).top_form(0).bottom_form(0).left_form(0);
    Widget media = gw::push_button(form, "_other_media_dlg_button", Message::OTHER_MEDIA);
    Attach(media).top_form(0).right_of(label, 2 * GAP);
    Widget directory = gw::push_button(form, "from_dir_dlg_button", Message::SOURCE_DIRECTORY);
    Attach(directory).top_form(0).right_of(media, GAP);
    XtAddCallback(media, XmNactivateCallback, other_media_dlg_cb, nullptr);
    XtAddCallback(directory, XmNactivateCallback, from_dir_dlg_cb, nullptr);
    XtVaSetValues(form, XmNinitialFocus, directory, nullptr);
    Widget line = gw::separator(dialog, "separator");
    Attach(line).below(form, GAP).sides(0);
    return line;
}

Widget create_font_list(Widget dialog) {
    Widget form = gw::form(dialog, "_avail_font_list");
    _fontlist_label = gw::label(form, "_fontlist_label", Message::FONTS_FROM);
    Attach(_fontlist_label).top_form(0).sides(0);
    _hrn_list = gw::scrolled_list(form, "_hrn_list");
    XtVaSetValues(_hrn_list, XmNvisibleItemCount, VISIBLE_NAMES, nullptr);
    Attach(XtParent(_hrn_list)).below(_fontlist_label, 2).sides(0).bottom_form(0);
    XtAddCallback(_hrn_list, XmNextendedSelectionCallback, calc_disk_space_cb, nullptr);
    XtAddCallback(_hrn_list, XmNextendedSelectionCallback, clear_status_label_cb, nullptr);
    XtAddCallback(_hrn_list, XmNextendedSelectionCallback, hrn_list_activate_cb, nullptr);
    return form;
}

/// A label, and its value to the right of it.
Widget space_row(Widget dialog, const char* label_name, Message text, const char* value_name, Widget below) {
    Widget label = gw::label(dialog, label_name, text);
    Widget value = gw::label(dialog, value_name, gw::text_of(Message::REQUIRED_KILOBYTES, 0));
    Attach(label).left_form(GAP).above(below, 2);
    Attach(value).right_of(label, GAP).right_form(GAP).above(below, 2);
    return value;
}

/// Returns the separator above them.
Widget create_buttons(Widget dialog) {
    const gw::BottomRow row = gw::bottom_row(dialog, {"_message_label", "_button_form", "separator3"},
                                             {{"_install_button", Message::INSTALL_BUTTON, install_cb},
                                              {"_select_all_button", Message::SELECT_ALL, select_all_cb},
                                              {"_attr_button", Message::INSTALL_ATTRIBUTES, attr_dlg_cb},
                                              {"_cancel_button", Message::INSTALL_CANCEL, cancel_cb},
                                              {"_help_button", Message::INSTALL_HELP, nullptr}});
    _message_label = row.message;
    _install_button = row.buttons[0];
    _attr_button = row.buttons[2];
    for (Widget w : {_install_button, _attr_button}) activate(w, 0);
    // With the keyboard too, the user comes to the source first.
    gw::end_dialog(dialog, {_install_button, row.buttons[3], _media_choice, cancel_cb});
    return row.separator;
}

/// These parts are attached to the bottom, from the buttons upwards. The list gets the rest of the height.
void create_lower_part(Widget dialog, Widget font_list) {
    Widget line = create_buttons(dialog);
    _avail_space_val =
        space_row(dialog, "_avail_space_label", Message::SPACE_AVAILABLE, "_avail_space_val", line);
    _req_space_val =
        space_row(dialog, "_req_space_label", Message::SPACE_REQUIRED, "_req_space_val", _avail_space_val);

    line = gw::separator(dialog, "separator2");
    Attach(line).sides(0).above(_req_space_val, GAP);
    _dest_label = gw::label(dialog, "_dest_label", Message::DESTINATION);
    Attach(_dest_label).sides(GAP).above(line, GAP);
    Widget directory = gw::push_button(dialog, "install_dir_dlg_button", Message::DESTINATION_DIRECTORY);
    XtAddCallback(directory, XmNactivateCallback, install_dir_dlg_cb, nullptr);
    // The Tab key comes here between the sample and the buttons, not after the buttons.
    XtVaSetValues(directory, XmNnavigationType, XmTAB_GROUP, nullptr);
    Widget to = gw::label(dialog, "_install_to_label", Message::INSTALL_TO);
    Attach(to).left_form(GAP).above(_dest_label, GAP + gw::centring_offset(to, directory));
    Attach(directory).right_of(to, 2 * GAP).above(_dest_label, GAP);

    line = gw::separator(dialog, "separator1");
    Attach(line).sides(0).above(directory, GAP);
    _sample_textfield = gw::text_field(dialog, "_sample_textfield");
    XtAddCallback(_sample_textfield, XmNvalueChangedCallback, set_sample_text_cb, nullptr);
    activate(_sample_textfield, 0);
    Attach(_sample_textfield).sides(GAP).above(line, GAP);
    Widget title = gw::label(dialog, "_sample_text_label", Message::INSTALL_SAMPLE);
    Attach(title).left_form(GAP).above(_sample_textfield, 2);
    Attach(font_list).above(title, GAP);
}

}  // namespace

namespace installdlg {

int get_avail_space(const char* path) {
    struct statvfs info = {};
    if (::statvfs(path, &info) != 0 || info.f_blocks == 0) return 0;
    return static_cast<int>(info.f_bavail);
}

void set_current_install_dir(const char* dir) {
    current_install_dir = gw::with_trailing_slash(dir);
}

// The default destination may not exist yet, so the space of the home directory is shown.
void popup_cb(Widget, XtPointer, XtPointer) {
    const bool below_home = current_install_dir.starts_with(home_dir);
    show_kilobytes(get_avail_space(below_home ? home_dir.c_str() : current_install_dir.c_str()),
                   Message::SPACE_ON_OPENING);
}

void from_dir_specified_cb(const char* dir) {
    if (the_wp_cl_data.is_in_progress()) return;
    gw::use_directory(dir, font_lookup_work_proc);
    set_status(gw::text_of(Message::LOOKING_IN_DIRECTORY));
    gw::set_label(_fontlist_label, gw::source_label());
}

// Kept: labels are set although nothing is listed. This is so after a medium was ejected.
void rmedia_specified_cb(int choice) {
    if (the_wp_cl_data.is_in_progress()) return;
    if (choice != NO_MEDIUM) {
        gw::use_medium(choice, font_lookup_work_proc);
        gw::set_label(_fontlist_label, gw::source_label());
    } else {
        current_hrn_count = 0;
        gw::set_label(_fontlist_label, gw::text_of(Message::FONTS_FROM));
    }
    set_status(gw::text_of(Message::LOOKING_ON_MEDIUM));
}

void install_dir_specified_cb(const char* dir) {
    set_current_install_dir(dir);
    show_destination();
    if (gw::selected_count(_hrn_list) > 0) activate(_install_button, 1);
    show_kilobytes(get_avail_space(current_install_dir.c_str()), Message::DESTINATION_SPACE);
}

Boolean font_lookup_work_proc(XtPointer driver) {
    gw::forget_failures();
    gw::look_fonts_up(static_cast<GWDriverBase*>(driver));
    const std::vector<std::string> failures = gw::gathered_failures();
    // An empty list has a reason.
    if (current_hrn_count == 0 && !failures.empty() && gw::window_policy().shows_reasons())
        set_status(failures.front().c_str());
    return True;
}

Boolean install_work_proc(XtPointer data) {
    auto* work = static_cast<WorkRecord*>(data);
    if (work->index == 0) {
        gw::clear_conflict_list();
        current_hrn_list.get_report().clear();
        begin_summary();
        gw::begin_font_action();
    }
    const int result = current_hrn_list.install_at_pos(static_cast<unsigned>(work->positions[work->index]),
                                                       current_install_dir.c_str(), the_installed_hrn_list,
                                                       the_alias_list, the_fsm_list, the_conflict_list);
    gw::hear_new_failures(current_hrn_list.get_report());
    if (result == GWHRNElement::DONE) {
        // Counted anew, because another size of an installed face adds no name.
        count_installed_fonts();
        update_progress_dlg(++work->done);
    }
    // This comes last: showing the progress handles events, and they must see that the work is not done yet.
    ++work->index;
    if (work->is_in_progress()) return False;
    work->done -= gw::commit_font_action(current_hrn_list.get_report(), gw::Sequel::FONT_LEFT_OUT);
    gw::hear_new_failures(current_hrn_list.get_report());
    finish_installation(work->done);
    return True;
}

}  // namespace installdlg

Widget create_install_dlg(const char* name, Widget parent) {
    wi_install_dlg = gw::form_dialog(parent, name, Message::INSTALL_TITLE);
    Widget line = create_media_choice(wi_install_dlg);
    Widget font_list = create_font_list(wi_install_dlg);
    Attach(font_list).below(line, GAP).sides(GAP);
    create_lower_part(wi_install_dlg, font_list);
    // The dialog must not shrink when the status line is empty.
    XtVaSetValues(wi_install_dlg, XmNresizePolicy, XmRESIZE_GROW, nullptr);
    show_samples_last();
    gw::source_changes().connect(show_source);
    XmTextFieldSetString(_sample_textfield, gw::name_arg(" "));
    set_default_destination();
    XtAddCallback(XtParent(wi_install_dlg), XmNpopupCallback, installdlg::popup_cb, nullptr);
    gw::BusyWindows::include(wi_install_dlg);
    return wi_install_dlg;
}
