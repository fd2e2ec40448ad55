// SPDX-License-Identifier: MIT
//
// The install dialog and the directory chooser, as a user operates them.
#pragma once

#include <string>

#include "end_to_end/desktop.h"

namespace gw::e2e {

class InstallDialog {
  public:
    static constexpr const char* TITLE = "Glyph Warden - Install";

    /// What it and the chooser of its source are called, in the user's language.
    struct Titles {
        const char* window = TITLE;
        const char* source = "Glyph Warden : List Fonts From";
    };
    /// Waits until the window is open with all its parts.
    explicit InstallDialog(const Desktop& desktop) : InstallDialog(desktop, Titles{}) {}
    InstallDialog(const Desktop& desktop, const Titles& titles);

    [[nodiscard]] bool is_there() const { return window != 0 && cancel_button != 0; }
    /// Clicks a visible line of the list; 0 is the top one.
    void click_line(int line, const char* modifier = nullptr) const;
    /// The inside of the sample field.
    [[nodiscard]] Rectangle sample() const;
    [[nodiscard]] bool sample_is_drawn() const { return desktop_.ink(sample()) > 100; }
    /// The label for messages.
    [[nodiscard]] Rectangle message() const { return desktop_.place_of(message_label); }
    [[nodiscard]] bool has_message() const { return desktop_.ink(message()) > 50; }

    /// Lists the fonts of a directory.
    bool list_fonts_of(const std::string& dir) const;
    bool install_to(const std::string& dir) const;

    Window window = 0;
    Window list = 0;
    Window sample_field = 0;
    Window media_button = 0;
    Window source_button = 0;
    Window destination_button = 0;
    Window message_label = 0;
    Window install_button = 0;
    Window select_all_button = 0;
    Window attributes_button = 0;
    Window cancel_button = 0;

  private:
    bool identify();
    const Desktop& desktop_;
    Titles titles_;
};

class DirectoryChooser {
  public:
    static constexpr const char* SOURCE_TITLE = "Glyph Warden : List Fonts From";
    static constexpr const char* DESTINATION_TITLE = "Glyph Warden : Install Fonts In";

    /// Presses `button` until the chooser is open.
    DirectoryChooser(const Desktop& desktop, const char* title, Window button);

    [[nodiscard]] bool is_there() const { return window != 0 && filter != 0 && list != 0; }
    /// Goes to a directory and selects the list's entry for it.
    void select(const std::string& dir) const;
    /// Presses Ok by keyboard, starting in the list; false when the window stays open.
    [[nodiscard]] bool accept() const;
    /// Presses Cancel with the mouse.
    void press_cancel() const;

    Window window = 0;
    Window filter = 0;
    Window list = 0;

  private:
    const Desktop& desktop_;
    const char* title_;
};

}  // namespace gw::e2e
