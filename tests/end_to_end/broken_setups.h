// SPDX-License-Identifier: MIT
//
// Thirteen ways in which a program does not find its font, or gets another one.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "end_to_end/pattern_font.h"
#include "support/temp_dir.h"

#include "end_to_end/desktop.h"
#include "end_to_end/victim.h"

namespace gw::e2e {

/// Where a set-up is made: below the user's home directory, and on the paths of server and user.
struct Ground {
    const test::TempDir& home;
    const Desktop& desktop;
    std::function<void(const std::string& dir)> configure;  ///< puts it at the beginning of the user's path

    /// A directory of the home directory, ending in "/".
    [[nodiscard]] std::string dir(const std::string& name) const { return home.file(name) + '/'; }
    /// Puts these fonts and their index into the directory; returns it.
    std::string fonts(const std::string& name, const std::vector<PatternFont>& fonts) const;
    /// Puts a directory at the beginning of the server's path.
    void serve(const std::string& element) const;
};

/// What mends a set-up.
enum class Mending {
    IN_PLACE,  ///< what the program itself can do
    INSTALL,   ///< the fonts of the directory are installed elsewhere
    PACKAGE,   ///< the administrator installs a package
};

struct BrokenSetUp {
    const char* name;
    Victim victim;
    std::string asked;      ///< the name that the program asks for
    std::string right;      ///< the full name of the font that it is to get
    bool complains = true;  ///< false when it gets a font, but the wrong one
    bool for_root = true;   ///< false when it is no obstacle for a server of the superuser
    void (*make)(const Ground& ground);
    Mending mending = Mending::IN_PLACE;
};

[[nodiscard]] const std::vector<BrokenSetUp>& broken_setups();

}  // namespace gw::e2e
