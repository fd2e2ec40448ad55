// SPDX-License-Identifier: MIT
//
// A file that can copy itself into another directory through its own transfer buffer.
#pragma once

#include <array>

#include "core/gw_file.h"

class GW_DIR;

class GW_BUF_FILE : public GW_FILE {
  public:
    using GW_FILE::GW_FILE;

    /// Copies this file under its own name into `target` (mode 0644), byte for byte. A file is never copied
    /// onto itself, and one that cannot be opened is skipped silently. Returns 1 in every case.
    int copy(GW_DIR* target);

  private:
    std::array<char, 1024> buffer{};
};
