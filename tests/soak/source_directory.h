// SPDX-License-Identifier: MIT
//
// Fonts to install, which the server can open and no machine has.
#pragma once

#include "soak/font_model.h"
#include "soak/random.h"
#include "support/temp_dir.h"

namespace gw::soak {

inline constexpr const char* OURS = "Soak ";  ///< the names of our fonts begin so in lists

/// A directory of fonts to install, some of them with the names or the file names of those of others.
struct SourceDirectory {
    gw::test::TempDir dir;
    Source fonts;

    /// Makes some of the fonts; their bytes name the source. With `modern` all are whole fonts, and outlines
    /// have the names that mkfontscale gives them.
    void fill(int number, Random& random, bool modern);
};

}  // namespace gw::soak
