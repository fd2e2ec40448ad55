// SPDX-License-Identifier: MIT
//
// The temporary file of FILE is ".FILE.gwtmp". The name is always the same, so that the next write replaces
// the file of an interrupted run.
#include "core/replace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "core/directory.h"
#include "core/file_calls.h"
#include "core/file_writer.h"
#include "core/new_file.h"

namespace gw {

namespace {

constexpr mode_t NEW_FILE_MODE = 0644;
constexpr mode_t PERMISSION_BITS = 07777;

/// The result of a step of writing: 0 or an `errno`.
using Error = int;

void sync_directory_of(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const Descriptor dir(
        ::open(slash == std::string::npos ? "." : path.substr(0, slash + 1).c_str(), O_RDONLY | O_DIRECTORY));
    if (dir.is_open()) (void)file_calls().sync(dir.get());
}

void move_time_on(int fd, const struct stat& old) {
    struct stat now = {};
    if (::fstat(fd, &now) != 0 || now.st_mtim.tv_sec > old.st_mtim.tv_sec) return;
    timespec times[2] = {now.st_atim, {old.st_mtim.tv_sec + 1, 0}};
    (void)file_calls().set_times(fd, times);
}

/// Gives the new file the owner of the old one.
Error keep_owner(int fd, const struct stat& old) {
    struct stat made = {};
    if (::fstat(fd, &made) != 0) return errno;
    if (made.st_uid == old.st_uid && made.st_gid == old.st_gid) return 0;
    return file_calls().set_owner(fd, old.st_uid, old.st_gid) == 0 ? 0 : errno;
}

/// Writes the new content to the temporary file. This fails when the directory does not allow it, or the
/// owner cannot be kept.
Error write_temporary(const std::string& temporary, std::string_view bytes, const struct stat* old,
                      mode_t mode) {
    const FileCalls& calls = file_calls();
    calls.unlink(AT_FDCWD, temporary.c_str(), 0);
    Descriptor file(calls.open(AT_FDCWD, temporary.c_str(),
                               O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file.is_open()) return errno;
    if (old != nullptr) {
        if (const Error error = keep_owner(file.get(), *old); error != 0) return error;
    }
    FileWriter writer(std::move(file), temporary);
    writer.set_mode(mode);
    if (old != nullptr) writer.be_later_than(*old);
    writer.write(bytes);
    const Outcome written = writer.finish();
    return written ? 0 : written.failure().error;
}

Error write_in_place(const std::string& path, std::string_view bytes, const struct stat& old,
                     std::optional<mode_t> mode) {
    const FileCalls& calls = file_calls();
    const Descriptor file(
        calls.open(AT_FDCWD, path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0));
    if (!file.is_open()) return errno;
    // Growing the file first finds out whether the disk is full, before the old content is overwritten.
    const auto size = static_cast<off_t>(bytes.size());
    if (S_ISREG(old.st_mode) && size > old.st_size) {
        if (const Error error = calls.allocate(file.get(), 0, size); error != 0) {
            (void)calls.truncate(file.get(), old.st_size);
            return error;
        }
    }
    if (const Error error = write_all(file.get(), bytes); error != 0) return error;
    if (calls.truncate(file.get(), size) != 0) return errno;
    // Only the owner can change the mode; somebody else's file keeps its mode.
    if (mode && calls.set_mode(file.get(), *mode) != 0 && errno != EPERM) return errno;
    move_time_on(file.get(), old);
    return calls.sync(file.get()) == 0 ? 0 : errno;
}

/// Replaces `path` by a new file with this content.
Error put_new_file(const std::string& path, std::string_view bytes, const struct stat* old, mode_t mode) {
    const std::string temporary = hidden_name(path, ".gwtmp");
    Error error = write_temporary(temporary, bytes, old, mode);
    if (error == 0 && file_calls().rename(AT_FDCWD, temporary.c_str(), AT_FDCWD, path.c_str()) != 0)
        error = errno;
    if (error == 0) {
        sync_directory_of(path);
    } else {
        (void)file_calls().unlink(AT_FDCWD, temporary.c_str(), 0);
    }
    return error;
}

}  // namespace

Result<std::string> read_file(const std::string& path) {
    const Result<ReadableFile> file = open_to_read(path);
    return file ? read_open_file(file->fd.get(), path) : file.failure();
}

Outcome replace_file(const std::string& path, std::string_view bytes, std::optional<mode_t> mode) {
    struct stat old = {};
    const bool exists = ::lstat(path.c_str(), &old) == 0;
    // A file that we may not write is refused, even where the directory would let us replace it.
    if (exists && ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0)
        return Failure::of_system(path, errno);
    if (!exists || (S_ISREG(old.st_mode) && old.st_nlink == 1)) {
        const mode_t bits = mode ? *mode : exists ? old.st_mode & PERMISSION_BITS : NEW_FILE_MODE;
        const Error error = put_new_file(path, bytes, exists ? &old : nullptr, bits);
        if (error == 0) return done();
        if (!exists) return Failure::of_system(path, error);
    }
    if (::stat(path.c_str(), &old) != 0) return Failure::of_system(path, errno);
    if (const Error error = write_in_place(path, bytes, old, mode); error != 0)
        return Failure::of_system(path, error);
    return done();
}

}  // namespace gw
