// SPDX-License-Identifier: MIT
//
// Scratch files and directories stand under fixed names in a directory that everybody may write, so they are
// approached with care: what someone else has put under such a name is never used.
#pragma once

namespace gw {

/// Makes an empty file (mode 0600) at `path`, for a command to write into. False when something is there
/// already, a link included.
[[nodiscard]] bool create_scratch_file(const char* path);

/// Whether something stands at `dir` that is not a directory of this user's own; a link is not, whatever it
/// points to.
[[nodiscard]] bool is_foreign_dir(const char* dir);

/// The same, said in one line on standard error when it is so.
[[nodiscard]] bool refuses_foreign_dir(const char* dir);

}  // namespace gw
