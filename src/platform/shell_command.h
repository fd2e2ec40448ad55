// SPDX-License-Identifier: MIT
//
// The one place that runs the shell. What a user or a file supplies reaches it as a quoted argument, never as
// text.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace gw {

/// `argument` as one word of the shell: unchanged when it holds only "A-Z a-z 0-9 _ . / + , : @ % = -" (so
/// that ordinary paths give the documented command text), otherwise in single quotes. An empty argument
/// becomes ''.
[[nodiscard]] std::string shell_quoted(std::string_view argument);

/// `format` with each "%s" replaced by the next quoted argument. Missing arguments count as empty, surplus
/// ones are dropped.
[[nodiscard]] std::string shell_text(std::string_view format,
                                     std::initializer_list<std::string_view> arguments);

/// Has the shell look for commands in the directory too, behind all others of PATH, unless PATH names it
/// already. A PATH that is unset or empty becomes the system's default one first.
void add_command_dir(std::string_view dir);

/// Runs `shell_text(format, arguments)` through `system` and returns its result: -1 when no shell could be
/// started, else the wait status of the command.
int run_shell(std::string_view format, std::initializer_list<std::string_view> arguments = {});

}  // namespace gw
