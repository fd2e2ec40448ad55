// SPDX-License-Identifier: MIT
//
// For tests that start or end the program: each of them runs in a new process.
#pragma once

#include <gtest/gtest.h>

namespace gw::test {

class OwnProcess : public testing::Test {
  protected:
    OwnProcess() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

}  // namespace gw::test
