// SPDX-License-Identifier: MIT
//
// A command in a child process: its output, its signals and its end.
#pragma once

#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace gw::web {

class Child {
  public:
    /// Starts the command, which is searched for on PATH, without input; standard output and standard error
    /// go to `output_file`. `prepare` runs in the new process before the command and may only make system
    /// calls.
    Child(
        std::vector<std::string> command, std::string output_file,
        const std::function<void()>& prepare = [] {});
    /// Ends the command if it is still running.
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    void signal(int number) const;
    [[nodiscard]] bool is_running();
    /// The exit status, or 128 + N after signal N; no value when the command still runs after `seconds`.
    std::optional<int> wait_for_exit(int seconds = 20);
    /// The command's output so far.
    [[nodiscard]] std::string output() const;

  private:
    std::string output_file_;
    pid_t pid_ = -1;
    std::optional<int> status_;  // as wait(2) gives it
};

}  // namespace gw::web
