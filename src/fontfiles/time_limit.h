// SPDX-License-Identifier: MIT
//
// How long a font may keep the program busy. The processor's time counts, so that a busy machine is no reason
// to give up.
#pragma once

#include <time.h>

#include "core/long_work.h"

namespace gw {

class TimeLimit {
  public:
    /// Begins now.
    explicit TimeLimit(double seconds) : end_(now() + seconds) {}
    /// Also when the work is given up: what was found out then is worth nothing.
    [[nodiscard]] bool is_over() const { return is_given_up() || now() > end_; }

  private:
    static double now() {
        timespec time = {};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
    }
    double end_;
};

}  // namespace gw
