// SPDX-License-Identifier: MIT
//
// A file that can copy itself into another directory. The copy is atomic: it appears there complete or not at
// all.
#pragma once

#include <array>

#include "core/file_writer.h"
#include "core/gw_file.h"

class GW_DIR;

class GW_BUF_FILE : public GW_FILE {
  public:
    using GW_FILE::GW_FILE;

    /// Copies this file under its own name into `target` (mode 0644), byte for byte. A file is never copied
    /// onto itself, whichever path names its directory, and one that cannot be copied completely is skipped
    /// silently. Kept: removing, seeking and copying always return 1.
    int copy(GW_DIR* target);
    /// Writes the bytes into `copy` and finishes it, without putting it in place. A failure names the file
    /// that could not be read or written: this one or the copy.
    gw::Outcome copy_into(gw::FileWriter& copy);

  private:
    std::array<char, 1024> buffer{};
};
