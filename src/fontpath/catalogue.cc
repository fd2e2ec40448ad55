// SPDX-License-Identifier: MIT
#include "fontpath/catalogue.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <optional>

#include "core/directory.h"
#include "core/text.h"

namespace gw {

namespace {

constexpr std::string_view CATALOGUE = "catalogue:";
constexpr int LAST_PRIORITY = std::numeric_limits<int>::max();  // of a link that names none

int priority_in(std::string_view attributes) {
    constexpr std::string_view PRIORITY = "pri=";
    const std::size_t at = attributes.find(PRIORITY);
    if (at == std::string_view::npos) return LAST_PRIORITY;
    return std::atoi(std::string(attributes.substr(at + PRIORITY.size())).c_str());
}

std::optional<std::string> target_of(int home, const std::string& name) {
    std::array<char, PATH_MAX> target = {};
    const ssize_t size = ::readlinkat(home, name.c_str(), target.data(), target.size());
    if (size <= 0 || static_cast<std::size_t>(size) == target.size()) return std::nullopt;
    return std::string(target.data(), static_cast<std::size_t>(size));
}

/// The path of a target, without the steps up with which a relative one begins.
std::string absolute(const std::filesystem::path& home, std::string_view target) {
    if (target.starts_with('/')) return std::string(target);
    std::filesystem::path base = home;
    while (target == ".." || target.starts_with("../") || target.starts_with("./")) {
        if (target.starts_with("..")) base = base.parent_path();
        target.remove_prefix(std::min(target.find('/'), target.size() - 1) + 1);
    }
    return with_trailing_slash(base.string()).append(target);
}

}  // namespace

bool is_catalogue(std::string_view element) {
    return element.starts_with(CATALOGUE);
}

std::string directory_of_catalogue(std::string_view element) {
    return is_catalogue(element) ? std::string(element.substr(CATALOGUE.size())) : "";
}

Result<std::vector<CatalogueLink>> links_of_catalogue(const std::string& directory) {
    const Descriptor home(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC));
    if (!home.is_open()) return Failure::of_system(directory, errno);
    std::error_code gone;
    const std::filesystem::path real = std::filesystem::canonical(directory, gone);
    if (gone) return Failure::of_system(directory, gone.value());
    std::vector<CatalogueLink> links;
    for (const std::string& name : names_in(home.get())) {
        const std::optional<std::string> target = target_of(home.get(), name);
        if (!target) continue;
        // The server puts the attributes of the name behind the target, and looks for the first colon then.
        const std::size_t colon = std::min(name.find(':'), name.size());
        const std::string path = absolute(real, *target);
        const std::size_t end = std::min(path.find(':'), path.size());
        links.push_back({name, *target, path.substr(0, end), path.substr(end) + name.substr(colon),
                         priority_in(name.substr(colon)), links.size()});
    }
    // Of equal priorities the directory's own order is that of the server.
    std::stable_sort(links.begin(), links.end(), [](const CatalogueLink& one, const CatalogueLink& other) {
        return one.priority < other.priority;
    });
    return links;
}

}  // namespace gw
