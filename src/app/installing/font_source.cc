// SPDX-License-Identifier: MIT
#include "app/installing/font_source.h"

#include <utility>
#include <vector>

#include "app/installing/rmediadlg.h"
#include "app/installing/source_verdicts.h"
#include "app/kit/busy_windows.h"
#include "app/kit/generation.h"
#include "app/kit/lists.h"
#include "app/kit/toolkit.h"
#include "app/program/program_objects.h"
#include "app/program/shown_list.h"
#include "app/program/shown_names.h"
#include "app/program/window_policy.h"
#include "app/samples/attrdlg.h"
#include "core/font_policy.h"
#include "core/text.h"
#include "drivers/first_names.h"
#include "texts/messages.h"

#include <Xm/List.h>

GWHRNList current_hrn_list(0);
unsigned current_hrn_count = 0;
GWDriverBase* current_driver = nullptr;
std::unique_ptr<GWDirDriver> current_dir_driver;
std::unique_ptr<GWFilesDriver> current_files_driver;
std::string current_dir;
int install_from = FROM_DIRECTORY;

namespace gw {

namespace {

// The lookup that has not begun yet; 0 when there is none.
XtWorkProcId pending_lookup = 0;
// A lookup handles events, so the user may choose another source before it ends. Until the newest lookup is
// done, the lists do not show the fonts of the current source.
Generation lookups;
std::vector<std::string> chosen_files;
std::size_t mark_column = 0;  // of the source that is shown

std::string row_of(const GWHRNElement& elem) {
    return name_for_source(elem.get_name(), mark_column);
}

void start_lookup(XtWorkProc lookup) {
    stop_source_checks();
    if (pending_lookup != 0) XtRemoveWorkProc(pending_lookup);
    lookups.begin();
    pending_lookup = XtAppAddWorkProc(app, lookup, current_driver);
}

}  // namespace

void use_directory(const char* dir, XtWorkProc lookup) {
    stop_source_preview();
    current_dir_driver = std::make_unique<GWDirDriver>(dir);
    current_driver = current_dir_driver.get();
    current_dir = dir;
    install_from = FROM_DIRECTORY;
    start_lookup(lookup);
}

void use_medium(int choice, XtWorkProc lookup) {
    stop_source_checks();
    const bool floppy = choice == FLOPPY_MEDIUM;
    current_hrn_list.clear();
    current_hrn_count = 0;
    stop_source_preview();
    current_driver = floppy ? &the_floppy_driver : &the_cdrom_driver;
    install_from = floppy ? FROM_FLOPPY : FROM_CDROM;
    start_lookup(lookup);
    source_changes().emit();
}

void use_files(std::vector<std::string> paths, XtWorkProc lookup) {
    stop_source_preview();
    current_files_driver = std::make_unique<GWFilesDriver>(paths);
    current_driver = current_files_driver.get();
    chosen_files = std::move(paths);
    install_from = FROM_FILES;
    start_lookup(lookup);
}

bool is_lookup_pending() {
    return lookups.is_pending();
}

void look_fonts_up(GWDriverBase* driver) {
    pending_lookup = 0;
    const Generation::Ticket ticket = lookups.newest();
    const BusyWindows busy;
    if (lookups.is_stale(ticket)) return;
    current_hrn_list.clear();
    {
        const FirstNamesShown while_looking(
            [](const std::vector<std::string>& names) { first_source_names().emit(names); });
        driver->get_hrn_list(current_hrn_list);
    }
    current_hrn_count = static_cast<unsigned>(current_hrn_list.get_count());
    if (current_hrn_count != 0) driver->start_preview();
    source_changes().emit();
    lookups.finish(ticket);
}

void stop_source_preview() {
    if (current_driver != nullptr) current_driver->stop_preview();
}

Signal<>& source_changes() {
    static Signal<> changes;
    return changes;
}

Signal<const std::vector<std::string>&>& first_source_names() {
    static Signal<const std::vector<std::string>&> names;
    return names;
}

std::string source_label() {
    const std::string from = text_of(Message::FONTS_FROM);
    if (install_from == FROM_DIRECTORY) return from + escaped(current_dir);
    if (install_from == FROM_FILES) {
        const std::string& first = chosen_files.front();
        const auto others = static_cast<unsigned>(chosen_files.size() - 1);
        return from + escaped(first) + (others > 0 ? text_of(Message::AND_OTHER_FILES, others) : "");
    }
    return from + text_of(install_from == FROM_FLOPPY ? Message::FROM_FLOPPY : Message::FROM_CDROM);
}

std::string original_path(const GW_FILE_SPEC& spec) {
    if (install_from == FROM_DIRECTORY) return with_trailing_slash(current_dir) + spec.get_name();
    if (install_from == FROM_FILES) return current_files_driver->original_path(spec);
    return spec.get_path();
}

const char* source_location() {
    return install_from == FROM_DIRECTORY ? current_dir.c_str() : " ";
}

void show_source_names(Widget list) {
    std::vector<std::string> names;
    for (const GWHRNElement* elem : current_hrn_list) names.emplace_back(elem->get_name());
    show_source_names(list, std::move(names));
}

void show_source_names(Widget list, std::vector<std::string> first) {
    mark_column = mark_column_for_source(first);
    for (std::string& name : first) name = name_for_source(name, mark_column);
    fill_list(list, first);
}

void select_all_of_source(Widget list) {
    XmListDeselectAllItems(list);
    int count = 0;
    XtVaGetValues(list, XmNitemCount, &count, nullptr);
    std::vector<std::string> names;
    for (int position = 1; position <= count; ++position) {
        const GWHRNElement* elem = current_hrn_list.get_elem_at_pos(position);
        if (elem == nullptr) break;
        if (is_offered(*elem)) names.push_back(row_of(*elem));
    }
    XmTexts items(row_texts(std::move(names)));
    XtVaSetValues(list, XmNselectedItems, items.table(), XmNselectedItemCount, items.count(), nullptr);
}

std::vector<int> offered_positions() {
    std::vector<int> positions;
    int position = 0;
    for (const GWHRNElement* elem : current_hrn_list) {
        ++position;
        if (is_offered(*elem)) positions.push_back(position);
    }
    return positions;
}

void show_source_entry(Widget list, int position) {
    const GWHRNElement* elem = current_hrn_list.get_elem_at_pos(position);
    if (elem == nullptr || position > row_count(list)) return;
    std::vector<int> selected = selected_positions(list);
    // Motif loses memory when an item is replaced while something is selected.
    if (!selected.empty()) deselect_all(list);
    replace_row(list, position, row_of(*elem));
    if (!is_offered(*elem)) std::erase(selected, position);
    if (!selected.empty()) select_too(list, selected);
}

std::string keep_to_what_is_offered(Widget list) {
    if (!font_policy().marks_what_is_unfit()) return "";
    const std::vector<int> selected = selected_positions(list);
    if (selected.size() == 1) check_source_entry(selected.front());
    check_source_entries_first(selected);
    unsigned refused = 0;
    std::string first;
    for (const int position : selected) {
        const GWHRNElement* elem = current_hrn_list.get_elem_at_pos(position);
        if (elem == nullptr) break;
        if (is_offered(*elem)) {
            if (selected.size() == 1) return hint_about(*elem);
            continue;
        }
        deselect_row(list, position);
        if (refused++ == 0) first = why_not_offered(*elem);
    }
    return refused > 1 ? text_of(Message::UNFIT_CHOSEN, refused) + first : first;
}

// Kept: attributes of a source end with the length of the installed list. That is the main window's list, not
// this one.
void show_source_attributes(Widget list) {
    const int position = selected_position(list);
    if (position == 0) return;
    if (!window_policy().shows_attributes_of_all() && !installed_entries().is_before_last_font(position))
        return;
    const GWHRNElement* elem = current_hrn_list.get_elem_at_pos(position);
    if (elem == nullptr) return;
    unsigned count = 0;
    const std::vector<std::string> sizes = elem->get_point_sizes(count);
    if (sizes.empty()) return;
    const std::vector<std::string> resolutions = elem->get_res(sizes.front().c_str(), count);
    const Ref<GWFont> font(
        elem->get_font(sizes.front().c_str(), resolutions.empty() ? "" : resolutions.front().c_str()));
    if (!font) return;
    const GW_FSPEC_LIST* files = font->get_font_file_list();
    if (install_from != FROM_FILES || files == nullptr || files->is_empty())
        return show_font_attributes(font.get(), source_location(), elem);
    const std::string path = original_path(**files->begin());
    show_font_attributes(font.get(), path.substr(0, path.rfind('/') + 1).c_str(), elem);
}

}  // namespace gw
