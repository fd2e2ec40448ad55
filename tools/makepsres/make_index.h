// SPDX-License-Identifier: MIT
//
// The tool as a whole: from the words of its command line to the resource file.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace gw::psres {

inline constexpr int DONE = 0;
inline constexpr int FAILED = 1;  ///< a directory could not be listed, or nothing could be written
inline constexpr int CALLED_WRONG = 2;

/// Does what the arguments, without the name of the program, ask for, and returns the exit status. What
/// `--help` and `--version` say goes to `out`, all other lines to `err`.
[[nodiscard]] int run(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

}  // namespace gw::psres
