// SPDX-License-Identifier: MIT
#include "fontpath/path_element.h"

#include <sys/stat.h>

#include <algorithm>
#include <functional>
#include <set>

#include "core/font_policy.h"
#include "core/text.h"
#include "fontpath/catalogue.h"
#include "platform/directory_look.h"

namespace gw {

namespace {

bool is_directory(std::string_view element) {
    return element.starts_with('/');
}

/// The names of the silent directories, without a slash at the end.
std::set<std::string, std::less<>>& silent_names() {
    static std::set<std::string, std::less<>> names;
    return names;
}

/// The directories behind the links of a catalogue, each once.
std::vector<std::string> linked_directories(const std::string& catalogue) {
    std::vector<std::string> directories;
    std::set<std::string> known;
    const Result<std::vector<CatalogueLink>> links = links_of_catalogue(catalogue);
    if (!links) return directories;
    for (const CatalogueLink& link : *links) {
        if (known.insert(link.directory).second) directories.push_back(link.directory);
    }
    return directories;
}

/// What is listed for an element.
// Kept: a directory with attributes is not listed. One that is on the path twice is listed twice.
std::vector<std::string> listed_directories(const std::string& element) {
    if (is_directory(element) && !font_policy().knows_path_attributes()) return {element};
    if (is_catalogue(element) && !font_policy().knows_catalogues()) return {};
    return font_directories(element);
}

std::vector<std::string> texts_of(const GW_LIST<GW_STRING>& path) {
    std::vector<std::string> texts;
    for (const GW_STRING* element : path) texts.emplace_back(element->get_str());
    return texts;
}

/// The catalogues of a path whose fonts are listed.
std::vector<std::string> listed_catalogues(const GW_LIST<GW_STRING>& path) {
    std::vector<std::string> places;
    if (!font_policy().knows_catalogues()) return places;
    for (const std::string& element : texts_of(path)) {
        if (is_catalogue(element)) places.push_back(place_of_element(element));
    }
    std::erase(places, "");
    return places;
}

/// A catalogue's directories that are not there count for nothing: its links are often made for packages that
/// are not installed.
bool is_dead_link(const std::string& element, const std::string& directory) {
    struct stat info = {};
    return is_catalogue(element) && (::stat(directory.c_str(), &info) != 0 || !S_ISDIR(info.st_mode));
}

}  // namespace

std::string directory_of_element(std::string_view element) {
    return std::string(element.substr(0, element.find(':')));
}

std::string place_of_element(std::string_view element) {
    std::string place =
        is_catalogue(element) ? directory_of_catalogue(element) : directory_of_element(element);
    return is_directory(place) ? place : "";
}

std::vector<std::string> font_directories(std::string_view element) {
    const std::string place = place_of_element(element);
    if (place.empty() || !is_catalogue(element))
        return place.empty() ? std::vector<std::string>() : std::vector<std::string>{place};
    return is_silent(place) ? std::vector<std::string>() : linked_directories(place);
}

std::vector<std::string> font_directories(const std::vector<std::string>& elements) {
    std::vector<std::string> catalogues;
    for (const std::string& element : elements) {
        std::string place = is_catalogue(element) ? place_of_element(element) : "";
        if (!place.empty() && !is_silent(place)) catalogues.push_back(std::move(place));
    }
    (void)find_silent(catalogues);
    std::vector<std::string> all;
    for (const std::string& element : elements) {
        for (std::string& directory : font_directories(element)) all.push_back(std::move(directory));
    }
    return all;
}

bool stands_for(std::string_view element, const std::string& directory) {
    const std::vector<std::string> directories = font_directories(element);
    return std::any_of(directories.begin(), directories.end(), [&](const std::string& one) {
        return identity_of_element(one) == identity_of_element(directory);
    });
}

ElementIdentity identity_of_element(std::string_view element, PathHost host) {
    const std::string directory = place_of_element(element);
    if (directory.empty()) return {0, 0, std::string(element)};
    const std::string attributes(is_catalogue(element) ? element.substr(0, element.size() - directory.size())
                                                       : element.substr(directory.size()));
    struct stat info = {};
    if (host == PathHost::THIS && !is_silent(directory) && ::stat(directory.c_str(), &info) == 0)
        return {info.st_dev, info.st_ino, attributes};
    const std::string text(without_trailing_slashes(directory));
    return {0, 0, is_catalogue(element) ? attributes + text : text + attributes};
}

std::vector<std::string> directories_to_list(const GW_LIST<GW_STRING>& path) {
    const bool lists_once = font_policy().knows_path_attributes();
    std::vector<std::string> directories;
    std::set<ElementIdentity> listed;
    for (const std::string& element : texts_of(path)) {
        for (std::string& directory : listed_directories(element)) {
            if (is_silent(directory) || is_dead_link(element, directory)) continue;
            if (lists_once && !listed.insert(identity_of_element(directory)).second) continue;
            directories.push_back(std::move(directory));
        }
    }
    return directories;
}

std::vector<std::string> find_silent(const std::vector<std::string>& directories) {
    std::vector<std::string> each_once;
    std::set<std::string_view> names;
    for (const std::string& directory : directories) {
        if (names.insert(without_trailing_slashes(directory)).second) each_once.push_back(directory);
    }
    std::vector<std::string> silent = silent_directories(each_once);
    for (const std::string& directory : each_once)
        silent_names().erase(std::string(without_trailing_slashes(directory)));
    for (const std::string& directory : silent) silent_names().emplace(without_trailing_slashes(directory));
    return silent;
}

// What is behind the links of a catalogue is asked when the catalogue itself has answered.
void find_newly_silent(const std::vector<std::string>& elements) {
    std::vector<std::string> directories = font_directories(elements);
    std::erase_if(directories, [](const std::string& directory) { return is_silent(directory); });
    (void)find_silent(directories);
}

std::vector<std::string> find_silent(const GW_LIST<GW_STRING>& path) {
    const std::vector<std::string> catalogues = listed_catalogues(path);
    std::vector<std::string> silent = find_silent(catalogues);
    std::vector<std::string> directories;
    for (const std::string& element : texts_of(path)) {
        for (std::string& directory : listed_directories(element))
            directories.push_back(std::move(directory));
    }
    for (std::string& directory : find_silent(directories)) silent.push_back(std::move(directory));
    return silent;
}

bool is_silent(std::string_view directory) {
    return silent_names().contains(without_trailing_slashes(directory));
}

}  // namespace gw
