// SPDX-License-Identifier: MIT
//
// The one place that runs the shell. Texts from users and files reach the shell as quoted arguments only.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <initializer_list>
#include <string>
#include <string_view>

#include "core/failure.h"

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

/// How long a command may take. One that answers a question of a window takes moments; one that reads all
/// fonts of a directory may take long.
inline constexpr std::chrono::seconds MOMENTS(10);
inline constexpr std::chrono::seconds LONG_WORK(120);

/// Runs `shell_text(format, arguments)` through the shell, with nothing on standard input. Returns -1 when no
/// shell could be started (see `errno`), else the wait status of the command. A command that does not end
/// within `limit` is killed with all that it has started; nobody waits for one that is slow to die.
int run_shell(std::string_view format, std::initializer_list<std::string_view> arguments = {},
              std::chrono::milliseconds limit = MOMENTS);

/// The same for a text that is a whole command already, with its arguments quoted. Returns the number with
/// which it ended, as a shell has it; fails, with the command as its subject, when no shell could be started,
/// and when the command had to be killed (`Reason::NO_ANSWER`).
Result<int> run_shell_text(const std::string& text, std::chrono::milliseconds limit);

/// The same with a failure instead of the number, which is another one than 0 (`Reason::COMMAND_FAILED`).
Outcome run_command(std::string_view format, std::initializer_list<std::string_view> arguments,
                    std::chrono::milliseconds limit);

/// A command that runs while its owner does something else.
class RunningCommand {
  public:
    /// Starts it; `text` is a whole command already, with its arguments quoted.
    explicit RunningCommand(std::string text);
    /// Kills one whose end nobody has waited for.
    ~RunningCommand();
    RunningCommand(const RunningCommand&) = delete;
    RunningCommand& operator=(const RunningCommand&) = delete;

    /// Waits for its end, at most `limit` from now on. Returns what `run_shell_text` returns. To be called
    /// once.
    Result<int> number(std::chrono::milliseconds limit);
    /// The same, as `run_command` has it.
    Outcome end(std::chrono::milliseconds limit);

  private:
    std::string text_;
    pid_t child_ = 0;  // 0 when there is none to wait for
    int error_ = 0;    // why it could not be started
};

/// For tests: no command may take longer than this.
void set_command_patience(std::chrono::milliseconds longest);

}  // namespace gw
