// SPDX-License-Identifier: MIT
//
// Which letters the texts of a window get so that no two have the same. It knows no windows.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace gw {

inline constexpr char NO_LETTER = '\0';

/// For each text, the letter that it gets: `NO_LETTER` where no letter is left. `names` are used for texts
/// without Latin letters. `taken` are not given to anybody.
[[nodiscard]] std::string free_letters(const std::vector<std::string>& texts,
                                       const std::vector<std::string>& names, std::string_view taken);

[[nodiscard]] bool has_latin(const std::string& text);
[[nodiscard]] char lower_letter(char c);

}  // namespace gw
