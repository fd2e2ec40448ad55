// SPDX-License-Identifier: MIT
#include "app/doctor/server_on_demand.h"

#include "app/kit/toolkit.h"
#include "app/program/server_watch.h"

namespace gw {

bool ServerOnDemand::answers() {
    return ServerUse::view() != nullptr;
}

ServerPlace ServerOnDemand::place() {
    ServerView* view = ServerUse::view();
    return view != nullptr ? view->place() : ServerPlace::UNKNOWN;
}

std::optional<uid_t> ServerOnDemand::user() {
    ServerView* view = ServerUse::view();
    return view != nullptr ? view->user() : std::nullopt;
}

std::vector<gid_t> ServerOnDemand::groups() {
    ServerView* view = ServerUse::view();
    return view != nullptr ? view->groups() : std::vector<gid_t>();
}

ScreenResolution ServerOnDemand::resolution() {
    ServerView* view = ServerUse::view();
    return view != nullptr ? view->resolution() : ScreenResolution();
}

std::vector<std::string> ServerOnDemand::font_path() {
    ServerView* view = ServerUse::view();
    return view != nullptr ? view->font_path() : std::vector<std::string>();
}

std::vector<std::string> ServerOnDemand::names(const std::string& pattern, int most) {
    ServerView* view = ServerUse::view();
    return view != nullptr ? view->names(pattern, most) : std::vector<std::string>();
}

std::optional<OpenedFont> ServerOnDemand::open(const std::string& name) {
    ServerView* view = ServerUse::view();
    return view != nullptr ? view->open(name) : std::nullopt;
}

OpenedFontset ServerOnDemand::open_fontset(const std::string& base_names) {
    ServerView* view = ServerUse::view();
    return view != nullptr ? view->open_fontset(base_names) : OpenedFontset();
}

Outcome ServerOnDemand::set_font_path(const std::vector<std::string>& elements) {
    ServerView* view = ServerUse::view();
    if (view == nullptr) return Failure{DisplayString(display), Reason::NO_X_SERVER};
    return view->set_font_path(elements);
}

}  // namespace gw
