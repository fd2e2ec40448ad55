// SPDX-License-Identifier: MIT
//
// A process as it looks from outside: whether it sleeps, and whether it has run since the last look.
#pragma once

#include <sys/types.h>

#include <string>

namespace gw::e2e {

class ProcessWatch {
  public:
    explicit ProcessWatch(pid_t pid) : directory_("/proc/" + std::to_string(pid) + '/') {}

    [[nodiscard]] bool has_ended() const;
    /// Whether it waits for something other than a child process or a disk, or has ended.
    [[nodiscard]] bool sleeps() const;
    /// How often it has stopped running: another number means that it has run in between.
    [[nodiscard]] long long turns() const;
    /// Its state for a reader.
    [[nodiscard]] std::string description() const;

  private:
    [[nodiscard]] char state() const;
    [[nodiscard]] std::string children() const;

    std::string directory_;
};

}  // namespace gw::e2e
