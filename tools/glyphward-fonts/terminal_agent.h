// SPDX-License-Identifier: MIT
//
// Asks for passwords on the terminal of a command, also where a desktop could. pkexec brings something for
// that, too, but without a session of the login manager its answers are not accepted.
#pragma once

#include <sys/types.h>

namespace gw::fonts {

/// As long as this exists, polkit's questions about this process can be asked on its terminal. Without a
/// terminal, or without polkit's program for it, nothing asks.
class TerminalAgent {
  public:
    TerminalAgent();
    ~TerminalAgent();
    TerminalAgent(const TerminalAgent&) = delete;
    TerminalAgent& operator=(const TerminalAgent&) = delete;

  private:
    pid_t process_ = -1;
};

}  // namespace gw::fonts
