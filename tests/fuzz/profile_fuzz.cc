// SPDX-License-Identifier: MIT
//
// A profile. What is read is written and read back; what is refused says where and why.
#include <algorithm>
#include <filesystem>

#include "fuzz.h"
#include "glyphward-fonts/profile.h"

namespace {

using gw::fonts::Profile;
using gw::fonts::ProfileError;

bool is_same(const Profile::Alias& one, const Profile::Alias& other) {
    return one.directory == other.directory && one.name == other.name && one.font == other.font;
}

bool is_same(const Profile::Fontset& one, const Profile::Fontset& other) {
    return one.locale == other.locale && one.name == other.name && one.fonts == other.fonts;
}

template <class T>
bool are_same(const std::vector<T>& one, const std::vector<T>& other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](const T& a, const T& b) { return is_same(a, b); });
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    const std::string file = directory().write("p.toml", input);
    const auto read = fonts::read_profile(file);
    if (const auto* error = std::get_if<ProfileError>(&read); error != nullptr) {
        GW_MUST_HOLD(error->where.starts_with(file) && !error->why.empty(), input);
        return;
    }
    Profile profile = std::get<Profile>(read);
    const std::vector<std::string> files = profile.files;
    for (std::string& each : profile.files) {
        // What is beside the profile is named from there on.
        GW_MUST_HOLD(each.starts_with(directory().path()) || each + '/' == directory().path(), input);
        each = std::filesystem::path(each).lexically_relative(directory().path()).string();
    }
    const std::string text = fonts::profile_text(profile);
    const auto again = fonts::read_profile(directory().write("again.toml", text));
    GW_MUST_HOLD(std::holds_alternative<Profile>(again), text);
    const auto& back = std::get<Profile>(again);
    GW_MUST_HOLD(back.to == profile.to && back.paths == profile.paths, text);
    GW_MUST_HOLD(
        back.files == files && back.absent == profile.absent && are_same(back.aliases, profile.aliases),
        text);
    GW_MUST_HOLD(are_same(back.fontsets, profile.fontsets), text);
}
