// SPDX-License-Identifier: MIT
#include "end_to_end/main_window.h"

#include <algorithm>

#include "end_to_end/waiting.h"

namespace gw::e2e {

namespace {

constexpr int LINE_HEIGHT = 18;  // of the list, in the fonts of the sandbox
constexpr int FIRST_LINE = 12;
constexpr int FIELD_BORDER = 5;
constexpr int CURSOR_WIDTH = 12;  // of the insertion cursor at the left of an empty field

int area(const Leaf& leaf) {
    return leaf.place.width * leaf.place.height;
}

}  // namespace

MainWindow::MainWindow(Desktop& desktop) : desktop_(desktop) {
    wait_until([this] { return identify(); });
}

// From top to bottom: menu bar, title, list (the largest), sample field, the row of the option menus, disk
// space, two buttons.
bool MainWindow::identify() {
    window = desktop_.window_titled(TITLE);
    if (window == 0) return false;
    std::vector<Leaf> leaves = desktop_.leaves(window);
    if (leaves.size() < 10) return false;
    const Leaf largest = *std::max_element(leaves.begin(), leaves.end(),
                                           [](const Leaf& a, const Leaf& b) { return area(a) < area(b); });
    const int list_bottom = largest.place.y + largest.place.height;
    std::erase_if(leaves, [&](const Leaf& leaf) { return leaf.place.y < list_bottom + 15; });
    const auto field = std::max_element(leaves.begin(), leaves.end(),
                                        [](const Leaf& a, const Leaf& b) { return area(a) < area(b); });
    if (field == leaves.end() || field->place.width < 400) return false;
    const int field_bottom = field->place.y + field->place.height;
    sample_field = field->window;

    std::vector<Leaf> row;
    std::vector<Leaf> buttons;
    for (const Leaf& leaf : leaves) {
        if (leaf.place.y < field_bottom) continue;
        if (leaf.place.y < field_bottom + 45 && leaf.place.height > 8) row.push_back(leaf);
        if (leaf.place.y > field_bottom + 60 && leaf.place.width > 100 && leaf.place.height > 15 &&
            leaf.place.width < 400) {
            buttons.push_back(leaf);
        }
    }
    const auto by_x = [](const Leaf& a, const Leaf& b) { return a.place.x < b.place.x; };
    std::sort(row.begin(), row.end(), by_x);
    std::erase_if(buttons, [&](const Leaf& leaf) { return leaf.place.y < field_bottom + 80; });
    std::sort(buttons.begin(), buttons.end(), by_x);
    if (row.size() != 4 || buttons.size() < 2) return false;
    size_menu = row[1].window;
    res_menu = row[3].window;
    delete_button = buttons[0].window;
    attributes_button = buttons[1].window;
    list = largest.window;
    return true;
}

void MainWindow::click_line(int line, const char* modifier) const {
    desktop_.click(list, 60, FIRST_LINE + line * LINE_HEIGHT, modifier);
}

void MainWindow::choose(const char* menu_key, const char* entry_key) const {
    desktop_.key("Alt_L", menu_key);
    desktop_.key(entry_key);
}

void MainWindow::choose_above(Window option_menu, int steps) const {
    desktop_.click_middle(option_menu);
    for (int i = 0; i < steps; ++i) desktop_.key("Up");
    desktop_.key("Return");
}

Rectangle MainWindow::sample() const {
    const Rectangle place = desktop_.place_of(sample_field);
    return {place.x + FIELD_BORDER + CURSOR_WIDTH, place.y + FIELD_BORDER,
            place.width - 2 * FIELD_BORDER - CURSOR_WIDTH, place.height - 2 * FIELD_BORDER};
}

}  // namespace gw::e2e
