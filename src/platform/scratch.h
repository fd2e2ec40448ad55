// SPDX-License-Identifier: MIT
//
// Scratch files and directories. With today's fonts they stand in a private directory that this run has made;
// otherwise they have fixed names in a directory that everybody may write. Something that another process has
// put under such a name is never used, and all of them go when the program ends.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

#include "core/directory.h"
#include "core/failure.h"

namespace gw {

/// Where a scratch file or directory stands whose fixed path is `fixed` ("/tmp/pcf/"; or "/tmp" itself):
/// under the same name in the private directory of this run, or, if the font policy has none or it cannot be
/// made, at `fixed`.
[[nodiscard]] std::string scratch_path(std::string_view fixed);

/// Makes an empty file (mode 0600) at `path`, for a command to write into, in place of an old one that this
/// user may remove. A failure when something else is there. The file is removed at the end of the program.
Outcome create_scratch_file(const std::string& path);

/// Makes the directory `path` (`mode` before the umask) and holds it until `drop_scratch_dir` or the end of
/// the program; when it is held already, it only stays. What a dead run of this user has left there is
/// removed first. A failure when a running process holds it (`Reason::USED_BY_ANOTHER`) or something is there
/// that is not ours.
Outcome hold_scratch_dir(const std::string& path, mode_t mode);
/// Whether `hold_scratch_dir` made this directory and it is still there.
[[nodiscard]] bool holds_scratch_dir(const std::string& path);
/// Makes the link NAME in a held directory, in place of an old one.
Outcome link_in_scratch_dir(const std::string& path, const std::string& name, const std::string& target);
/// Removes a held directory with what is in it.
void drop_scratch_dir(const std::string& path);

/// Removes all scratch files and directories of this process.
void remove_scratch();
/// Removes the private directories of this user's runs that were killed; their paths, ending in "/".
std::vector<std::string> remove_left_scratch();
/// Whether the path is below a private directory that is not there any more.
[[nodiscard]] bool was_in_private_scratch(std::string_view path);

/// A scratch file in memory, without a name in any directory. No other user can open it, and it is gone with
/// the object.
class UnnamedScratchFile {
  public:
    explicit UnnamedScratchFile(std::string_view content = {});
    ~UnnamedScratchFile();
    UnnamedScratchFile(const UnnamedScratchFile&) = delete;
    UnnamedScratchFile& operator=(const UnnamedScratchFile&) = delete;

    /// The path by which this process, and commands that it runs, can open the file; empty when the system
    /// had no memory or no file descriptor for it.
    [[nodiscard]] std::string path() const;
    /// The bytes of the file.
    [[nodiscard]] Result<std::string> read() const;

  private:
    int fd_;
};

/// A new directory that only this user can enter, for a short time: it goes, with all files in it and in the
/// directories in it, at the end of the object. Of a run that is killed meanwhile, the next start removes it.
class ShortLivedDirectory {
  public:
    /// What it is made on; for many small entries that no program of the user's will see, in memory, if the
    /// system has a place for that.
    enum class Medium { DISK, MEMORY };

    explicit ShortLivedDirectory(Medium medium = Medium::DISK);
    ~ShortLivedDirectory();
    ShortLivedDirectory(const ShortLivedDirectory&) = delete;
    ShortLivedDirectory& operator=(const ShortLivedDirectory&) = delete;

    /// Without a slash at its end; empty when no directory could be made (see `errno` after the
    /// construction).
    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    bool make(const char* pattern);

    std::string path_;
    Descriptor lock_;
};

}  // namespace gw
