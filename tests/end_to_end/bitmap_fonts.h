// SPDX-License-Identifier: MIT
//
// Bitmap fonts that no machine has: copies of staged fonts under another family name.
#pragma once

#include <string>

namespace gw::e2e {

/// A font of 8, 10, 12, 14, 18 or 24 points. The family name must have nine letters.
struct BitmapFont {
    std::string family;
    int points = 24;

    /// The bytes of its file.
    [[nodiscard]] std::string bytes() const;
    /// The name by which the server lists it, with wildcards in the fields that depend on the size.
    [[nodiscard]] std::string xlfd() const;
    [[nodiscard]] std::string file_name() const;
    /// Writes the file into the directory, which is made if needed, and returns the file's path.
    std::string write_to(const std::string& dir) const;
};

/// Writes the directory's fonts.dir.
void index_fonts(const std::string& dir);

}  // namespace gw::e2e
