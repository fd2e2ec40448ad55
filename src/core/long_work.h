// SPDX-License-Identifier: MIT
//
// Long work asks here from time to time whether it shall be given up. Whoever listens can serve the user
// meanwhile, also in the middle of a font. Without a listener nothing is ever given up.
#pragma once

#include <chrono>

namespace gw {

/// Returns whether the work that is going on shall be given up. Must not start other work.
using LongWorkListener = bool (*)();

/// How often the listener is asked: so that a button answers at once, and work is not slower for it.
inline constexpr std::chrono::milliseconds BETWEEN_QUESTIONS(10);

/// Sets the listener; null for none.
void listen_to_long_work(LongWorkListener listener, std::chrono::milliseconds between = BETWEEN_QUESTIONS);

/// Whether the work that is going on shall be given up. Cheap enough for every block of a file.
[[nodiscard]] bool is_given_up();

/// Lets the listener serve the user, in work that cannot be given up any more.
void breathe();

}  // namespace gw
