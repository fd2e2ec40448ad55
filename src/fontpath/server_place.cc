// SPDX-License-Identifier: MIT
#include "fontpath/server_place.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <string_view>

#include "core/directory.h"
#include "core/text.h"
#include "fontfiles/index_text.h"
#include "fontpath/catalogue.h"
#include "fontpath/path_element.h"
#include "platform/directory_look.h"
#include "platform/host_paths.h"

namespace gw {

namespace {

/// The user that stands for all users whom this process cannot name (format: Linux user namespaces).
constexpr uid_t NOBODY_IN_PARTICULAR = 65534;

std::string process_file(pid_t process, const char* name) {
    return "/proc/" + std::to_string(process) + '/' + name;
}

/// The words behind "NAME:" in the status of a process.
std::vector<std::string> status_words(pid_t process, std::string_view name) {
    std::ifstream status(process_file(process, "status"));
    for (std::string line; std::getline(status, line);) {
        if (!line.starts_with(name) || !std::string_view(line).substr(name.size()).starts_with(':')) continue;
        std::istringstream words(line.substr(name.size() + 1));
        std::vector<std::string> found;
        for (std::string word; words >> word;) found.push_back(word);
        return found;
    }
    return {};
}

gid_t number_of(const std::string& word) {
    return static_cast<gid_t>(std::strtoul(word.c_str(), nullptr, 10));
}

// --- what the server can open, and nobody can see ----------------------------

struct Directories {
    std::vector<std::string> seen;
    bool lacks_one = false;
};

/// Whether the directory is an element, and not only behind a link of a catalogue: a server takes dead links.
bool is_element(const std::string& directory, const std::vector<std::string>& path) {
    return std::any_of(path.begin(), path.end(), [&](const std::string& element) {
        return !is_catalogue(element) && place_of_element(element) == directory;
    });
}

Directories directories_of(const std::vector<std::string>& path) {
    Directories found;
    const std::vector<std::string> all = font_directories(path);
    const std::vector<std::string> silent = silent_directories(all);
    for (const std::string& directory : all) {
        if (std::find(silent.begin(), silent.end(), directory) != silent.end()) continue;
        struct stat info = {};
        if (::stat(directory.c_str(), &info) == 0) {
            found.seen.push_back(directory);
        } else if (errno == ENOENT && is_element(directory, path)) {
            found.lacks_one = true;
        }
    }
    return found;
}

void add_names_in(const std::string& directory, std::set<std::string>& names) {
    const Result<ReadableFile> file = open_to_read(with_trailing_slash(directory) + FONT_INDEX_NAME);
    if (!file) return;
    const Result<std::string> text = read_open_file(file->fd.get(), directory);
    if (!text) return;
    for (const IndexEntry& entry : index_entries(*text)) names.insert(lower_case(entry.font_name));
}

/// Whether the name is of the shape that bitmap fonts have; others are made in all sizes, so that their names
/// are in no index.
bool names_a_whole_font(std::string_view name) {
    return std::count(name.begin(), name.end(), '-') == 14 && name.find("-0-") == std::string_view::npos;
}

}  // namespace

std::optional<Peer> peer_of(int socket) {
    sockaddr_storage address = {};
    socklen_t size = sizeof address;
    if (::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) return {};
    if (address.ss_family != AF_UNIX) return {};
    ucred who = {};
    size = sizeof who;
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &who, &size) != 0) return Peer();
    const bool is_known =
        who.uid != static_cast<uid_t>(-1) && (who.pid > 0 || who.uid != NOBODY_IN_PARTICULAR);
    return Peer{who.pid, is_known ? std::optional(who.uid) : std::nullopt};
}

std::vector<gid_t> groups_of(pid_t process) {
    constexpr std::size_t FILE_SYSTEM_GROUP = 3;  // behind the real, effective and saved one
    std::vector<gid_t> groups;
    if (process <= 0) return groups;
    const std::vector<std::string> primary = status_words(process, "Gid");
    if (primary.size() > FILE_SYSTEM_GROUP) groups.push_back(number_of(primary[FILE_SYSTEM_GROUP]));
    for (const std::string& word : status_words(process, "Groups")) groups.push_back(number_of(word));
    return groups;
}

PlaceOfProcess place_of(pid_t process) {
    struct stat ours = {};
    struct stat theirs = {};
    if (process <= 0 || ::stat("/", &ours) != 0) return {};
    if (::stat(process_file(process, "root/").c_str(), &theirs) == 0) {
        const bool is_same = ours.st_dev == theirs.st_dev && ours.st_ino == theirs.st_ino;
        return {is_same ? ServerPlace::HERE : ServerPlace::ELSEWHERE, true};
    }
    // Another user's process does not tell which file system it has. One in a container has a second number
    // there.
    const bool has_one_number = status_words(process, "NSpid").size() == 1;
    return {has_one_number ? ServerPlace::HERE : ServerPlace::UNKNOWN, false};
}

bool has_files_of_its_own(ServerView& server) {
    constexpr int MOST_NAMES = 65535;
    constexpr int MOST_OPENED = 3;
    const Directories directories = directories_of(server.font_path());
    if (!directories.lacks_one) return false;
    std::set<std::string> known;
    for (const std::string& directory : directories.seen) add_names_in(directory, known);
    int opened = 0;
    for (const std::string& name : server.names("*", MOST_NAMES)) {
        if (!names_a_whole_font(name) || known.contains(lower_case(name))) continue;
        if (server.open(name)) return true;
        if (++opened == MOST_OPENED) break;
    }
    return false;
}

}  // namespace gw
