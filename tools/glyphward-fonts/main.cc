// SPDX-License-Identifier: MIT
//
// The fonts of an X installation, from the command line.
#include <fcntl.h>
#include <unistd.h>

#include <clocale>
#include <csignal>

#include "glyphward-fonts/command_line.h"

namespace {

/// A job may be started with the standard descriptors closed. Without this, a file that is opened later would
/// become standard input, output or error.
void open_standard_descriptors() {
    int fd = ::open("/dev/null", O_RDWR);
    while (fd >= 0 && fd <= STDERR_FILENO) fd = ::open("/dev/null", O_RDWR);
    if (fd >= 0) ::close(fd);
}

}  // namespace

int main(int argc, char** argv) {
    open_standard_descriptors();
    std::setlocale(LC_ALL, "");
    // Who reads only the beginning of a list closes the pipe. That is no failure.
    (void)std::signal(SIGPIPE, SIG_IGN);
    return gw::fonts::run(argc, argv);
}
