// SPDX-License-Identifier: MIT
//
// What is in a font directory before and after a change that was interrupted.
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "support/temp_dir.h"

namespace gw::test {

/// The files below a directory, with their bytes.
using Files = std::map<std::string, std::string>;

inline Files files_in(const std::string& dir) {
    Files files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(dir)) {
        const std::string name = entry.path().lexically_relative(dir).string();
        if (name.find(".glyphward") != std::string::npos) continue;
        files[name] = entry.is_directory() ? "a directory" : TempDir::read_bytes(entry.path());
    }
    return files;
}

/// The metrics directory is no font, and the index of resources is made anew by whoever needs it. With
/// `forgives_index` an empty index that a step has made first is no difference.
inline Files significant(Files files, bool forgives_index = true) {
    std::erase_if(files, [forgives_index](const auto& file) {
        const auto& [name, bytes] = file;
        return (forgives_index && name == "fonts.dir" && bytes == "0\n") || name == "glyphwd.upr" ||
               name == "afm";
    });
    return files;
}

inline bool leaves_nothing_of_its_own(const std::string& dir) {
    bool nothing = !std::filesystem::exists(dir + "/.glyphward/journal");
    for (const char* ours : {"/.glyphward/new", "/.glyphward/old"})
        nothing = nothing && (!std::filesystem::exists(dir + ours) || std::filesystem::is_empty(dir + ours));
    return nothing;
}

}  // namespace gw::test
