// SPDX-License-Identifier: MIT
//
// Keeps what changes take out in the trash during a scope, under a clock of the test's own.
#pragma once

#include <ctime>

#include "store/trash_policy.h"

namespace gw::test {

class TrashOn {
  public:
    TrashOn() {
        now() = 1790000000;
        set_keeps_what_is_taken_out(true);
        set_trash_clock([] { return now(); });
    }
    ~TrashOn() {
        set_keeps_what_is_taken_out(false);
        set_trash_clock(nullptr);
        set_trash_limits({});
    }
    TrashOn(const TrashOn&) = delete;
    TrashOn& operator=(const TrashOn&) = delete;

    static void pass(std::time_t seconds) { now() += seconds; }
    [[nodiscard]] static std::time_t& now() {
        static std::time_t time = 0;
        return time;
    }
};

}  // namespace gw::test
