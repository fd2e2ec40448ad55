// SPDX-License-Identifier: MIT
//
// What a diagnosis knows besides the server: the configured font path, and where fonts may lie that no path
// has.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace gw::diagnosis {

struct Surroundings {
    /// The effective font path of the configuration, as composed, in its order.
    std::vector<std::string> configured;
    /// Directories that may have fonts which no path has: those below the system's font directories, those of
    /// the user. Looked at only when a font is missing.
    std::vector<std::string> other_directories;
    uid_t user = 0;         ///< effective user of this process
    std::string home;       ///< the user's home directory; "" where there is none
    std::string own_fonts;  ///< the directory for the user's own fonts and aliases, ending in "/"
    std::string locale;     ///< `LC_CTYPE`, "de_DE.UTF-8"
};

}  // namespace gw::diagnosis
