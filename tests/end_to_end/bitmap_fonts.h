// SPDX-License-Identifier: MIT
//
// Bitmap fonts that no machine has: those of the staged installation under a family name of the test's own.
#pragma once

#include <string>

namespace gw::e2e {

/// A font of a family with a name of nine letters, in 8, 10, 12, 14, 18 or 24 points.
struct BitmapFont {
    std::string family;
    int points = 24;

    /// The bytes of its file.
    [[nodiscard]] std::string bytes() const;
    /// The name by which the server lists it, with the fields that follow from the size left open.
    [[nodiscard]] std::string xlfd() const;
    [[nodiscard]] std::string file_name() const;
    /// Writes the file into the directory, which is made; its path.
    std::string write_to(const std::string& dir) const;
};

/// Writes the directory's fonts.dir.
void index_fonts(const std::string& dir);

}  // namespace gw::e2e
