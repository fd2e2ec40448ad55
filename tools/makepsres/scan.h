// SPDX-License-Identifier: MIT
//
// The files of a directory that an index is made from, found by their names alone.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "makepsres/notices.h"

namespace gw::psres {

inline constexpr std::string_view METRICS_EXTENSION = ".afm";

/// Whether the name is one of an outline file: ".pfa", ".pfb".
[[nodiscard]] bool is_outline_name(std::string_view name);
/// Whether the name is one of a metrics file: ".afm".
[[nodiscard]] bool is_metrics_name(std::string_view name);

enum class Depth {
    FONT_DIRECTORY,   ///< the directory, and metrics in its subdirectory "afm"
    WITH_EVERYTHING,  ///< all directories below it too, and resource files
};

struct FoundFiles {
    bool was_read = false;  ///< the directory itself could be listed
    /// Outline and metrics files, whole paths in the order of their bytes.
    std::vector<std::string> fonts;
    /// Resource files, likewise. Where a directory has "PSres.upr" that one comes first, whatever its bytes.
    std::vector<std::vector<std::string>> resource_files;
};

/// Lists `directory`, an absolute path. Links are followed, and no directory is listed twice: by way of a
/// link only when no other way leads to it. What cannot be listed, and names that no resource file can hold,
/// are left out with a notice.
[[nodiscard]] FoundFiles scan(const std::string& directory, Depth depth, Notices& notices);

/// `path` as an absolute path below `current`, without empty and "." parts. ".." stays: behind a link it
/// leads elsewhere.
[[nodiscard]] std::string absolute_path(std::string_view path, std::string_view current);

}  // namespace gw::psres
