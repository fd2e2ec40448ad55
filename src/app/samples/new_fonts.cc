// SPDX-License-Identifier: MIT
#include "app/samples/new_fonts.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "app/program/program_objects.h"
#include "app/program/window_policy.h"
#include "app/samples/installed_list.h"
#include "core/text.h"
#include "fontpath/path_element.h"

namespace gw {

namespace {

/// A font's name and its directory.
using FontPlace = std::pair<std::string, std::string>;

struct Listed {
    std::set<FontPlace> fonts;
    std::set<std::string> dirs;  ///< the font path
};

Listed& listed_before() {
    static Listed listed;
    return listed;
}

FontPlace place_of(GWFont& font) {
    const char* dir = font.get_dir_name();
    return {font.get_xlfd_name(), with_trailing_slash(dir != nullptr ? dir : "")};
}

std::set<FontPlace> places_of(const GWHRNElement& element) {
    std::set<FontPlace> places;
    for (const GWHRNElement::PointSize& size : element.get_slots()) {
        for (const Ref<GWFont>& font : size.fonts) places.insert(place_of(*font));
    }
    return places;
}

std::set<std::string> directories_on_path() {
    unsigned count = 0;
    std::set<std::string> dirs;
    for (const GW_STRING* element : *the_font_path->get_fpe_list(GWFontPath::ALL_FP, count))
        dirs.insert(with_trailing_slash(directory_of_element(element->get_str())));
    return dirs;
}

std::set<FontPlace> places_in(const FontReport& report) {
    std::set<FontPlace> places;
    for (const FontReport::Done& done : report.done()) places.insert({done.xlfd, done.dir});
    return places;
}

/// The positions of what was installed, and of what has come into the list in this directory.
std::vector<int> new_positions(const std::set<FontPlace>& installed, const std::string& dir) {
    const std::set<FontPlace>& before = listed_before().fonts;
    std::vector<int> positions;
    int position = 0;
    for (const GWHRNElement* element : the_installed_hrn_list) {
        ++position;
        const std::set<FontPlace> places = places_of(*element);
        const bool is_new = std::any_of(places.begin(), places.end(), [&](const FontPlace& place) {
            return installed.contains(place) || (place.second == dir && !before.contains(place));
        });
        if (is_new) positions.push_back(position);
    }
    return positions;
}

}  // namespace

void note_listed_fonts() {
    if (!window_policy().shows_what_is_new()) return;
    Listed& listed = listed_before();
    listed = {{}, directories_on_path()};
    for (const GWHRNElement* element : the_installed_hrn_list) listed.fonts.merge(places_of(*element));
}

void show_new_fonts(const FontReport& report, const std::string& dir) {
    if (!window_policy().shows_what_is_new()) return;
    const std::string element = with_trailing_slash(dir);
    // Conflicts refer to what is in the lists.
    if (the_conflict_list.is_empty() && directories_on_path().contains(element) &&
        !listed_before().dirs.contains(element)) {
        fill_program_lists();
        update_wi_installed_hrn_list();
    }
    select_in_installed_list(new_positions(places_in(report), element));
}

}  // namespace gw
