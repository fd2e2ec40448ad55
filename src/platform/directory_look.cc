// SPDX-License-Identifier: MIT
//
// A child goes through the directories and writes the number of each one that has answered into a pipe. When
// it seems to hang, another child goes on behind that place. The first one goes on waiting, so a directory
// that is only slow has the whole time for its answer.
#include "platform/directory_look.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <utility>

#include "core/directory.h"
#include "platform/child_process.h"
#include "platform/host_paths.h"

namespace gw {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds SHORTEST_PAUSE(10);  // after which a child seems to hang
constexpr milliseconds LONGEST_PAUSE(100);

// --- in the child: only what a process may do between fork and exec ----------

void read_through(int home, const char* name) {
    static char block[65536];
    struct stat info = {};
    if (::fstatat(home, name, &info, 0) != 0 || !S_ISREG(info.st_mode)) return;
    const int file = ::openat(home, name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0) return;
    off_t total = 0;
    for (ssize_t got = 1; got > 0 && total <= Directory::FILE_LIMIT; total += got)
        got = ::read(file, block, sizeof block);
    ::close(file);
}

void look_at(const char* directory) {
    struct stat info = {};
    if (::stat(directory, &info) != 0 || !S_ISDIR(info.st_mode)) return;
    const int home = ::open(directory, O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC);
    if (home < 0) return;
    read_through(home, FONT_INDEX_NAME);
    read_through(home, ALIAS_FILE_NAME);
    ::close(home);
}

/// Keeps the pipe as descriptor 0 and closes everything else: a child that cannot be killed must not hold on
/// to our locks, the connection to the X server or a terminal.
void keep_only(int pipe) {
    constexpr int MOST_DESCRIPTORS = 1024;
    ::dup2(pipe, 0);
    if (::close_range(1, ~0U, 0) == 0) return;
    for (int fd = 1; fd < MOST_DESCRIPTORS; ++fd) ::close(fd);
}

struct Question {
    const char* directory;
    std::uint32_t number;
};

[[noreturn]] void look_at_all(const std::vector<Question>& questions, int pipe) {
    keep_only(pipe);
    for (const Question& question : questions) {
        look_at(question.directory);
        if (::write(0, &question.number, sizeof question.number) < 0) break;  // nobody waits any more
    }
    ::_exit(0);
}

// --- in the parent -----------------------------------------------------------

/// How long a child may be silent before it seems to hang. If all directories but one hang, that one is still
/// asked within half of the limit, unless they are very many.
milliseconds pause_for(std::size_t directories, milliseconds limit) {
    return std::clamp(limit / (2 * static_cast<milliseconds::rep>(directories)), SHORTEST_PAUSE,
                      LONGEST_PAUSE);
}

class Look {
  public:
    Look(const std::vector<std::string>& directories, milliseconds limit)
        : directories_(directories),
          answered_(directories.size(), false),
          end_(Clock::now() + limit),
          pause_(pause_for(directories.size(), limit)) {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0) return;
        from_children_ = Descriptor(ends[0]);
        to_us_ = Descriptor(ends[1]);
        ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
    }
    Look(const Look&) = delete;
    Look& operator=(const Look&) = delete;
    ~Look() {
        for (const pid_t child : children_) ::kill(child, SIGKILL);
        const Clock::time_point end = Clock::now() + LAST_MOMENT;
        for (const pid_t child : children_) (void)end_of_killed_child(child, end);
    }

    std::vector<std::string> silent() {
        if (!from_children_.is_open() || !start_child(0)) return {};
        while (next_unanswered(0) < directories_.size()) {
            const Clock::time_point now = Clock::now();
            if (now >= end_) break;
            if (now >= pause_end_) pass_by();
            wait_until(std::min(pause_end_, end_));
            take_answers();
        }
        std::vector<std::string> silent;
        for (std::size_t i = 0; i < directories_.size(); ++i) {
            if (!answered_[i]) silent.push_back(directories_[i]);
        }
        return silent;
    }

  private:
    [[nodiscard]] std::size_t next_unanswered(std::size_t from) const {
        return static_cast<std::size_t>(
            std::find(answered_.begin() + static_cast<std::ptrdiff_t>(from), answered_.end(), false) -
            answered_.begin());
    }

    /// Starts a child for what is unanswered from `place` on. False when there is nothing, or no process.
    bool start_child(std::size_t place) {
        std::vector<Question> questions;
        for (std::size_t i = place; i < directories_.size(); ++i) {
            if (!answered_[i]) questions.push_back({directories_[i].c_str(), static_cast<std::uint32_t>(i)});
        }
        pause_end_ = questions.empty() ? end_ : Clock::now() + pause_;
        if (questions.empty()) return false;
        const pid_t child = ::fork();
        if (child == 0) look_at_all(questions, to_us_.get());
        if (child < 0) return false;
        children_.push_back(child);
        place_ = place;
        return true;
    }

    /// Goes on behind the directory at which the last child seems to hang.
    void pass_by() {
        const std::size_t hangs_at = next_unanswered(place_);
        (void)start_child(std::min(hangs_at + 1, directories_.size()));
    }

    void wait_until(Clock::time_point moment) const {
        const auto left = std::max(std::chrono::ceil<milliseconds>(moment - Clock::now()), milliseconds(0));
        pollfd answers = {from_children_.get(), POLLIN, 0};
        (void)::poll(&answers, 1, static_cast<int>(left.count()));
    }

    void take_answers() {
        std::uint32_t number = 0;
        // A pipe does not split writes of this size.
        while (::read(from_children_.get(), &number, sizeof number) == sizeof number) {
            answered_[number] = true;
            if (pause_end_ != end_) pause_end_ = Clock::now() + pause_;
        }
    }

    const std::vector<std::string>& directories_;
    std::vector<bool> answered_;
    Clock::time_point end_;
    milliseconds pause_;           // how long a child may be silent
    Clock::time_point pause_end_;  // or `end_` when there is nothing to go on with
    std::size_t place_ = 0;        // where the last child has begun
    std::vector<pid_t> children_;
    Descriptor from_children_;
    Descriptor to_us_;
};

}  // namespace

std::vector<std::string> silent_directories(const std::vector<std::string>& directories, milliseconds limit) {
    collect_killed_children();
    if (directories.empty()) return {};
    return Look(directories, limit).silent();
}

}  // namespace gw
