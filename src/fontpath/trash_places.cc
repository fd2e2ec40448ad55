// SPDX-License-Identifier: MIT
#include "fontpath/trash_places.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <set>
#include <utility>

#include "core/replace_file.h"
#include "core/rights.h"
#include "core/text.h"
#include "fontpath/path_element.h"
#include "platform/directory_look.h"
#include "platform/host_paths.h"
#include "store/file_turn.h"

namespace gw {

namespace {

constexpr mode_t OWNERS = 0600;

/// The file with the user's list; nothing without a home directory. The superuser's is not in a home
/// directory: that may be another user's.
std::optional<std::string> list_path() {
    if (runs_as_superuser()) return SUPERUSER_TRASH_LIST;
    const char* home = std::getenv("HOME");
    if (home == nullptr || *home != '/') return std::nullopt;
    return std::string(without_trailing_slashes(home)) + USER_TRASH_LIST;
}

bool can_be_listed(std::string_view dir) {
    return dir.starts_with('/') && dir.find('\n') == std::string_view::npos;
}

std::vector<std::string> listed_in(const std::string& path) {
    std::vector<std::string> dirs;
    const Result<std::string> text = read_file(path);
    if (!text) return dirs;
    for (const std::string_view line : lines_of(*text)) {
        if (can_be_listed(line) && dirs.size() < MOST_TRASH_PLACES) dirs.emplace_back(line);
    }
    return dirs;
}

std::vector<std::string> default_destinations() {
    std::vector<std::string> dirs = {SUPERUSER_FONT_DIR};
    const char* home = std::getenv("HOME");
    if (home != nullptr && !runs_as_superuser())
        dirs.push_back(std::string(without_trailing_slashes(home)) + DEFAULT_INSTALL_DIR);
    return dirs;
}

}  // namespace

std::vector<std::string> trash_places(const std::vector<std::string>& font_path) {
    std::vector<std::string> all = font_directories(font_path);
    for (const std::string& dir : default_destinations()) all.push_back(dir);
    for (const std::string& dir : remembered_trash_places()) all.push_back(dir);
    for (std::string& dir : all) dir = with_trailing_slash(dir);
    const std::vector<std::string> silent = silent_directories(all);
    std::vector<std::string> places;
    std::set<std::pair<dev_t, ino_t>> known;
    for (const std::string& dir : all) {
        struct stat info = {};
        if (std::find(silent.begin(), silent.end(), dir) != silent.end()) continue;
        if (::stat(dir.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) continue;
        if (known.emplace(info.st_dev, info.st_ino).second) places.push_back(dir);
    }
    return places;
}

Outcome remember_trash_place(const std::string& dir) {
    const std::optional<std::string> path = list_path();
    if (!path || !can_be_listed(dir)) return done();
    const Result<FileTurn> turn = take_turn_at(*path);
    if (!turn) return turn.failure();
    std::vector<std::string> dirs = listed_in(*path);
    if (std::find(dirs.begin(), dirs.end(), dir) != dirs.end()) return done();
    if (dirs.size() == MOST_TRASH_PLACES) dirs.erase(dirs.begin());
    dirs.push_back(dir);
    std::string text;
    for (const std::string& each : dirs) text += each + '\n';
    return replace_file(*path, text, OWNERS);
}

std::vector<std::string> remembered_trash_places() {
    const std::optional<std::string> path = list_path();
    return path ? listed_in(*path) : std::vector<std::string>();
}

}  // namespace gw
