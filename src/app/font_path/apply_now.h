// SPDX-License-Identifier: MIT
//
// Puts a stored font path on the running server, by the same rules as at the beginning of a session.
#pragma once

#include <string>
#include <vector>

namespace gw {

/// Puts the font path of the installation below `root` on the server. `removed` are elements that were taken
/// out of the configuration; they leave the server too. Returns what the user should know, in lines: what was
/// refused or left out, with the reason, and what is no longer on the server.
[[nodiscard]] std::string apply_now(const std::string& root, const std::vector<std::string>& removed);

}  // namespace gw
