// SPDX-License-Identifier: MIT
//
// The one place that runs the shell. Texts from users and files reach the shell as quoted arguments only.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace gw {

/// `argument` as one word for the shell: unchanged when it has only the characters "A-Z a-z 0-9 _ . / + , : @
/// % = -" (so that ordinary paths give the documented command), otherwise in single quotes. An empty argument
/// becomes ''.
[[nodiscard]] std::string shell_quoted(std::string_view argument);

/// `format` with each "%s" replaced by the next quoted argument. Missing arguments count as empty; arguments
/// without a place are ignored.
[[nodiscard]] std::string shell_text(std::string_view format,
                                     std::initializer_list<std::string_view> arguments);

/// Appends the directory to PATH, in which the shell searches for commands, unless PATH has it already. A
/// PATH that is unset or empty first becomes the system's default.
void add_command_dir(std::string_view dir);

/// Runs `shell_text(format, arguments)` through `system` and returns its result: -1 when no shell could be
/// started, else the wait status of the command.
int run_shell(std::string_view format, std::initializer_list<std::string_view> arguments = {});

}  // namespace gw
