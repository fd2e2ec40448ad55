// SPDX-License-Identifier: MIT
//
// Waits for conditions, instead of for fixed times.
#pragma once

#include <chrono>
#include <thread>

namespace gw::e2e {

/// Polls `condition` until it holds; false when it does not within `seconds`.
template <class Condition>
bool wait_until(Condition condition, int seconds = 20) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

/// Repeats `action` until `condition` holds, as a person does whose first click came too early. False when it
/// never holds.
template <class Action, class Condition>
bool until(Condition condition, Action action) {
    for (int attempt = 0; attempt < 15; ++attempt) {
        action();
        if (wait_until(condition, 1)) return true;
    }
    return false;
}

}  // namespace gw::e2e
