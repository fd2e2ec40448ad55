// SPDX-License-Identifier: MIT
//
// What a package manager answers about the owners of files. The first line of an input is a path that is
// asked about, the rest is the answer.
#include <fnmatch.h>

#include "fuzz.h"
#include "platform/package_owner.h"

namespace {

void try_dpkg(const std::string& path, std::string_view answer) {
    for (const auto& [file, package] : gw::parse_dpkg_answer(answer)) {
        GW_MUST_HOLD(file.starts_with('/') && file.find('\n') == std::string::npos, answer);
        GW_MUST_HOLD(!package.empty(), answer);
        GW_MUST_HOLD(answer.find(package + ": " + file) != std::string_view::npos, answer);
    }
    // A line of ours behind whatever was answered is understood, unless the file was named before.
    std::string more(answer);
    if (!more.empty() && !more.ends_with('\n')) more += '\n';
    const gw::PackageOwners owners = gw::parse_dpkg_answer(more + "libfonts1:amd64, other: " + path + '\n');
    GW_MUST_HOLD(owners.contains(path), answer);
}

void try_rpm(const std::string& path, std::string_view answer) {
    const std::vector<std::string> paths = {path, path + "/b"};
    for (const auto& [file, package] : gw::parse_rpm_answer(answer, paths)) {
        GW_MUST_HOLD(file == paths[0] || file == paths[1], answer);
        GW_MUST_HOLD(!package.empty() && package.find_first_of(" \t/\n") == std::string::npos, answer);
    }
    const gw::PackageOwners owners = gw::parse_rpm_answer("fonts-a\nfonts-b\n", paths);
    GW_MUST_HOLD(owners.contains(path) && owners.at(path) == "fonts-a", path);
}

/// The pattern means this path and no other one.
void try_pattern(const std::string& path) {
    const std::string pattern = gw::dpkg_pattern(path);
    GW_MUST_HOLD(::fnmatch(pattern.c_str(), path.c_str(), 0) == 0, path);
    GW_MUST_HOLD(::fnmatch(pattern.c_str(), (path + 'x').c_str(), 0) != 0, path);
    GW_MUST_HOLD(::fnmatch(pattern.c_str(), path.substr(0, path.size() - 1).c_str(), 0) != 0, path);
}

}  // namespace

void gw::fuzz::try_input(std::string_view input) {
    std::string_view answer = input;
    const std::string path = '/' + std::string(before_nul(take_line(answer)));
    try_pattern(path);
    try_dpkg(path, answer);
    try_rpm(path, answer);
}
