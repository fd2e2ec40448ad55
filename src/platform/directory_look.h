// SPDX-License-Identifier: MIT
//
// Whether directories answer. Who looks at a directory on a network mount whose server is gone waits, perhaps
// for ever, and perhaps so that no signal ends it. So child processes look first, and this one only waits for
// their answers.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace gw {

/// How long all directories together may take to answer.
inline constexpr std::chrono::milliseconds LOOK_LIMIT(2000);

/// Looks at every directory, and reads the font index and the alias file in it. Returns the directories that
/// have not answered within `limit`, in their order; one that does not exist has answered. If the system
/// gives no child process at all, nobody has been asked, and all directories count as answering.
[[nodiscard]] std::vector<std::string> silent_directories(const std::vector<std::string>& directories,
                                                          std::chrono::milliseconds limit = LOOK_LIMIT);

}  // namespace gw
