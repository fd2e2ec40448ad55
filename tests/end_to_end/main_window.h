// SPDX-License-Identifier: MIT
//
// The main window as its user knows it: its parts, and what is done with them.
#pragma once

#include "end_to_end/desktop.h"

namespace gw::e2e {

class MainWindow {
  public:
    static constexpr const char* TITLE = "Glyph Warden";

    /// Waits for the window to be there with its parts.
    explicit MainWindow(Desktop& desktop);

    [[nodiscard]] bool is_there() const { return window != 0 && attributes_button != 0; }
    /// Clicks the visible line of the list, 0 on top.
    void click_line(int line, const char* modifier = nullptr) const;
    /// Clicks the last line of the list, which is scrolled there.
    void click_last_line(const char* modifier = nullptr) const;
    /// Makes the keyboard the window's, whatever dialogs are there.
    void take_keyboard() const;
    /// Opens a menu by its mnemonic and chooses an entry by its own; nothing when the menu does not appear.
    void choose(const char* menu_key, const char* entry_key) const;
    /// Opens an option menu, goes `steps` entries up and takes that one.
    void choose_above(Window option_menu, int steps) const;
    /// The inside of the sample field.
    [[nodiscard]] Rectangle sample() const;
    [[nodiscard]] bool sample_is_drawn() const { return desktop_.ink(sample()) > 100; }

    Window window = 0;
    Window list_title = 0;
    Window list = 0;
    Window list_scroll_bar = 0;
    Window sample_field = 0;
    Window size_menu = 0;
    Window res_menu = 0;
    Window delete_button = 0;
    Window attributes_button = 0;

  private:
    bool identify();
    Desktop& desktop_;
};

}  // namespace gw::e2e
