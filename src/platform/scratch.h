// SPDX-License-Identifier: MIT
//
// Scratch files and directories stand under fixed names in a directory that everybody may write, so they are
// approached with care: what someone else has put under such a name is never used.
#pragma once

#include <string>

namespace gw {

/// Makes an empty file (mode 0600) at `path`, for a command to write into. False when something is there
/// already, a link included.
[[nodiscard]] bool create_scratch_file(const char* path);

/// A scratch file that stands in no directory: memory, which is gone with the object and which nobody else
/// has.
class UnnamedScratchFile {
  public:
    UnnamedScratchFile();
    ~UnnamedScratchFile();
    UnnamedScratchFile(const UnnamedScratchFile&) = delete;
    UnnamedScratchFile& operator=(const UnnamedScratchFile&) = delete;

    /// Where this process, and a command that it runs meanwhile, may open the file; empty when the system had
    /// no memory or no file descriptor for it.
    [[nodiscard]] std::string path() const;

  private:
    int fd_;
};

/// Whether something stands at `dir` that is not a directory of this user's own; a link is not, whatever it
/// points to.
[[nodiscard]] bool is_foreign_dir(const char* dir);

/// The same, said in one line on standard error when it is so.
[[nodiscard]] bool refuses_foreign_dir(const char* dir);

}  // namespace gw
