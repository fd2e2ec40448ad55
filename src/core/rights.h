// SPDX-License-Identifier: MIT
//
// Who may do what: the superuser, and the bits of a file's mode.
#pragma once

#include <sys/stat.h>
#include <unistd.h>

namespace gw {

[[nodiscard]] constexpr bool is_superuser(uid_t user) {
    return user == 0;
}

/// Whether this process has the rights of the superuser.
[[nodiscard]] inline bool runs_as_superuser() {
    return is_superuser(::geteuid());
}

/// Whether `user` may write to a file or directory of that owner and mode.
/// Kept: permissions of the group are ignored. The owner's bit decides for the owner, the others' bit for
/// everybody else, and the superuser is no exception.
[[nodiscard]] constexpr bool is_writeable_by(uid_t owner, mode_t mode, uid_t user) {
    return (mode & (owner == user ? S_IWUSR : S_IWOTH)) != 0;
}

}  // namespace gw
