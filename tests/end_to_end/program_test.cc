// SPDX-License-Identifier: MIT
#include "end_to_end/program_test.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "end_to_end/waiting.h"

namespace gw::e2e {

namespace {

constexpr const char* CONFIG = "/usr/vantor/server/etc/VTconfig";
constexpr const char* HINT = "Glyph Warden - Information";
constexpr const char* ROOTS_DESTINATION = "/etc/vantor/glyphwd_fonts";

}  // namespace

bool is_root() {
    return ::geteuid() == 0;
}

ProgramTest::ProgramTest() : font_path_before_(desktop.font_path()) {
    witness() = [this] { return seen(); };
    if (is_root()) config_before_ = gw::test::TempDir::read_bytes(CONFIG);
}

ProgramTest::~ProgramTest() {
    program.reset();
    desktop.attend_to_nothing();
    EXPECT_TRUE(desktop.disappears(MainWindow::TITLE));
    witness() = nullptr;
    desktop.set_font_path(font_path_before_);
    if (!is_root()) return;
    std::ofstream(CONFIG) << config_before_;
    std::filesystem::remove_all(ROOTS_DESTINATION);
}

void ProgramTest::start(const std::map<std::string, std::optional<std::string>>& environment) {
    auto all = environment;
    all.insert({"HOME", home_path().substr(0, home_path().size() - 1)});
    program = std::make_unique<Program>(all);
    desktop.attend_to(program->pid());
    main = std::make_unique<MainWindow>(desktop);
    ASSERT_TRUE(main->is_there()) << program->errors();
    ASSERT_TRUE(gets_keyboard(MainWindow::TITLE));
    // The window may be there before its lists are drawn.
    desktop.settle();
}

std::string ProgramTest::seen() const {
    return desktop.description() + (program ? "It has said: " + program->errors() + '\n' : "");
}

std::optional<int> ProgramTest::leave() {
    main->take_keyboard();
    main->choose("f", "e");
    return program->wait_for_exit();
}

bool ProgramTest::gets_keyboard(const char* title) const {
    return wait_until([&] {
        const Window window = desktop.window_titled(title);
        return window != 0 && desktop.has_keyboard(window);
    });
}

Window ProgramTest::opens(const char* title, const std::function<void()>& action) {
    action();
    return gets_keyboard(title) ? desktop.window_titled(title) : 0;
}

Window ProgramTest::open_by_menu(const char* menu_key, const char* entry_key, const char* title) {
    return opens(title, [&] {
        main->take_keyboard();
        main->choose(menu_key, entry_key);
    });
}

bool ProgramTest::press(const char* title, const char* button) {
    const Window part = desktop.part_named(desktop.window_titled(title), button);
    if (part == 0) return false;
    desktop.click_middle(part);
    return desktop.disappears(title);
}

Window ProgramTest::open_resolving() {
    const auto is_asked = [&] { return desktop.is_visible(RESOLVE); };
    if (!wait_until([&] { return is_asked() || desktop.is_visible(SUMMARY); })) return 0;
    if (!is_asked() && !press(SUMMARY, "resolve_button")) return 0;
    return opens(RESOLVE, [] {});
}

bool ProgramTest::comes_to_summary() {
    const auto is_asked = [&] { return desktop.is_visible(RESOLVE); };
    if (!wait_until([&] { return is_asked() || desktop.is_visible(SUMMARY); })) return false;
    if (is_asked() && !leave_window(RESOLVE, Leaving::ESCAPE, nullptr)) return false;
    return opens(SUMMARY, [] {}) != 0;
}

bool ProgramTest::finish_resolving() {
    if (!press(RESOLVE, "ok_button")) return false;
    if (is_as_ever()) return true;
    if (opens(SUMMARY, [] {}) == 0) return false;
    desktop.picture("summary-of-all");
    return press(SUMMARY, "ok_button");
}

bool ProgramTest::leave_window(const char* title, Leaving way, const char* button) {
    if (way == Leaving::BUTTON) return press(title, button);
    if (way == Leaving::CLOSE_BOX) {
        desktop.ask_to_close(desktop.window_titled(title));
    } else {
        if (!gets_keyboard(title)) return false;
        desktop.key("Escape");
    }
    return desktop.disappears(title);
}

bool ProgramTest::hint_comes_and_goes(bool has_windows_of_ever) {
    // Today the installation puts its directory on the font path itself.
    if (!is_root() || !has_windows_of_ever) return !desktop.is_visible(HINT);
    return opens(HINT, [] {}) != 0 && leave_window(HINT, Leaving::ESCAPE, nullptr);
}

std::string ProgramTest::default_destination() const {
    return (is_root() ? ROOTS_DESTINATION : home_path() + "glyphwd_fonts") + '/';
}

void ProgramTest::list_fonts_of(const std::string& dir) {
    own_elements_.push_back(dir);
    if (!is_root()) {
        // Elements after an empty line go before the installation's.
        std::ofstream file(home_path() + ".VTfontpath");
        file << '\n';
        for (const std::string& element : own_elements_) file << element << '\n';
        return;
    }
    const std::size_t colon = config_before_.find(":\t") + 2;
    std::string joined;
    for (const std::string& element : own_elements_) joined += element + ',';
    std::ofstream(CONFIG) << config_before_.substr(0, colon) << joined << config_before_.substr(colon);
}

std::vector<std::string> ProgramTest::staged(const std::string& name) const {
    std::vector<std::string> found = desktop.font_path();
    std::erase_if(found, [&](const std::string& element) {
        return !element.starts_with("/tmp/") || !element.ends_with('/' + name + '/');
    });
    return found;
}

bool ProgramTest::is_on_font_path(const std::string& dir) const {
    const std::vector<std::string> path = desktop.font_path();
    return std::find(path.begin(), path.end(), dir) != path.end();
}

}  // namespace gw::e2e
