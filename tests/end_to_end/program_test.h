// SPDX-License-Identifier: MIT
//
// What every test of the running program starts and cleans up: the program, its main window, and the server's
// font path, which is restored.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "end_to_end/program.h"

#include "end_to_end/main_window.h"

namespace gw::e2e {

[[nodiscard]] bool is_root();

/// The ways to leave a window without an action.
enum class Leaving { BUTTON, ESCAPE, CLOSE_BOX };
inline constexpr Leaving WAYS_OF_LEAVING[] = {Leaving::BUTTON, Leaving::ESCAPE, Leaving::CLOSE_BOX};

class ProgramTest : public testing::Test {
  protected:
    ProgramTest();
    ~ProgramTest() override;

    /// The home directory of the program's user, ending in "/"; a private one.
    [[nodiscard]] virtual std::string home_path() const { return home.path(); }
    /// Starts the program in the test's home and waits until its main window has the keyboard focus.
    void start(const std::map<std::string, std::optional<std::string>>& environment = {});
    /// Leaves by the menu; the exit status.
    std::optional<int> leave();
    /// Waits until the window has the focus; false when it does not get it.
    [[nodiscard]] bool gets_keyboard(const char* title) const;
    /// Does `action` and waits until the window is open and has the focus; 0 when it does not get it.
    Window opens(const char* title, const std::function<void()>& action);
    /// The same, with an entry of a main window's menu; both are named by their mnemonics.
    Window open_by_menu(const char* menu_key, const char* entry_key, const char* title);
    /// Where fonts go unless the user says otherwise, ending in "/".
    [[nodiscard]] std::string default_destination() const;
    /// Leaves a window in this way and waits until it is gone.
    bool leave_window(const char* title, Leaving way, const char* button);
    /// Presses the named button of the window and waits until the window is gone.
    bool press(const char* title, const char* button);
    /// Waits for the superuser's hint to modify the font path, and closes it. Others do not get it, nor does
    /// anybody with today's windows: true at once if it is not there.
    bool hint_comes_and_goes(bool has_windows_of_ever = is_as_ever());
    /// The windows for conflicts in English. Where windows compare conflicts, what can be decided is asked
    /// for at once, and the summary comes behind it.
    static inline const char* const SUMMARY =
        is_as_ever() ? "Glyph Warden - Conflicts" : "Glyph Warden - Summary";
    static constexpr const char* RESOLVE = "Glyph Warden - Resolve Conflicts";
    /// Waits for the decision and has the keyboard in it; 0 when it does not come.
    Window open_resolving();
    /// Waits for the summary, and leaves the decision that may come before it.
    bool comes_to_summary();
    /// Finishes the decision, and closes the summary behind it, if one comes.
    bool finish_resolving();
    /// Puts a directory at the beginning of the program's font path. To be called before the program starts.
    void list_fonts_of(const std::string& dir);
    /// Whether the server takes fonts from the directory.
    [[nodiscard]] bool is_on_font_path(const std::string& dir) const;
    /// The directories for previews of this name ("gw_dir") from which the server takes fonts. Each run has
    /// its own, or all have the same.
    [[nodiscard]] std::vector<std::string> staged(const std::string& name) const;
    [[nodiscard]] bool previews(const std::string& name) const { return !staged(name).empty(); }

    Desktop desktop;
    gw::test::TempDir home;
    std::unique_ptr<Program> program;
    std::unique_ptr<MainWindow> main;

  private:
    [[nodiscard]] std::string seen() const;

    std::vector<std::string> font_path_before_;
    std::string config_before_;
    std::vector<std::string> own_elements_;
};

}  // namespace gw::e2e
