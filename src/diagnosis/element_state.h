// SPDX-License-Identifier: MIT
//
// The state of a font path: each element of the server's, in order, and each configured one that it lacks.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "diagnosis/answer.h"
#include "diagnosis/directory_facts.h"
#include "diagnosis/surroundings.h"
#include "fontpath/server_view.h"

namespace gw::diagnosis {

enum class ElementKind {
    DIRECTORY,    ///< "/fonts/75dpi/:unscaled"
    CATALOGUE,    ///< "catalogue:/fontpath.d": a directory of links to font directories
    FONT_SERVER,  ///< "tcp/host:7100"
    BUILT_INS,    ///< the fonts in the server itself
    OTHER,        ///< nothing that a server of today knows
};
[[nodiscard]] ElementKind kind_of_element(std::string_view element);

/// Where the server looks for fonts: a directory, or something that only the server knows, whose facts are
/// not known. Of the fonts in the server itself the names are known, and their files are "".
struct FontSource {
    std::string element;     ///< of the path, that it belongs to
    std::string attributes;  ///< what stands behind the first colon, with it; "" for none
    DirectoryFacts facts;
    std::size_t place_in_catalogue = 0;  ///< of the link to it, in the order of the directory
    [[nodiscard]] bool is_unscaled() const { return attributes.find(":unscaled") != std::string::npos; }
};

struct PathState {
    /// The server's elements, then the configured ones that it lacks. A configured directory that a catalogue
    /// of the server's has counts as working.
    std::vector<ElementReport> reports;
    std::vector<FontSource> sources;   ///< of the server's path, in its order
    std::vector<FontSource> unserved;  ///< of the configured elements that the server lacks
};

/// Looks at every directory once, and asks the server for its path and for the names of all fonts. No look at
/// a directory takes longer than 2 seconds (see `silent_directories`).
[[nodiscard]] PathState look_at_path(ServerView& server, const Surroundings& surroundings);
/// The report on one element as if it were configured and not served.
[[nodiscard]] ElementReport look_at_stranger(ServerView& server, const std::string& element);

}  // namespace gw::diagnosis
