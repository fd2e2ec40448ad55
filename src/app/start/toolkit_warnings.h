// SPDX-License-Identifier: MIT
//
// What the toolkit warns about, on standard error.
#pragma once

#include <string_view>

namespace gw {

/// Whether a warning of the toolkit is only about fonts of the interface that the server does not have.
[[nodiscard]] bool is_font_noise(std::string_view warning);

/// Prints the toolkit's warnings from now on, except those about fonts of the interface and about a locale
/// that the machine does not have. The superuser gets the same ones as everybody.
void listen_to_toolkit();

}  // namespace gw
