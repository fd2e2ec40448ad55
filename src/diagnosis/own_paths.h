// SPDX-License-Identifier: MIT
//
// The configured font paths that a user may change: an ordinary user's own, in front of the composed path and
// at its end; the superuser's is that of the host or, where the host has none, of the installation.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/failure.h"
#include "diagnosis/surroundings.h"
#include "fontpath/gw_font_path.h"

namespace gw::diagnosis {

/// Where an element stands, so that it can come back there.
struct ConfiguredPlace {
    GWFontPath::TYPE list;
    int position;         ///< 1-based
    std::string element;  ///< as it is written there
};

/// The file of an ordinary user's font paths around a change of them. Its lines are for the shell, so that
/// they are not what the lists say.
struct PathFile {
    std::string path = {};
    std::optional<std::string> before = {};  ///< none when there was no file
    std::optional<std::string> after = {};   ///< none when somebody else may have written it meanwhile
};

/// What a change of the configured paths has been.
struct PathChange {
    std::vector<ConfiguredPlace> places;  ///< that an element got, or that it had, in their order
    PathFile file = {};
};

/// Whether this user may take the element off a configured path that has it.
[[nodiscard]] bool may_configure(const std::string& element);

/// Puts the element on the configured path, at its beginning or end.
Result<PathChange> configure(const std::string& element, bool in_front);
/// Takes the element off all paths that this user may change.
Result<PathChange> take_off_paths(const std::string& element);
/// Undoes `configure`; fails when the element is not there any more (`Reason::CHANGED_SINCE`). A file that is
/// as it was left gets all its bytes back.
Outcome take_off(const PathChange& change);
/// Undoes `take_off_paths` in the same way. An element that somebody has put back meanwhile is left where it
/// is.
Outcome put_back(const PathChange& change);

/// The directory of the aliases that this user has made, ending in "/".
[[nodiscard]] std::string alias_directory(const Surroundings& surroundings);

}  // namespace gw::diagnosis
