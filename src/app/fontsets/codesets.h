// SPDX-License-Identifier: MIT
//
// The sample text of a fontset, split by codesets and put together again.
#pragma once

#include <string>
#include <vector>

namespace gw {

/// The codeset of a wide character: 0 for ASCII; 1, 2 and 3 by two bits that some C libraries set. With other
/// C libraries every character has codeset 0.
[[nodiscard]] unsigned codeset_of(unsigned long wide_character);

/// Splits `text`, in the current locale, by codesets: one text for each of 0 to `count` - 1. Characters of
/// other codesets, and bytes that are no character of the locale, go into the text of codeset 0, so that
/// nothing is lost.
[[nodiscard]] std::vector<std::string> split_by_codeset(const std::string& text, unsigned count);

}  // namespace gw
