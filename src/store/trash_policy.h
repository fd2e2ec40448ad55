// SPDX-License-Identifier: MIT
//
// Whether what a change of a font directory takes out is kept in its trash, and for how long. By default
// nothing is kept: what goes is gone when the change is complete.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <ctime>

namespace gw {

struct TrashLimits {
    std::time_t longest = 30L * 24 * 60 * 60;  ///< seconds
    off_t most_bytes = 200L * 1024 * 1024;     ///< in one font directory
    std::size_t most_entries = 1000;           ///< in one font directory
};

[[nodiscard]] bool keeps_what_is_taken_out();
/// Counts for changes that begin afterwards. Called once at start-up, before any font is deleted.
void set_keeps_what_is_taken_out(bool keeps);

[[nodiscard]] const TrashLimits& trash_limits();
/// For tests.
void set_trash_limits(const TrashLimits& limits);

/// The time that entries get, and are measured by.
[[nodiscard]] std::time_t trash_time();
/// For tests; null for the system's clock.
void set_trash_clock(std::time_t (*clock)());

}  // namespace gw
