// SPDX-License-Identifier: MIT
#include "app/program/end_request.h"

#include <csignal>

namespace gw {

namespace {

volatile std::sig_atomic_t is_requested = 0;

}  // namespace

void request_end() {
    is_requested = 1;
}

bool is_end_requested() {
    return is_requested != 0;
}

}  // namespace gw
