// SPDX-License-Identifier: MIT
//
// The questions about fonts as Xlib puts them to the X server. Xlib waits for an answer for ever and ends the
// process when the connection breaks, so this runs in a process of its own (see xlib_server_view.h).
#pragma once

#include <string>
#include <string_view>

namespace gw {

enum class ServerQuestion : char { ALIVE, FONT_PATH, NAMES, OPEN, FONTSET, SET_FONT_PATH };

/// Answers questions from `socket` about the server `display` ("" for the one that DISPLAY names), until the
/// other end is closed or the connection to the server breaks. First says who the server is. Only for a child
/// process; the layout of the messages is in the source.
[[noreturn]] void serve_questions(int socket, const std::string& display);

/// Sends a message as a whole, its length first; false when nobody reads it.
bool send_message(int socket, std::string_view bytes);

/// What a message begins with.
using MessageLength = unsigned;

}  // namespace gw
