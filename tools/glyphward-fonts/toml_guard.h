// SPDX-License-Identifier: MIT
//
// What stands before the parser: the mistakes in TOML (https://toml.io/en/v1.0.0) for which tomlplusplus 3.3
// has no error, but behaviour that is undefined. It looks for white space where there are other characters,
// and reaches code that it believes unreachable; and it believes that "[" is followed by a key, and that no
// "}" stands where an array has a value.
#pragma once

#include <optional>
#include <string_view>

#include "texts/messages.h"

namespace gw::fonts {

/// A mistake, and its line, 1 for the first.
struct TomlMistake {
    int line;
    Message what;
};

/// The first of these mistakes: a character that is not in quotation marks or a comment and not printable
/// ASCII; one that is not ASCII behind a backslash in a text of several lines, with or without white space
/// between; a line that begins with "[" and goes on like no key; a "}" behind "[" or a comma. Nothing if
/// there is none, or if the parser finds another mistake before.
[[nodiscard]] std::optional<TomlMistake> mistake_before_parsing(std::string_view toml);

}  // namespace gw::fonts
