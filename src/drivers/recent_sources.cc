// SPDX-License-Identifier: MIT
#include "drivers/recent_sources.h"

#include <sys/types.h>

#include <cstdlib>
#include <optional>

#include "core/replace_file.h"
#include "core/rights.h"
#include "core/text.h"
#include "core/uri_list.h"
#include "platform/host_paths.h"

namespace gw {

namespace {

constexpr mode_t OWNERS = 0600;

/// Nothing without a home directory. The superuser's file is not in a home directory: that may be another
/// user's.
std::optional<std::string> file_path() {
    if (runs_as_superuser()) return SUPERUSER_RECENT_SOURCES;
    const char* home = std::getenv("HOME");
    if (home == nullptr || *home != '/') return std::nullopt;
    return std::string(without_trailing_slashes(home)) + USER_RECENT_SOURCES;
}

}  // namespace

std::vector<std::string> recent_sources() {
    const std::optional<std::string> path = file_path();
    const Result<std::string> text = path ? read_file(*path) : Result<std::string>(std::string());
    std::vector<std::string> dirs;
    if (!text) return dirs;
    for (const std::string& dir : read_uri_list(*text, "").paths) {
        if (dirs.size() < MOST_RECENT_SOURCES) dirs.push_back(dir);
    }
    return dirs;
}

Outcome remember_recent_source(const std::string& dir) {
    const std::optional<std::string> path = file_path();
    if (!path) return done();
    std::vector<std::string> dirs = recent_sources();
    const std::string name(without_trailing_slashes(dir));
    if (!dirs.empty() && dirs.front() == name) return done();
    std::erase(dirs, name);
    dirs.insert(dirs.begin(), name);
    if (dirs.size() > MOST_RECENT_SOURCES) dirs.resize(MOST_RECENT_SOURCES);
    std::string text;
    for (const std::string& each : dirs) text += uri_of_path(each) + '\n';
    return replace_file(*path, text, OWNERS);
}

}  // namespace gw
