// SPDX-License-Identifier: MIT
//
// Finds the files of a directory that belong in an index, by their names alone.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "makepsres/notices.h"

namespace gw::psres {

inline constexpr std::string_view METRICS_EXTENSION = ".afm";

/// Whether the name is that of an outline file (".pfa", ".pfb").
[[nodiscard]] bool is_outline_name(std::string_view name);
/// Whether the name is that of a metrics file (".afm").
[[nodiscard]] bool is_metrics_name(std::string_view name);

enum class Depth {
    FONT_DIRECTORY,   ///< the directory, and metrics in its subdirectory "afm"
    WITH_EVERYTHING,  ///< all directories below it too, and resource files
};

struct FoundFiles {
    bool was_read = false;  ///< the directory itself could be listed
    /// Outline and metrics files: absolute paths, sorted by their bytes.
    std::vector<std::string> fonts;
    /// The resource files of each directory, sorted the same way, but "PSres.upr" always comes first.
    std::vector<std::vector<std::string>> resource_files;
};

/// Lists `directory`, an absolute path. Links are followed, and no directory is listed twice; it is listed
/// through a link only when there is no other path to it. Directories that cannot be listed, and names that a
/// resource file cannot hold, are left out with a notice.
[[nodiscard]] FoundFiles scan(const std::string& directory, Depth depth, Notices& notices);

/// `path` as an absolute path; a relative one is below `current`. Empty and "." parts are removed. ".."
/// stays, because after a link it leads to another directory.
[[nodiscard]] std::string absolute_path(std::string_view path, std::string_view current);

}  // namespace gw::psres
