// SPDX-License-Identifier: MIT
//
// The running X server and its font path.
#pragma once

#include <memory>

#include "fontpath/session_path.h"

struct _XDisplay;

namespace gw::session {

class XServer {
  public:
    /// Opens the display that the environment names. A connection that is lost later ends the process with
    /// status 1.
    XServer();

    [[nodiscard]] bool is_open() const { return display_ != nullptr; }
    /// The host whose directories the server reads: this one when the connection is a local socket.
    [[nodiscard]] PathHost host() const;
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
