// SPDX-License-Identifier: MIT
//
// A backup of a font on the disk (its files, the indexes of their directories, the PostScript resource file)
// while another font replaces it. The files are kept under hidden names.
#pragma once

#include <string>
#include <vector>

#include "core/failure.h"
#include "model/gw_font.h"

namespace gw {

class FontBackup {
  public:
    /// Makes the backup, or as much of it as possible: see `is_complete`.
    explicit FontBackup(const GWFont& font);
    /// Removes the backup.
    ~FontBackup();
    FontBackup(const FontBackup&) = delete;
    FontBackup& operator=(const FontBackup&) = delete;

    /// A success when `restore` can restore everything, otherwise the failure.
    [[nodiscard]] Outcome is_complete() const { return complete; }
    /// Restores files and indexes. The listener for failures gets each one that cannot be
    /// restored.
    void restore();

  private:
    struct Index {
        std::string path;
        std::string bytes;
    };
    Outcome keep_file(const std::string& path);
    Outcome keep_directory(const std::string& dir);

    std::vector<std::string> files;
    std::vector<Index> indexes;
    Outcome complete;
};

}  // namespace gw
