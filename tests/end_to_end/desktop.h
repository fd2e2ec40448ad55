// SPDX-License-Identifier: MIT
//
// The screen as a user sees it: windows by their titles, a mouse, a keyboard, and comparisons of pixels.
// Nothing here depends on the program.
#pragma once

#include <chrono>
#include <string>
#include <vector>

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

    /// The visible window with exactly that title, in UTF-8; 0 when there is none (yet).
    [[nodiscard]] Window window_titled(const std::string& title) const;
    [[nodiscard]] bool is_visible(const std::string& title) const { return window_titled(title) != 0; }
    /// The visible window somewhere inside `window` that has this name; 0 when there is none (yet).
    [[nodiscard]] Window part_named(Window window, const std::string& name) const;
    /// All visible windows with that title.
    [[nodiscard]] std::vector<Window> windows_titled(const std::string& title) const;
    /// Waits until the window appears (is gone); false when that does not happen.
    [[nodiscard]] bool appears(const std::string& title) const;
    [[nodiscard]] bool disappears(const std::string& title) const;
    [[nodiscard]] Rectangle place_of(Window window) const;
    [[nodiscard]] bool has_keyboard(Window window) const;
    /// Whether a menu is posted.
    [[nodiscard]] bool has_menu() const;
    /// Waits for a menu to be posted; false when there is none within two seconds.
    [[nodiscard]] bool menu_appears() const;
    /// Opens an option menu, drags to the entry `steps` above the current one, and releases the button there.
    void drag_up_in(Window option_menu, int steps) const;
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
    [[nodiscard]] Window find_titled(Window below, const std::string& title) const;
    void press(unsigned keycode, bool down) const;
    void move_to_middle(Window window) const;
    [[nodiscard]] Window posted_menu() const;
    [[nodiscard]] unsigned keycode(const char* name) const;

    Display* display_;
    mutable std::chrono::steady_clock::time_point last_click_;
};

}  // namespace gw::e2e
