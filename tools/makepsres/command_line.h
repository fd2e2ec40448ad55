// SPDX-License-Identifier: MIT
//
// The tool's command line.
#pragma once

#include <string>
#include <vector>

namespace gw::psres {

struct CommandLine {
    enum class Task { INDEX, HELP, VERSION, COMPLAIN };
    Task task = Task::INDEX;
    bool quiet = false;                         ///< -q
    bool rescan = true;                         ///< without -nr
    std::string output = "PSres.upr";           ///< -o FILE
    std::vector<std::string> directories = {};  ///< as they are given; the current one when none is
    std::string complaint = {};                 ///< what is wrong, for `COMPLAIN`
};

/// What the arguments, without the name of the program, ask for. "--" ends the options.
[[nodiscard]] CommandLine parse_command_line(const std::vector<std::string>& arguments);

/// The usage line.
[[nodiscard]] std::string usage();
/// The version line.
[[nodiscard]] std::string version();

}  // namespace gw::psres
