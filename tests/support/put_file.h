// SPDX-License-Identifier: MIT
//
// Files and fonts that come into a directory with a change of it.
#pragma once

#include <string>
#include <string_view>

#include "core/failure.h"
#include "store/directory_change.h"

namespace gw::test {

/// Puts a file with these bytes into the directory.
inline Outcome put_file(DirectoryChange& change, const std::string& name, std::string_view bytes) {
    Result<DirectoryChange::StagedFile> file = change.stage(name);
    if (!file) return file.failure();
    file->write(bytes);
    if (Outcome finished = file->finish(); !finished) return finished;
    return change.put(*file);
}

/// Puts such a file there and enters its line into the index.
inline Outcome put_font(DirectoryChange& change, const std::string& name, std::string_view bytes,
                        const std::string& font_name) {
    if (Outcome put = put_file(change, name, bytes); !put) return put;
    change.enter(name + ' ' + font_name + '\n');
    return done();
}

/// Such a font comes, as a change of its own.
inline Outcome bring_font(const std::string& dir, const std::string& name, std::string_view bytes,
                          const std::string& font_name) {
    const auto change = DirectoryChange::begin(dir);
    if (!change) return change.failure();
    if (Outcome put = put_font(**change, name, bytes, font_name); !put) return put;
    return (*change)->commit();
}

}  // namespace gw::test
