// SPDX-License-Identifier: MIT
#include "platform/shell_command.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <utility>

#include "core/long_work.h"
#include "core/text.h"
#include "platform/child_process.h"

namespace gw {

namespace {

bool is_plain(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
           std::string_view("_./+,:@%=-").find(c) != std::string_view::npos;
}

std::string default_command_path() {
    std::string path(::confstr(_CS_PATH, nullptr, 0), '\0');
    ::confstr(_CS_PATH, path.data(), path.size());
    while (path.ends_with('\0')) path.pop_back();
    return path;
}

bool names_dir(std::string_view path, std::string_view dir) {
    for (;;) {
        const std::string_view element = path.substr(0, path.find(':'));
        if (without_trailing_slashes(element) == dir) return true;
        if (element.size() == path.size()) return false;
        path.remove_prefix(element.size() + 1);
    }
}

using Clock = std::chrono::steady_clock;

constexpr int FIRST_SIGNAL = 128;  // a shell's own number for a command that was ended by a signal

std::chrono::milliseconds patience = LONG_WORK;

struct Ended {
    int status = -1;
    bool was_killed = false;
};

/// Starts the shell in a process group of its own, with the usual signals. Returns an `errno` or 0.
int start_shell(const std::string& text, pid_t& child) {
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t files;
    if (const int error = ::posix_spawnattr_init(&attributes); error != 0) return error;
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    sigset_t usual;
    ::sigemptyset(&usual);
    ::posix_spawnattr_setsigmask(&attributes, &usual);
    for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGPIPE}) ::sigaddset(&usual, signal);
    ::posix_spawnattr_setsigdefault(&attributes, &usual);
    ::posix_spawnattr_setpgroup(&attributes, 0);
    ::posix_spawnattr_setflags(&attributes,
                               POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    std::string shell = "sh";
    std::string option = "-c";
    std::string command = text;
    char* const words[] = {shell.data(), option.data(), command.data(), nullptr};
    const int error = ::posix_spawn(&child, "/bin/sh", &files, &attributes, words, environ);
    ::posix_spawn_file_actions_destroy(&files);
    ::posix_spawnattr_destroy(&attributes);
    return error;
}

/// A command that cannot be killed at once is left behind. Returns its wait status.
int kill_shell(pid_t child) {
    ::kill(-child, SIGKILL);
    return end_of_killed_child(child, Clock::now() + LAST_MOMENT).value_or(SIGKILL);
}

Ended wait_for(pid_t child, std::chrono::milliseconds limit) {
    if (const std::optional<int> status = end_of_child(child, Clock::now() + limit)) return {*status, false};
    return {kill_shell(child), true};
}

Ended run_text(const std::string& text, std::chrono::milliseconds limit) {
    collect_killed_children();
    pid_t child = 0;
    if (const int error = start_shell(text, child); error != 0) {
        errno = error;
        return {};
    }
    return wait_for(child, std::min(limit, patience));
}

}  // namespace

std::string shell_quoted(std::string_view argument) {
    if (!argument.empty() && std::all_of(argument.begin(), argument.end(), is_plain))
        return std::string(argument);
    std::string quoted = "'";
    for (const char c : argument) {
        if (c == '\'') {
            quoted += R"('\'')";
        } else {
            quoted += c;
        }
    }
    return quoted + '\'';
}

std::string shell_text(std::string_view format, std::initializer_list<std::string_view> arguments) {
    std::string text;
    const auto* next = arguments.begin();
    for (;;) {
        const std::size_t place = format.find("%s");
        text += format.substr(0, place);
        if (place == std::string_view::npos) return text;
        text += shell_quoted(next != arguments.end() ? *next++ : std::string_view());
        format.remove_prefix(place + 2);
    }
}

void add_command_dir(std::string_view dir) {
    const char* set = std::getenv("PATH");
    std::string path = set != nullptr && *set != '\0' ? set : default_command_path();
    if (names_dir(path, dir)) return;
    (path += ':') += dir;
    ::setenv("PATH", path.c_str(), 1);
}

int run_shell(std::string_view format, std::initializer_list<std::string_view> arguments,
              std::chrono::milliseconds limit) {
    return run_text(shell_text(format, arguments), limit).status;
}

Result<int> run_shell_text(const std::string& text, std::chrono::milliseconds limit) {
    return RunningCommand(text).number(limit);
}

Outcome run_command(std::string_view format, std::initializer_list<std::string_view> arguments,
                    std::chrono::milliseconds limit) {
    return RunningCommand(shell_text(format, arguments)).end(limit);
}

RunningCommand::RunningCommand(std::string text) : text_(std::move(text)) {
    collect_killed_children();
    error_ = start_shell(text_, child_);
    if (error_ != 0) child_ = 0;
}

RunningCommand::~RunningCommand() {
    if (child_ != 0) kill_shell(child_);
}

Result<int> RunningCommand::number(std::chrono::milliseconds limit) {
    if (error_ != 0) return Failure::of_system(text_, error_);
    const Ended ended = wait_for(std::exchange(child_, 0), std::min(limit, patience));
    if (ended.was_killed)
        return Failure{.subject = text_, .reason = is_given_up() ? Reason::GIVEN_UP : Reason::NO_ANSWER};
    if (ended.status == -1) return Failure::of_system(text_, ECHILD);
    return WIFEXITED(ended.status) ? WEXITSTATUS(ended.status) : FIRST_SIGNAL + WTERMSIG(ended.status);
}

Outcome RunningCommand::end(std::chrono::milliseconds limit) {
    const Result<int> ended = number(limit);
    if (!ended) return ended.failure();
    if (*ended == 0) return done();
    return Failure{.subject = text_, .reason = Reason::COMMAND_FAILED, .detail = std::to_string(*ended)};
}

void set_command_patience(std::chrono::milliseconds longest) {
    patience = longest;
}

}  // namespace gw
