// SPDX-License-Identifier: MIT
//
// The running X server and its font path.
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
    /// Whether the server uses this host's file system, which is so when the connection is a local socket.
    [[nodiscard]] bool is_here() const;
    [[nodiscard]] Elements font_path() const;
    /// Sets the whole path; false when the server refused it, which leaves the old one. The server rereads
    /// directories whose index has changed. An empty path is refused here, because the server would use its
    /// default path instead.
    [[nodiscard]] bool set_font_path(const Elements& path) const;

  private:
    struct Closer {
        void operator()(_XDisplay* display) const;
    };
    std::unique_ptr<_XDisplay, Closer> display_;
};

/// The display that the environment names, in words for a message; or that it names none.
[[nodiscard]] std::string display_in_words();

}  // namespace gw::session
