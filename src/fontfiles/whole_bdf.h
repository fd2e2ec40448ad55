// SPDX-License-Identifier: MIT
//
// The parts of a BDF font.
#pragma once

#include "fontfiles/font_bytes.h"

namespace gw {

/// Whether a BDF font has as many characters as it says, each with as many rows as it says, and an end. The
/// failure is that of `is_whole`.
[[nodiscard]] Outcome is_whole_bdf(const FontBytes& bytes);

}  // namespace gw
