// SPDX-License-Identifier: MIT
//
// Puts the installation's own commands on PATH during a test, as the running program does.
#pragma once

#include <cstdlib>
#include <string>

#include "platform/host_paths.h"
#include "platform/shell_command.h"

namespace gw::test {

class OwnCommands {
  public:
    OwnCommands() : before_(std::getenv("PATH")) { add_command_dir(INSTALLATION_BIN); }
    ~OwnCommands() { ::setenv("PATH", before_.c_str(), 1); }
    OwnCommands(const OwnCommands&) = delete;
    OwnCommands& operator=(const OwnCommands&) = delete;

  private:
    std::string before_;
};

}  // namespace gw::test
