// SPDX-License-Identifier: MIT
//
// The file NAME is made as ".NAME.gwtmp"; the file that it replaces is set aside as ".NAME.gwold".
#include "core/new_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "core/file_calls.h"
#include "core/replace_file.h"

namespace gw {

std::string hidden_name(const std::string& path, const char* suffix) {
    const std::size_t slash = path.rfind('/');
    const std::size_t name = slash == std::string::npos ? 0 : slash + 1;
    return path.substr(0, name) + '.' + path.substr(name) + suffix;
}

Outcome set_aside(const std::string& path, const std::string& other_name) {
    const FileCalls& calls = file_calls();
    calls.unlink(AT_FDCWD, other_name.c_str(), 0);
    if (calls.link(AT_FDCWD, path.c_str(), AT_FDCWD, other_name.c_str()) == 0 ||
        calls.rename(AT_FDCWD, path.c_str(), AT_FDCWD, other_name.c_str()) == 0) {
        return done();
    }
    return Failure::of_system(path, errno);
}

namespace {

Descriptor new_temporary(const std::string& path) {
    file_calls().unlink(AT_FDCWD, path.c_str(), 0);
    return Descriptor(file_calls().open(
        AT_FDCWD, path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
}

/// Why the file at `path` cannot be replaced; 0 if it can.
int obstacle_at(const std::string& path, const struct stat& old) {
    if (S_ISDIR(old.st_mode)) return EISDIR;
    if (!S_ISREG(old.st_mode) || ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0) return 0;
    return errno;
}

FileWriter begun(const std::string& path) {
    struct stat old = {};
    const bool replaces = ::lstat(path.c_str(), &old) == 0;
    if (const int obstacle = replaces ? obstacle_at(path, old) : 0; obstacle != 0) return {path, obstacle};
    Descriptor fd = new_temporary(hidden_name(path, ".gwtmp"));
    if (!fd.is_open()) return {path, errno};
    FileWriter file(std::move(fd), path);
    if (replaces && ::stat(path.c_str(), &old) == 0) file.set_owner({old.st_uid, old.st_gid});
    return file;
}

}  // namespace

NewFile::NewFile(const std::string& file_path)
    : FileWriter(begun(file_path)),
      temporary(hidden_name(file_path, ".gwtmp")),
      old_file(hidden_name(file_path, ".gwold")) {
    struct stat old = {};
    replaces = ::lstat(file_path.c_str(), &old) == 0;
    if (!outcome()) state = State::OVER;
}

NewFile::NewFile(NewFile&& other) noexcept
    : FileWriter(std::move(other)),
      temporary(std::move(other.temporary)),
      old_file(std::move(other.old_file)),
      replaces(other.replaces),
      state(std::exchange(other.state, State::OVER)) {}

NewFile::~NewFile() {
    const FileCalls& calls = file_calls();
    close();
    if (state == State::BEGUN) calls.unlink(AT_FDCWD, temporary.c_str(), 0);
    if (state != State::IN_PLACE) return;
    if (replaces) {
        calls.rename(AT_FDCWD, old_file.c_str(), AT_FDCWD, path().c_str());
    } else {
        calls.unlink(AT_FDCWD, path().c_str(), 0);
    }
}

Outcome NewFile::put_in_place() {
    if (outcome() && state != State::BEGUN) fail(EINVAL);
    if (!outcome()) return outcome();
    const FileCalls& calls = file_calls();
    if (replaces) {
        if (Outcome aside = set_aside(path(), old_file); !aside) {
            fail(aside.failure().error);
            return aside;
        }
    }
    if (calls.rename(AT_FDCWD, temporary.c_str(), AT_FDCWD, path().c_str()) != 0) {
        fail(errno);
        if (replaces) {
            calls.rename(AT_FDCWD, old_file.c_str(), AT_FDCWD, path().c_str());
            calls.unlink(AT_FDCWD, old_file.c_str(),
                         0);  // between two links to the same file `rename` does nothing
        }
        return outcome();
    }
    state = State::IN_PLACE;
    return done();
}

void NewFile::keep() {
    if (state != State::IN_PLACE) return;
    if (replaces) file_calls().unlink(AT_FDCWD, old_file.c_str(), 0);
    state = State::OVER;
}

}  // namespace gw
