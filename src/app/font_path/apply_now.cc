// SPDX-License-Identifier: MIT
#include "app/font_path/apply_now.h"

#include <algorithm>
#include <set>

#include "app/font_path/element_views.h"
#include "app/program/server_watch.h"
#include "fontpath/session_path.h"
#include "platform/host_paths.h"
#include "texts/messages.h"

namespace gw {

namespace {

using session::Elements;

std::set<ElementIdentity> identities(const Elements& elements, PathHost host) {
    std::set<ElementIdentity> all;
    for (const std::string& element : elements) all.insert(identity_of_element(element, host));
    return all;
}

/// What the server has, without the elements that are to leave it.
Elements remaining(const Elements& served, const Elements& removed, PathHost host) {
    const std::set<ElementIdentity> leaving = identities(removed, host);
    Elements staying;
    for (const std::string& element : served) {
        if (!leaving.contains(identity_of_element(element, host))) staying.push_back(element);
    }
    return staying;
}

/// Why the server does not have the element: what is wrong with it, or that the server has refused it without
/// anything that we see, as it does with a font server that does not answer.
std::string why_missing(const ElementView& view, bool is_refused) {
    if (is_refused && view.state == Message::ELEMENT_NOT_SERVED) return text_of(Message::NOW_REFUSED);
    return view.why.empty() ? text_of(view.state) : view.why;
}

std::string lines_about(const Elements& configured, const Elements& refused) {
    const std::vector<ElementView> views = element_views(configured);
    std::string lines;
    for (std::size_t i = 0; i < configured.size(); ++i) {
        if (views[i].is_served) continue;
        const bool is_refused = std::find(refused.begin(), refused.end(), configured[i]) != refused.end();
        lines += '\n' + configured[i] + ": " + why_missing(views[i], is_refused);
    }
    return lines;
}

std::string lines_about_dropped(const Elements& before, PathHost host) {
    const std::set<ElementIdentity> now = identities(served_path(), host);
    std::string lines;
    for (const std::string& element : before) {
        if (!now.contains(identity_of_element(element, host))) lines += '\n' + element;
    }
    return lines;
}

}  // namespace

std::string apply_now(const std::string& root, const std::vector<std::string>& removed) {
    ask_server();
    const ServerUse use;
    ServerView* server = ServerUse::view();
    if (server == nullptr) return text_of(Message::NOW_NO_SERVER);
    const PathHost host = host_of(server_place());
    const session::Configuration configuration = session::read_configuration(root, SETUP_RECORD);
    // A copy, because the server is asked again below.
    const Elements before = served_path();  // NOLINT(performance-unnecessary-copy-initialization)
    const session::Plan plan = session::make_plan(configuration, remaining(before, removed, host), host);
    const session::Outcome outcome = session::put(plan.path, before, host, [server](const Elements& path) {
        return static_cast<bool>(server->set_font_path(path));
    });
    ask_server();
    const std::string missing = lines_about(configuration.elements, outcome.refused);
    const std::string dropped = lines_about_dropped(before, host);
    std::string told =
        missing.empty() ? text_of(Message::NOW_APPLIED) : text_of(Message::NOW_APPLIED_IN_PART) + missing;
    if (!dropped.empty()) told += '\n' + std::string(text_of(Message::NOW_TAKEN_OFF)) + dropped;
    return told;
}

}  // namespace gw
