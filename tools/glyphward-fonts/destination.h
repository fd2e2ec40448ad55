// SPDX-License-Identifier: MIT
//
// Where fonts are installed.
#pragma once

#include <string>

#include "core/failure.h"
#include "fontpath/gw_font_path.h"
#include "store/font_action.h"

#include "glyphward-fonts/commands.h"
#include "glyphward-fonts/made_directories.h"

namespace gw::fonts {

/// The directory, ending in "/"; `directory` is that of `Destination::DIRECTORY`. "" where the user has none.
[[nodiscard]] std::string directory_of(Destination destination, const std::string& directory);

/// Makes the destination, if it is missing and this is no dry run. Fails where nothing can be installed.
Outcome prepare(const std::string& directory, bool dry_run, MadeDirectories& made);

/// What makes the destination anew where another command has removed the one that it had made, because it
/// could install nothing there.
[[nodiscard]] FontAction::Maker maker_of(const std::string& directory, MadeDirectories& made);

/// As after the work of the windows: an ordinary user's directory gets an index of its PostScript resources.
void renew_resource_file(const std::string& directory);

/// Whether a configured font path has the directory.
[[nodiscard]] bool is_on_path(const std::string& directory);

/// The font path that gets a destination: the user's own, or one of the machine's for the superuser.
[[nodiscard]] GWFontPath::TYPE path_for_destinations();

/// After an installation: an ordinary user's directory comes to the font path, and the running server reads
/// all its directories again. What cannot be done is a trouble.
void put_in_force(const std::string& directory, Report& report);

}  // namespace gw::fonts
