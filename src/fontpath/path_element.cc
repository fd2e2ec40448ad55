// SPDX-License-Identifier: MIT
#include "fontpath/path_element.h"

#include <sys/stat.h>

#include <set>

#include "core/font_policy.h"
#include "core/text.h"

namespace gw {

namespace {

bool is_directory(std::string_view element) {
    return element.starts_with('/');
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
    if (host == PathHost::THIS && ::stat(directory.c_str(), &info) == 0)
        return {info.st_dev, info.st_ino, attributes};
    return {0, 0, std::string(without_trailing_slashes(directory)).append(attributes)};
}

std::vector<std::string> directories_to_list(const GW_LIST<GW_STRING>& path) {
    const bool knows_attributes = font_policy().knows_path_attributes();
    std::vector<std::string> directories;
    std::set<ElementIdentity> listed;
    for (const GW_STRING* element : path) {
        std::string directory = element->get_str();
        if (!is_directory(directory)) continue;
        // Kept: a directory with attributes is not listed. One that is on the path twice is listed twice.
        if (knows_attributes) {
            directory = directory_of_element(directory);
            if (!listed.insert(identity_of_element(directory)).second) continue;
        }
        directories.push_back(std::move(directory));
    }
    return directories;
}

}  // namespace gw
