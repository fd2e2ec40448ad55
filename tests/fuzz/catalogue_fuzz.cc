// SPDX-License-Identifier: MIT
//
// A catalogue: the names of its links, and where they lead. The first line of an input is an element of a
// font path, each further one the name of a link, a tab and its target. Nothing behind a link is looked at.
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <map>
#include <set>

#include "core/text.h"
#include "fontpath/catalogue.h"
#include "fontpath/path_element.h"
#include "fuzz.h"

namespace {

using Links = std::map<std::string, std::string>;  // what they lead to, by their names

constexpr std::size_t MOST_LINKS = 50;

/// An empty directory.
std::string new_catalogue() {
    const std::string path = gw::fuzz::directory().file("catalogue");
    std::filesystem::remove_all(path);
    std::filesystem::create_directory(path);
    return path;
}

/// The links of these lines that a directory can have.
Links make_links(const std::string& catalogue, std::string_view lines) {
    Links links;
    while (!lines.empty() && links.size() < MOST_LINKS) {
        const std::string_view line = gw::fuzz::take_line(lines);
        const std::size_t tab = line.find('\t');
        if (tab == std::string_view::npos) continue;
        const std::string name(gw::fuzz::before_nul(line.substr(0, tab)));
        const std::string target(gw::fuzz::before_nul(line.substr(tab + 1)));
        if (name.find('/') != std::string::npos) continue;
        if (::symlink(target.c_str(), (catalogue + '/' + name).c_str()) == 0) links[name] = target;
    }
    return links;
}

void check_link(const gw::CatalogueLink& link, const Links& made, std::string_view input) {
    const auto known = made.find(link.name);
    GW_MUST_HOLD(known != made.end() && known->second == link.target, input);
    GW_MUST_HOLD(link.directory.starts_with('/'), input);
    GW_MUST_HOLD(link.directory.find(':') == std::string::npos, input);
    GW_MUST_HOLD(link.attributes.empty() || link.attributes.starts_with(':'), input);
    const std::size_t colon = std::min(link.name.find(':'), link.name.size());
    GW_MUST_HOLD(link.attributes.ends_with(link.name.substr(colon)), input);
    if (link.target.starts_with('/'))
        GW_MUST_HOLD(link.directory + link.attributes == link.target + link.name.substr(colon), input);
    GW_MUST_HOLD(gw::directory_of_element(link.directory + link.attributes) == link.directory, input);
}

void check_element(const std::string& element, std::string_view input) {
    const std::string directory = gw::directory_of_catalogue(element);
    GW_MUST_HOLD(gw::is_catalogue(element) ? "catalogue:" + directory == element : directory.empty(), input);
    const std::string place = gw::place_of_element(element);
    GW_MUST_HOLD(place.empty() || place.starts_with('/'), input);
    if (gw::is_catalogue(element) && !place.empty()) GW_MUST_HOLD(place == directory, input);
    GW_MUST_HOLD(gw::identity_of_element(element) == gw::identity_of_element(element), input);
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    std::string_view rest = input;
    check_element(std::string(before_nul(take_line(rest))), input);
    const std::string catalogue = new_catalogue();
    const Links made = make_links(catalogue, rest);
    const Result<std::vector<CatalogueLink>> links = links_of_catalogue(catalogue);
    GW_MUST_HOLD(links && links->size() == made.size(), input);
    std::set<std::size_t> places;
    int priority = INT_MIN;
    std::size_t place = 0;
    for (const CatalogueLink& link : *links) {
        check_link(link, made, input);
        GW_MUST_HOLD(places.insert(link.place).second && link.place < made.size(), input);
        GW_MUST_HOLD(link.priority >= priority, input);
        GW_MUST_HOLD(link.priority > priority || places.size() == 1 || link.place > place, input);
        priority = link.priority;
        place = link.place;
    }
}
