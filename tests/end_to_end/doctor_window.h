// SPDX-License-Identifier: MIT
//
// The window "Why Is a Font Missing?" as a user operates it: pastes with the middle button, asks, reads by
// copying, cures and takes back.
#pragma once

#include <string>

#include "end_to_end/desktop.h"

namespace gw::e2e {

class DoctorWindow {
  public:
    static constexpr const char* TITLE = "Glyph Warden - Why Is a Font Missing?";

    /// Waits until the window is open with all its parts.
    explicit DoctorWindow(const Desktop& desktop);

    [[nodiscard]] bool is_there() const { return window != 0 && close_button != 0; }

    /// Empties the window, pastes the text into it and asks. Returns what the window answers; "" when it does
    /// not.
    std::string ask(const std::string& message) const;
    /// What the window answers now.
    [[nodiscard]] std::string verdict() const;
    /// All of the answer, as the window copies it.
    [[nodiscard]] std::string report() const;
    /// Shows the part of the answer that the named button stands for ("cures_toggle", "path_toggle", ...).
    void show(const char* toggle) const;
    /// Does what the line of the list says (0: the first). Returns what the window says then; "" when it says
    /// the same as before.
    std::string cure(int line = 0) const;
    /// The same for what opens another window.
    void press_do(int line = 0) const;
    /// Takes back what was done last; returns the same.
    std::string undo() const;

    Window window = 0;
    Window question_text = 0;
    Window ask_button = 0;
    Window clear_button = 0;
    Window answer_text = 0;
    Window report_button = 0;
    Window close_button = 0;

  private:
    bool identify();
    /// The text of a part of the window, when it is another one than `before`.
    [[nodiscard]] std::string changed_verdict(const std::string& before) const;
    [[nodiscard]] std::string copied() const;

    const Desktop& desktop_;
};

}  // namespace gw::e2e
