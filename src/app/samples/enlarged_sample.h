// SPDX-License-Identifier: MIT
//
// The sample of a bitmap font with each of its pixels enlarged by a whole factor, in the place of the field
// with the sample. On a screen with many dots per inch the size that programs get is too small to judge a
// font by it.
#pragma once

#include <string>

#include "app/samples/sample_font.h"

#include <X11/Intrinsic.h>

namespace gw {

/// By how much samples are enlarged on a screen of this resolution (dots per inch): 1 below 144.
[[nodiscard]] int enlargement(int resolution);

/// Makes the picture, which covers the field while it shows anything, and the button that shows and hides it,
/// at the bottom of the form on the right. Does nothing on a screen that needs no enlargement.
void create_enlarged_sample(Widget form, Widget field, int factor);

/// The field shows `text` in this font of bitmaps now; null when it shows none. The font must stay until the
/// next call. Does nothing for a field without a picture.
void enlarge_sample(Widget field, const SampleFont* font, const std::string& text);

}  // namespace gw
