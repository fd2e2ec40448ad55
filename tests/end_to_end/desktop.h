// SPDX-License-Identifier: MIT
//
// The screen as a user sees it: windows by their titles, a mouse, a keyboard, and comparisons of pixels.
// Of the program, only its process is known here. Mouse and keyboard are used once: when the process has
// nothing left to do and the pointer is where it should be. Then they wait until the process has woken up. If
// one of these does not happen, std::runtime_error says what was on the screen, and the test fails.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "end_to_end/process_watch.h"

// X headers come last, behind gtest's.
#include <X11/Xlib.h>

namespace gw::e2e {

struct Rectangle {
    int x;  // on the screen
    int y;
    int width;
    int height;
};

/// Two clicks within this time are a double click. An option menu stays open when the button is released
/// within this time.
inline constexpr std::chrono::milliseconds DOUBLE_CLICK{50};

class Desktop {
  public:
    explicit Desktop(const char* display_name = nullptr);
    ~Desktop();
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

    /// From now on, mouse and keyboard are used on the windows of this process.
    void attend_to(pid_t program) { program_.emplace(program); }
    void attend_to_nothing() { program_.reset(); }
    /// Waits until the process has handled everything that was sent to it, and sleeps.
    void settle() const;
    /// The windows, the focus, the pointer and the process, for the message of a failed wait.
    [[nodiscard]] std::string description() const;

    /// The visible window with exactly that title, in UTF-8; 0 when there is none (yet).
    [[nodiscard]] Window window_titled(const std::string& title) const;
    [[nodiscard]] bool is_visible(const std::string& title) const { return window_titled(title) != 0; }
    /// The visible window somewhere inside `window` that has this name; 0 when there is none (yet).
    [[nodiscard]] Window part_named(Window window, const std::string& name) const;
    /// All visible windows with that title.
    [[nodiscard]] std::vector<Window> windows_titled(const std::string& title) const;
    /// The bytes of this property of the window if they are text in UTF-8 by their type; "" if not.
    [[nodiscard]] std::string utf8_property(Window window, const char* name) const;
    /// Waits until the window appears (is gone); false when that does not happen.
    [[nodiscard]] bool appears(const std::string& title) const;
    [[nodiscard]] bool disappears(const std::string& title) const;
    [[nodiscard]] Rectangle place_of(Window window) const;
    [[nodiscard]] bool has_keyboard(Window window) const;
    /// Whether a menu is posted.
    [[nodiscard]] bool has_menu() const;
    /// Waits for a menu to be posted.
    void await_menu() const;
    /// Opens an option menu, drags to the entry `steps` above the current one, and releases the button there.
    void drag_up_in(Window option_menu, int steps) const;
    /// Opens an option menu by a click at `x` and clicks the entry `steps` below the current one.
    void click_down_in(Window option_menu, int x, int steps) const;
    /// Closes a menu that is still open.
    void dismiss_menu() const;

    /// Clicks in the window, not as a double click with the click before; `modifier` is a key that is held
    /// meanwhile ("Control_L"), or null.
    void click(Window window, int x, int y, const char* modifier = nullptr, unsigned button = Button1) const;
    void click_middle(Window window) const;
    /// Moves the pointer to a corner of the screen, where it disturbs nothing.
    void park_pointer() const;
    /// Scrolls to the beginning (end) with the vertical scroll bar.
    void scroll_to_start(Window scroll_bar) const;
    void scroll_to_end(Window scroll_bar) const;
    /// Presses a key by its name ("Down"), or two at once ("Alt_L", "f").
    void key(const char* name) const;
    void key(const char* held, const char* name) const;
    /// Types characters that are on the keys, alone or with Shift.
    void type(const std::string& text) const;
    /// What a user would paste: the text that is in the clipboard; empty when there is none.
    [[nodiscard]] std::string clipboard() const;
    /// Sends what the window manager sends when its close box is used.
    void ask_to_close(Window window) const;

    /// The pixels of a part of the screen.
    [[nodiscard]] std::vector<unsigned long> pixels(const Rectangle& part) const;
    /// The same, after waiting until they no longer change: drawing takes several steps.
    [[nodiscard]] std::vector<unsigned long> settled_pixels(const Rectangle& part) const;
    /// The number of pixels whose colour differs from that of the first pixel.
    [[nodiscard]] int ink(const Rectangle& part) const;
    /// The directories that the server takes fonts from.
    [[nodiscard]] std::vector<std::string> font_path() const;
    void set_font_path(std::vector<std::string> path) const;
    /// Whether the server knows a font by that name.
    [[nodiscard]] bool has_font(const std::string& xlfd) const;
    /// Saves a picture of the screen among the results of the run.
    void picture(const std::string& name) const;

  private:
    friend class Hurry;

    [[nodiscard]] Window find_titled(Window below, const std::string& title, int depth) const;
    [[nodiscard]] bool is_settled() const;
    [[nodiscard]] std::vector<Window> windows_under_pointer() const;
    [[nodiscard]] std::string name_of(Window window) const;
    /// Waits for `condition`; throws `failure` with a description when it does not become true.
    void require(const std::function<bool()>& condition, const std::string& failure) const;
    /// Does `action` and waits until the process has woken up.
    void do_once(const std::string& what, const std::function<void()>& action) const;
    void press(unsigned keycode, bool down) const;
    void press_and_release(unsigned keycode) const;
    /// Moves the pointer there and makes sure that nothing covers the window.
    void point_at(Window window, int x, int y) const;
    void point_at_middle(Window window) const;
    void drag_up_from(Window option_menu, int steps) const;
    /// The entry of the posted menu that is `steps` below the current one of the option menu.
    [[nodiscard]] Window entry_of(Window option_menu, int steps) const;
    [[nodiscard]] Window posted_menu() const;
    [[nodiscard]] unsigned keycode(const char* name) const;

    Display* display_;
    std::optional<ProcessWatch> program_;
    mutable bool is_in_a_hurry_ = false;
    mutable std::chrono::steady_clock::time_point last_click_;
};

/// During its life, mouse and keyboard do not wait until the process sleeps: the test disturbs it at its
/// work.
class Hurry {
  public:
    explicit Hurry(const Desktop& desktop) : desktop_(desktop) { desktop_.is_in_a_hurry_ = true; }
    ~Hurry() { desktop_.is_in_a_hurry_ = false; }
    Hurry(const Hurry&) = delete;
    Hurry& operator=(const Hurry&) = delete;

  private:
    const Desktop& desktop_;
};

}  // namespace gw::e2e
