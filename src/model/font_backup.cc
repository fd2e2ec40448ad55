// SPDX-License-Identifier: MIT
//
// The backup of the file NAME is a second link ".NAME.gwkept", or a copy where links are not possible.
#include "model/font_backup.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
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
        if (complete) complete = keep_file(spec->get_path());
        if (complete) complete = keep_directory(spec->get_dir());
    }
}

FontBackup::~FontBackup() {
    for (const std::string& path : files) ::unlink(kept_name(path).c_str());
}

Outcome FontBackup::keep_file(const std::string& path) {
    const std::string kept = kept_name(path);
    ::unlink(kept.c_str());
    if (::link(path.c_str(), kept.c_str()) == 0) {
        files.push_back(path);
        return done();
    }
    if (errno == ENOENT || errno == ENOTDIR) return done();  // the file does not exist
    const Result<std::string> bytes = read_file(path);
    if (!bytes) return bytes.failure().with(Sequel::FONT_NOT_REPLACED);
    if (const Outcome copied = replace_file(kept, *bytes); !copied)
        return Failure::of_system(path, copied.failure().error).with(Sequel::FONT_NOT_REPLACED);
    files.push_back(path);
    return done();
}

Outcome FontBackup::keep_directory(const std::string& dir) {
    const std::string path = dir + FONT_INDEX_NAME;
    const bool known =
        std::any_of(indexes.begin(), indexes.end(), [&](const Index& index) { return index.path == path; });
    if (known) return done();
    if (Result<std::string> bytes = read_file(path)) indexes.push_back({path, std::move(*bytes)});
    return keep_file(dir + UPR_FILE_NAME);
}

void FontBackup::restore() {
    for (const std::string& path : std::exchange(files, {})) {
        const std::string kept = kept_name(path);
        if (std::rename(kept.c_str(), path.c_str()) == 0) {
            ::unlink(kept.c_str());  // the file was never removed, so `rename` did nothing
            continue;
        }
        tell(Failure::of_system(path, errno).with(Sequel::KEPT_UNDER_ANOTHER_NAME, kept));
    }
    for (const Index& index : indexes) {
        const Result<std::string> now = read_file(index.path);
        if (now && *now == index.bytes) continue;
        tell_unless_done(replace_file(index.path, index.bytes).with(Sequel::ENTRY_LOST));
    }
}

}  // namespace gw
