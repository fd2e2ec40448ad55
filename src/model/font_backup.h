// SPDX-License-Identifier: MIT
//
// What a font is on the disk (its files, the index lines of their directories, the PostScript resource file),
// kept under hidden names while another font takes its place, so that it can be put back as it was.
#pragma once

#include <string>
#include <vector>

#include "core/failure.h"
#include "model/gw_font.h"

namespace gw {

class FontBackup {
  public:
    /// Keeps the font, or as much of it as can be kept: see `is_complete`.
    explicit FontBackup(const GWFont& font);
    /// Gives up what was kept.
    ~FontBackup();
    FontBackup(const FontBackup&) = delete;
    FontBackup& operator=(const FontBackup&) = delete;

    /// Done when `restore` can bring everything back, otherwise why it cannot.
    [[nodiscard]] Outcome is_complete() const { return complete; }
    /// Puts files and indexes back as they were. What cannot be put back is handed to the listener for
    /// failures, each by itself.
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
