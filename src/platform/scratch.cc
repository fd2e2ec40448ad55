// SPDX-License-Identifier: MIT
//
// Each directory is locked as long as its process lives. So one without a lock was left by a process that was
// killed.
#include "platform/scratch.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <map>
#include <memory>
#include <utility>

#include "core/directory.h"
#include "core/font_policy.h"
#include "core/text.h"
#include "platform/host_paths.h"

namespace gw {

namespace {

constexpr std::string_view PRIVATE_PREFIX = "glyphward-";
constexpr mode_t PRIVATE_MODE = 0711;  // the X server reads below it
constexpr time_t OLD_ENOUGH = 60;      // seconds; a younger directory may not have been locked yet
constexpr int LEVELS_BELOW_PRIVATE = 1;

/// Removes what is in the directory; in directories in it too, down to `levels`.
void clear(int dir, int levels) {
    for (const std::string& name : names_in(dir)) {
        if (::unlinkat(dir, name.c_str(), 0) == 0 || levels == 0) continue;
        const Descriptor below(::openat(dir, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (below.is_open()) clear(below.get(), levels - 1);
        ::unlinkat(dir, name.c_str(), AT_REMOVEDIR);
    }
}

/// Removes from the directory the kinds of files that are made in scratch directories: links to fonts and
/// tables.
void clear_of_our_kinds(int dir) {
    for (const std::string& name : names_in(dir)) {
        struct stat info = {};
        if (::fstatat(dir, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) continue;
        const bool is_table =
            name.starts_with("fonts.") || name == "encodings.dir" || name.starts_with(UPR_FILE_NAME);
        if (S_ISLNK(info.st_mode) || (S_ISREG(info.st_mode) && is_table)) ::unlinkat(dir, name.c_str(), 0);
    }
}

/// A directory that this process has made and locked. The lock is on the directory itself.
class HeldDir {
  public:
    HeldDir(std::string path, Descriptor fd) : path_(std::move(path)), fd_(std::move(fd)) {}

    [[nodiscard]] bool is_there() const {
        struct stat named = {};
        struct stat held = {};
        return ::lstat(path_.c_str(), &named) == 0 && ::fstat(fd_.get(), &held) == 0 &&
               named.st_ino == held.st_ino && named.st_dev == held.st_dev;
    }
    void remove(int levels = 0) const {
        if (!is_there()) return;
        clear(fd_.get(), levels);
        ::rmdir(path_.c_str());
    }
    [[nodiscard]] int fd() const { return fd_.get(); }
    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    std::string path_;  // without a trailing slash, with which a link would be followed
    Descriptor fd_;
};

enum class Lock { TAKEN, HELD_BY_ANOTHER, NOT_OURS };

/// Opens the directory, if it is this user's, and locks it.
Lock lock_dir(const std::string& path, Descriptor& fd) {
    fd = Descriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat info = {};
    if (!fd.is_open() || ::fstat(fd.get(), &info) != 0 || info.st_uid != ::geteuid()) return Lock::NOT_OURS;
    return ::flock(fd.get(), LOCK_EX | LOCK_NB) == 0 ? Lock::TAKEN : Lock::HELD_BY_ANOTHER;
}

/// Removes what a dead run has left at `path`.
Outcome take_over(const std::string& path) {
    Descriptor left;
    const Lock lock = lock_dir(path, left);
    if (lock == Lock::HELD_BY_ANOTHER) return Failure{path, Reason::USED_BY_ANOTHER};
    if (lock == Lock::NOT_OURS) return Failure{path, Reason::NOT_OURS};
    clear_of_our_kinds(left.get());
    if (::rmdir(path.c_str()) != 0) return Failure{path, Reason::NOT_OURS};
    return done();
}

struct Identity {
    dev_t device;
    ino_t inode;
};

/// All scratch files and directories of this process.
class Space {
  public:
    Space() : process_(::getpid()) {}
    ~Space() { remove_all(); }
    Space(const Space&) = delete;
    Space& operator=(const Space&) = delete;

    void remove_all() {
        // A child that ends as a copy of this process leaves them alone.
        if (::getpid() != process_) return;
        for (const auto& [path, dir] : dirs_) dir.remove();
        dirs_.clear();
        for (const auto& [path, identity] : files_) remove_file(path, identity);
        files_.clear();
        if (private_) private_->remove(LEVELS_BELOW_PRIVATE);
        private_.reset();
    }

    /// The private directory, which is made when it is first needed; null if it cannot be made.
    const HeldDir* private_dir() {
        if (private_ && !private_->is_there()) private_.reset();
        if (!private_) make_private_dir();
        return private_.get();
    }

    Outcome hold(const std::string& path, mode_t mode) {
        if (const HeldDir* dir = held(path); dir != nullptr) return done();
        const std::string name(without_trailing_slashes(path));
        if (::mkdir(name.c_str(), mode) != 0) {
            if (errno != EEXIST) return Failure::of_system(path, errno);
            if (const Outcome taken = take_over(name); !taken) return Failure{path, taken.failure().reason};
            if (::mkdir(name.c_str(), mode) != 0) return Failure::of_system(path, errno);
        }
        Descriptor fd;
        if (lock_dir(name, fd) != Lock::TAKEN) return Failure{path, Reason::NOT_OURS};
        const auto entry = dirs_.insert_or_assign(name, HeldDir(name, std::move(fd))).first;
        // Another run may have taken it for a left one before it was locked.
        if (!entry->second.is_there()) return Failure{path, Reason::USED_BY_ANOTHER};
        return done();
    }

    const HeldDir* held(const std::string& path) {
        const auto entry = dirs_.find(std::string(without_trailing_slashes(path)));
        if (entry == dirs_.end()) return nullptr;
        if (entry->second.is_there()) return &entry->second;
        dirs_.erase(entry);
        return nullptr;
    }

    void drop(const std::string& path) {
        const HeldDir* dir = held(path);
        if (dir == nullptr) return;
        dir->remove();
        dirs_.erase(dir->path());
    }

    void remember_file(const std::string& path, const struct stat& info) {
        files_[path] = {info.st_dev, info.st_ino};
    }

  private:
    void make_private_dir() {
        std::string path = SCRATCH_PRIVATE;
        if (::mkdtemp(path.data()) == nullptr) return;
        Descriptor fd;
        if (lock_dir(path, fd) != Lock::TAKEN || ::fchmod(fd.get(), PRIVATE_MODE) != 0) {
            ::rmdir(path.c_str());  // only an empty directory goes
            return;
        }
        private_ = std::make_unique<HeldDir>(path, std::move(fd));
    }

    static void remove_file(const std::string& path, const Identity& identity) {
        struct stat info = {};
        if (::lstat(path.c_str(), &info) == 0 && info.st_ino == identity.inode &&
            info.st_dev == identity.device)
            ::unlink(path.c_str());
    }

    pid_t process_;
    std::map<std::string, HeldDir> dirs_;
    std::map<std::string, Identity> files_;
    std::unique_ptr<HeldDir> private_;
};

Space& space() {
    static Space all;
    return all;
}

bool is_private_name(std::string_view name) {
    return name.starts_with(PRIVATE_PREFIX) && name.size() == std::string_view(SCRATCH_PRIVATE).size() -
                                                                  std::string_view(SCRATCH_ROOT).size() - 1;
}

bool is_old_dir_of_ours(const std::string& path) {
    struct stat info = {};
    return ::lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid == ::geteuid() &&
           info.st_mtim.tv_sec + OLD_ENOUGH < ::time(nullptr);
}

void remove_left_scratch_in(const char* root, std::vector<std::string>& removed) {
    const Descriptor dir(::open(root, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!dir.is_open()) return;
    for (const std::string& name : names_in(dir.get())) {
        const std::string path = std::string(root) + '/' + name;
        Descriptor left;
        if (!is_private_name(name) || !is_old_dir_of_ours(path) || lock_dir(path, left) != Lock::TAKEN)
            continue;
        const HeldDir left_dir(path, std::move(left));
        left_dir.remove(LEVELS_BELOW_PRIVATE);
        if (!left_dir.is_there()) removed.push_back(path + '/');
    }
}

}  // namespace

std::string scratch_path(std::string_view fixed) {
    const HeldDir* own = font_policy().has_private_scratch() ? space().private_dir() : nullptr;
    if (own == nullptr) return std::string(fixed);
    return own->path() + std::string(fixed.substr(std::string_view(SCRATCH_ROOT).size()));
}

Outcome create_scratch_file(const std::string& path) {
    ::unlink(path.c_str());
    const Descriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file.is_open() && errno == EEXIST) return Failure{path, Reason::NOT_OURS};
    struct stat info = {};
    if (!file.is_open() || ::fstat(file.get(), &info) != 0) return Failure::of_system(path, errno);
    space().remember_file(path, info);
    return done();
}

Outcome hold_scratch_dir(const std::string& path, mode_t mode) {
    return space().hold(path, mode);
}

bool holds_scratch_dir(const std::string& path) {
    return space().held(path) != nullptr;
}

Outcome link_in_scratch_dir(const std::string& path, const std::string& name, const std::string& target) {
    const HeldDir* dir = space().held(path);
    if (dir == nullptr) return Failure{path, Reason::NOT_OURS};
    ::unlinkat(dir->fd(), name.c_str(), 0);
    if (::symlinkat(target.c_str(), dir->fd(), name.c_str()) == 0) return done();
    return Failure::of_system(with_trailing_slash(path) + name, errno);
}

void drop_scratch_dir(const std::string& path) {
    space().drop(path);
}

void remove_scratch() {
    space().remove_all();
}

std::vector<std::string> remove_left_scratch() {
    std::vector<std::string> removed;
    for (const char* root : {SCRATCH_ROOT, SCRATCH_MEMORY_ROOT}) remove_left_scratch_in(root, removed);
    return removed;
}

bool was_in_private_scratch(std::string_view path) {
    const std::string root = std::string(SCRATCH_ROOT) + '/';
    if (!path.starts_with(root)) return false;
    const std::string_view name = path.substr(root.size(), path.find('/', root.size()) - root.size());
    struct stat info = {};
    return is_private_name(name) && ::lstat((root + std::string(name)).c_str(), &info) != 0 &&
           errno == ENOENT;
}

// Without MFD_CLOEXEC, so that the commands inherit it.
UnnamedScratchFile::UnnamedScratchFile(std::string_view content) : fd_(::memfd_create("glyphward", 0)) {
    if (fd_ < 0 || write_all(fd_, content) == 0) return;
    ::close(fd_);
    fd_ = -1;
}

UnnamedScratchFile::~UnnamedScratchFile() {
    if (fd_ >= 0) ::close(fd_);
}

Result<std::string> UnnamedScratchFile::read() const {
    if (fd_ < 0 || ::lseek(fd_, 0, SEEK_SET) != 0)
        return Failure::of_system("memory", fd_ < 0 ? ENOMEM : errno);
    return read_open_file(fd_, "memory");
}

ShortLivedDirectory::ShortLivedDirectory(Medium medium) {
    if (medium != Medium::MEMORY || !make(SCRATCH_IN_MEMORY)) make(SCRATCH_PRIVATE);
}

bool ShortLivedDirectory::make(const char* pattern) {
    path_ = pattern;
    if (::mkdtemp(path_.data()) == nullptr) {
        path_.clear();
        return false;
    }
    // The lock tells other runs that it is in use, however long the work takes.
    lock_dir(path_, lock_);
    return true;
}

ShortLivedDirectory::~ShortLivedDirectory() {
    if (lock_.is_open()) HeldDir(path_, std::move(lock_)).remove(LEVELS_BELOW_PRIVATE);
}

std::string UnnamedScratchFile::path() const {
    return fd_ < 0 ? std::string() : "/proc/self/fd/" + std::to_string(fd_);
}

}  // namespace gw
