// SPDX-License-Identifier: MIT
//
// A second X server with another screen and the sandbox's font path. While the object exists, DISPLAY names
// this server. Include it last.
#pragma once

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/session.h"

namespace gw::test {

class OwnServer {
  public:
    /// Starts a server whose screen has this size in pixels and this resolution in dots per inch.
    OwnServer(int width, int height, int dpi) {
        std::string fonts;
        for (const std::string& element : Session().font_path())
            fonts += (fonts.empty() ? "" : ",") + element;
        const std::string screen = std::to_string(width) + 'x' + std::to_string(height) + "x24";
        int ends[2];
        if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
        pid_ = ::fork();
        if (pid_ == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGTERM);
            ::close(ends[0]);
            const std::string number_to = std::to_string(ends[1]);
            const std::string dots = std::to_string(dpi);
            ::execlp("Xvfb", "Xvfb", "-displayfd", number_to.c_str(), "-screen", "0", screen.c_str(), "-dpi",
                     dots.c_str(), "-fp", fonts.c_str(), "-noreset", "-nolisten", "tcp", nullptr);
            ::_exit(127);
        }
        ::close(ends[1]);
        const std::string number = line_from(ends[0]);
        ::close(ends[0]);
        if (number.empty()) throw std::runtime_error("Xvfb did not start");
        ::setenv("DISPLAY", (':' + number).c_str(), 1);
    }
    ~OwnServer() {
        ::kill(pid_, SIGTERM);
        ::waitpid(pid_, nullptr, 0);
    }
    OwnServer(const OwnServer&) = delete;
    OwnServer& operator=(const OwnServer&) = delete;

    [[nodiscard]] pid_t process() const { return pid_; }

  private:
    static std::string line_from(int descriptor) {
        std::string line;
        for (char c = 0; ::read(descriptor, &c, 1) == 1 && c != '\n';) line += c;
        return line;
    }
    pid_t pid_ = 0;
};

}  // namespace gw::test
