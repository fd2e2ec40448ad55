// SPDX-License-Identifier: MIT
#include "app/samples/live_list.h"

#include <chrono>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "app/kit/busy_windows.h"
#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/program/conflict_lists.h"
#include "app/program/directory_input.h"
#include "app/program/listed_indexes.h"
#include "app/program/program_objects.h"
#include "app/program/server_watch.h"
#include "app/program/shown_list.h"
#include "app/program/work_record.h"
#include "app/samples/installed_list.h"
#include "app/samples/served_marks.h"

#include <Xm/List.h>

namespace gw {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds LEAST_INTERVAL(1000);
constexpr milliseconds SHORT_WAIT(300);  // until a burst of changes in a directory is over

XtIntervalId waiting = 0;
Clock::time_point last_filled;

// --- what is selected ----------------------------------------------------------

/// What is at a position, whatever else the list has: the font's name, or the alias, and its directory.
using RowIdentity = std::tuple<bool, std::string, std::string>;

RowIdentity row_identity(int position) {
    const ShownList entries = installed_entries();
    if (const GWAlias* alias = entries.alias_at(position))
        return {true, alias->get_alias_name(), alias->get_dir_name()};
    const GWHRNElement* element = entries.font_at(position);
    GWFont* font = element != nullptr ? element->get_representative() : nullptr;
    if (font == nullptr) return {false, "", ""};
    return {false, font->get_xlfd_name(), font->get_dir_name()};
}

/// The rows that are selected, and the first row that is on the screen.
struct ListView {
    std::vector<RowIdentity> selected;
    int top = 1;
    RowIdentity top_row;
};

ListView list_view() {
    ListView view;
    for (const int position : selected_positions(wi_hrn_list))
        view.selected.push_back(row_identity(position));
    view.top = top_position(wi_hrn_list);
    view.top_row = row_identity(view.top);
    return view;
}

std::map<RowIdentity, int> positions_of_rows() {
    std::map<RowIdentity, int> positions;
    const int count = installed_entries().count();
    for (int position = 1; position <= count; ++position) positions.emplace(row_identity(position), position);
    return positions;
}

/// Selects the rows again that are still there, and returns how many these are.
int select_again(const ListView& view, const std::map<RowIdentity, int>& positions) {
    std::vector<int> selected;
    for (const RowIdentity& row : view.selected) {
        if (const auto found = positions.find(row); found != positions.end())
            selected.push_back(found->second);
    }
    select_too(wi_hrn_list, selected);
    return static_cast<int>(selected.size());
}

void scroll_back(const ListView& view, const std::map<RowIdentity, int>& positions) {
    const auto found = positions.find(view.top_row);
    set_top_position(wi_hrn_list, found != positions.end() ? found->second : view.top);
}

void show_view_again(const ListView& view) {
    const std::map<RowIdentity, int> positions = positions_of_rows();
    const int selected = select_again(view, positions);
    scroll_back(view, positions);
    if (selected == 0) return view.selected.empty() ? void() : forget_selection();
    // Also when nothing was lost: a font may have got other files, and a question may be about it.
    activate_selection_controls(selected);
    const bool is_another = selected != static_cast<int>(view.selected.size());
    if (is_another && selected == 1) select_only(wi_hrn_list, selected_position(wi_hrn_list));
}

std::vector<std::string> elements_of(GWFontPath::TYPE path) {
    unsigned count = 0;
    std::vector<std::string> elements;
    for (const GW_STRING* element : *the_font_path->get_fpe_list(path, count))
        elements.emplace_back(element->get_str());
    return elements;
}

// --- listing again ---------------------------------------------------------------

void list_soon(milliseconds wait);

/// Whether somebody works with what is in the lists.
bool are_lists_in_use() {
    return the_wp_cl_data.is_in_progress() || BusyWindows::are_busy() || ConflictView::is_any_shown();
}

void list_again() {
    const ListView view = list_view();
    last_filled = Clock::now();
    fill_program_lists();
    update_wi_installed_hrn_list();
    show_view_again(view);
}

void mark_again() {
    const ListView view = list_view();
    update_wi_installed_hrn_list();
    show_view_again(view);
}

void waited_cb(XtPointer, XtIntervalId*) {
    waiting = 0;
    if (are_lists_in_use()) {
        return list_soon(LEAST_INTERVAL);
    }
    find_newly_silent(elements_of(GWFontPath::ALL_FP));
    if (!are_indexes_as_listed()) {
        list_again();
    } else if (are_marks_out_of_date()) {
        mark_again();
    }
}

void list_soon(milliseconds wait) {
    if (waiting != 0) return;
    const auto since = std::chrono::duration_cast<milliseconds>(Clock::now() - last_filled);
    wait = std::max(wait, LEAST_INTERVAL - since);
    waiting = XtAppAddTimeOut(app, static_cast<unsigned long>(wait.count()), waited_cb, nullptr);
}

void directories_changed(const std::set<std::string>&) {
    list_soon(SHORT_WAIT);
}

/// Null until other programs are followed.
DirectoryInput*& the_input() {
    static DirectoryInput* input = nullptr;
    return input;
}

void work_permitted(bool permitted) {
    if (permitted) note_shown_fonts();
}

void served_path_changed() {
    list_soon(milliseconds(0));
}

}  // namespace

void note_shown_fonts() {
    if (the_input() == nullptr) return;
    note_listed_indexes();
    the_input()->watch(elements_of(GWFontPath::ALL_FP));
}

void follow_other_programs() {
    static DirectoryInput input(directories_changed);
    the_input() = &input;
    // The server was asked when the font paths were read.
    take_served_path(elements_of(GWFontPath::SESSION_FP));
    ask_server_while_shown(wi_toplevel);
    served_path_changes().connect(served_path_changed);
    work_permissions().connect(work_permitted);
}

}  // namespace gw
