// SPDX-License-Identifier: MIT
//
// The ends of child processes. One that hangs in a system call, as on a network mount whose server is gone,
// may not die when it is killed; nobody waits for it for ever.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>

namespace gw {

/// How long to wait for children after they were killed.
inline constexpr std::chrono::milliseconds LAST_MOMENT(100);

/// Waits until `end` for the end of the child, and collects it. Returns its wait status, or -1 when it is no
/// child of this process; nothing when it has not ended. Work that is given up does not wait any longer.
std::optional<int> end_of_child(pid_t child, std::chrono::steady_clock::time_point end);

/// The same for a child that was killed. One that has not ended is remembered for `collect_killed_children`.
std::optional<int> end_of_killed_child(pid_t child, std::chrono::steady_clock::time_point end);

/// Collects the remembered children that have ended since.
void collect_killed_children();

}  // namespace gw
