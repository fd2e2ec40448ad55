// SPDX-License-Identifier: MIT
//
// The main window as a user operates it: its parts and the actions on them.
#pragma once

#include "end_to_end/desktop.h"

namespace gw::e2e {

class MainWindow {
  public:
    static constexpr const char* TITLE = "Glyph Warden";

    /// Waits until the window is open with all its parts.
    explicit MainWindow(Desktop& desktop);

    [[nodiscard]] bool is_there() const { return window != 0 && attributes_button != 0; }
    /// Clicks a visible line of the list; 0 is the top one.
    void click_line(int line, const char* modifier = nullptr) const;
    /// Scrolls to the end of the list and clicks its last line.
    void click_last_line(const char* modifier = nullptr) const;
    /// Gives the window the keyboard focus, whatever dialogs are open.
    void take_keyboard() const;
    /// Opens a menu by its mnemonic and chooses an entry by the entry's mnemonic.
    void choose(const char* menu_key, const char* entry_key) const;
    /// Opens an option menu and chooses the entry `steps` above the current one.
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
