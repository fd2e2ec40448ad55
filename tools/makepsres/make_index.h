// SPDX-License-Identifier: MIT
//
// The whole tool: from its command line to the resource file.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace gw::psres {

inline constexpr int DONE = 0;
inline constexpr int FAILED = 1;  ///< a directory could not be listed, or nothing could be written
inline constexpr int CALLED_WRONG = 2;

/// Runs the tool with these arguments (without the program's name) and returns the exit status. The output of
/// `--help` and `--version` goes to `out`, all messages go to `err`.
[[nodiscard]] int run(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

}  // namespace gw::psres
