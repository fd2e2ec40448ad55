// SPDX-License-Identifier: MIT
//
// A user who gives long work up, as soon as the test says so.
#pragma once

#include <chrono>
#include <functional>
#include <utility>

#include "core/long_work.h"

namespace gw::test {

/// As long as this exists, `when` is asked wherever work can be given up.
class GivingUp {
  public:
    explicit GivingUp(std::function<bool()> when) {
        condition() = std::move(when);
        listen_to_long_work([] { return condition()(); }, std::chrono::milliseconds(0));
    }
    ~GivingUp() { listen_to_long_work(nullptr); }
    GivingUp(const GivingUp&) = delete;
    GivingUp& operator=(const GivingUp&) = delete;

  private:
    static std::function<bool()>& condition() {
        static std::function<bool()> of_the_test;
        return of_the_test;
    }
};

}  // namespace gw::test
