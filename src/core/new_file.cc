// SPDX-License-Identifier: MIT
//
// The file NAME is made as ".NAME.gwtmp"; the file that it replaces is set aside as ".NAME.gwold".
#include "core/new_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

#include "core/replace_file.h"

namespace gw {

namespace {

constexpr mode_t NEW_FILE_MODE = 0644;

}  // namespace

std::string hidden_name(const std::string& path, const char* suffix) {
    const std::size_t slash = path.rfind('/');
    const std::size_t name = slash == std::string::npos ? 0 : slash + 1;
    return path.substr(0, name) + '.' + path.substr(name) + suffix;
}

Outcome set_aside(const std::string& path, const std::string& other_name) {
    ::unlink(other_name.c_str());
    if (::link(path.c_str(), other_name.c_str()) == 0 || std::rename(path.c_str(), other_name.c_str()) == 0) {
        return done();
    }
    return Failure::of_system(path, errno);
}

NewFile::NewFile(const std::string& file_path)
    : path(file_path), temporary(hidden_name(path, ".gwtmp")), old_file(hidden_name(path, ".gwold")) {
    struct stat old = {};
    replaces = ::lstat(path.c_str(), &old) == 0;
    if (replaces && S_ISDIR(old.st_mode)) {
        fail(EISDIR);
    } else if (replaces && S_ISREG(old.st_mode) &&
               ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) {
        fail(errno);
    } else {
        ::unlink(temporary.c_str());
        fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                    S_IRUSR | S_IWUSR);
        if (fd < 0) fail(errno);
    }
    if (failure != 0) state = State::OVER;
}

NewFile::NewFile(NewFile&& other) noexcept
    : path(std::move(other.path)),
      temporary(std::move(other.temporary)),
      old_file(std::move(other.old_file)),
      fd(std::exchange(other.fd, -1)),
      failure(other.failure),
      replaces(other.replaces),
      state(std::exchange(other.state, State::OVER)) {}

NewFile::~NewFile() {
    close();
    if (state == State::BEGUN) ::unlink(temporary.c_str());
    if (state != State::IN_PLACE) return;
    if (replaces) {
        std::rename(old_file.c_str(), path.c_str());
    } else {
        ::unlink(path.c_str());
    }
}

bool NewFile::fail(int error) {
    if (failure == 0) failure = error;
    return false;
}

Outcome NewFile::outcome() const {
    return failure == 0 ? done() : Outcome(Failure::of_system(path, failure));
}

void NewFile::close() {
    if (fd >= 0 && ::close(std::exchange(fd, -1)) != 0) fail(errno);
}

bool NewFile::write(std::string_view bytes) {
    while (failure == 0 && !bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return fail(errno);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return failure == 0;
}

Outcome NewFile::finish() {
    if (failure != 0) return outcome();
    struct stat old = {};
    struct stat made = {};
    if (replaces && ::stat(path.c_str(), &old) == 0 && ::fstat(fd, &made) == 0 && old.st_uid != made.st_uid) {
        [[maybe_unused]] const int kept = ::fchown(fd, old.st_uid, old.st_gid);
    }
    // Otherwise an index that names the file could reach the disk before the file.
    if (::fchmod(fd, NEW_FILE_MODE) != 0 || ::fdatasync(fd) != 0) fail(errno);
    close();
    return outcome();
}

bool NewFile::changes_a_file() const {
    if (!replaces) return false;
    const Result<std::string> old = read_file(path);
    const Result<std::string> made = read_file(temporary);
    return !old || !made || *old != *made;
}

Outcome NewFile::put_in_place() {
    if (failure == 0 && state != State::BEGUN) fail(EINVAL);
    if (failure != 0) return outcome();
    if (replaces) {
        if (const Outcome aside = set_aside(path, old_file); !aside) {
            fail(aside.failure().error);
            return aside;
        }
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        fail(errno);
        if (replaces) {
            std::rename(old_file.c_str(), path.c_str());
            ::unlink(old_file.c_str());  // between two links to the same file `rename` does nothing
        }
        return outcome();
    }
    state = State::IN_PLACE;
    return done();
}

void NewFile::keep() {
    if (state != State::IN_PLACE) return;
    if (replaces) ::unlink(old_file.c_str());
    state = State::OVER;
}

}  // namespace gw
