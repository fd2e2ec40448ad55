// SPDX-License-Identifier: MIT
//
// What can be added to a font path, and why something cannot.
#pragma once

#include <string>

#include "app/font_path/edited_path.h"

namespace gw {

/// Why `element` cannot be added to the path, in the user's language; "" when it can. `origin` says where it
/// would come: a user's file cannot hold every name.
[[nodiscard]] std::string why_not_added(const std::string& element, const EditedPath& path, Origin origin);

}  // namespace gw
