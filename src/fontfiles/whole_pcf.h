// SPDX-License-Identifier: MIT
//
// The extent of the tables of a PCF font.
#pragma once

#include "fontfiles/font_bytes.h"

namespace gw {

/// Whether all tables of a PCF font are in the file. What the tables say themselves counts: the sizes in the
/// table of contents are too large in many fonts that are whole.
[[nodiscard]] bool is_whole_pcf(const FontBytes& bytes);

}  // namespace gw
