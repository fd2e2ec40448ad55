// SPDX-License-Identifier: MIT
//
// Connects a test to the sandbox's X server, and restores the server's font path at the end. Include it last.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "fontpath/session_display.h"

namespace gw::test {

class Session {
  public:
    Session() : display_(XOpenDisplay(nullptr)) {
        if (display_ == nullptr) throw std::runtime_error("these tests want the sandbox's X server");
        before_ = font_path();
        set_font_path_display(display_);
    }
    ~Session() {
        std::vector<char*> path;
        for (std::string& element : before_) path.push_back(element.data());
        XSetFontPath(display_, path.data(), static_cast<int>(path.size()));
        set_font_path_display(nullptr);
        XCloseDisplay(display_);
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    [[nodiscard]] Display* display() const { return display_; }
    [[nodiscard]] std::vector<std::string> font_path() const {
        int count = 0;
        char** path = XGetFontPath(display_, &count);
        std::vector<std::string> elements(path, path + count);
        XFreeFontPath(path);
        return elements;
    }

  private:
    Display* display_;
    std::vector<std::string> before_;
};

}  // namespace gw::test
