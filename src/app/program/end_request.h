// SPDX-License-Identifier: MIT
//
// A signal has asked the program to end. The event loop ends it (see start/end_signals.h); long work asks
// here, and gives up.
#pragma once

namespace gw {

/// Safe in a signal handler.
void request_end();
[[nodiscard]] bool is_end_requested();

}  // namespace gw
