// SPDX-License-Identifier: MIT
//
// The child processes of a test.
#pragma once

#include <sys/wait.h>

#include <cerrno>

namespace gw::test {

/// Whether this process has children, running or not collected. Collects one that has ended.
inline bool has_children() {
    return ::waitpid(-1, nullptr, WNOHANG) >= 0 || errno != ECHILD;
}

}  // namespace gw::test
