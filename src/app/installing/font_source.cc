// SPDX-License-Identifier: MIT
#include "app/installing/font_source.h"

#include <utility>
#include <vector>

#include "app/installing/rmediadlg.h"
#include "app/kit/busy_windows.h"
#include "app/kit/generation.h"
#include "app/kit/lists.h"
#include "app/kit/messages.h"
#include "app/kit/toolkit.h"
#include "app/program/program_objects.h"
#include "app/program/shown_list.h"
#include "app/samples/attrdlg.h"
#include "core/text.h"

#include <Xm/List.h>

GWHRNList current_hrn_list(0);
unsigned current_hrn_count = 0;
GWDriverBase* current_driver = nullptr;
std::unique_ptr<GWDirDriver> current_dir_driver;
std::string current_dir;
int install_from = FROM_DIRECTORY;

namespace gw {

namespace {

// The lookup that has not begun yet; 0 when there is none.
XtWorkProcId pending_lookup = 0;
// A lookup handles events, so the user may choose another source before it ends. Until the newest lookup is
// done, the lists do not show the fonts of the current source.
Generation lookups;

void start_lookup(XtWorkProc lookup) {
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
    const bool floppy = choice == FLOPPY_MEDIUM;
    current_hrn_list.clear();
    current_hrn_count = 0;
    stop_source_preview();
    current_driver = floppy ? &the_floppy_driver : &the_cdrom_driver;
    install_from = floppy ? FROM_FLOPPY : FROM_CDROM;
    start_lookup(lookup);
    source_changes().emit();
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
    driver->get_hrn_list(current_hrn_list);
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

std::string source_label() {
    const std::string from = text_of(Message::FONTS_FROM);
    if (install_from == FROM_DIRECTORY) return from + escaped(current_dir);
    return from + text_of(install_from == FROM_FLOPPY ? Message::FROM_FLOPPY : Message::FROM_CDROM);
}

const char* source_location() {
    return install_from == FROM_DIRECTORY ? current_dir.c_str() : " ";
}

void select_all_of_source(Widget list) {
    XmListDeselectAllItems(list);
    int count = 0;
    XtVaGetValues(list, XmNitemCount, &count, nullptr);
    std::vector<std::string> names;
    for (int position = 1; position <= count; ++position) {
        const GWHRNElement* elem = current_hrn_list.get_elem_at_pos(position);
        if (elem == nullptr) break;
        names.emplace_back(elem->get_name());
    }
    XmTexts items(escaped(std::move(names)));
    XtVaSetValues(list, XmNselectedItems, items.table(), XmNselectedItemCount, items.count(), nullptr);
}

// Kept: attributes of a source end with the length of the installed list. That is the main window's list, not
// this one.
void show_source_attributes(Widget list) {
    const int position = selected_position(list);
    if (position == 0 || !installed_entries().is_before_last_font(position)) return;
    const GWHRNElement* elem = current_hrn_list.get_elem_at_pos(position);
    if (elem == nullptr) return;
    unsigned count = 0;
    const std::vector<std::string> sizes = elem->get_point_sizes(count);
    if (sizes.empty()) return;
    const std::vector<std::string> resolutions = elem->get_res(sizes.front().c_str(), count);
    const Ref<GWFont> font(
        elem->get_font(sizes.front().c_str(), resolutions.empty() ? "" : resolutions.front().c_str()));
    if (font) show_font_attributes(font.get(), source_location());
}

}  // namespace gw
