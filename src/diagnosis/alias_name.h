// SPDX-License-Identifier: MIT
//
// The name that an alias must have. X servers compare a pattern with the names of aliases as with those of
// fonts, so an alias for a pattern is called by a name that the pattern matches.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace gw::diagnosis {

struct AliasName {
    std::string name;  ///< of the alias
    std::string font;  ///< that it stands for, in the size that was asked for if it has any size
};

/// The alias by which programs that ask for `wanted`, a name or a pattern, get the font `font`, which is a
/// full name. Where the pattern leaves a field open, the alias has the font's. None when no alias can have
/// the name, or the font itself has it.
[[nodiscard]] std::optional<AliasName> alias_name(std::string_view wanted, std::string_view font);

/// Whether an X server takes `name` for a name that matches: "*" for any characters, "?" for one, letters in
/// upper and lower case being the same.
[[nodiscard]] bool server_matches(std::string_view pattern, std::string_view name);

}  // namespace gw::diagnosis
