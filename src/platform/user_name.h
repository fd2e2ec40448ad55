// SPDX-License-Identifier: MIT
//
// The names of users.
#pragma once

#include <sys/types.h>

#include <string>

namespace gw {

/// The login name of the user, or the number of one that the system does not know.
[[nodiscard]] std::string user_name(uid_t user);

}  // namespace gw
