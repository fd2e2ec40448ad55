// SPDX-License-Identifier: MIT
#include "end_to_end/main_window.h"

#include "end_to_end/program.h"
#include "end_to_end/waiting.h"

namespace gw::e2e {

namespace {

constexpr int FIRST_LINE = 12;
constexpr int FIELD_BORDER = 5;
constexpr int CURSOR_WIDTH = 12;  // of the insertion cursor at the left of an empty field

}  // namespace

MainWindow::MainWindow(Desktop& desktop) : desktop_(desktop) {
    wait_until([this] { return identify(); });
}

// The program names the parts when the window is already on the screen. Of these, the one that it names last
// is looked up first: once that has its name, all have.
bool MainWindow::identify() {
    window = desktop_.window_titled(TITLE);
    const auto part = [this](const char* name) { return desktop_.part_named(window, name); };
    attributes_button = part("_attributes_button1");
    if (attributes_button == 0) return false;
    list_title = part("_fontlist_label");
    list = part("_hrn_list");
    list_scroll_bar = part("VertScrollBar");
    sample_field = part("_sample_textfield");
    size_menu = part("_size_option_menu");
    res_menu = part("_res_option_menu");
    delete_button = part("_delete_button");
    return true;
}

void MainWindow::click_line(int line, const char* modifier) const {
    desktop_.click(list, 60, FIRST_LINE + line * list_line_height(), modifier);
}

void MainWindow::click_last_line(const char* modifier) const {
    desktop_.scroll_to_end(list_scroll_bar);
    desktop_.click(list, 60, desktop_.place_of(list).height - FIRST_LINE, modifier);
}

void MainWindow::take_keyboard() const {
    if (desktop_.has_keyboard(window)) return;
    desktop_.click(list_title, 5, 5);
    wait_until([this] { return desktop_.has_keyboard(window); });
}

// A key that is pressed before the menu is open goes to the list.
void MainWindow::choose(const char* menu_key, const char* entry_key) const {
    desktop_.dismiss_menu();
    desktop_.key("Alt_L", menu_key);
    desktop_.await_menu();
    desktop_.key(entry_key);
}

void MainWindow::choose_above(Window option_menu, int steps) const {
    desktop_.drag_up_in(option_menu, steps);
}

Rectangle MainWindow::sample() const {
    const Rectangle place = desktop_.place_of(sample_field);
    return {place.x + FIELD_BORDER + CURSOR_WIDTH, place.y + FIELD_BORDER,
            place.width - 2 * FIELD_BORDER - CURSOR_WIDTH, place.height - 2 * FIELD_BORDER};
}

}  // namespace gw::e2e
