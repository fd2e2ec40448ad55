// SPDX-License-Identifier: MIT
//
// The screen as a user meets it: windows by their titles, a mouse, a keyboard, and eyes that compare pixels.
// Nothing here knows the program.
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

/// Clicks that are closer together than this are a double click. An option menu that is clicked stays open
/// when the button is let go within this time.
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
    /// Waits for the window to appear (be gone); false when it does not.
    [[nodiscard]] bool appears(const std::string& title) const;
    [[nodiscard]] bool disappears(const std::string& title) const;
    [[nodiscard]] Rectangle place_of(Window window) const;
    [[nodiscard]] bool has_keyboard(Window window) const;
    /// Whether a menu is posted.
    [[nodiscard]] bool has_menu() const;
    /// Waits for a menu to be posted; false when there is none within two seconds.
    [[nodiscard]] bool menu_appears() const;
    /// Opens an option menu, drags to the entry that stands `steps` above the current one, and lets go there.
    void drag_up_in(Window option_menu, int steps) const;
    /// Takes away a menu that is still posted.
    void dismiss_menu() const;

    /// Clicks in the window, not as a double click with the click before; `modifier` is a key that is held
    /// meanwhile ("Control_L"), or null.
    void click(Window window, int x, int y, const char* modifier = nullptr, unsigned button = Button1) const;
    void click_middle(Window window) const;
    /// Takes the pointer out of the way, to a corner of the screen.
    void park_pointer() const;
    /// Scrolls to the beginning (end) of what the upright scroll bar moves.
    void scroll_to_start(Window scroll_bar) const;
    void scroll_to_end(Window scroll_bar) const;
    /// Presses a key by its name ("Down"), or two at once ("Alt_L", "f").
    void key(const char* name) const;
    void key(const char* held, const char* name) const;
    /// Types what stands on the keys, alone or with Shift.
    void type(const std::string& text) const;
    /// What the window manager does when its close box is used.
    void ask_to_close(Window window) const;

    /// The pixels of a part of the screen.
    [[nodiscard]] std::vector<unsigned long> pixels(const Rectangle& part) const;
    /// The same, once they have stopped changing: drawing takes more than one step.
    [[nodiscard]] std::vector<unsigned long> settled_pixels(const Rectangle& part) const;
    /// How many pixels of a part are not of the colour of its first.
    [[nodiscard]] int ink(const Rectangle& part) const;
    /// The directories that the server takes fonts from.
    [[nodiscard]] std::vector<std::string> font_path() const;
    void set_font_path(std::vector<std::string> path) const;
    /// Whether the server knows a font by that name.
    [[nodiscard]] bool has_font(const std::string& xlfd) const;
    /// Leaves a picture of the screen beside the other results of the run.
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
