// SPDX-License-Identifier: MIT
//
// The font path files of locales and users. The shell expands their lines.
#pragma once

#include <string>
#include <vector>

#include "core/failure.h"

namespace gw {

/// The elements of a font path file, in the order of the effective font path.
struct VtFontPath {
    std::vector<std::string> append;
    std::vector<std::string> prepend;
    /// Why the file, or a part of it, could not be read.
    Outcome outcome = {};
};

/// Reads the file at `path`; a missing file has no elements. Each line goes through the shell, so it may
/// contain variables ("$HOME/fonts"). For the superuser only a file that nobody else can write goes through
/// the shell; of any other file the lines that need no shell are taken, and the rest is a failure.
VtFontPath read_vtfontpath(const std::string& path);

/// Replaces the file at `path`. The old file stays beside it with ".bak" at the end of its name. When the
/// file is a link, the file that it points to is replaced. In case of a crash the file has its old or its new
/// content.
Outcome write_vtfontpath(const std::string& path, const std::string& text);

/// Whether only the superuser can change the file at `path` or put another one there, by the owner and mode
/// of the file and of each directory above it.
[[nodiscard]] bool is_in_superusers_hands(const std::string& path);

}  // namespace gw
