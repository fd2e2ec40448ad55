// SPDX-License-Identifier: MIT
#include "store/trash_policy.h"

namespace gw {

namespace {

bool& is_switched_on() {
    static bool keeps = false;
    return keeps;
}

TrashLimits& limits_in_use() {
    static TrashLimits limits;
    return limits;
}

using Clock = std::time_t (*)();
Clock& clock_in_use() {
    static Clock clock = nullptr;
    return clock;
}

}  // namespace

bool keeps_what_is_taken_out() {
    return is_switched_on();
}

void set_keeps_what_is_taken_out(bool keeps) {
    is_switched_on() = keeps;
}

const TrashLimits& trash_limits() {
    return limits_in_use();
}

void set_trash_limits(const TrashLimits& limits) {
    limits_in_use() = limits;
}

std::time_t trash_time() {
    return clock_in_use() != nullptr ? clock_in_use()() : ::time(nullptr);
}

void set_trash_clock(std::time_t (*clock)()) {
    clock_in_use() = clock;
}

}  // namespace gw
