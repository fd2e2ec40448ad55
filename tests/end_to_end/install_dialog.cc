// SPDX-License-Identifier: MIT
#include "end_to_end/install_dialog.h"

#include "end_to_end/program.h"
#include "end_to_end/waiting.h"

namespace gw::e2e {

namespace {

constexpr int FIRST_LINE = 12;
constexpr int FIELD_BORDER = 5;
constexpr int CURSOR_WIDTH = 12;  // of the insertion cursor at the left of an empty field

}  // namespace

InstallDialog::InstallDialog(const Desktop& desktop, const Titles& titles)
    : desktop_(desktop), titles_(titles) {
    wait_until([this] { return identify(); });
}

bool InstallDialog::identify() {
    window = desktop_.window_titled(titles_.window);
    const auto part = [this](const char* name) { return desktop_.part_named(window, name); };
    list = part("_hrn_list");
    sample_field = part("_sample_textfield");
    media_button = part("_other_media_dlg_button");
    source_button = part("from_dir_dlg_button");
    destination_button = part("install_dir_dlg_button");
    message_label = part("_message_label");
    install_button = part("_install_button");
    select_all_button = part("_select_all_button");
    attributes_button = part("_attr_button");
    cancel_button = part("_cancel_button");
    return is_there();
}

void InstallDialog::click_line(int line, const char* modifier) const {
    desktop_.click(list, 60, FIRST_LINE + line * list_line_height(), modifier);
}

Rectangle InstallDialog::sample() const {
    const Rectangle place = desktop_.place_of(sample_field);
    return {place.x + FIELD_BORDER + CURSOR_WIDTH, place.y + FIELD_BORDER,
            place.width - 2 * FIELD_BORDER - CURSOR_WIDTH, place.height - 2 * FIELD_BORDER};
}

bool InstallDialog::list_fonts_of(const std::string& dir) const {
    const DirectoryChooser chooser(desktop_, titles_.source, source_button);
    if (!chooser.is_there()) return false;
    chooser.select(dir);
    return chooser.accept();
}

bool InstallDialog::install_to(const std::string& dir) const {
    const DirectoryChooser chooser(desktop_, DirectoryChooser::DESTINATION_TITLE, destination_button);
    if (!chooser.is_there()) return false;
    chooser.select(dir);
    return chooser.accept();
}

DirectoryChooser::DirectoryChooser(const Desktop& desktop, const char* title, Window button)
    : desktop_(desktop), title_(title) {
    const auto has_keyboard = [&] {
        window = desktop_.window_titled(title_);
        filter = desktop_.part_named(window, "FilterText");
        list = desktop_.part_named(window, "DirList");
        return is_there() && desktop_.has_keyboard(window);
    };
    follows(has_keyboard, [&] { desktop_.click_middle(button); });
}

// The program handles its events in order, so the list is up to date when the click arrives.
void DirectoryChooser::select(const std::string& dir) const {
    desktop_.click_middle(filter);
    desktop_.key("Control_L", "slash");
    desktop_.type((dir.ends_with('/') ? dir : dir + '/') + '*');
    desktop_.key("Return");
    desktop_.click(list, 20, FIRST_LINE);
}

// Return in the list would open the directory instead.
bool DirectoryChooser::accept() const {
    desktop_.key("Tab");
    desktop_.key("Return");
    return desktop_.disappears(title_);
}

// It is the last button of the row. The buttons are gadgets and have no windows.
void DirectoryChooser::press_cancel() const {
    const Rectangle place = desktop_.place_of(window);
    desktop_.click(window, place.width - 40, place.height - 25);
}

}  // namespace gw::e2e
