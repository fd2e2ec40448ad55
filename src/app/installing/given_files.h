// SPDX-License-Identifier: MIT
//
// Files and directories that come from outside the windows: arguments of the command, and what other programs
// drop. The install dialog opens with them as its source. What cannot be used is told in a window of its own.
#pragma once

#include <string>
#include <vector>

#include <X11/Intrinsic.h>

namespace gw {

/// What can be used of that which was given, and why the rest cannot.
struct GivenFiles {
    /// Absolute; files and directories that are there. Behind a directory come those below it that have
    /// fonts.
    std::vector<std::string> paths;
    std::vector<std::string> problems;  ///< a line for each of the others
};

/// What the arguments of the command name, when the toolkit has taken out its own: paths and "file:"
/// addresses. The first of `arguments` may be "--".
[[nodiscard]] GivenFiles read_arguments(const std::vector<std::string>& arguments);
/// What a list of addresses names ("text/uri-list").
[[nodiscard]] GivenFiles read_dropped_list(const std::string& list);

/// Makes them the source of the install dialog, and shows it; tells what cannot be used.
void start_install_dlg_with(const GivenFiles& given);

/// Does so with the arguments as soon as the main window is there.
void take_arguments(int argc, char** argv);
/// Does so with what is dropped on this window from now on.
void take_dropped_files(Widget shell);

}  // namespace gw
