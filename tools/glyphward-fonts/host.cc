// SPDX-License-Identifier: MIT
#include "glyphward-fonts/host.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "core/font_policy.h"
#include "core/gw_misc.h"
#include "drivers/engine_globals.h"
#include "drivers/gw_alias_driver.h"
#include "drivers/gw_installed_fonts_driver.h"
#include "fontpath/catalogue.h"
#include "fontpath/path_element.h"
#include "fontpath/xlib_server_view.h"
#include "modules/font_modules.h"
#include "platform/host_paths.h"
#include "platform/shell_command.h"
#include "store/directory_change.h"
#include "store/trash_policy.h"

#include "glyphward-fonts/other_root.h"

namespace gw::fonts {

namespace {

std::vector<Failure>& heard() {
    static std::vector<Failure> failures;
    return failures;
}

std::unique_ptr<GWFontPath>& font_path() {
    static std::unique_ptr<GWFontPath> of_host;
    return of_host;
}

/// Whether the files of font paths can have this element, which are read line by line.
bool fits_font_path(const std::string& element) {
    return !element.empty() && std::none_of(element.begin(), element.end(),
                                            [](char c) { return c == '\n' || c == '\r' || c == '\0'; });
}

/// Puts the elements into a list of their own, which `use` gets.
template <class Use>
Outcome with_list(const std::vector<std::string>& elements, const Use& use) {
    GW_LIST<GW_STRING> list;
    const ElementsOwner owner(list);
    for (const std::string& element : elements) list.append(new GW_STRING(element.c_str()));
    return use(list);
}

}  // namespace

void prepare_engine() {
    gw_init();
    listen_to_failures([](const Failure& failure) { heard().push_back(failure); });
    set_font_policy(FontPolicy(true, true));
    set_keeps_what_is_taken_out(true);
    add_command_dir(INSTALLATION_BIN);
    append_font_modules(the_fsm_list);
}

void report_heard(Report& report) {
    for (const Failure& failure : std::exchange(heard(), {})) report.trouble(failure);
}

GWFontPath& font_path_of_host() {
    if (!font_path()) {
        font_path() = std::make_unique<GWFontPath>(INSTALLATION_ROOT);
        the_font_path = font_path().get();
    }
    return *font_path();
}

std::vector<std::string> elements_of(GWFontPath::TYPE which) {
    unsigned count = 0;
    std::vector<std::string> elements;
    for (const GW_STRING* element : *font_path_of_host().get_fpe_list(which, count))
        elements.emplace_back(element->get_str());
    return elements;
}

Outcome store_elements(GWFontPath::TYPE which, const std::vector<std::string>& elements) {
    const std::vector<std::string> before = elements_of(which);
    for (const std::string& element : elements) {
        const bool is_new = std::find(before.begin(), before.end(), element) == before.end();
        if (is_new && !fits_font_path(element)) return Failure{element, Reason::NAME_UNFIT_FOR_PATH};
    }
    GWFontPath& path = font_path_of_host();
    const bool is_front = which == GWFontPath::USER_PREPEND_FP;
    const Outcome stored = with_list(elements, [&](const GW_LIST<GW_STRING>& list) {
        if (!is_front && which != GWFontPath::USER_APPEND_FP) return path.replace(which, list, true);
        // Both parts of the user's font path are in one file.
        unsigned count = 0;
        const GW_LIST<GW_STRING>& other =
            *path.get_fpe_list(is_front ? GWFontPath::USER_APPEND_FP : GWFontPath::USER_PREPEND_FP, count);
        return is_front ? path.replace_users(list, other) : path.replace_users(other, list);
    });
    // Whoever asks next gets what is in the files.
    font_path().reset();
    the_font_path = nullptr;
    return stored;
}

Host::Host(Report& report, const std::string& also) {
    (void)font_path_of_host();
    GWInstalledFontsDriver().get_hrn_list(fonts_);
    if (!also.empty()) list_also(also);
    GWAliasDriver().get_alias_list(aliases_);
    report_heard(report);
}

void Host::list_also(const std::string& directory) {
    const std::vector<std::string> path = elements_of(GWFontPath::ALL_FP);
    const bool is_listed = std::any_of(
        path.begin(), path.end(), [&](const std::string& element) { return stands_for(element, directory); });
    if (is_listed || !find_silent({directory}).empty()) return;
    tell_unless_done(settle(directory));
    GW_FPE element(directory.c_str());
    GW_LIST<GWFont> found;
    the_fsm_list.make_installed_font_list(found, &element);
    for (GWFont* font : found) fonts_.add_font(font);
}

Host::~Host() {
    delete_elements(conflicts_);
    delete_elements(aliases_);
}

std::unique_ptr<ServerView> server_or_trouble(const std::string& display, Report& report) {
    std::unique_ptr<ServerView> server = connect_to_server(display);
    if (server) return server;
    const char* of_environment = std::getenv("DISPLAY");
    const std::string name = !display.empty() || of_environment == nullptr ? display : of_environment;
    report.trouble(name.empty() ? "DISPLAY" : name,
                   name.empty() ? Message::SAYS_NO_DISPLAY : Message::SAYS_NO_SERVER);
    return nullptr;
}

session::Outcome give_to_server(ServerView& server, const session::Elements& wanted, Report& report) {
    const session::Elements before = server.font_path();
    const auto set = [&](const session::Elements& path) {
        return static_cast<bool>(server.set_font_path(path));
    };
    session::Outcome given = session::put(wanted, before, host_of(server.place()), set);
    for (const std::string& refused : given.refused) report.trouble(refused, Message::SAYS_SERVER_REFUSES);
    if (given.path.empty()) given.path = before;
    return given;
}

void tell_server(const std::string& directory, Report& report) {
    const char* display = std::getenv("DISPLAY");
    // The server of this session has nothing of another root.
    if (display == nullptr || *display == '\0' || is_in_other_root()) return;
    const std::unique_ptr<ServerView> server = server_or_trouble("", report);
    if (!server || server->place() == ServerPlace::ELSEWHERE) return;
    session::Elements path = server->font_path();
    const auto is_same = [&](const std::string& element) {
        return identity_of_element(element) == identity_of_element(directory) ||
               (is_catalogue(element) && stands_for(element, directory));
    };
    if (!directory.empty() && std::none_of(path.begin(), path.end(), is_same)) path.push_back(directory);
    (void)give_to_server(*server, path, report);
}

}  // namespace gw::fonts
