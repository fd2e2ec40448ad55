// SPDX-License-Identifier: MIT
//
// Lets the n-th change of the disk fail, or ends the process there, by the engine's table of file calls.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <functional>

#include "core/file_calls.h"

namespace gw::test {

/// Every call is tried, except that the sanitizers' build, which takes five times as long, tries every third.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr int CALL_STEP = 3;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr int CALL_STEP = 3;
#else
inline constexpr int CALL_STEP = 1;
#endif
#else
inline constexpr int CALL_STEP = 1;
#endif

/// No work of a test changes the disk so often.
inline constexpr int MOST_CALLS = 200;

/// As long as this exists, the calls of the table are counted, and one of them goes wrong.
class FileFaults {
  public:
    enum class Fault { NONE, KILL, FAIL_ONCE, FAIL_FROM_THEN_ON };

    /// The `at`-th call, counted from 1, goes wrong; with `error` when it fails.
    FileFaults(Fault fault, int at, int error = EIO) {
        state() = {fault, at, error, 0};
        use_file_calls(TABLE);
    }
    ~FileFaults() { use_file_calls(system_file_calls()); }
    FileFaults(const FileFaults&) = delete;
    FileFaults& operator=(const FileFaults&) = delete;

    /// How many calls there were.
    [[nodiscard]] static int calls() { return state().count; }

  private:
    struct State {
        Fault fault;
        int at;
        int error;
        int count;
    };
    static State& state() {
        static State current = {Fault::NONE, 0, 0, 0};
        return current;
    }

    /// Whether this call fails; `errno` then says so.
    static bool goes_wrong() {
        State& now = state();
        ++now.count;
        if (now.fault == Fault::KILL && now.count == now.at) ::kill(::getpid(), SIGKILL);
        const bool fails = (now.fault == Fault::FAIL_ONCE && now.count == now.at) ||
                           (now.fault == Fault::FAIL_FROM_THEN_ON && now.count >= now.at);
        if (fails) errno = now.error;
        return fails;
    }

    static const FileCalls& real() { return system_file_calls(); }

    static constexpr FileCalls TABLE = {
        [](int dir, const char* name, int flags, mode_t mode) {
            return goes_wrong() ? -1 : real().open(dir, name, flags, mode);
        },
        [](int dir, const char* name, mode_t mode) {
            return goes_wrong() ? -1 : real().make_dir(dir, name, mode);
        },
        [](int old_dir, const char* old_name, int new_dir, const char* new_name) {
            return goes_wrong() ? -1 : real().rename(old_dir, old_name, new_dir, new_name);
        },
        [](int old_dir, const char* old_name, int new_dir, const char* new_name) {
            return goes_wrong() ? -1 : real().link(old_dir, old_name, new_dir, new_name);
        },
        [](int dir, const char* name, int flags) {
            return goes_wrong() ? -1 : real().unlink(dir, name, flags);
        },
        [](int fd, const void* bytes, std::size_t count) -> ssize_t {
            // Half of the bytes arrive before it goes wrong.
            State& now = state();
            if (now.fault != Fault::NONE && now.count + 1 == now.at && count > 1)
                (void)!real().write(fd, bytes, count / 2);
            return goes_wrong() ? -1 : real().write(fd, bytes, count);
        },
        [](int fd, off_t size) { return goes_wrong() ? -1 : real().truncate(fd, size); },
        [](int fd, off_t offset, off_t size) {
            return goes_wrong() ? errno : real().allocate(fd, offset, size);
        },
        [](int fd) { return goes_wrong() ? -1 : real().sync(fd); },
        [](int fd, mode_t mode) { return goes_wrong() ? -1 : real().set_mode(fd, mode); },
        [](int fd, uid_t owner, gid_t group) {
            return goes_wrong() ? -1 : real().set_owner(fd, owner, group);
        },
        [](int fd, const timespec times[2]) { return goes_wrong() ? -1 : real().set_times(fd, times); },
        [](int fd) { return goes_wrong() ? -1 : real().sync_all(fd); },
    };
};

/// Runs `work` in a process of its own. Returns whether it was killed, and not done before.
inline bool is_killed(const std::function<void()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        work();
        ::_exit(0);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

/// The same for a process that is killed at its `at`-th change of the disk.
inline bool killed_at(int at, const std::function<void()>& work) {
    return is_killed([&] {
        const FileFaults faults(FileFaults::Fault::KILL, at);
        work();
    });
}

}  // namespace gw::test
