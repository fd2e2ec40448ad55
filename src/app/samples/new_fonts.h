// SPDX-License-Identifier: MIT
//
// What an installation has brought into the list of installed fonts: it is selected there, and can be seen.
#pragma once

#include <string>

#include "model/font_report.h"

namespace gw {

/// Remembers what the list has. Called when an installation begins.
void note_listed_fonts();

/// Selects the fonts of `report` that were installed, and those of `dir` that have come into the list since
/// `note_listed_fonts`, and scrolls to the first. When `dir` has come onto the font path since, and no
/// conflict is waiting, the fonts that were in it before are listed first. Does nothing where windows do not
/// show what is new.
void show_new_fonts(const FontReport& report, const std::string& dir);

}  // namespace gw
