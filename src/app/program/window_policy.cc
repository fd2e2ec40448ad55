// SPDX-License-Identifier: MIT
#include "app/program/window_policy.h"

namespace gw {

namespace {

WindowPolicy& program_policy() {
    static WindowPolicy policy;
    return policy;
}

}  // namespace

WindowPolicy window_policy() {
    return program_policy();
}

void set_window_policy(WindowPolicy policy) {
    program_policy() = policy;
}

}  // namespace gw
