// SPDX-License-Identifier: MIT
#include "app/installing/install_source.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "app/common/dirdlg.h"
#include "app/installing/convertdlg.h"
#include "app/installing/font_source.h"
#include "app/installing/install_destination.h"
#include "app/installing/installdlg.h"
#include "app/installing/not_offered.h"
#include "app/installing/notoffereddlg.h"
#include "app/installing/recent_menu.h"
#include "app/installing/rmediadlg.h"
#include "app/installing/source_verdicts.h"
#include "app/kit/attach.h"
#include "app/kit/callbacks.h"
#include "app/kit/gw_gui_util.h"
#include "app/kit/lists.h"
#include "app/kit/widgets.h"
#include "app/program/failures.h"
#include "app/program/window_policy.h"
#include "app/program/work_record.h"
#include "app/samples/list_search.h"
#include "app/samples/sample_field.h"
#include "app/samples/sample_record.h"
#include "app/samples/sample_text_cb.h"
#include "core/text.h"
#include "texts/messages.h"

#include <Xm/Form.h>
#include <Xm/List.h>

namespace installdlg {

namespace {

using gw::Attach;
using gw::Message;

constexpr int GAP = 8;
constexpr int VISIBLE_NAMES = 10;

Widget _fontlist_label, _hrn_list;
Widget _not_offered_button;  // null where windows do not tell what is not offered
SelectionWidgets shown_in;

sample_text_cb_struct sample;
std::string about_selection;  // for the status line, while the selection stays; "" when there is nothing
std::string about_source;     // the same about the source

void set_status(const char* text) {
    update_label(shown_in.status, text, nullptr);
}

void show_source_name() {
    gw::set_label(_fontlist_label, gw::source_label());
}

/// Shows that nothing is selected: the list has just been filled.
void show_no_selection() {
    show_required_space(0);
    activate(shown_in.attr_button, 0);
}

void set_sample_text_cb_struct() {
    sample = {};
    sample.sample_field = shown_in.sample_field;
    sample.list = _hrn_list;
    sample.hrn_list = &current_hrn_list;
    sample.location = install_from == FROM_DIRECTORY ? current_dir.c_str() : nullptr;
    clear_sample_textfield(shown_in.sample_field);
}

void show_samples_last() {
    constexpr XtCallbackProc SHOW_SAMPLE = gw::thunk<sample_text_cb_struct, hrn_list_sample_cb>;
    XtRemoveCallback(_hrn_list, XmNextendedSelectionCallback, SHOW_SAMPLE, &sample);
    set_sample_text_cb_struct();
    XtAddCallback(_hrn_list, XmNextendedSelectionCallback, SHOW_SAMPLE, &sample);
}

/// It lives as long as the list does, which nothing destroys.
gw::ListSearch& source_search() {
    static auto* const search = new gw::ListSearch;  // NOLINT(cppcoreguidelines-owning-memory)
    return *search;
}

std::vector<gw::SearchedRow> source_rows() {
    std::vector<gw::SearchedRow> rows;
    for (const GWHRNElement* element : current_hrn_list) rows.push_back(gw::searched_row(*element));
    return rows;
}

void show_source() {
    source_search().clear();
    gw::show_source_names(_hrn_list);
    show_source_name();
    show_samples_last();
    show_no_selection();
    set_status(gw::take_scratch_failure().c_str());
}

/// Until all names are known.
void show_first_names(const std::vector<std::string>& names) {
    source_search().clear();
    gw::show_source_names(_hrn_list, names);
    XmUpdateDisplay(_hrn_list);
}

/// Tells how many files of the source are not offered, unless the status line tells something else.
void show_not_offered() {
    if (_not_offered_button == nullptr) return;
    const gw::NotOffered what = gw::find_not_offered();
    activate(_not_offered_button, what.count() > 0 ? 1 : 0);
    update_not_offered_dlg(what);
    const std::string before = std::exchange(about_source, what.summary());
    const std::string shown = gw::label_of(shown_in.status);
    if (shown == before || shown.find_first_not_of(' ') == std::string::npos)
        set_status(about_source.c_str());
}

void not_offered_cb(Widget, XtPointer, XtPointer) {
    start_not_offered_dlg(gw::find_not_offered());
}

void other_media_dlg_cb(Widget, XtPointer, XtPointer) {
    popup_rmedia_dlg(rmedia_specified_cb);
}

void from_dir_dlg_cb(Widget, XtPointer, XtPointer) {
    popup_dir_dlg(from_dir_specified_cb, gw::text_of(Message::CHOOSE_SOURCE_TITLE));
}

void calc_disk_space_cb(Widget list, XtPointer, XtPointer) {
    unsigned kilobytes = 0;
    for (const int position : gw::selected_positions(list))
        kilobytes += current_hrn_list.get_disk_space(static_cast<unsigned>(position));
    show_required_space(kilobytes);
}

/// This comes first: the other callbacks see only what can be chosen.
void leave_out_unfit_cb(Widget list, XtPointer, XtPointer) {
    stop_convert_dlg();
    about_selection = gw::keep_to_what_is_offered(list);
}

void set_status_label_cb(Widget, XtPointer, XtPointer) {
    set_status(about_selection.empty() ? " " : about_selection.c_str());
}

void hrn_list_activate_cb(Widget list, XtPointer, XtPointer) {
    const int selected = gw::selected_count(list);
    activate(shown_in.install_button, selected >= 1 && !current_install_dir().empty() ? 1 : 0);
    activate(shown_in.attr_button, selected == 1 ? 1 : 0);
}

/// Shows what has been found out about an entry of the source; position 0 means that all are checked.
void show_verdict(int position) {
    if (position == 0) return show_not_offered();
    const int before = gw::selected_count(_hrn_list);
    gw::show_source_entry(_hrn_list, position);
    if (gw::selected_count(_hrn_list) == before) return;
    // It was selected, and cannot be.
    calc_disk_space_cb(_hrn_list, nullptr, nullptr);
    hrn_list_activate_cb(_hrn_list, nullptr, nullptr);
    hrn_list_sample_cb(_hrn_list, &sample, nullptr);
    set_status(gw::why_not_offered(*current_hrn_list.get_elem_at_pos(position)).c_str());
}

/// Selects what is offered and shown, as if the user had selected each of them.
void select_all_shown() {
    std::vector<int> positions = gw::offered_positions();
    std::erase_if(positions, [](int position) { return !source_search().shows(position); });
    gw::deselect_all(_hrn_list);
    gw::select_too(_hrn_list, positions);
    XmListCallbackStruct selected = {};
    selected.reason = XmCR_EXTENDED_SELECT;
    XtCallCallbacks(_hrn_list, XmNextendedSelectionCallback, &selected);
}

/// Beside the name of the source.
void create_not_offered_button(Widget form) {
    _not_offered_button = gw::push_button(form, "_not_offered_button", Message::NOT_OFFERED);
    XtAddCallback(_not_offered_button, XmNactivateCallback, not_offered_cb, nullptr);
    activate(_not_offered_button, 0);
    Attach(_not_offered_button).top_form(0).right_form(0);
    Attach(_fontlist_label)
        .top_form(gw::centring_offset(_fontlist_label, _not_offered_button))
        .left_form(0)
        .left_of(_not_offered_button, GAP);
}

}  // namespace

Widget create_source_choice(Widget dialog, Widget& row) {
    Widget form = row = gw::form(dialog, "MediaChoiceTemplate");
    Attach(form).top_form(GAP).sides(GAP);
    Widget label = gw::label(form, "_media_label", Message::LIST_FONTS_FROM);
    Attach(label).top_form(0).bottom_form(0).left_form(0);
    Widget media = gw::push_button(form, "_other_media_dlg_button", Message::OTHER_MEDIA);
    Attach(media).top_form(0).right_of(label, 2 * GAP);
    Widget directory = gw::push_button(form, "from_dir_dlg_button", Message::SOURCE_DIRECTORY);
    Attach(directory).top_form(0).right_of(media, GAP);
    if (gw::window_policy().remembers_sources()) {
        Widget recent = create_recent_menu(form);
        Attach(recent).top_form(0).right_of(directory, GAP);
        for (Widget w : {media, directory}) Attach(w).top_form(gw::centring_offset(w, recent));
    }
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
    if (gw::window_policy().shows_what_is_not_offered()) create_not_offered_button(form);
    Widget above = _not_offered_button != nullptr ? _not_offered_button : _fontlist_label;
    const bool is_searched = gw::window_policy().searches_lists();
    if (is_searched) above = source_search().create(form, above, 0, {});
    _hrn_list = gw::scrolled_list(form, "_hrn_list");
    if (is_searched) source_search().attach(_hrn_list, {source_rows});
    XtVaSetValues(_hrn_list, XmNvisibleItemCount, VISIBLE_NAMES, nullptr);
    Attach(XtParent(_hrn_list)).below(above, 2).sides(0).bottom_form(0);
    for (const XtCallbackProc callback : {leave_out_unfit_cb, calc_disk_space_cb, set_status_label_cb})
        XtAddCallback(_hrn_list, XmNextendedSelectionCallback, callback, nullptr);
    XtAddCallback(_hrn_list, XmNextendedSelectionCallback, hrn_list_activate_cb, nullptr);
    return form;
}

void connect_source(const SelectionWidgets& widgets) {
    shown_in = widgets;
    show_samples_last();
    gw::source_changes().connect(show_source);
    gw::first_source_names().connect(show_first_names);
    gw::source_entry_changes().connect(show_verdict);
}

Widget source_list() {
    return _hrn_list;
}

// Kept: "Select All" adds nothing up. The selection callbacks are not called.
void select_all_cb(Widget, XtPointer, XtPointer) {
    if (gw::window_policy().searches_lists()) return select_all_shown();
    gw::select_all_of_source(_hrn_list);
}

void attr_dlg_cb(Widget, XtPointer, XtPointer) {
    gw::show_source_attributes(_hrn_list);
}

void from_dir_specified_cb(const char* dir) {
    if (the_wp_cl_data.is_in_progress()) return;
    gw::use_directory(dir, font_lookup_work_proc);
    keep_recent_source(current_dir);
    set_status(gw::text_of(Message::LOOKING_IN_DIRECTORY));
    show_source_name();
}

// Kept: labels are set although nothing is listed. This is so after a medium was ejected.
void rmedia_specified_cb(int choice) {
    if (the_wp_cl_data.is_in_progress()) return;
    if (choice != NO_MEDIUM) {
        gw::use_medium(choice, font_lookup_work_proc);
        show_source_name();
    } else {
        current_hrn_count = 0;
        gw::set_label(_fontlist_label, gw::text_of(Message::FONTS_FROM));
    }
    set_status(gw::text_of(Message::LOOKING_ON_MEDIUM));
}

namespace {

/// Whether these are one directory and others below it.
bool are_one_tree(const std::vector<std::string>& paths) {
    std::error_code gone;
    const std::string root = gw::with_trailing_slash(paths.front());
    return std::filesystem::is_directory(paths.front(), gone) &&
           std::all_of(paths.begin() + 1, paths.end(),
                       [&](const std::string& path) { return path.starts_with(root); });
}

}  // namespace

void files_specified(const std::vector<std::string>& paths) {
    std::error_code gone;
    if (paths.size() == 1 && std::filesystem::is_directory(paths.front(), gone))
        return from_dir_specified_cb(paths.front().c_str());
    if (the_wp_cl_data.is_in_progress()) return;
    gw::use_files(paths, font_lookup_work_proc);
    if (are_one_tree(paths)) keep_recent_source(paths.front());
    set_status(gw::text_of(Message::LOOKING_AT_FILES));
    show_source_name();
}

Boolean font_lookup_work_proc(XtPointer driver) {
    gw::forget_failures();
    gw::look_fonts_up(static_cast<GWDriverBase*>(driver));
    const std::vector<std::string> failures = gw::gathered_failures();
    // An empty list has a reason.
    if (current_hrn_count == 0 && !failures.empty() && gw::window_policy().shows_reasons())
        set_status(failures.front().c_str());
    if (gw::is_lookup_pending()) return True;
    show_not_offered();
    if (XtIsManaged(wi_install_dlg)) gw::start_source_checks();
    return True;
}

}  // namespace installdlg
