// SPDX-License-Identifier: MIT
#include "end_to_end/other_program.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

namespace gw::e2e {

OtherProgram::OtherProgram(std::vector<std::string> command) {
    const std::string error_file = scratch_.write("errors", "");
    pid_ = ::fork();
    if (pid_ < 0) throw std::runtime_error("no process for " + command.front());
    if (pid_ > 0) return;
    ::setenv("LC_ALL", "C", 1);
    ::dup2(::open(error_file.c_str(), O_WRONLY | O_APPEND), STDERR_FILENO);
    std::vector<char*> argv;
    for (std::string& word : command) argv.push_back(word.data());
    argv.push_back(nullptr);
    ::execvp(argv.front(), argv.data());
    ::_exit(127);
}

OtherProgram::~OtherProgram() {
    if (has_ended()) return;
    ::kill(pid_, SIGTERM);
    ::waitpid(pid_, nullptr, 0);
}

bool OtherProgram::has_ended() {
    if (!has_ended_) has_ended_ = ::waitpid(pid_, nullptr, WNOHANG) != 0;
    return has_ended_;
}

}  // namespace gw::e2e
