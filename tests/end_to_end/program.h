// SPDX-License-Identifier: MIT
//
// The installed program as a process of its own: started with an environment, its standard error kept, its
// end waited for.
#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "support/temp_dir.h"

namespace gw::e2e {

class Program {
  public:
    /// Starts the program; an empty value takes a variable away. HOME is a fresh directory unless it is
    /// given.
    explicit Program(const std::map<std::string, std::optional<std::string>>& environment = {},
                     const std::vector<std::string>& arguments = {});
    /// Ends the program, if it still runs.
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    [[nodiscard]] bool is_running();
    /// The exit status; nothing when the program still runs after `seconds` or was ended by a signal.
    std::optional<int> wait_for_exit(int seconds = 20);
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
