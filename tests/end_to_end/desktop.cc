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

// The window manager's frame has two layers around a titled window.
constexpr int DEPTH_OF_TITLES = 3;
constexpr int ANY_DEPTH = 100;

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

Window Desktop::find_titled(Window below, const std::string& title, int depth) const {
    if (depth == 0) return 0;
    for (const Window child : children_of(display_, below)) {
        if (title == title_of(display_, child) && is_viewable(display_, child)) return child;
        if (const Window found = find_titled(child, title, depth - 1); found != 0) return found;
    }
    return 0;
}

Window Desktop::window_titled(const std::string& title) const {
    return find_titled(DefaultRootWindow(display_), title, DEPTH_OF_TITLES);
}

std::string Desktop::utf8_property(Window window, const char* name) const {
    XTextProperty property = {};
    if (XGetTextProperty(display_, window, &property, XInternAtom(display_, name, False)) == 0) return "";
    const std::unique_ptr<unsigned char, XFreeDeleter> bytes(property.value);
    if (property.encoding != XInternAtom(display_, "UTF8_STRING", False)) return "";
    return {reinterpret_cast<char*>(bytes.get()), property.nitems};
}

std::vector<Window> Desktop::windows_titled(const std::string& title) const {
    std::vector<Window> found;
    for (const Window frame : children_of(display_, DefaultRootWindow(display_))) {
        if (const Window window = part_named(frame, title); window != 0) found.push_back(window);
    }
    return found;
}

Window Desktop::part_named(Window window, const std::string& name) const {
    return window != 0 ? find_titled(window, name, ANY_DEPTH) : 0;
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

void Desktop::await_menu() const {
    require([this] { return has_menu(); }, "no menu appears");
    settle();
}

void Desktop::drag_up_in(Window option_menu, int steps) const {
    point_at_middle(option_menu);
    do_once("the drag in " + name_of(option_menu), [&] { drag_up_from(option_menu, steps); });
}

Window Desktop::entry_of(Window option_menu, int steps) const {
    // The menu's shell contains a row-column widget with the entries.
    std::vector<Window> entries = children_of(display_, posted_menu());
    if (entries.size() == 1) entries = children_of(display_, entries.front());
    std::erase_if(entries, [this](Window entry) { return !is_viewable(display_, entry); });
    std::sort(entries.begin(), entries.end(),
              [this](Window a, Window b) { return place_of(a).y < place_of(b).y; });
    const Rectangle menu = place_of(option_menu);
    const int middle = menu.y + menu.height / 2;
    const auto current = std::find_if(entries.begin(), entries.end(), [&](Window entry) {
        const Rectangle place = place_of(entry);
        return place.y <= middle && middle < place.y + place.height;
    });
    const auto wanted = current - entries.begin() + steps;
    if (current == entries.end() || wanted < 0 || wanted >= std::ssize(entries))
        throw std::runtime_error("the menu has no such entry\n" + description());
    return entries[static_cast<std::size_t>(wanted)];
}

void Desktop::drag_up_from(Window option_menu, int steps) const {
    const auto pressed = std::chrono::steady_clock::now();
    XTestFakeButtonEvent(display_, Button1, True, CurrentTime);
    XSync(display_, False);
    await_menu();
    point_at_middle(entry_of(option_menu, -steps));
    // A shorter press would count as a click, which leaves the menu open.
    std::this_thread::sleep_until(pressed + 2 * DOUBLE_CLICK);
    XTestFakeButtonEvent(display_, Button1, False, CurrentTime);
    XSync(display_, False);
    last_click_ = std::chrono::steady_clock::now();
}

void Desktop::click_down_in(Window option_menu, int x, int steps) const {
    click(option_menu, x, place_of(option_menu).height / 2);
    await_menu();
    click_middle(entry_of(option_menu, steps));
}

void Desktop::dismiss_menu() const {
    settle();
    if (!has_menu()) return;
    key("Escape");
    require([this] { return !has_menu(); }, "the menu stays");
}

// A process that waits for the server's answer sleeps too. The server serves everybody in turn, so after a
// few round trips of ours the process has its answer and is awake.
bool Desktop::is_settled() const {
    if (!program_ || is_in_a_hurry_) return true;
    constexpr int ROUND_TRIPS = 3;
    const long long turns = program_->turns();
    for (int trip = 0; trip < ROUND_TRIPS; ++trip) {
        XSync(display_, False);
        if (!program_->sleeps()) return false;
    }
    return program_->turns() == turns;
}

void Desktop::settle() const {
    require([this] { return is_settled(); }, "the program is busy");
}

void Desktop::require(const std::function<bool()>& condition, const std::string& failure) const {
    if (!wait_until(condition)) throw std::runtime_error(failure + "\n" + description());
}

void Desktop::do_once(const std::string& what, const std::function<void()>& action) const {
    settle();
    const long long turns = program_ ? program_->turns() : 0;
    action();
    if (!program_ || is_in_a_hurry_) return;
    require([&] { return program_->has_ended() || program_->turns() != turns; }, what + " does not arrive");
}

std::string Desktop::name_of(Window window) const {
    const std::string title = title_of(display_, window);
    return title.empty() ? "window " + std::to_string(window) : '"' + title + '"';
}

std::vector<Window> Desktop::windows_under_pointer() const {
    std::vector<Window> windows;
    Window root = 0;
    Window child = 0;
    int position[4] = {};
    unsigned buttons = 0;
    for (Window window = DefaultRootWindow(display_); window != 0; window = child) {
        windows.push_back(window);
        if (XQueryPointer(display_, window, &root, &child, &position[0], &position[1], &position[2],
                          &position[3], &buttons) == 0)
            break;
    }
    return windows;
}

std::string Desktop::description() const {
    std::string text = "On the screen:\n";
    for (const Window frame : children_of(display_, DefaultRootWindow(display_))) {
        if (!is_viewable(display_, frame)) continue;
        const Rectangle place = place_of(frame);
        text += "  " + std::to_string(place.width) + 'x' + std::to_string(place.height) + " at " +
                std::to_string(place.x) + ',' + std::to_string(place.y);
        for (const Window layer : children_of(display_, frame)) {
            for (const Window window : children_of(display_, layer)) {
                if (const std::string title = title_of(display_, window); !title.empty())
                    text += ": " + title;
            }
        }
        text += has_keyboard(frame) ? " (has the keyboard)\n" : "\n";
    }
    text += "Under the pointer:";
    for (const Window window : windows_under_pointer()) text += ' ' + name_of(window);
    text += "\n";
    if (program_) text += "The program: " + program_->description() + '\n';
    picture("waited-in-vain");
    return text;
}

void Desktop::press(unsigned code, bool down) const {
    XTestFakeKeyEvent(display_, code, down ? True : False, CurrentTime);
}

unsigned Desktop::keycode(const char* name) const {
    const unsigned code = XKeysymToKeycode(display_, XStringToKeysym(name));
    if (code == 0) throw std::runtime_error(std::string("no such key: ") + name);
    return code;
}

void Desktop::point_at(Window window, int x, int y) const {
    const auto is_there = [&] {
        const Rectangle place = place_of(window);
        XTestFakeMotionEvent(display_, DefaultScreen(display_), place.x + x, place.y + y, CurrentTime);
        XSync(display_, False);
        const std::vector<Window> under = windows_under_pointer();
        const Rectangle after = place_of(window);
        return std::find(under.begin(), under.end(), window) != under.end() && after.x == place.x &&
               after.y == place.y;
    };
    require(is_there, "the pointer does not reach " + name_of(window));
}

void Desktop::point_at_middle(Window window) const {
    settle();
    const Rectangle place = place_of(window);
    point_at(window, place.width / 2, place.height / 2);
}

void Desktop::click(Window window, int x, int y, const char* modifier, unsigned button) const {
    settle();
    point_at(window, x, y);
    std::this_thread::sleep_until(last_click_ + 2 * DOUBLE_CLICK);
    do_once("a click on " + name_of(window), [&] {
        if (modifier != nullptr) press(keycode(modifier), true);
        XTestFakeButtonEvent(display_, button, True, CurrentTime);
        XTestFakeButtonEvent(display_, button, False, CurrentTime);
        if (modifier != nullptr) press(keycode(modifier), false);
        XSync(display_, False);
    });
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

void Desktop::press_and_release(unsigned code) const {
    press(code, true);
    press(code, false);
}

void Desktop::key(const char* name) const {
    do_once(std::string("the key ") + name, [&] {
        press_and_release(keycode(name));
        XSync(display_, False);
    });
}

void Desktop::key(const char* held, const char* name) const {
    do_once(std::string("the key ") + held + ' ' + name, [&] {
        press(keycode(held), true);
        press_and_release(keycode(name));
        press(keycode(held), false);
        XSync(display_, False);
    });
}

// The keysym of a Latin-1 character is its code.
void Desktop::type(const std::string& text) const {
    do_once("what is typed", [&] {
        for (const char c : text) {
            const auto symbol = static_cast<KeySym>(static_cast<unsigned char>(c));
            const unsigned code = XKeysymToKeycode(display_, symbol);
            if (code == 0) throw std::runtime_error(std::string("no such key: ") + c);
            const bool shifted = XkbKeycodeToKeysym(display_, static_cast<KeyCode>(code), 0, 0) != symbol;
            if (shifted) press(keycode("Shift_L"), true);
            press_and_release(code);
            if (shifted) press(keycode("Shift_L"), false);
        }
        XSync(display_, False);
    });
}

std::string Desktop::clipboard() const {
    settle();
    const Window window = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 1, 1, 0, 0, 0);
    const Atom property = XInternAtom(display_, "PASTED", False);
    XConvertSelection(display_, XInternAtom(display_, "CLIPBOARD", False), XA_STRING, property, window,
                      CurrentTime);
    XEvent event{};
    require([&] { return XCheckTypedWindowEvent(display_, window, SelectionNotify, &event) == True; },
            "the clipboard does not answer");
    constexpr long MOST_WORDS = 100000;
    Atom type = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char* bytes = nullptr;
    if (event.xselection.property != 0) {
        XGetWindowProperty(display_, window, property, 0, MOST_WORDS, True, AnyPropertyType, &type, &format,
                           &count, &rest, &bytes);
    }
    const std::unique_ptr<unsigned char, XFreeDeleter> owned(bytes);
    XDestroyWindow(display_, window);
    return {bytes, bytes + count};
}

void Desktop::ask_to_close(Window window) const {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = XInternAtom(display_, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display_, "WM_DELETE_WINDOW", False));
    do_once("the request to close " + name_of(window), [&] {
        XSendEvent(display_, window, False, NoEventMask, &event);
        XSync(display_, False);
    });
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
    settle();
    return pixels(part);
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
    // A window that goes while the screen is read ends the reading.
    constexpr int MOST_TRIES = 5;
    for (int tries = 0; std::system(command.c_str()) != 0; ++tries) {
        if (tries == MOST_TRIES) throw std::runtime_error("no picture of " + name);
    }
}

}  // namespace gw::e2e
