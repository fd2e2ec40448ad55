// SPDX-License-Identifier: MIT
//
// Names are bytes, and a terminal reads characters: what is none in the user's locale, and what controls the
// terminal, is not sent there.
#pragma once

#include <string>
#include <string_view>

namespace gw::fonts {

/// The text with "\xFF" for each byte that belongs to no character of the locale, or to one that controls the
/// terminal or turns the direction of writing. ASCII stays: its control characters are the lines of our
/// texts, and `escaped` has taken those of names. The C locale has the characters of UTF-8.
[[nodiscard]] std::string for_terminal(std::string_view text);

}  // namespace gw::fonts
