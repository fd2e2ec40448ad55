// SPDX-License-Identifier: MIT
//
// The file at PATH is kept as a second link ".NAME.gwkept", or as a copy where links are not to be had.
#include "model/font_backup.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <utility>

#include "core/new_file.h"
#include "core/replace_file.h"
#include "platform/host_paths.h"

namespace gw {

namespace {

std::string kept_name(const std::string& path) {
    return hidden_name(path, ".gwkept");
}

}  // namespace

FontBackup::FontBackup(const GWFont& font) {
    if (font.get_font_file_list() == nullptr) return;
    for (const GW_FILE_SPEC* spec : *font.get_font_file_list()) {
        complete = complete && keep_file(spec->get_path()) && keep_directory(spec->get_dir());
    }
}

FontBackup::~FontBackup() {
    for (const std::string& path : files) ::unlink(kept_name(path).c_str());
}

bool FontBackup::keep_file(const std::string& path) {
    const std::string kept = kept_name(path);
    ::unlink(kept.c_str());
    if (::link(path.c_str(), kept.c_str()) == 0) {
        files.push_back(path);
        return true;
    }
    if (errno == ENOENT || errno == ENOTDIR) return true;  // there is nothing to keep
    const std::optional<std::string> bytes = read_file(path);
    if (bytes && replace_file(kept, *bytes)) {
        files.push_back(path);
        return true;
    }
    std::fprintf(stderr, "glyphward: %s: %s; the font is not replaced\n", path.c_str(), std::strerror(errno));
    return false;
}

bool FontBackup::keep_directory(const std::string& dir) {
    const std::string path = dir + FONT_INDEX_NAME;
    const bool known =
        std::any_of(indexes.begin(), indexes.end(), [&](const Index& index) { return index.path == path; });
    if (known) return true;
    if (std::optional<std::string> bytes = read_file(path)) indexes.push_back({path, std::move(*bytes)});
    return keep_file(dir + UPR_FILE_NAME);
}

void FontBackup::restore() {
    for (const std::string& path : std::exchange(files, {})) {
        if (std::rename(kept_name(path).c_str(), path.c_str()) == 0) {
            ::unlink(kept_name(path).c_str());  // a link to what had never gone
            continue;
        }
        std::fprintf(stderr, "glyphward: %s: %s; it is now called %s\n", path.c_str(), std::strerror(errno),
                     kept_name(path).c_str());
    }
    for (const Index& index : indexes) {
        if (read_file(index.path) == index.bytes || replace_file(index.path, index.bytes)) continue;
        std::fprintf(stderr, "glyphward: %s: the entry of a font that stays cannot be put back\n",
                     index.path.c_str());
    }
}

}  // namespace gw
