// SPDX-License-Identifier: MIT
//
// BDF fonts that no machine has. Each character of ASCII is a pattern of 8 pixels in a row, which its code
// and the font's own number give, so that no two fonts look alike.
#pragma once

#include <string>

namespace gw::e2e {

struct PatternFont {
    std::string family;  ///< of the foundry "own"
    std::string weight = "medium";
    int pixels = 12;       ///< its height
    int decipoints = 120;  ///< what that is called
    int resolution = 75;
    std::string charset = "iso8859-1";
    unsigned number = 0;  ///< that its look comes from

    [[nodiscard]] std::string xlfd() const;
    /// The bytes of its file.
    [[nodiscard]] std::string bdf() const;
};

}  // namespace gw::e2e
