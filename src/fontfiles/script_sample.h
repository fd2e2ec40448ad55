// SPDX-License-Identifier: MIT
//
// The letters that a sample of a font shows: those of the user's text, or, for a font that lacks them,
// letters of its own script.
#pragma once

#include <string>
#include <string_view>

#include "fontfiles/font_face.h"

namespace gw {

/// `wanted` (UTF-8) if the font has its letters; else the first letters of the script that the font has most
/// of, Latin before all others; else its first signs. At most `SAMPLE_LETTERS` characters, in UTF-8; "" for a
/// font without characters.
[[nodiscard]] std::string sample_letters(const FontFace& font, std::string_view wanted);

inline constexpr std::size_t SAMPLE_LETTERS = 12;

}  // namespace gw
