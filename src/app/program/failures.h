// SPDX-License-Identifier: MIT
//
// Texts for failures: on standard error, and in the user's language for the windows.
#pragma once

#include <string>

#include "core/failure.h"

namespace gw {

/// Prints one line to standard error. This is the program's listener for failures.
void say_on_standard_error(const Failure& failure);

/// The reason, in the user's language.
std::string reason_text(const Failure& failure);

}  // namespace gw
