// SPDX-License-Identifier: MIT
//
// The names in a TrueType or OpenType font, which has them in several languages and encodings.
#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <initializer_list>
#include <string>

namespace gw {

/// The name of the first kind of `kinds` (TT_NAME_ID_...) that the font has, in UTF-8 as it stands there.
/// English goes before other languages, Unicode before older encodings. "" if the font has none.
[[nodiscard]] std::string sfnt_name(FT_Face face, std::initializer_list<int> kinds);

}  // namespace gw
