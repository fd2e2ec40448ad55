// SPDX-License-Identifier: MIT
//
// A library to preload into an X program. It ends the program as soon as its windows are there: when it has
// waited for 100 ms and nothing came. It counts round trips, which are calls of `_XReply`, and writes one
// line into the file $X_SETTLED_REPORT: seconds from the first call in here to the last before the wait,
// seconds of processor time of the program and of the children that it has waited for, round trips, the
// largest size in kilobytes, and the round trips before the last window was mapped: the main one.
#include <dlfcn.h>
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

constexpr int SETTLED_MS = 100;

int replies = 0;
int replies_before_map = 0;
int depth = 0;  // of calls that wait for a reply

double now() {
    timespec time = {};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

const double begin = now();
const pid_t program = ::getpid();

template <class Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

double processor_seconds(int who) {
    struct rusage used = {};
    ::getrusage(who, &used);
    return static_cast<double>(used.ru_utime.tv_sec + used.ru_stime.tv_sec) +
           static_cast<double>(used.ru_utime.tv_usec + used.ru_stime.tv_usec) / 1e6;
}

[[noreturn]] void report(double last) {
    struct rusage used = {};
    ::getrusage(RUSAGE_SELF, &used);
    if (std::FILE* file = std::fopen(std::getenv("X_SETTLED_REPORT"), "w"); file != nullptr) {
        std::fprintf(file, "%.4f %.4f %.4f %d %ld %d\n", last - begin, processor_seconds(RUSAGE_SELF),
                     processor_seconds(RUSAGE_CHILDREN), replies, used.ru_maxrss, replies_before_map);
        std::fclose(file);
    }
    ::_exit(0);
}

}  // namespace

extern "C" {

// NOLINTNEXTLINE(bugprone-reserved-identifier): that is its name.
int _XReply(void* display, void* reply, int extra, int discard) {
    using Function = int (*)(void*, void*, int, int);
    static const auto real = next<Function>("_XReply");
    ++replies;
    ++depth;
    const int result = real(display, reply, extra, discard);
    --depth;
    return result;
}

int XMapWindow(void* display, unsigned long window) {
    using Function = int (*)(void*, unsigned long);
    static const auto real = next<Function>("XMapWindow");
    replies_before_map = replies;
    return real(display, window);
}

int poll(pollfd* fds, nfds_t count, int timeout) {
    using Function = int (*)(pollfd*, nfds_t, int);
    static const auto real = next<Function>("poll");
    const bool may_settle = depth == 0 && ::getpid() == program &&
                            std::getenv("X_SETTLED_REPORT") != nullptr &&
                            (timeout < 0 || timeout > SETTLED_MS);
    if (!may_settle) return real(fds, count, timeout);
    const double last = now();
    const int ready = real(fds, count, SETTLED_MS);
    if (ready == 0 && replies > 0) report(last);
    return ready != 0 ? ready : real(fds, count, timeout < 0 ? timeout : timeout - SETTLED_MS);
}

}  // extern "C"
