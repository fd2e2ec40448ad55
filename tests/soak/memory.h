// SPDX-License-Identifier: MIT
//
// How much memory this process has.
#pragma once

#include <cstddef>

namespace gw::soak {

/// Bytes that the program has allocated; 0 without the sanitizer that counts them.
std::size_t heap_bytes();
/// Bytes of the process that are in memory.
std::size_t resident_bytes();

}  // namespace gw::soak
