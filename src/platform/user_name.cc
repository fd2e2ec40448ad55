// SPDX-License-Identifier: MIT
#include "platform/user_name.h"

#include <pwd.h>

namespace gw {

std::string user_name(uid_t user) {
    const passwd* entry = ::getpwuid(user);
    return entry != nullptr ? entry->pw_name : std::to_string(user);
}

}  // namespace gw
