// SPDX-License-Identifier: MIT
#include "glyphward-fonts/terminal_agent.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <string>

#include "core/directory.h"
#include "platform/child_process.h"

namespace gw::fonts {

namespace {

constexpr const char* AGENT = "pkttyagent";
constexpr int NOTICE = 3;               // the descriptor that the program closes when it is ready
constexpr int PATIENCE = 10000;         // milliseconds
constexpr std::chrono::seconds END(1);  // until it has given the terminal back

bool has_terminal() {
    return Descriptor(::open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY)).is_open();
}

}  // namespace

TerminalAgent::TerminalAgent() {
    std::array<int, 2> pipe{};
    if (!has_terminal() || ::pipe2(pipe.data(), O_CLOEXEC) != 0) return;
    const Descriptor ready(pipe[0]);
    Descriptor notice(pipe[1]);
    posix_spawn_file_actions_t files;
    ::posix_spawn_file_actions_init(&files);
    // A descriptor that is copied to its own number stays open, too.
    ::posix_spawn_file_actions_adddup2(&files, notice.get(), NOTICE);
    // Not as a fallback: a fallback is not asked where the login manager knows no session.
    std::array<std::string, 5> words = {AGENT, "--notify-fd", std::to_string(NOTICE), "--process",
                                        std::to_string(::getpid())};
    std::array<char*, 6> arguments{};
    for (std::size_t i = 0; i < words.size(); ++i) arguments[i] = words[i].data();
    if (::posix_spawnp(&process_, AGENT, &files, nullptr, arguments.data(), environ) != 0) process_ = -1;
    ::posix_spawn_file_actions_destroy(&files);
    notice = Descriptor();
    pollfd end = {ready.get(), POLLIN, 0};
    if (process_ > 0) (void)::poll(&end, 1, PATIENCE);
}

TerminalAgent::~TerminalAgent() {
    if (process_ <= 0) return;
    (void)::kill(process_, SIGTERM);
    // It has given the terminal its echo back when it ends.
    if (!end_of_child(process_, std::chrono::steady_clock::now() + END)) {
        (void)::kill(process_, SIGKILL);
        (void)end_of_killed_child(process_, std::chrono::steady_clock::now() + LAST_MOMENT);
    }
}

}  // namespace gw::fonts
