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
#include <cstdio>
#include <utility>

#include "core/new_file.h"

namespace gw {

namespace {

constexpr mode_t NEW_FILE_MODE = 0644;
constexpr mode_t PERMISSION_BITS = 07777;

class Descriptor {
  public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    [[nodiscard]] bool is_open() const { return fd_ >= 0; }
    [[nodiscard]] int get() const { return fd_; }
    /// Closes it now; false when the system reports that data was lost.
    bool close() { return ::close(std::exchange(fd_, -1)) == 0; }

  private:
    int fd_;
};

bool write_all(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

void sync_directory_of(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const Descriptor dir(
        ::open(slash == std::string::npos ? "." : path.substr(0, slash + 1).c_str(), O_RDONLY | O_DIRECTORY));
    if (dir.is_open()) ::fsync(dir.get());
}

void move_time_on(int fd, const struct stat& old) {
    struct stat now {};
    if (::fstat(fd, &now) != 0 || now.st_mtim.tv_sec > old.st_mtim.tv_sec) return;
    timespec times[2] = {now.st_atim, {old.st_mtim.tv_sec + 1, 0}};
    ::futimens(fd, times);
}

/// Writes the new content to the temporary file. False when the directory does not allow it, or the owner
/// cannot be kept.
bool write_temporary(const std::string& temporary, std::string_view bytes, const struct stat* old,
                     mode_t mode) {
    ::unlink(temporary.c_str());
    Descriptor file(
        ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file.is_open()) return false;
    struct stat made {};
    const bool owner_kept = old == nullptr || (::fstat(file.get(), &made) == 0 &&
                                               ((made.st_uid == old->st_uid && made.st_gid == old->st_gid) ||
                                                ::fchown(file.get(), old->st_uid, old->st_gid) == 0));
    if (!owner_kept || ::fchmod(file.get(), mode) != 0 || !write_all(file.get(), bytes)) return false;
    if (old != nullptr) move_time_on(file.get(), *old);
    return ::fsync(file.get()) == 0 && file.close();
}

bool write_in_place(const std::string& path, std::string_view bytes, const struct stat& old,
                    std::optional<mode_t> mode) {
    const Descriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (!file.is_open()) return false;
    // Growing the file first finds out whether the disk is full, before the old content is overwritten.
    const auto size = static_cast<off_t>(bytes.size());
    if (size > old.st_size && ::posix_fallocate(file.get(), 0, size) != 0) {
        (void)::ftruncate(file.get(), old.st_size);
        return false;
    }
    if (!write_all(file.get(), bytes) || ::ftruncate(file.get(), size) != 0) return false;
    // Only the owner can change the mode; somebody else's file keeps its mode.
    if (mode && ::fchmod(file.get(), *mode) != 0 && errno != EPERM) return false;
    move_time_on(file.get(), old);
    return ::fsync(file.get()) == 0;
}

}  // namespace

std::optional<std::string> read_file(const std::string& path) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat info {};
    if (!file.is_open() || ::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(info.st_size));
    char block[65536];
    for (;;) {
        const ssize_t got = ::read(file.get(), block, sizeof block);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return std::nullopt;
        if (got == 0) return bytes;
        bytes.append(block, static_cast<std::size_t>(got));
    }
}

bool replace_file(const std::string& path, std::string_view bytes, std::optional<mode_t> mode) {
    struct stat old {};
    const bool exists = ::lstat(path.c_str(), &old) == 0;
    const bool replaceable = !exists || (S_ISREG(old.st_mode) && old.st_nlink == 1);
    // A file that we may not write is refused, even where the directory would let us replace it.
    if (exists && ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) return false;
    if (replaceable) {
        const std::string temporary = hidden_name(path, ".gwtmp");
        const mode_t bits = mode ? *mode : exists ? old.st_mode & PERMISSION_BITS : NEW_FILE_MODE;
        if (write_temporary(temporary, bytes, exists ? &old : nullptr, bits) &&
            ::rename(temporary.c_str(), path.c_str()) == 0) {
            sync_directory_of(path);
            return true;
        }
        ::unlink(temporary.c_str());
    }
    if (!exists || ::stat(path.c_str(), &old) != 0) return false;
    return write_in_place(path, bytes, old, mode);
}

}  // namespace gw
