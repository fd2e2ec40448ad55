// SPDX-License-Identifier: MIT
//
// Colours that say how something is, besides words that say the same.
#pragma once

#include <X11/Intrinsic.h>
#include <Xm/Xm.h>

namespace gw {

enum class Tone { PLAIN, GOOD, DOUBTFUL, BAD, FAINT };

/// Names the rendition of a tone, also the plain one's: the toolkit frees a string twice in which only one of
/// two parts has a rendition, when somebody asks for its text.
[[nodiscard]] const char* tag_of(Tone tone);

/// Copies a render table, with a rendition for each tone. `columns` is null for texts without columns. On a
/// screen without colours all tones look alike. The caller owns the table.
[[nodiscard]] XmRenderTable with_tones(Widget list, XmRenderTable fonts, XmTabList columns);

}  // namespace gw
