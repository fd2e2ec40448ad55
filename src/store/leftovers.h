// SPDX-License-Identifier: MIT
//
// What a run of an earlier release that was killed has left in a font directory. Such a run set files aside
// under hidden names beside them: ".NAME.gwkept" is a file of a font that was being replaced, ".NAME.gwold"
// one that was being overwritten, and ".NAME.gwtmp" a copy that was not finished. When there is no file NAME,
// the one set aside gets its name again, and its line in the index where that can be known. Everything else
// that was left is taken away. What is done is told to the listener for failures.
//
// Our own runs have a journal instead, and leave nothing beside the fonts.
#pragma once

#include <optional>
#include <string>

#include "core/directory.h"

namespace gw {

class DirectoryChange;

/// Whether there is anything of that kind that belongs to the directory's owner, to the superuser or to this
/// user. Files of anybody else are left alone, and files with more names than a run of ours gave them.
[[nodiscard]] bool has_leftovers(const Directory& fonts);

/// Brings back or takes away what was left, as a change of its own: the change, in which nothing is done so
/// far, is made final. What cannot be done is told and stays as it is. Much of it is done in several goes,
/// one for each change. Returns whether there was anything.
bool clear_leftovers(DirectoryChange& change);

/// Finds out what the font in a file is called; returns its index line (newline included), if that can be
/// known.
using LineOfFontFile = std::optional<std::string> (*)(const std::string& dir, const std::string& name);
/// Only the modules can look into fonts. Without a function lines are not known.
void know_lines_by(LineOfFontFile function);

}  // namespace gw
