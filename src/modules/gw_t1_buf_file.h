// SPDX-License-Identifier: MIT
//
// Copies a file of a Type 1 font as an installation does: converted to text with line feeds.
#pragma once

#include <array>

#include "core/file_writer.h"
#include "core/gw_file.h"

class GW_DIR;

class GW_T1_BUF_FILE : public GW_FILE {
  public:
    using GW_FILE::GW_FILE;
    static constexpr int BLOCK_SIZE = 1024;

    /// Copies this file under its own name into `dest` (mode 0644). From the first block, the bytes before
    /// the first '%' (the binary header of a ".pfb") are dropped, and one byte more than the rest is written.
    /// In all later blocks carriage returns become line feeds. A file is not copied onto itself, whichever
    /// path names its directory, and one that cannot be copied completely is skipped. Always returns 1.
    int copy(GW_DIR* dest);
    /// Writes the converted bytes into `copy` and finishes it, without putting it in place. A failure names
    /// the file that could not be read or written: this one or the copy. Kept: type 1 files are copied as
    /// text.
    gw::Outcome copy_into(gw::FileWriter& copy);

  private:
    std::array<char, BLOCK_SIZE + 1> block{};  // the byte behind a block is a NUL
};
