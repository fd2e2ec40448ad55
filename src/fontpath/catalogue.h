// SPDX-License-Identifier: MIT
//
// Catalogues: elements of a font path ("catalogue:/etc/X11/fontpath.d") that are directories of links to font
// directories. An X server takes the attributes of each from the name of its link ("misc:unscaled:pri=10"),
// and searches them by their priorities. The rules here are those of libXfont2, compared with the server.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "core/failure.h"

namespace gw {

/// Whether the element begins as a catalogue does.
[[nodiscard]] bool is_catalogue(std::string_view element);

/// What stands behind "catalogue:", to its end: a catalogue has no attributes. Should be an absolute path;
/// the server takes a relative one from its own working directory.
[[nodiscard]] std::string directory_of_catalogue(std::string_view element);

struct CatalogueLink {
    std::string name;        ///< in the catalogue
    std::string target;      ///< as it is in the link
    std::string directory;   ///< whose index the server reads, an absolute path; it need not be there
    std::string attributes;  ///< ":unscaled:pri=10"; "" for none
    int priority = 0;
    std::size_t place = 0;  ///< in the directory's own order
};

/// The links of a catalogue in the order in which the server searches them; what is no link does not count.
/// Asks the catalogue only, and nothing behind its links. Fails when the directory cannot be read.
[[nodiscard]] Result<std::vector<CatalogueLink>> links_of_catalogue(const std::string& directory);

}  // namespace gw
