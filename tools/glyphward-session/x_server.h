// SPDX-License-Identifier: MIT
//
// The running X server, as far as its font path goes.
#pragma once

#include <memory>

#include "session_path.h"

struct _XDisplay;

namespace gw::session {

class XServer {
  public:
    /// Opens the display that the environment names. A connection that is lost later ends the process with
    /// status 1.
    XServer();

    [[nodiscard]] bool is_open() const { return display_ != nullptr; }
    /// Whether the server shares this host's file system: whether it is connected to by a local socket.
    [[nodiscard]] bool is_here() const;
    [[nodiscard]] Elements font_path() const;
    /// Sets the path, all of it or nothing; false when the server refused it. The server rereads directories
    /// whose index has changed. An empty path is refused: the server would take its default one.
    [[nodiscard]] bool set_font_path(const Elements& path) const;

  private:
    struct Closer {
        void operator()(_XDisplay* display) const;
    };
    std::unique_ptr<_XDisplay, Closer> display_;
};

/// What the environment says about the display, for a message: its name, or that there is none.
[[nodiscard]] std::string display_in_words();

}  // namespace gw::session
