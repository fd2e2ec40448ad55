// SPDX-License-Identifier: MIT
#include "end_to_end/desktop.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <thread>

#include "end_to_end/waiting.h"

#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace gw::e2e {

namespace {

struct XFreeDeleter {
    void operator()(void* data) const { XFree(data); }
};

// A window may vanish while it is examined.
int ignore_vanished(Display*, XErrorEvent*) {
    return 0;
}

std::vector<Window> children_of(Display* display, Window window) {
    Window root = 0;
    Window parent = 0;
    Window* children = nullptr;
    unsigned count = 0;
    if (XQueryTree(display, window, &root, &parent, &children, &count) == 0) return {};
    const std::unique_ptr<Window, XFreeDeleter> owned(children);
    return {children, children + count};
}

bool is_viewable(Display* display, Window window) {
    XWindowAttributes attributes{};
    return XGetWindowAttributes(display, window, &attributes) != 0 && attributes.map_state == IsViewable &&
           attributes.c_class == InputOutput;
}

struct TextListDeleter {
    void operator()(char** list) const { XFreeStringList(list); }
};

/// The title of a window, converted to UTF-8; empty when it has none.
std::string title_of(Display* display, Window window) {
    XTextProperty property = {};
    if (XGetWMName(display, window, &property) == 0) return "";
    const std::unique_ptr<unsigned char, XFreeDeleter> bytes(property.value);
    char** list = nullptr;
    int count = 0;
    if (Xutf8TextPropertyToTextList(display, &property, &list, &count) < Success || list == nullptr)
        return "";
    const std::unique_ptr<char*, TextListDeleter> owned(list);
    return count > 0 ? list[0] : "";
}

}  // namespace

Desktop::Desktop(const char* display_name) : display_(XOpenDisplay(display_name)) {
    if (display_ == nullptr) throw std::runtime_error("the tests want a display");
    XSetErrorHandler(ignore_vanished);
}

Desktop::~Desktop() {
    XCloseDisplay(display_);
}

Window Desktop::find_titled(Window below, const std::string& title) const {
    for (const Window child : children_of(display_, below)) {
        if (title == title_of(display_, child) && is_viewable(display_, child)) return child;
        if (const Window found = find_titled(child, title); found != 0) return found;
    }
    return 0;
}

Window Desktop::window_titled(const std::string& title) const {
    return find_titled(DefaultRootWindow(display_), title);
}

std::vector<Window> Desktop::windows_titled(const std::string& title) const {
    std::vector<Window> found;
    for (const Window frame : children_of(display_, DefaultRootWindow(display_))) {
        if (const Window window = part_named(frame, title); window != 0) found.push_back(window);
    }
    return found;
}

Window Desktop::part_named(Window window, const std::string& name) const {
    return window != 0 ? find_titled(window, name) : 0;
}

bool Desktop::appears(const std::string& title) const {
    return wait_until([&] { return is_visible(title); });
}

bool Desktop::disappears(const std::string& title) const {
    return wait_until([&] { return !is_visible(title); });
}

Rectangle Desktop::place_of(Window window) const {
    XWindowAttributes attributes{};
    XGetWindowAttributes(display_, window, &attributes);
    Window child = 0;
    int x = 0;
    int y = 0;
    XTranslateCoordinates(display_, window, attributes.root, 0, 0, &x, &y, &child);
    return {x, y, attributes.width, attributes.height};
}

bool Desktop::has_keyboard(Window window) const {
    Window focus = 0;
    int revert = 0;
    XGetInputFocus(display_, &focus, &revert);
    if (focus == window) return true;
    for (const Window child : children_of(display_, window)) {
        if (has_keyboard(child)) return true;
    }
    return false;
}

// A menu is an override-redirect window. The window manager has one too, but outside the screen.
Window Desktop::posted_menu() const {
    for (const Window window : children_of(display_, DefaultRootWindow(display_))) {
        XWindowAttributes attributes{};
        if (XGetWindowAttributes(display_, window, &attributes) != 0 && attributes.map_state == IsViewable &&
            attributes.override_redirect == True && attributes.c_class == InputOutput &&
            attributes.x < WidthOfScreen(attributes.screen))
            return window;
    }
    return 0;
}

bool Desktop::has_menu() const {
    return posted_menu() != 0;
}

bool Desktop::menu_appears() const {
    return wait_until([this] { return has_menu(); }, 2);
}

void Desktop::drag_up_in(Window option_menu, int steps) const {
    dismiss_menu();
    move_to_middle(option_menu);
    const Rectangle start = place_of(option_menu);
    const auto pressed = std::chrono::steady_clock::now();
    XTestFakeButtonEvent(display_, Button1, True, CurrentTime);
    XSync(display_, False);
    if (menu_appears()) {
        // The menu's shell contains a row-column widget with the entries.
        std::vector<Window> entries = children_of(display_, posted_menu());
        if (entries.size() == 1) entries = children_of(display_, entries.front());
        std::erase_if(entries, [this](Window entry) { return !is_viewable(display_, entry); });
        std::sort(entries.begin(), entries.end(),
                  [this](Window a, Window b) { return place_of(a).y < place_of(b).y; });
        const int y = start.y + start.height / 2;
        const auto current = std::find_if(entries.begin(), entries.end(), [&](Window entry) {
            const Rectangle place = place_of(entry);
            return place.y <= y && y < place.y + place.height;
        });
        if (current != entries.end() && current - entries.begin() >= steps)
            move_to_middle(*(current - steps));
    }
    // A shorter press would count as a click, which leaves the menu open.
    XSync(display_, False);
    std::this_thread::sleep_until(pressed + 2 * DOUBLE_CLICK);
    XTestFakeButtonEvent(display_, Button1, False, CurrentTime);
    XSync(display_, False);
    last_click_ = std::chrono::steady_clock::now();
}

void Desktop::dismiss_menu() const {
    if (!has_menu()) return;
    key("Escape");
    wait_until([this] { return !has_menu(); }, 2);
}

void Desktop::press(unsigned code, bool down) const {
    XTestFakeKeyEvent(display_, code, down ? True : False, CurrentTime);
}

unsigned Desktop::keycode(const char* name) const {
    const unsigned code = XKeysymToKeycode(display_, XStringToKeysym(name));
    if (code == 0) throw std::runtime_error(std::string("no such key: ") + name);
    return code;
}

void Desktop::move_to_middle(Window window) const {
    const Rectangle place = place_of(window);
    XTestFakeMotionEvent(display_, DefaultScreen(display_), place.x + place.width / 2,
                         place.y + place.height / 2, CurrentTime);
}

void Desktop::click(Window window, int x, int y, const char* modifier, unsigned button) const {
    std::this_thread::sleep_until(last_click_ + 2 * DOUBLE_CLICK);
    const Rectangle place = place_of(window);
    XTestFakeMotionEvent(display_, DefaultScreen(display_), place.x + x, place.y + y, CurrentTime);
    if (modifier != nullptr) press(keycode(modifier), true);
    XTestFakeButtonEvent(display_, button, True, CurrentTime);
    XTestFakeButtonEvent(display_, button, False, CurrentTime);
    if (modifier != nullptr) press(keycode(modifier), false);
    XSync(display_, False);
    last_click_ = std::chrono::steady_clock::now();
}

void Desktop::click_middle(Window window) const {
    const Rectangle place = place_of(window);
    click(window, place.width / 2, place.height / 2);
}

void Desktop::park_pointer() const {
    const int screen = DefaultScreen(display_);
    XTestFakeMotionEvent(display_, screen, DisplayWidth(display_, screen) - 1,
                         DisplayHeight(display_, screen) - 1, CurrentTime);
    XSync(display_, False);
}

// The middle button moves the slider to the pointer. There is an arrow at each end of the scroll bar.
void Desktop::scroll_to_start(Window scroll_bar) const {
    const Rectangle place = place_of(scroll_bar);
    click(scroll_bar, place.width / 2, place.width + 1, nullptr, Button2);
}

void Desktop::scroll_to_end(Window scroll_bar) const {
    const Rectangle place = place_of(scroll_bar);
    click(scroll_bar, place.width / 2, place.height - place.width - 1, nullptr, Button2);
}

void Desktop::key(const char* name) const {
    press(keycode(name), true);
    press(keycode(name), false);
    XSync(display_, False);
}

void Desktop::key(const char* held, const char* name) const {
    press(keycode(held), true);
    key(name);
    press(keycode(held), false);
    XSync(display_, False);
}

// The keysym of a Latin-1 character is its code.
void Desktop::type(const std::string& text) const {
    for (const char c : text) {
        const auto symbol = static_cast<KeySym>(c);
        const unsigned code = XKeysymToKeycode(display_, symbol);
        if (code == 0) throw std::runtime_error(std::string("no such key: ") + c);
        const bool shifted = XkbKeycodeToKeysym(display_, static_cast<KeyCode>(code), 0, 0) != symbol;
        if (shifted) press(keycode("Shift_L"), true);
        press(code, true);
        press(code, false);
        if (shifted) press(keycode("Shift_L"), false);
    }
    XSync(display_, False);
}

void Desktop::ask_to_close(Window window) const {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(display_, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display_, "WM_DELETE_WINDOW", False));
    XSendEvent(display_, window, False, NoEventMask, &event);
    XSync(display_, False);
}

std::vector<unsigned long> Desktop::pixels(const Rectangle& part) const {
    std::vector<unsigned long> all;
    XImage* image =
        XGetImage(display_, DefaultRootWindow(display_), part.x, part.y, static_cast<unsigned>(part.width),
                  static_cast<unsigned>(part.height), AllPlanes, ZPixmap);
    if (image == nullptr) return all;
    for (int y = 0; y < part.height; ++y) {
        for (int x = 0; x < part.width; ++x) all.push_back(XGetPixel(image, x, y));
    }
    XDestroyImage(image);
    return all;
}

std::vector<unsigned long> Desktop::settled_pixels(const Rectangle& part) const {
    std::vector<unsigned long> last = pixels(part);
    int unchanged = 0;
    wait_until([&] {
        std::vector<unsigned long> now = pixels(part);
        unchanged = now == last ? unchanged + 1 : 0;
        last = std::move(now);
        return unchanged == 5;
    });
    return last;
}

int Desktop::ink(const Rectangle& part) const {
    const std::vector<unsigned long> all = pixels(part);
    if (all.empty()) return 0;
    return static_cast<int>(
        std::count_if(all.begin(), all.end(), [&](unsigned long pixel) { return pixel != all.front(); }));
}

std::vector<std::string> Desktop::font_path() const {
    int count = 0;
    char** path = XGetFontPath(display_, &count);
    std::vector<std::string> elements(path, path + count);
    XFreeFontPath(path);
    return elements;
}

void Desktop::set_font_path(std::vector<std::string> path) const {
    std::vector<char*> elements;
    for (std::string& element : path) elements.push_back(element.data());
    XSetFontPath(display_, elements.data(), static_cast<int>(elements.size()));
    XSync(display_, False);
}

bool Desktop::has_font(const std::string& xlfd) const {
    int count = 0;
    char** names = XListFonts(display_, xlfd.c_str(), 1, &count);
    XFreeFontNames(names);
    return count > 0;
}

void Desktop::picture(const std::string& name) const {
    const char* directory = std::getenv("GLYPHWARD_OUT");
    if (directory == nullptr) return;
    const std::string command =
        "xwd -silent -root | xwdtopnm 2>/dev/null | pnmcrop -quiet | pnmtopng -quiet > '" +
        std::string(directory) + "/" + name + ".png'";
    if (std::system(command.c_str()) != 0) throw std::runtime_error("no picture of " + name);
}

}  // namespace gw::e2e
