// SPDX-License-Identifier: MIT
#include "store/own_directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "core/file_calls.h"
#include "core/rights.h"

namespace gw {

namespace {

constexpr mode_t OWNERS = 0700;
constexpr mode_t GROUPS = 0770;
constexpr mode_t LOCK_MODE = 0600;
constexpr mode_t GROUPS_LOCK_MODE = 0660;
constexpr int STEP_MS = 20;

int& patience() {
    static int milliseconds = 5000;
    return milliseconds;
}

bool is_shared(const Directory& fonts) {
    return (fonts.info().st_mode & S_IWGRP) != 0;
}

}  // namespace

bool is_trusted(const struct stat& info, const struct stat& fonts) {
    const bool is_the_groups = (fonts.st_mode & S_IWGRP) != 0 && info.st_gid == fonts.st_gid;
    return is_the_groups || info.st_uid == fonts.st_uid || is_superuser(info.st_uid) ||
           info.st_uid == ::geteuid();
}

namespace {

/// Gives what we have made in `like` its owner and, where that group may write, its group. Only the superuser
/// can do the first, and the second only a member.
void give_away(int fd, const struct stat& like) {
    const bool shared = (like.st_mode & S_IWGRP) != 0;
    (void)file_calls().set_owner(fd, runs_as_superuser() ? like.st_uid : static_cast<uid_t>(-1),
                                 shared || runs_as_superuser() ? like.st_gid : static_cast<gid_t>(-1));
}

/// The directory NAME in `parent`, made if it is missing.
Result<Directory> made_below(const Directory& parent, const char* name, const Directory& fonts) {
    const bool is_new = file_calls().make_dir(parent.fd(), name, OWNERS) == 0;
    if (!is_new && errno != EEXIST) return Failure::of_system(parent.path_of(name), errno);
    struct stat info = {};
    if (!parent.look_at(name, info)) return Failure::of_system(parent.path_of(name), errno);
    if (!S_ISDIR(info.st_mode) || !is_trusted(info, fonts.info()))
        return Failure{parent.path_of(name), Reason::NOT_OURS};
    Result<Directory> dir = parent.below(name);
    const bool is_given = !runs_as_superuser() || info.st_uid == fonts.info().st_uid;
    if (!dir || (!is_new && is_given)) return dir;
    give_away(dir->fd(), fonts.info());
    if (is_shared(fonts) && file_calls().set_mode(dir->fd(), GROUPS) != 0)
        return Failure::of_system(dir->path(), errno);
    return dir;
}

/// The lock file, opened.
Result<Descriptor> lock_file(const Directory& dir, const Directory& fonts) {
    static constexpr const char* LOCK = "lock";
    const mode_t mode = is_shared(fonts) ? GROUPS_LOCK_MODE : LOCK_MODE;
    Descriptor fd(
        file_calls().open(dir.fd(), LOCK, O_RDWR | O_CREAT | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC, mode));
    struct stat info = {};
    if (!fd.is_open() || ::fstat(fd.get(), &info) != 0) return Failure::of_system(dir.path_of(LOCK), errno);
    if (!S_ISREG(info.st_mode) || info.st_nlink != 1 || !is_trusted(info, fonts.info()))
        return Failure{dir.path_of(LOCK), Reason::NOT_OURS};
    if (info.st_size == 0 || (runs_as_superuser() && info.st_uid != fonts.info().st_uid)) {
        give_away(fd.get(), fonts.info());
        if ((info.st_mode & GROUPS_LOCK_MODE) != mode) (void)file_calls().set_mode(fd.get(), mode);
    }
    return fd;
}

void remove_all_in(const Directory& dir) {
    const int copy = ::openat(dir.fd(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* entries = copy >= 0 ? ::fdopendir(copy) : nullptr;
    if (entries == nullptr) {
        if (copy >= 0) ::close(copy);
        return;
    }
    while (const dirent* entry = ::readdir(entries)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") file_calls().unlink(dir.fd(), name.c_str(), 0);
    }
    ::closedir(entries);
}

std::string holder_in(int fd) {
    char text[32];
    const ssize_t length = ::pread(fd, text, sizeof text, 0);
    std::string process;
    for (ssize_t i = 0; i < length && text[i] >= '0' && text[i] <= '9'; ++i) process += text[i];
    return process.empty() ? "?" : process;
}

}  // namespace

void set_lock_patience(int milliseconds) {
    patience() = milliseconds;
}

Outcome take_lock(int fd, const std::string& path, int longest_wait) {
    for (int waited = 0; ::flock(fd, LOCK_EX | LOCK_NB) != 0; waited += STEP_MS) {
        if (errno == EINTR) continue;
        if (errno != EWOULDBLOCK) return Failure::of_system(path, errno);
        if (waited >= longest_wait)
            return Failure{.subject = path, .reason = Reason::IN_USE, .detail = holder_in(fd)};
        const timespec step = {0, STEP_MS * 1000000L};
        ::nanosleep(&step, nullptr);
    }
    // What a message says of the holder; nothing depends on it.
    if (::ftruncate(fd, 0) == 0) {
        const std::string process = std::to_string(::getpid()) + '\n';
        [[maybe_unused]] const ssize_t written = ::pwrite(fd, process.data(), process.size(), 0);
    }
    return done();
}

OwnDirectory::OwnDirectory(const struct stat& owner, Directory dir, Directory made, Directory set_aside,
                           Descriptor lock)
    : owner_(owner),
      dir_(std::move(dir)),
      made_(std::move(made)),
      set_aside_(std::move(set_aside)),
      lock_(std::move(lock)) {}

Result<std::unique_ptr<OwnDirectory>> OwnDirectory::enter(const Directory& fonts, bool waits) {
    Result<Directory> dir = made_below(fonts, NAME, fonts);
    if (!dir) return dir.failure();
    Result<Descriptor> lock = lock_file(*dir, fonts);
    if (!lock) return lock.failure();
    if (const Outcome taken = take_lock(lock->get(), fonts.path(), waits ? patience() : 0); !taken)
        return taken.failure();
    Result<Directory> made = made_below(*dir, "new", fonts);
    if (!made) return made.failure();
    Result<Directory> set_aside = made_below(*dir, "old", fonts);
    if (!set_aside) return set_aside.failure();
    return std::unique_ptr<OwnDirectory>(new OwnDirectory(fonts.info(), std::move(*dir), std::move(*made),
                                                          std::move(*set_aside), std::move(*lock)));
}

Result<Descriptor> OwnDirectory::create(const Directory& where, const std::string& name) const {
    file_calls().unlink(where.fd(), name.c_str(), 0);
    Descriptor fd(file_calls().open(where.fd(), name.c_str(),
                                    O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!fd.is_open()) return Failure::of_system(where.path_of(name), errno);
    // The journal is for whoever has the next look.
    if (&where == &dir_) {
        give_away(fd.get(), owner_);
        if ((owner_.st_mode & S_IWGRP) != 0) (void)file_calls().set_mode(fd.get(), GROUPS_LOCK_MODE);
    }
    return fd;
}

Outcome OwnDirectory::remove_journal() const {
    if (file_calls().unlink(dir_.fd(), JOURNAL, 0) != 0 && errno != ENOENT)
        return Failure::of_system(dir_.path_of(JOURNAL), errno);
    (void)file_calls().sync(dir_.fd());
    return done();
}

void OwnDirectory::clear() const {
    remove_all_in(made_);
    remove_all_in(set_aside_);
}

}  // namespace gw
