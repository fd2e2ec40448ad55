// SPDX-License-Identifier: MIT
//
// Why something failed, and what follows from it, in the user's language.
#pragma once

#include <string>

#include "core/failure.h"
#include "platform/everyone_request.h"

namespace gw {

/// The reason of a failure: the program's words, or the system's in the language of the locale.
[[nodiscard]] std::string reason_in_language(const Failure& failure);

/// The reason that the program gives which installs for everyone: in English where it is unknown here.
[[nodiscard]] std::string reason_in_language(const EveryoneAnswer::Why& why);

/// What follows from the failure; "" where nothing does.
[[nodiscard]] std::string sequel_in_language(const Failure& failure);

}  // namespace gw
