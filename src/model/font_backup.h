// SPDX-License-Identifier: MIT
//
// What a font is on the disk (its files, the index lines of their directories, the PostScript resource file),
// kept under hidden names while another font takes its place, so that it can be put back as it was.
#pragma once

#include <string>
#include <vector>

#include "model/gw_font.h"

namespace gw {

class FontBackup {
  public:
    /// Keeps the font; says in one line on standard error when it cannot.
    explicit FontBackup(const GWFont& font);
    /// Gives up what was kept.
    ~FontBackup();
    FontBackup(const FontBackup&) = delete;
    FontBackup& operator=(const FontBackup&) = delete;

    /// Whether `restore` can bring everything back.
    [[nodiscard]] bool is_complete() const { return complete; }
    /// Puts files and indexes back as they were.
    void restore();

  private:
    struct Index {
        std::string path;
        std::string bytes;
    };
    [[nodiscard]] bool keep_file(const std::string& path);
    [[nodiscard]] bool keep_directory(const std::string& dir);

    std::vector<std::string> files;
    std::vector<Index> indexes;
    bool complete = true;
};

}  // namespace gw
