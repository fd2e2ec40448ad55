// SPDX-License-Identifier: MIT
//
// An ordinary user's installation for everyone, with an administrator's password.
#pragma once

#include "glyphward-fonts/commands.h"

namespace gw::fonts {

/// Whether the command is for everyone but its user is not the superuser, who needs no password.
[[nodiscard]] bool needs_password(const InstallOptions& options, const Settings& settings);

/// Says what `install_for_everyone` would do, and asks nobody.
Status try_for_everyone(const InstallOptions& options, Report& report);

/// Sends the fonts to the program that installs them, and reports what that says.
Status install_for_everyone(const InstallOptions& options, Report& report);

}  // namespace gw::fonts
