// SPDX-License-Identifier: MIT
#include "platform/everyone_request.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <set>
#include <sstream>
#include <system_error>
#include <utility>

#include "platform/child_process.h"
#include "platform/host_paths.h"
#include "platform/shell_command.h"

namespace gw {

namespace {

namespace stream = font_stream;

constexpr std::size_t AT_ONCE = 64UL * 1024;
constexpr std::size_t LONGEST_ANSWER = 64UL * 1024 * 1024;
constexpr std::chrono::seconds END_OF_PROGRAM(5);  // after its last word
// What pkexec says when it does not start the program.
constexpr int DISMISSED = 126;
constexpr int NOT_AUTHORISED = 127;

std::vector<std::string>& command_of_tests() {
    static std::vector<std::string> command;
    return command;
}

bool is_program(const std::string& path) {
    return ::access(path.c_str(), X_OK) == 0;
}

/// Starts the command with these descriptors as standard input and output. Returns an `errno` or 0.
int spawn(const std::vector<std::string>& command, int input, int output, pid_t& child) {
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t files;
    if (const int error = ::posix_spawnattr_init(&attributes); error != 0) return error;
    ::posix_spawn_file_actions_init(&files);
    ::posix_spawn_file_actions_adddup2(&files, input, STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
    ::posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    sigset_t signals;
    ::sigemptyset(&signals);
    ::posix_spawnattr_setsigmask(&attributes, &signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) ::sigaddset(&signals, signal);
    ::posix_spawnattr_setsigdefault(&attributes, &signals);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    std::vector<std::string> words = command;
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const int error =
        ::posix_spawn(&child, arguments.front(), &files, &attributes, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&files);
    ::posix_spawnattr_destroy(&attributes);
    return error;
}

}  // namespace

void set_everyones_command(std::vector<std::string> command) {
    command_of_tests() = std::move(command);
}

bool can_ask_for_everyone() {
    if (!command_of_tests().empty()) return true;
    return is_program(PKEXEC) && is_program(EVERYONES_INSTALLER) && ::access(EVERYONES_POLICY, R_OK) == 0;
}

std::vector<std::string> everyones_command() {
    if (!command_of_tests().empty()) return command_of_tests();
    return {PKEXEC, "--disable-internal-agent", EVERYONES_INSTALLER};
}

std::string administrators_command(const std::vector<std::string>& paths) {
    std::ostringstream command;
    command << "glyphward-fonts install --everyone";
    for (const std::string& path : paths) {
        std::error_code error;
        command << ' ' << shell_quoted(std::filesystem::absolute(path, error).lexically_normal().string());
    }
    return command.str();
}

std::vector<Failure> leave_out_unsendable(std::vector<SentFile>& files) {
    std::vector<Failure> failures;
    std::set<std::string> names;
    std::uint64_t total = 0;
    const auto why_not = [&](SentFile& file) -> Outcome {
        if (!stream::is_name(file.name)) return Failure{file.path, Reason::NAME_UNFIT_FOR_INDEX};
        if (names.contains(file.name)) return Failure{file.path, Reason::FILE_OF_ANOTHER_FONT};
        const Result<ReadableFile> opened = open_to_read(file.path);
        if (!opened) return opened.failure();
        struct stat info = {};
        if (::fstat(opened->fd.get(), &info) != 0) return Failure::of_system(file.path, errno);
        file.size = static_cast<std::uint64_t>(info.st_size);
        if (file.size > stream::FILE_LIMIT || file.size > stream::TOTAL_LIMIT - total ||
            names.size() >= stream::COUNT_LIMIT)
            return Failure::of_system(file.path, EFBIG);
        total += file.size;
        names.insert(file.name);
        return done();
    };
    std::erase_if(files, [&](SentFile& file) {
        const Outcome outcome = why_not(file);
        if (!outcome) failures.push_back(outcome.failure());
        return !outcome;
    });
    return failures;
}

EveryoneRequest::EveryoneRequest(std::vector<SentFile> files, NameTaken decision)
    : files_(std::move(files)), waiting_(stream::beginning(decision)) {}

EveryoneRequest::~EveryoneRequest() {
    if (child_ < 0 || is_over_) return;
    cancel();
    // It may run on for a while, as another user, who cannot be killed.
    (void)end_of_killed_child(child_, std::chrono::steady_clock::now() + LAST_MOMENT);
}

Outcome EveryoneRequest::start(const std::vector<std::string>& command) {
    // A socket for what is sent: unlike a pipe it raises no signal when the reader has gone.
    std::array<int, 2> sending{};
    std::array<int, 2> answering{};
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sending.data()) != 0)
        return Failure::of_system(command.front(), errno);
    to_ = Descriptor(sending[0]);
    const Descriptor input(sending[1]);
    if (::pipe2(answering.data(), O_CLOEXEC) != 0) return Failure::of_system(command.front(), errno);
    from_ = Descriptor(answering[0]);
    const Descriptor output(answering[1]);
    ::fcntl(from_.get(), F_SETFL, O_NONBLOCK);
    if (const int error = spawn(command, input.get(), output.get(), child_); error != 0) {
        child_ = -1;
        return Failure::of_system(command.front(), error);
    }
    return done();
}

bool EveryoneRequest::begin_next_file() {
    const SentFile& file = files_[next_];
    Result<ReadableFile> opened = open_to_read(file.path);
    struct stat info = {};
    if (!opened || ::fstat(opened->fd.get(), &info) != 0 ||
        static_cast<std::uint64_t>(info.st_size) != file.size)
        return false;
    file_ = std::move(opened->fd);
    left_ = file.size;
    waiting_ += stream::before_file(file.name, file.size);
    return true;
}

/// Fills `waiting_` when it is empty. False when a file is not what it was.
bool EveryoneRequest::has_more_to_send() {
    if (!waiting_.empty()) return true;
    if (!file_.is_open()) {
        if (next_ < files_.size()) return begin_next_file();
        waiting_ = stream::END;
        has_ended_ = true;
        return true;
    }
    waiting_.resize(std::min<std::uint64_t>(left_, AT_ONCE));
    const ssize_t count = ::read(file_.get(), waiting_.data(), waiting_.size());
    if (count < 0 || (count == 0 && left_ > 0)) return false;
    waiting_.resize(static_cast<std::size_t>(count));
    left_ -= static_cast<std::uint64_t>(count);
    if (left_ > 0) return true;
    waiting_ += stream::BEHIND_FILE;
    file_ = Descriptor();
    ++next_;
    return true;
}

void EveryoneRequest::send_more() {
    constexpr int PIECES = 16;
    for (int piece = 0; piece < PIECES && !is_sent_ && to_.is_open(); ++piece) {
        if (!has_more_to_send()) return cancel();
        const ssize_t count =
            ::send(to_.get(), waiting_.data(), waiting_.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
        // It reads no more: then it will say why.
        if (count < 0) {
            to_ = Descriptor();
            return;
        }
        waiting_.erase(0, static_cast<std::size_t>(count));
        is_sent_ = has_ended_ && waiting_.empty();
    }
}

void EveryoneRequest::read_more() {
    if (!from_.is_open()) return;
    std::array<char, AT_ONCE> piece{};
    const ssize_t count = ::read(from_.get(), piece.data(), piece.size());
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (count <= 0) return finish();
    if (text_.size() + static_cast<std::size_t>(count) <= LONGEST_ANSWER)
        text_.append(piece.data(), static_cast<std::size_t>(count));
}

void EveryoneRequest::finish() {
    from_ = Descriptor();
    to_ = Descriptor();
    status_ = end_of_killed_child(child_, std::chrono::steady_clock::now() + END_OF_PROGRAM).value_or(-1);
    is_over_ = true;
}

void EveryoneRequest::cancel() {
    if (is_over_ || child_ < 0) return;
    is_cancelled_ = is_cancelled_ || !is_sent_;
    to_ = Descriptor();
    // pkexec can be killed while it waits for the password. What it has started belongs to another user, and
    // ends because nobody sends any more.
    (void)::kill(child_, SIGTERM);
}

EveryoneAnswer EveryoneRequest::answer() const {
    EveryoneAnswer answer = read_everyones_answer(text_);
    answer.status = WIFEXITED(status_) ? WEXITSTATUS(status_) : -1;
    if (is_cancelled_ && !answer.changed) {
        answer.kind = EveryoneAnswer::Kind::CANCELLED;
    } else if (answer.status == DISMISSED) {
        answer.kind = EveryoneAnswer::Kind::NOT_GIVEN;
    } else if (answer.status == NOT_AUTHORISED) {
        answer.kind = EveryoneAnswer::Kind::NOT_AUTHORISED;
    }
    return answer;
}

}  // namespace gw
