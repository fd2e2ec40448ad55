// SPDX-License-Identifier: MIT
//
// Runs the installed program in a process: with an environment, recording standard error, and waiting for its
// end.
#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "end_to_end/waiting.h"
#include "support/temp_dir.h"

namespace gw::e2e {

/// Where the program is installed.
inline constexpr const char* INSTALLED_PROGRAM = "/usr/vantor/bin/glyphward";

/// Whether the tests run with both resources for today switched off, as GLYPHWARD_RESOURCES=off asks: what
/// the program has always done is to be the same then. Tests of what is new are skipped.
[[nodiscard]] bool is_as_ever();

/// How many pixels high a line of a list is: in the fonts of the sandbox, whose screen has 96 dots per inch.
[[nodiscard]] int list_line_height();

class Program {
  public:
    /// Starts the program. A variable without a value is removed from the environment. HOME is a new
    /// directory unless it is given.
    explicit Program(const std::map<std::string, std::optional<std::string>>& environment = {},
                     const std::vector<std::string>& arguments = {});
    /// Ends the program if it is still running.
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    [[nodiscard]] pid_t pid() const { return pid_; }
    [[nodiscard]] bool is_running();
    /// The exit status; no value when the program still runs after `seconds` or was ended by a signal.
    std::optional<int> wait_for_exit(int seconds = PATIENCE);
    /// What the program has written to standard error so far.
    [[nodiscard]] std::string errors() const;
    [[nodiscard]] const gw::test::TempDir& home() const { return home_; }

  private:
    bool reap(int options);

    gw::test::TempDir home_;
    gw::test::TempDir scratch_;
    pid_t pid_ = -1;
    std::optional<int> status_;  // as wait(2) gives it
};

}  // namespace gw::e2e
