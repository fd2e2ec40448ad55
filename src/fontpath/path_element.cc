// SPDX-License-Identifier: MIT
#include "fontpath/path_element.h"

#include <sys/stat.h>

#include <functional>
#include <set>

#include "core/font_policy.h"
#include "core/text.h"
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

/// What is listed for an element that is a directory.
// Kept: a directory with attributes is not listed. One that is on the path twice is listed twice.
std::string listed_directory(const std::string& element) {
    return font_policy().knows_path_attributes() ? directory_of_element(element) : element;
}

std::vector<std::string> named_directories(const GW_LIST<GW_STRING>& path) {
    std::vector<std::string> directories;
    for (const GW_STRING* element : path) {
        if (is_directory(element->get_str())) directories.push_back(listed_directory(element->get_str()));
    }
    return directories;
}

}  // namespace

std::string directory_of_element(std::string_view element) {
    return std::string(element.substr(0, element.find(':')));
}

ElementIdentity identity_of_element(std::string_view element, PathHost host) {
    if (!is_directory(element)) return {0, 0, std::string(element)};
    const std::string directory = directory_of_element(element);
    const std::string attributes(element.substr(directory.size()));
    struct stat info = {};
    if (host == PathHost::THIS && !is_silent(directory) && ::stat(directory.c_str(), &info) == 0)
        return {info.st_dev, info.st_ino, attributes};
    return {0, 0, std::string(without_trailing_slashes(directory)).append(attributes)};
}

std::vector<std::string> directories_to_list(const GW_LIST<GW_STRING>& path) {
    const bool lists_once = font_policy().knows_path_attributes();
    std::vector<std::string> directories;
    std::set<ElementIdentity> listed;
    for (std::string& directory : named_directories(path)) {
        if (is_silent(directory)) continue;
        if (lists_once && !listed.insert(identity_of_element(directory)).second) continue;
        directories.push_back(std::move(directory));
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
    silent_names().clear();
    for (const std::string& directory : silent) silent_names().emplace(without_trailing_slashes(directory));
    return silent;
}

std::vector<std::string> find_silent(const GW_LIST<GW_STRING>& path) {
    return find_silent(named_directories(path));
}

bool is_silent(std::string_view directory) {
    return silent_names().contains(without_trailing_slashes(directory));
}

}  // namespace gw
