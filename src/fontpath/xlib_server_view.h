// SPDX-License-Identifier: MIT
//
// An X server that is asked through Xlib, over a connection of its own: whatever becomes of that connection,
// the program and its windows live on.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "fontpath/server_view.h"

namespace gw {

/// How long the server may take for an answer; for a font set three times as long.
inline constexpr std::chrono::milliseconds ANSWER_LIMIT(5000);

/// Connects to the server `display`, as DISPLAY would name it; "" is what DISPLAY names. Null when no server
/// answers there within the limit. A server that later takes longer than the limit, or that ends, `answers`
/// no more. While the view exists, so does the child.
std::unique_ptr<ServerView> connect_to_server(const std::string& display = "",
                                              std::chrono::milliseconds limit = ANSWER_LIMIT);

}  // namespace gw
