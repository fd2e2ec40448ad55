// SPDX-License-Identifier: MIT
#include "core/long_work.h"

#include <chrono>

namespace gw {

namespace {

using Clock = std::chrono::steady_clock;

struct Asked {
    LongWorkListener listener = nullptr;
    std::chrono::milliseconds between = BETWEEN_QUESTIONS;
    Clock::time_point next;
    bool is_given_up = false;
};

Asked& asked() {
    static Asked of_the_program;
    return of_the_program;
}

}  // namespace

void listen_to_long_work(LongWorkListener listener, std::chrono::milliseconds between) {
    asked() = {};
    asked().listener = listener;
    asked().between = between;
}

bool is_given_up() {
    Asked& now = asked();
    if (now.listener == nullptr) return false;
    if (!now.is_given_up && Clock::now() >= now.next) {
        now.is_given_up = now.listener();
        now.next = Clock::now() + now.between;
    }
    return now.is_given_up;
}

void breathe() {
    (void)is_given_up();
}

}  // namespace gw
