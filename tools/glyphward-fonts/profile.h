// SPDX-License-Identifier: MIT
//
// What a machine is to have: a small TOML file, with the fonts beside it (see docs/PROFILE.md).
#pragma once

#include <map>
#include <string>
#include <variant>
#include <vector>

#include "core/failure.h"

namespace gw::fonts {

/// The version of the format.
inline constexpr int PROFILE_VERSION = 1;

struct Profile {
    struct Alias {
        std::string directory;  ///< "" for the destination of the fonts
        std::string name;
        std::string font;
    };
    struct Fontset {
        std::string locale;
        std::string name;
        std::vector<std::string> fonts;  ///< XLFD names
    };

    std::string to = "everyone";      ///< "everyone", "me", or a directory
    std::vector<std::string> files;   ///< absolute paths of font files and directories
    std::vector<std::string> absent;  ///< patterns for rows that the destination shall not have
    /// Whole font paths, by "host", "installation", "me" (behind those of others) and "front" (before them).
    std::map<std::string, std::vector<std::string>> paths;
    std::vector<Alias> aliases;
    std::vector<Fontset> fontsets;
};

/// Reads the file at `path`. A key that is not known, or a value of another kind, is refused: the failure's
/// subject then is "PATH:LINE", and `why` says what it is.
struct ProfileError {
    std::string where;
    std::string why;
};
[[nodiscard]] std::variant<Profile, ProfileError> read_profile(const std::string& path);

/// The text of a profile; paths of files are written as they are.
[[nodiscard]] std::string profile_text(const Profile& profile);

}  // namespace gw::fonts
