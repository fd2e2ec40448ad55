// SPDX-License-Identifier: MIT
//
// Works on the installation in another directory, as on that of the running system: images of disks, and what
// will be the root of another system.
#pragma once

#include <string>

#include "core/failure.h"

namespace gw::fonts {

/// From now on `directory` is the root of this process, in a mount namespace of its own where that can be
/// had. An ordinary user's process gets a user namespace of its own for that, with the rights of this user
/// and no others; some systems do not allow it. Called once.
Outcome enter_root(const std::string& directory);

[[nodiscard]] bool is_in_other_root();

/// The path by which this process reaches the file that its user calls `path`: the same without another root.
/// Otherwise the old root is below an empty directory of the new one; "" where it could not be put there.
[[nodiscard]] std::string outside(const std::string& path);

/// `text` with the paths that `outside` has given as the user has written them.
[[nodiscard]] std::string as_the_user_says(std::string text);

}  // namespace gw::fonts
