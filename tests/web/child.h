// SPDX-License-Identifier: MIT
//
// A command as a process of its own, with what it says, its signals and its end.
#pragma once

#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace gw::web {

class Child {
  public:
    /// Starts the command, which is looked for on the path, with both its outputs in `output_file` and no
    /// input. `prepare` runs in the new process before the command: it may only make system calls.
    Child(
        std::vector<std::string> command, std::string output_file,
        const std::function<void()>& prepare = [] {});
    /// Ends the command, if it still runs.
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    void signal(int number) const;
    [[nodiscard]] bool is_running();
    /// The exit status, 128 + N after signal N; nothing when the command still runs after `seconds`.
    std::optional<int> wait_for_exit(int seconds = 20);
    /// What the command has said so far.
    [[nodiscard]] std::string output() const;

  private:
    std::string output_file_;
    pid_t pid_ = -1;
    std::optional<int> status_;  // as wait(2) gives it
};

}  // namespace gw::web
