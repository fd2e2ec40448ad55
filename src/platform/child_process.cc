// SPDX-License-Identifier: MIT
#include "platform/child_process.h"

#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "core/directory.h"
#include "core/long_work.h"

namespace gw {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds BETWEEN_LOOKS(1);
constexpr milliseconds LONGEST_WAIT(20);  // before somebody is served

std::vector<pid_t>& left_behind() {
    static std::vector<pid_t> children;
    return children;
}

}  // namespace

std::optional<int> end_of_child(pid_t child, Clock::time_point end) {
    const Descriptor process(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
    for (;;) {
        int status = -1;
        const pid_t got = ::waitpid(child, &status, WNOHANG);
        if (got == child) return status;
        if (got < 0 && errno != EINTR) return -1;
        const auto left = std::chrono::ceil<milliseconds>(end - Clock::now());
        if (left.count() <= 0) return std::nullopt;
        const auto wait = std::min(left, process.is_open() ? LONGEST_WAIT : BETWEEN_LOOKS);
        // Without a descriptor of the process this only waits a little.
        pollfd ends = {process.get(), POLLIN, 0};
        if (::poll(&ends, 1, static_cast<int>(wait.count())) == 0 && is_given_up()) return std::nullopt;
    }
}

std::optional<int> end_of_killed_child(pid_t child, Clock::time_point end) {
    std::optional<int> status = end_of_child(child, end);
    if (!status) left_behind().push_back(child);
    return status;
}

void collect_killed_children() {
    std::erase_if(left_behind(), [](pid_t child) { return end_of_child(child, Clock::now()).has_value(); });
}

}  // namespace gw
