// SPDX-License-Identifier: MIT
//
// Scratch files and directories have fixed names in a directory that everybody may write. So the functions
// here make sure that something that somebody else has put under such a name is never used.
#pragma once

#include <string>

#include "core/failure.h"

namespace gw {

/// Makes an empty file (mode 0600) at `path`, for a command to write into. A failure when something is there
/// already, a link included.
Outcome create_scratch_file(const std::string& path);

/// A scratch file in memory, without a name in any directory. No other user can open it, and it is gone with
/// the object.
class UnnamedScratchFile {
  public:
    UnnamedScratchFile();
    ~UnnamedScratchFile();
    UnnamedScratchFile(const UnnamedScratchFile&) = delete;
    UnnamedScratchFile& operator=(const UnnamedScratchFile&) = delete;

    /// The path by which this process, and commands that it runs, can open the file; empty when the system
    /// had no memory or no file descriptor for it.
    [[nodiscard]] std::string path() const;

  private:
    int fd_;
};

/// Whether `dir` exists but is not a directory of this user. A link never counts as one, whatever it points
/// to.
[[nodiscard]] bool is_foreign_dir(const char* dir);

/// The same as an outcome: a failure when the directory is foreign.
Outcome may_use_scratch_dir(const std::string& dir);

}  // namespace gw
