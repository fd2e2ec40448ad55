// SPDX-License-Identifier: MIT
#include "diagnosis/server_rights.h"

#include <algorithm>
#include <set>

#include "core/access_list.h"
#include "core/directory.h"
#include "core/rights.h"
#include "core/text.h"
#include "fontfiles/index_text.h"
#include "fontfiles/server_index.h"
#include "platform/host_paths.h"

namespace gw::diagnosis {

namespace {

constexpr unsigned FOR_OWNER = 6;  // shifts of the bits for others
constexpr unsigned FOR_GROUP = 3;

mode_t needed_of(const struct stat& info) {
    return S_ISDIR(info.st_mode) ? S_IXOTH : S_IROTH;
}

/// Without a user no entry of a list can be known to be about the server.
ListVerdict list_verdict(const std::string& path, const struct stat& info, const ServerUser& server) {
    if (!server.user || is_superuser(*server.user) || S_ISLNK(info.st_mode)) return ListVerdict::NO_LIST;
    return access_by_list(path, info, *server.user, server.groups, needed_of(info));
}

}  // namespace

mode_t missing_rights(const std::string& path, const struct stat& info, const ServerUser& server) {
    if (server.user && is_superuser(*server.user)) return 0;
    mode_t needed = needed_of(info);
    const ListVerdict verdict = list_verdict(path, info, server);
    if (verdict == ListVerdict::GRANTED) return 0;
    if (verdict == ListVerdict::REFUSED_BY_NAME) return needed;
    if (server.user && *server.user == info.st_uid) {
        needed <<= FOR_OWNER;
    } else if (std::find(server.groups.begin(), server.groups.end(), info.st_gid) != server.groups.end()) {
        needed <<= FOR_GROUP;
    }
    return needed & ~info.st_mode;
}

bool is_kept_out_by_list(const std::string& path, const ServerUser& server) {
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0 &&
           list_verdict(path, info, server) == ListVerdict::REFUSED_BY_NAME;
}

bool goes_back(std::string_view path) {
    for (std::size_t start = 0; start <= path.size();) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        if (path.substr(start, end - start) == "..") return true;
        start = end + 1;
    }
    return false;
}

Rights missing_rights(const std::vector<std::string>& paths, const ServerUser& server) {
    Rights rights;
    for (const std::string& path : paths) {
        struct stat info = {};
        if (goes_back(path) || ::lstat(path.c_str(), &info) != 0) continue;
        if (list_verdict(path, info, server) == ListVerdict::REFUSED_BY_NAME) return {};
        if (const mode_t bits = missing_rights(path, info, server); bits != 0)
            rights.emplace_back(path, bits);
    }
    return rights;
}

std::vector<std::string> needed_for(const std::string& directory) {
    const std::string path(without_trailing_slashes(directory));
    std::vector<std::string> needed;
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos; slash = path.find('/', slash + 1))
        needed.push_back(path.substr(0, slash));
    needed.push_back(path);
    const std::string inside = path + '/';
    for (const char* name : {FONT_INDEX_NAME, ALIAS_FILE_NAME}) needed.push_back(inside + name);
    const Result<Directory> dir = Directory::open(path);
    const Result<std::string> index = dir ? dir->read(FONT_INDEX_NAME) : Result<std::string>(dir.failure());
    if (!index) return needed;
    std::set<std::string, std::less<>> named;
    for (const IndexEntry& entry : index_entries(*index)) {
        const std::string name(indexed_file(entry.file_name).name);
        if (renderer_of(name) != FontRenderer::NONE && named.insert(name).second)
            needed.push_back(inside + name);
    }
    return needed;
}

}  // namespace gw::diagnosis
