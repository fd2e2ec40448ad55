// SPDX-License-Identifier: MIT
//
// An ordinary user installs fonts for everyone: polkit asks for an administrator's password, and a program of
// ours, started by it, installs what is sent there. The windows stay alive meanwhile, and Cancel ends it.
#pragma once

#include <string>
#include <vector>

namespace installdlg {

/// Whether this user would install into `directory` in that way, and the machine can ask for a password.
[[nodiscard]] bool needs_password(const std::string& directory);

/// Why nothing can be installed into everyone's directory by this user, on a machine that cannot ask: what an
/// administrator would type. "" for other directories and for the superuser.
[[nodiscard]] std::string administrators_words(const std::string& directory);

/// Begins to install the fonts at these positions of the source (1-based, ascending).
void start_everyones_installation(std::vector<int> positions);

}  // namespace installdlg
