// SPDX-License-Identifier: MIT
#include "core/directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <utility>

#include "core/file_calls.h"
#include "core/rights.h"
#include "core/text.h"

namespace gw {

namespace {

constexpr int MOST_LINKS = 40;
constexpr int JUST_LOOK = O_PATH | O_NOFOLLOW | O_CLOEXEC;

bool is_ours(const struct stat& info) {
    return is_superuser(info.st_uid) || info.st_uid == ::geteuid();
}

/// The way to a directory: where it has come to, and what is left of it.
class Way {
  public:
    Way(int start, std::string path) : left_(std::move(path)), shown_(left_) { begin(start); }

    Outcome go() {
        while (!failed_ && !left_.empty()) step();
        return failed_ ? Outcome(*failed_) : done();
    }
    [[nodiscard]] Descriptor& end() { return here_; }

  private:
    void begin(int start) {
        const bool absolute = left_.starts_with('/');
        here_ = Descriptor(
            ::openat(absolute ? AT_FDCWD : start, absolute ? "/" : ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (!here_.is_open()) fail(errno);
        skip_slashes();
    }

    void skip_slashes() { left_.erase(0, std::min(left_.find_first_not_of('/'), left_.size())); }

    void step() {
        const std::string name = left_.substr(0, left_.find('/'));
        left_.erase(0, name.size());
        skip_slashes();
        Descriptor next(::openat(here_.get(), name.c_str(), JUST_LOOK));
        struct stat info = {};
        if (!next.is_open() || ::fstat(next.get(), &info) != 0) {
            fail(errno);
        } else if (S_ISLNK(info.st_mode)) {
            follow(next, info);
        } else if (!S_ISDIR(info.st_mode)) {
            fail(ENOTDIR);
        } else {
            here_ = std::move(next);
        }
    }

    void follow(const Descriptor& link, const struct stat& info) {
        struct stat home = {};
        if (::fstat(here_.get(), &home) != 0) return fail(errno);
        if (!is_trusted_link(info, home)) {
            failed_ = Failure{shown_, Reason::NOT_OURS};
            return;
        }
        char target[PATH_MAX];
        const ssize_t length = ::readlinkat(link.get(), "", target, sizeof target);
        if (length < 0) return fail(errno);
        if (++links_ > MOST_LINKS) return fail(ELOOP);
        left_ = std::string(target, static_cast<std::size_t>(length)) + (left_.empty() ? "" : "/") + left_;
        if (left_.starts_with('/')) begin(AT_FDCWD);
    }

    void fail(int error) { failed_ = Failure::of_system(shown_, error); }

    std::string left_;
    std::string shown_;
    Descriptor here_;
    int links_ = 0;
    std::optional<Failure> failed_;
};

}  // namespace

// In a sticky directory nobody can exchange the link of another.
bool is_trusted_link(const struct stat& link, const struct stat& home) {
    const bool is_open = (home.st_mode & S_IWOTH) != 0 && (home.st_mode & S_ISVTX) == 0;
    return is_ours(link) && is_ours(home) && !is_open;
}

Descriptor::~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
}

Descriptor::Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
}

bool Descriptor::close() {
    return ::close(std::exchange(fd_, -1)) == 0;
}

Directory::Directory(Descriptor fd, const std::string& path, const struct stat& info)
    : fd_(std::move(fd)), path_(with_trailing_slash(path)), info_(info) {}

namespace {

/// The end of the way, opened so that it can be read.
Result<Descriptor> opened(int start, const std::string& path, const std::string& shown, struct stat& info) {
    Way way(start, path);
    if (const Outcome gone = way.go(); !gone) {
        Failure failure = gone.failure();
        failure.subject = shown;
        return failure;
    }
    Descriptor fd(::openat(way.end().get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!fd.is_open() || ::fstat(fd.get(), &info) != 0) return Failure::of_system(shown, errno);
    return fd;
}

}  // namespace

Result<Directory> Directory::open(const std::string& path) {
    struct stat info = {};
    Result<Descriptor> fd = opened(AT_FDCWD, path, path, info);
    if (!fd) return fd.failure();
    return Directory(std::move(*fd), path, info);
}

Result<Directory> Directory::below(const std::string& name) const {
    struct stat info = {};
    Result<Descriptor> fd = opened(fd_.get(), name, path_of(name), info);
    if (!fd) return fd.failure();
    return Directory(std::move(*fd), path_of(name), info);
}

bool Directory::is_same_as(const Directory& other) const {
    return info_.st_dev == other.info_.st_dev && info_.st_ino == other.info_.st_ino;
}

bool Directory::look_at(const std::string& name, struct stat& info) const {
    return ::fstatat(fd_.get(), name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0;
}

bool Directory::has(const std::string& name) const {
    struct stat info = {};
    return look_at(name, info);
}

std::vector<std::string> names_in(int dir) {
    std::vector<std::string> names;
    const int copy = ::openat(dir, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* entries = copy >= 0 ? ::fdopendir(copy) : nullptr;
    if (entries == nullptr) {
        if (copy >= 0) ::close(copy);
        return names;
    }
    while (const dirent* entry = ::readdir(entries)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") names.push_back(name);
    }
    ::closedir(entries);
    return names;
}

std::vector<std::string> Directory::names() const {
    return names_in(fd_.get());
}

Result<std::string> Directory::read(const std::string& name) const {
    const Descriptor file(
        ::openat(fd_.get(), name.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC));
    if (!file.is_open() && errno == ELOOP) return Failure{path_of(name), Reason::NOT_OURS};
    if (!file.is_open()) return Failure::of_system(path_of(name), errno);
    return read_open_file(file.get(), path_of(name));
}

namespace {

constexpr int READ_NOW = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

Outcome is_readable_file(int fd, const std::string& path, struct stat& info) {
    if (::fstat(fd, &info) != 0) return Failure::of_system(path, errno);
    if (S_ISDIR(info.st_mode)) return Failure::of_system(path, EISDIR);
    if (!S_ISREG(info.st_mode)) return Failure{path, Reason::NOT_A_FILE};
    if (info.st_size > Directory::FILE_LIMIT) return Failure::of_system(path, EFBIG);
    return done();
}

/// A file by the directory that it is in, as far as its path has been followed.
struct Place {
    Descriptor home;
    struct stat home_info;
    std::string name;
};

/// Goes from `start` to the directory that the path's last component is in.
Result<Place> place_of(int start, const std::string& path, const std::string& shown) {
    const std::size_t slash = path.rfind('/');
    Place place = {Descriptor(), {}, slash == std::string::npos ? path : path.substr(slash + 1)};
    Way way(start, slash == std::string::npos ? "." : path.substr(0, slash + 1));
    if (const Outcome gone = way.go(); !gone) {
        Failure failure = gone.failure();
        failure.subject = shown;
        return failure;
    }
    place.home = std::move(way.end());
    if (::fstat(place.home.get(), &place.home_info) != 0) return Failure::of_system(shown, errno);
    if (place.name.empty()) return Failure::of_system(shown, EISDIR);
    return place;
}

/// Where the link at `place` leads, and whether a link there may be followed too.
struct Target {
    std::string path;
    bool is_trusted;
};

Result<Target> target_of(const Place& place, const std::string& shown) {
    const Descriptor link(::openat(place.home.get(), place.name.c_str(), JUST_LOOK));
    struct stat info = {};
    char target[PATH_MAX];
    if (!link.is_open() || ::fstat(link.get(), &info) != 0) return Failure::of_system(shown, errno);
    const ssize_t length = ::readlinkat(link.get(), "", target, sizeof target);
    if (length < 0) return Failure::of_system(shown, errno);
    std::string path(target, static_cast<std::size_t>(length));
    const bool is_trusted = is_trusted_link(info, place.home_info);
    if (!is_trusted && path.find('/') != std::string::npos) return Failure{shown, Reason::NOT_OURS};
    return Target{std::move(path), is_trusted};
}

}  // namespace

Result<ReadableFile> open_to_read(const std::string& path) {
    Result<Place> place = place_of(AT_FDCWD, path, path);
    bool may_be_link = true;
    for (int links = 0; place && links <= MOST_LINKS; ++links) {
        Descriptor file(::openat(place->home.get(), place->name.c_str(), READ_NOW | O_NOFOLLOW));
        struct stat info = {};
        if (file.is_open()) {
            if (Outcome usual = is_readable_file(file.get(), path, info); !usual) return usual.failure();
            return ReadableFile{std::move(file), place->home_info};
        }
        if (errno != ELOOP) return Failure::of_system(path, errno);
        if (!may_be_link) return Failure{path, Reason::NOT_OURS};
        const Result<Target> target = target_of(*place, path);
        if (!target) return target.failure();
        may_be_link = target->is_trusted;
        place = place_of(place->home.get(), target->path, path);
    }
    return place ? Failure::of_system(path, ELOOP) : place.failure();
}

Outcome may_be_given_to_all(const ReadableFile& file, const std::string& path) {
    struct stat info = {};
    if (::fstat(file.fd.get(), &info) != 0) return Failure::of_system(path, errno);
    if ((info.st_mode & S_IROTH) != 0) return done();
    const bool is_the_homes = runs_as_superuser() && file.home.st_uid == info.st_uid;
    if (info.st_nlink == 1 && (info.st_uid == ::geteuid() || is_the_homes)) return done();
    return Failure{path, Reason::NOT_EVERYBODYS};
}

Result<std::string> read_open_file(int fd, const std::string& path) {
    struct stat info = {};
    if (Outcome usual = is_readable_file(fd, path, info); !usual) return usual.failure();
    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(info.st_size));
    char block[65536];
    for (;;) {
        const ssize_t got = ::read(fd, block, sizeof block);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return Failure::of_system(path, errno);
        if (got == 0) return bytes;
        bytes.append(block, static_cast<std::size_t>(got));
        if (bytes.size() > static_cast<std::size_t>(Directory::FILE_LIMIT))
            return Failure::of_system(path, EFBIG);
    }
}

int write_all(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = file_calls().write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        if (written == 0) return EIO;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

}  // namespace gw
