// SPDX-License-Identifier: MIT
//
// The font path of the running server, which other programs change. The server sends no event for it, so it
// is asked while a window is on the screen that shows something of it.
#pragma once

#include <string>
#include <vector>

#include "app/kit/signal.h"
#include "fontpath/server_view.h"

#include <X11/Intrinsic.h>

namespace gw {

/// A connection to the X server of the windows besides theirs, and the process that has it, as long as there
/// is such an object. Several share one.
class ServerUse {
  public:
    ServerUse();
    ~ServerUse();
    ServerUse(const ServerUse&) = delete;
    ServerUse& operator=(const ServerUse&) = delete;

    /// Null when the server takes no such connection, or has taken too long for an answer.
    [[nodiscard]] static ServerView* view();
};

/// Whether the server sees the files that this program sees. It is asked once.
[[nodiscard]] ServerPlace server_place();

/// The server's font path, as it was when it was last asked. Its directories have been asked, too (see
/// `find_silent`).
[[nodiscard]] const std::vector<std::string>& served_path();
/// Asks it now.
void ask_server();
/// The server has given this answer to somebody else.
void take_served_path(std::vector<std::string> path);
/// Emitted when the path is another one than before.
Signal<>& served_path_changes();

/// Emitted every two seconds while one of the windows is on the screen that were given to
/// `ask_server_while_shown`, and when the pointer enters one of them. The server has just been asked.
Signal<>& server_ticks();
/// The server is asked at these times from now on. `shell` lives as long as the program.
void ask_server_while_shown(Widget shell);

}  // namespace gw
