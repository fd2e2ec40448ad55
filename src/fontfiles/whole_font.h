// SPDX-License-Identifier: MIT
//
// Whether a font file is all there. FreeType is lenient: it opens fonts of which a part is missing, which an
// X server then refuses or draws wrongly. So what a file says about its own parts is compared with its size.
#pragma once

#include "fontfiles/font_bytes.h"

namespace gw {

/// Fails with `Reason::CUT_OFF` for a part that lies behind the end of the file or a missing end, and with
/// `Reason::DAMAGED_FONT` for parts that contradict each other. The file's first bytes say what it is; a
/// success for what is no font.
[[nodiscard]] Outcome is_whole(const FontBytes& bytes);

}  // namespace gw
