// SPDX-License-Identifier: MIT
#include "makepsres/scan.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "core/directory.h"
#include "makepsres/resource_file.h"

namespace gw::psres {

namespace {

constexpr std::string_view RESOURCE_EXTENSION = ".upr";
constexpr std::string_view PRINCIPAL_FILE = "PSres.upr";
constexpr std::string_view METRICS_DIRECTORY = "afm";

struct DirCloser {
    void operator()(DIR* dir) const { ::closedir(dir); }
};

enum class Kind { FILE, DIRECTORY, LINK_TO_DIRECTORY };

struct Name {
    std::string name;
    Kind kind;
};

bool is_directory(const std::string& path) {
    struct stat info = {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

/// What kind of file the entry is; `stat` is called only when the directory entry does not tell.
Kind kind_of(const std::string& path, unsigned char type) {
    if (type == DT_DIR) return Kind::DIRECTORY;
    if (type != DT_LNK && type != DT_UNKNOWN) return Kind::FILE;
    if (!is_directory(path)) return Kind::FILE;
    struct stat info = {};
    const bool is_link = ::lstat(path.c_str(), &info) == 0 && S_ISLNK(info.st_mode);
    return is_link ? Kind::LINK_TO_DIRECTORY : Kind::DIRECTORY;
}

std::string below(const std::string& directory, std::string_view name) {
    std::string path = directory;
    if (!path.ends_with('/')) path += '/';
    return path += name;
}

std::string_view name_of(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

/// The sorted names of a directory; no value, with `errno` set, when it cannot be listed.
std::optional<std::vector<Name>> names_in(const std::string& path) {
    const std::unique_ptr<DIR, DirCloser> dir(::opendir(path.c_str()));
    if (!dir) return std::nullopt;
    std::vector<Name> names;
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(dir.get());
        if (entry == nullptr) break;
        const std::string_view name(entry->d_name);
        if (name == "." || name == "..") continue;
        names.push_back({std::string(name), kind_of(below(path, name), entry->d_type)});
    }
    if (errno != 0) return std::nullopt;
    std::sort(names.begin(), names.end(), [](const Name& a, const Name& b) { return a.name < b.name; });
    return names;
}

class Scan {
  public:
    Scan(Depth how_deep, Notices& where) : depth(how_deep), notices(where) {}

    FoundFiles run(const std::string& directory) {
        if (!can_be_written(directory)) {
            notices.failed(directory, "a resource file cannot hold this name");
            return {};
        }
        found.was_read = is_new(directory) && list(directory);
        if (!found.was_read) notices.skipped(directory, std::strerror(errno));
        at_top = false;
        while (!directories.empty() || !links.empty()) {
            auto& next = directories.empty() ? links : directories;
            const std::string path = next.extract(next.begin()).value();
            if (is_new(path) && !list(path)) notices.skipped(path, std::strerror(errno));
        }
        std::sort(found.fonts.begin(), found.fonts.end());
        std::sort(found.resource_files.begin(), found.resource_files.end());
        return std::move(found);
    }

  private:
    /// Whether this is the first visit to the directory.
    bool is_new(const std::string& path) {
        struct stat info = {};
        return ::stat(path.c_str(), &info) != 0 || seen.insert({info.st_dev, info.st_ino}).second;
    }

    bool list(const std::string& directory) {
        const auto names = names_in(directory);
        if (!names) return false;
        std::vector<std::string> resource_files;
        for (const Name& entry : *names) {
            const std::string path = below(directory, entry.name);
            if (!is_wanted(entry)) continue;
            if (!can_be_written(entry.name)) {
                notices.skipped(path, "a resource file cannot hold this name; left out");
            } else if (entry.kind != Kind::FILE) {
                enter(path, entry.kind);
            } else if (entry.name.ends_with(RESOURCE_EXTENSION)) {
                const bool is_first = entry.name == PRINCIPAL_FILE;
                resource_files.insert(is_first ? resource_files.begin() : resource_files.end(), path);
            } else {
                found.fonts.push_back(path);
            }
        }
        if (!resource_files.empty()) found.resource_files.push_back(std::move(resource_files));
        return true;
    }

    [[nodiscard]] bool is_wanted(const Name& entry) const {
        const bool fonts_only = depth == Depth::FONT_DIRECTORY;
        if (fonts_only && !at_top) return is_metrics_name(entry.name);
        if (is_outline_name(entry.name) || is_metrics_name(entry.name)) return true;
        if (entry.name == OWN_DIRECTORY_NAME) return false;
        if (entry.kind != Kind::FILE) return !fonts_only || entry.name == METRICS_DIRECTORY;
        return !fonts_only && entry.name.ends_with(RESOURCE_EXTENSION);
    }

    void enter(const std::string& path, Kind kind) {
        if (is_outline_name(path) || is_metrics_name(path))
            notices.skipped(path, "this is a directory, no font");
        if (depth == Depth::FONT_DIRECTORY && name_of(path) != METRICS_DIRECTORY) return;
        (kind == Kind::DIRECTORY ? directories : links).insert(path);
    }

    Depth depth;
    Notices& notices;
    FoundFiles found;
    bool at_top = true;  ///< it is the directory itself that is listed
    std::set<std::pair<dev_t, ino_t>> seen;
    // Directories still to be listed. Links come last, so that a directory is reached by its own path if
    // there is one.
    std::set<std::string> directories;
    std::set<std::string> links;
};

}  // namespace

bool is_outline_name(std::string_view name) {
    return name.ends_with(".pfa") || name.ends_with(".pfb");
}

bool is_metrics_name(std::string_view name) {
    return name.ends_with(METRICS_EXTENSION);
}

FoundFiles scan(const std::string& directory, Depth depth, Notices& notices) {
    return Scan(depth, notices).run(directory);
}

std::string absolute_path(std::string_view path, std::string_view current) {
    std::string whole;
    const std::string given =
        path.starts_with('/') ? std::string(path) : std::string(current) + '/' + std::string(path);
    for (std::string_view rest = given; !rest.empty();) {
        const std::string_view part = rest.substr(0, rest.find('/'));
        rest.remove_prefix(std::min(part.size() + 1, rest.size()));
        if (!part.empty() && part != ".") (whole += '/') += part;
    }
    return whole.empty() ? "/" : whole;
}

}  // namespace gw::psres
