// SPDX-License-Identifier: MIT
//
// What the program says of failures: on standard error, and in the user's language for the windows.
#pragma once

#include <string>

#include "core/failure.h"

namespace gw {

/// One line on standard error. From start-up on, this hears of the failures that nobody asks for.
void say_on_standard_error(const Failure& failure);

/// Why it failed, in the user's language.
std::string reason_text(const Failure& failure);

}  // namespace gw
