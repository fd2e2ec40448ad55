// SPDX-License-Identifier: MIT
//
// The copy that the installation of a Type 1 font makes of each of its files: a conversion to text with line
// feeds.
#pragma once

#include <array>

#include "core/gw_file.h"
#include "core/new_file.h"

class GW_DIR;

class GW_T1_BUF_FILE : public GW_FILE {
  public:
    using GW_FILE::GW_FILE;
    static constexpr int BLOCK_SIZE = 1024;

    /// Copies this file under its own name into `dest` (mode 0644). Of the first block what stands before the
    /// first '%' (the binary header of a ".pfb") is dropped and one byte more than what is left is written;
    /// in all later blocks carriage returns become line feeds. A file is not copied onto itself, by whatever
    /// way its directory is named, and one that cannot be copied whole is skipped. Returns 1 in every case.
    int copy(GW_DIR* dest);
    /// Writes the converted bytes into `copy` and finishes it, without putting it in place. A failure is
    /// about the file that could not be read or written, this one or the copy.
    gw::Outcome copy_into(gw::NewFile& copy);

  private:
    std::array<char, BLOCK_SIZE + 1> block{};  // the byte behind a block is a NUL
};
