// SPDX-License-Identifier: MIT
#include "end_to_end/program.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "end_to_end/desktop.h"
#include "support/window_fonts.h"

namespace gw::e2e {

bool is_as_ever() {
    const char* resources = std::getenv("GLYPHWARD_RESOURCES");
    return resources != nullptr && std::string_view(resources) == "off";
}

int list_line_height() {
    return is_as_ever() ? 18 : 16;
}

Program::Program(const std::map<std::string, std::optional<std::string>>& environment,
                 const std::vector<std::string>& arguments) {
    std::vector<std::string> command = {INSTALLED_PROGRAM, "-xrm",
                                        "*multiClickTime: " + std::to_string(DOUBLE_CLICK.count())};
    if (is_as_ever()) {
        for (const char* resource : {"gw_modern_fonts", "gw_modern_windows"})
            command.insert(command.end(), {"-xrm", std::string("Glyphward*") + resource + ": False"});
    }
    command.insert(command.end(), arguments.begin(), arguments.end());
    // In this corner the top of its list is not covered by its dialogs, which open in the middle of the
    // screen.
    command.insert(command.end(), {"-geometry", "+0+0"});
    const std::string error_file = scratch_.file("errors");
    pid_ = ::fork();
    if (pid_ != 0) return;

    ::setenv("HOME", home_.path().substr(0, home_.path().size() - 1).c_str(), 1);
    test::use_window_fonts();
    for (const auto& [name, value] : environment) {
        if (value) {
            ::setenv(name.c_str(), value->c_str(), 1);
        } else {
            ::unsetenv(name.c_str());
        }
    }
    // Where processes may be traced by their parents only, this one may be traced by a brother.
    ::prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY, 0, 0, 0);
    const int errors = ::open(error_file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ::dup2(errors, STDERR_FILENO);
    std::vector<char*> argv;
    for (std::string& word : command) argv.push_back(word.data());
    argv.push_back(nullptr);
    ::execv(INSTALLED_PROGRAM, argv.data());
    ::_exit(127);
}

Program::~Program() {
    if (!is_running()) return;
    ::kill(pid_, SIGKILL);
    reap(0);
}

bool Program::reap(int options) {
    int status = 0;
    if (!status_ && ::waitpid(pid_, &status, options) == pid_) status_ = status;
    return status_.has_value();
}

bool Program::is_running() {
    return !reap(WNOHANG);
}

std::optional<int> Program::wait_for_exit(int seconds) {
    if (!wait_until([this] { return !is_running(); }, seconds) || !WIFEXITED(*status_)) return std::nullopt;
    return WEXITSTATUS(*status_);
}

std::string Program::errors() const {
    return scratch_.read("errors");
}

}  // namespace gw::e2e
