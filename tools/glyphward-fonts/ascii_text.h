// SPDX-License-Identifier: MIT
//
// A text for a parser that shall see nothing but ASCII. tomlplusplus 3.3 looks for white space beyond ASCII,
// and takes code for unreachable that most letters lead to.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace gw::fonts {

/// A text whose bytes beyond ASCII are written as a mark and two hexadecimal digits. The mark is a character
/// that the text does not have, so that it is known in what the parser finds.
class AsciiText {
  public:
    /// Nothing if the text has bytes beyond ASCII and every character that can be the mark (`MARKS`).
    static std::optional<AsciiText> from(std::string_view text);

    [[nodiscard]] const std::string& text() const { return text_; }
    /// What a part of the text, or something that was made of it, is with its own bytes.
    [[nodiscard]] std::string original(std::string_view part) const;

    /// None of them means anything in TOML (https://toml.io/en/v1.0.0), nor is a part of a bare key.
    static constexpr std::string_view MARKS = "~@%!$&*;?^|`<>()/";

  private:
    std::string text_;
    std::optional<char> mark_;
};

}  // namespace gw::fonts
