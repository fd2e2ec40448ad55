// SPDX-License-Identifier: MIT
//
// The working copy of a fontset file: its bytes, with all changes that are not in the real file yet. The copy
// in memory is the one that counts. After every change it is also written to a scratch file with a fixed
// name, where other programs can read it. When the disk is full, or somebody else's file has that name, only
// the scratch file is lost.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

#include "core/gw_buf_file.h"

namespace gw {

class FontsetWorkingCopy {
  public:
    FontsetWorkingCopy();
    /// Removes the scratch file, unless another one has taken its place.
    ~FontsetWorkingCopy();
    FontsetWorkingCopy(const FontsetWorkingCopy&) = delete;
    FontsetWorkingCopy& operator=(const FontsetWorkingCopy&) = delete;

    [[nodiscard]] const std::string& get_bytes() const { return bytes; }
    /// The name of the scratch file, without its directory.
    [[nodiscard]] const char* get_name() const { return file.get_name(); }
    /// Writes no scratch file from now on.
    void keep_in_memory() { in_memory = true; }
    /// Replaces the content, in memory and in the scratch file. When that file cannot be made or belongs to
    /// somebody else, the listener for failures is told once, and the file is not written any more.
    void set_bytes(std::string_view new_bytes);

  private:
    Outcome make_file();
    Outcome write_file();
    [[nodiscard]] bool is_own_file() const;

    GW_BUF_FILE file;
    std::string bytes;
    bool in_memory = false;
    // Identify the scratch file that was made last; the inode is 0 while there is none.
    dev_t device = 0;
    ino_t inode = 0;
};

}  // namespace gw
