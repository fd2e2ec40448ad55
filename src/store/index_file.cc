// SPDX-License-Identifier: MIT
#include "store/index_file.h"

#include <fcntl.h>
#include <limits.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "core/file_calls.h"
#include "core/rights.h"

namespace gw {

namespace {

constexpr int MOST_LINKS = 40;
constexpr int MOST_ATTEMPTS = 5;
constexpr int JUST_OPEN = O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC;

bool is_same_file(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// The text, and what covers the rest of a longer one until that is cut off. Readers pass over blank lines,
/// but not over the end of a line that has lost its beginning.
std::string over(off_t old_size, std::string_view text) {
    std::string whole(text);
    if (old_size <= Directory::FILE_LIMIT)
        whole.resize(std::max(text.size(), static_cast<std::size_t>(old_size)), '\n');
    return whole;
}

}  // namespace

IndexFile::IndexFile(const Directory& fonts, const char* name)
    : fonts_(&fonts), name_(name), path_(fonts.path_of(name)) {}

Result<IndexFile> IndexFile::find(const Directory& fonts, const char* name) {
    IndexFile file(fonts, name);
    for (; file.links_ <= MOST_LINKS; ++file.links_) {
        const Descriptor found(
            ::openat(file.home().fd(), file.name_.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
        if (!found.is_open() || ::fstat(found.get(), &file.info_) != 0)
            return Failure::of_system(file.path_, errno);
        if (!S_ISLNK(file.info_.st_mode)) {
            if (!file.is_safe(file.info_)) return Failure{file.path_, Reason::NOT_OURS};
            return file;
        }
        if (const Outcome followed = file.follow(found.get()); !followed) return followed.failure();
    }
    return Failure::of_system(file.path_, ELOOP);
}

Outcome IndexFile::follow(int link) {
    struct stat home_info = {};
    if (::fstat(home().fd(), &home_info) != 0) return Failure::of_system(path_, errno);
    if (!is_trusted_link(info_, home_info)) return Failure{path_, Reason::NOT_OURS};
    char bytes[PATH_MAX];
    const ssize_t length = ::readlinkat(link, "", bytes, sizeof bytes);
    if (length < 0) return Failure::of_system(path_, errno);
    const std::string target(bytes, static_cast<std::size_t>(length));
    const std::size_t slash = target.rfind('/');
    name_ = slash == std::string::npos ? target : target.substr(slash + 1);
    if (slash == std::string::npos) return done();
    Result<Directory> next = home().below(target.substr(0, slash + 1));
    if (!next) {
        Failure failure = next.failure();
        failure.subject = path_;
        return failure;
    }
    home_ = std::move(*next);
    return done();
}

/// Whoever may write a directory can give any file a second name there, and so have it overwritten.
bool IndexFile::is_safe(const struct stat& info) const {
    if (!S_ISREG(info.st_mode) || info.st_nlink <= 1) return true;
    const struct stat& owner = home().info();
    const bool is_this_users = !runs_as_superuser() && info.st_uid == ::geteuid();
    return (owner.st_mode & S_IWOTH) == 0 && (info.st_uid == owner.st_uid || is_this_users);
}

// The name is looked at once more: the second name of an open file may just have been removed.
Result<Descriptor> IndexFile::checked(Descriptor file) const {
    if (!file.is_open() && errno == ELOOP) return Failure{path_, Reason::NOT_OURS};
    struct stat opened = {};
    struct stat named = {};
    if (!file.is_open() || ::fstat(file.get(), &opened) != 0) return Failure::of_system(path_, errno);
    if (!home().look_at(name_, named) || !is_same_file(opened, info_) || !is_same_file(opened, named))
        return Failure::of_system(path_, EAGAIN);
    if (!is_safe(opened) || !is_safe(named)) return Failure{path_, Reason::NOT_OURS};
    return file;
}

Result<Descriptor> IndexFile::open_to_read() const {
    return checked(Descriptor(::openat(home().fd(), name_.c_str(), O_RDONLY | JUST_OPEN)));
}

Result<Descriptor> IndexFile::open_to_write() const {
    return checked(Descriptor(file_calls().open(home().fd(), name_.c_str(), O_WRONLY | JUST_OPEN, 0)));
}

// Programs that know nothing of our lock may replace it at any moment.
Result<std::string> read_index(const Directory& fonts, struct stat& info) {
    for (int attempt = 1;; ++attempt) {
        const Result<IndexFile> index = IndexFile::find(fonts, FONT_INDEX_NAME);
        if (!index) return index.failure();
        const Result<Descriptor> file = index->open_to_read();
        if (file) {
            info = index->info();
            return read_open_file(file->get(), fonts.path_of(FONT_INDEX_NAME));
        }
        if (file.failure().error != EAGAIN || attempt == MOST_ATTEMPTS) return file.failure();
    }
}

Outcome overwrite_index(const Directory& fonts, const struct stat& looked_at, std::string_view text,
                        const char* name) {
    const std::string path = fonts.path_of(name);
    const Result<IndexFile> index = IndexFile::find(fonts, name);
    if (!index) return index.failure();
    const bool is_still_it = S_ISLNK(looked_at.st_mode)
                                 ? index->is_linked()
                                 : !index->is_linked() && is_same_file(index->info(), looked_at);
    if (!is_still_it || !S_ISREG(index->info().st_mode)) return Failure::of_system(path, EAGAIN);
    const Result<Descriptor> file = index->open_to_write();
    if (!file) return file.failure();
    const FileCalls& calls = file_calls();
    const int fd = file->get();
    const struct stat& old = index->info();
    const auto size = static_cast<off_t>(text.size());
    // Growing the file first finds out whether the disk is full, before the old content is overwritten.
    if (size > old.st_size) {
        if (const int error = calls.allocate(fd, 0, size); error != 0) {
            (void)calls.truncate(fd, old.st_size);
            return Failure::of_system(path, error);
        }
    }
    if (const int error = write_all(fd, over(old.st_size, text)); error != 0)
        return Failure::of_system(path, error);
    if (calls.truncate(fd, size) != 0 || calls.sync(fd) != 0) return Failure::of_system(path, errno);
    const timespec times[2] = {old.st_atim, {std::max(::time(nullptr), old.st_mtim.tv_sec + 1), 0}};
    (void)calls.set_times(fd, times);
    return done();
}

}  // namespace gw
