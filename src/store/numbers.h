// SPDX-License-Identifier: MIT
//
// Numbers in the files that we keep in a font directory.
#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace gw {

/// The decimal number that the whole word is; nothing for anything else.
template <class Number>
[[nodiscard]] std::optional<Number> number_in(std::string_view word) {
    Number number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (error != std::errc() || end != word.data() + word.size()) return std::nullopt;
    return number;
}

}  // namespace gw
