// SPDX-License-Identifier: MIT
//
// Waiting until something is the case instead of for a fixed time. A wait that is in vain says what there was
// to be seen.
#pragma once

#include <chrono>
#include <functional>
#include <iostream>
#include <string>
#include <thread>

namespace gw::e2e {

/// How many seconds a test waits for what it has asked for: a machine may have much else to do.
inline constexpr int PATIENCE = 60;

/// Describes what the test can see now; empty when nobody is there to look. The test that looks sets it.
inline std::function<std::string()>& witness() {
    static std::function<std::string()> function;
    return function;
}

/// Polls `condition` until it holds; false when it does not within `seconds`.
template <class Condition>
bool wait_until(Condition condition, int seconds = PATIENCE) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            std::cout << "Waited " << seconds << " s in vain.\n"
                      << (witness() ? witness()() : "") << std::flush;
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

/// Does something, once, and waits for what must follow from it; false when it does not.
template <class Action, class Condition>
bool follows(Condition condition, Action action) {
    action();
    return wait_until(condition);
}

}  // namespace gw::e2e
