// SPDX-License-Identifier: MIT
//
// SIGINT, SIGTERM and SIGHUP in the middle of a change: the font in work is left out, those that are whole
// stay, and no other one is begun.
#pragma once

namespace gw::fonts {

/// From now on these signals only ask for the end. A second one ends the process at once; what it has not
/// made final is taken back by whoever next looks at the directory.
void await_interruption();

/// From now on it is an interruption, too, when nobody has the other end of this pipe open any more.
void await_hang_up(int fd);

/// Whether one has come.
[[nodiscard]] bool is_interrupted();

/// As long as this exists, a signal also gives up the font that is in work. What makes a change final, or
/// takes it back, is not given up.
class Interruptible {
  public:
    Interruptible();
    ~Interruptible();
    Interruptible(const Interruptible&) = delete;
    Interruptible& operator=(const Interruptible&) = delete;
};

}  // namespace gw::fonts
