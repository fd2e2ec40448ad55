// SPDX-License-Identifier: MIT
#include "web/child.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <system_error>

#include "end_to_end/waiting.h"
#include "support/temp_dir.h"

namespace gw::web {

Child::Child(std::vector<std::string> command, std::string output_file, const std::function<void()>& prepare)
    : output_file_(std::move(output_file)) {
    std::vector<char*> argv;
    for (std::string& word : command) argv.push_back(word.data());
    argv.push_back(nullptr);
    pid_ = ::fork();
    if (pid_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (pid_ != 0) return;

    ::setsid();
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) ::signal(number, SIG_DFL);
    const int input = ::open("/dev/null", O_RDONLY);
    const int output = ::open(output_file_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ::dup2(input, STDIN_FILENO);
    ::dup2(output, STDOUT_FILENO);
    ::dup2(output, STDERR_FILENO);
    prepare();
    ::execvp(argv[0], argv.data());
    ::_exit(127);
}

Child::~Child() {
    if (!is_running()) return;
    signal(SIGTERM);
    if (wait_for_exit()) return;
    signal(SIGKILL);
    wait_for_exit();
}

void Child::signal(int number) const {
    ::kill(pid_, number);
}

bool Child::is_running() {
    int status = 0;
    if (!status_ && ::waitpid(pid_, &status, WNOHANG) == pid_) status_ = status;
    return !status_;
}

std::optional<int> Child::wait_for_exit(int seconds) {
    if (!e2e::wait_until([this] { return !is_running(); }, seconds)) return std::nullopt;
    return WIFEXITED(*status_) ? WEXITSTATUS(*status_) : 128 + WTERMSIG(*status_);
}

std::string Child::output() const {
    return test::TempDir::read_bytes(output_file_);
}

}  // namespace gw::web
