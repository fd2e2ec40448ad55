// SPDX-License-Identifier: MIT
//
// The line at the bottom of the main window, where every task says what it has done.
#pragma once

#include <string>

#include <X11/Intrinsic.h>

extern Widget wi_main_window_status_label;  ///< null until the main window has been created

namespace gw {

/// What the line says after a deletion and after an installation.
[[nodiscard]] std::string deleted_text(unsigned fonts);
[[nodiscard]] std::string installed_text(unsigned fonts);

}  // namespace gw
