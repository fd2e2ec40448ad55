// SPDX-License-Identifier: MIT
#include "diagnosis/server_update.h"

#include <algorithm>

#include "fontpath/session_path.h"

namespace gw::diagnosis {

namespace {

using Elements = std::vector<std::string>;

bool is_on(const Elements& path, const std::string& element, PathHost host) {
    return place_on(path, element, host) < path.size();
}

}  // namespace

std::size_t place_on(const Elements& path, const std::string& element, PathHost host) {
    const ElementIdentity identity = identity_of_element(element, host);
    const auto found = std::find_if(path.begin(), path.end(), [&](const std::string& other) {
        return identity_of_element(other, host) == identity;
    });
    return static_cast<std::size_t>(found - path.begin());
}

Outcome give_path(ServerView& server, const Elements& wanted, const std::string& for_the_sake_of,
                  std::vector<Sentence>& remarks) {
    const PathHost host = host_of(server.place());
    const Elements before = server.font_path();
    if (!server.answers()) return Failure{for_the_sake_of, Reason::NO_X_SERVER};
    const auto set = [&](const Elements& path) { return static_cast<bool>(server.set_font_path(path)); };
    const session::Outcome put = session::put(wanted, before, host, set);
    if (!server.answers()) return Failure{for_the_sake_of, Reason::NO_X_SERVER};
    // An empty path is none: the server would take its own instead.
    if (put.path.empty()) return Failure{for_the_sake_of, Reason::REFUSED_BY_SERVER};
    if (!for_the_sake_of.empty() && !is_on(put.path, for_the_sake_of, host)) {
        (void)session::put(before, put.path, host, set);
        return Failure{for_the_sake_of, Reason::REFUSED_BY_SERVER};
    }
    for (const std::string& element : put.refused) remarks.push_back({Said::SERVER_DROPPED, {element}});
    return done();
}

std::optional<std::string> update(ServerView& server, const std::string& directory,
                                  const Elements& configured, std::vector<Sentence>& remarks) {
    const PathHost host = host_of(server.place());
    if (host != PathHost::THIS) return std::nullopt;
    const auto is_it = [&](const std::string& element) { return stands_for(element, directory); };
    const Elements path = server.font_path();
    if (const auto served = std::find_if(path.begin(), path.end(), is_it); served != path.end()) {
        if (!give_path(server, path, *served, remarks))
            remarks.push_back({Said::SERVER_STILL_REFUSES, {*served}});
        return std::nullopt;
    }
    const auto element = std::find_if(configured.begin(), configured.end(), is_it);
    if (element == configured.end()) return std::nullopt;
    Elements longer = path;
    longer.push_back(*element);
    if (give_path(server, longer, *element, remarks)) return *element;
    remarks.push_back({Said::SERVER_STILL_REFUSES, {*element}});
    return std::nullopt;
}

void look_again(ServerView& server, const std::optional<std::string>& added) {
    Elements path = server.font_path();
    if (added) {
        const std::size_t place = place_on(path, *added, host_of(server.place()));
        if (place < path.size()) path.erase(path.begin() + static_cast<std::ptrdiff_t>(place));
    }
    if (!path.empty()) (void)server.set_font_path(path);
}

}  // namespace gw::diagnosis
