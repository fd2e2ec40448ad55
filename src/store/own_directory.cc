// SPDX-License-Identifier: MIT
#include "store/own_directory.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <unordered_set>
#include <utility>

#include "core/file_calls.h"
#include "core/long_work.h"
#include "core/rights.h"
#include "store/numbers.h"

namespace gw {

namespace {

constexpr mode_t OWNERS = 0700;
constexpr mode_t GROUPS = 0770;
constexpr mode_t LOCK_MODE = 0600;
constexpr mode_t GROUPS_LOCK_MODE = 0660;
constexpr int STEP_MS = 20;
constexpr int MOST_ATTEMPTS = 5;
constexpr int MOST_LEFT = 1000;

constexpr const char* LOCK = "lock";
constexpr const char* MADE = "new";
constexpr const char* SET_ASIDE = "old";

int& patience() {
    static int milliseconds = 5000;
    return milliseconds;
}

/// Whether the members of a group may write the fonts, and not everybody.
bool is_a_groups(const struct stat& fonts) {
    return (fonts.st_mode & (S_IWGRP | S_IWOTH)) == S_IWGRP;
}

}  // namespace

// In a directory that everybody may write, the group of a file says nothing: the set-group-ID bit gives it to
// the files of all.
bool is_trusted(const struct stat& info, const struct stat& fonts) {
    const bool is_the_groups =
        is_a_groups(fonts) && info.st_gid == fonts.st_gid && (info.st_mode & S_IWOTH) == 0;
    return is_the_groups || info.st_uid == fonts.st_uid || is_superuser(info.st_uid) ||
           info.st_uid == ::geteuid();
}

namespace {

/// Gives what we have made in `like` its owner and, where that group may write, its group. Only the superuser
/// can do the first, and the second only a member.
void give_away(int fd, const struct stat& like) {
    const bool shared = is_a_groups(like);
    (void)file_calls().set_owner(fd, runs_as_superuser() ? like.st_uid : static_cast<uid_t>(-1),
                                 shared || runs_as_superuser() ? like.st_gid : static_cast<gid_t>(-1));
}

/// The same; the group gets these permissions if it is that of the directory. False when that fails.
bool give_away(int fd, const struct stat& like, mode_t groups) {
    give_away(fd, like);
    struct stat made = {};
    if (!is_a_groups(like) || ::fstat(fd, &made) != 0 || made.st_gid != like.st_gid) return true;
    return file_calls().set_mode(fd, groups) == 0;
}

/// The failure to use what is called NAME in `parent`. Where everybody may write, another user may have been
/// the first to make it.
Failure refusal(const Directory& parent, const std::string& name, const Directory& fonts) {
    const bool open_to_all = (fonts.info().st_mode & S_IWOTH) != 0;
    if (open_to_all) return Failure{fonts.path(), Reason::OPEN_TO_ALL};
    return Failure{parent.path_of(name), Reason::NOT_OURS};
}

bool can_be_ours(const struct stat& info, const Directory& fonts) {
    return S_ISDIR(info.st_mode) && is_trusted(info, fonts.info()) && (info.st_mode & S_IWOTH) == 0;
}

}  // namespace

Result<Directory> trusted_below(const Directory& parent, const std::string& name, const Directory& fonts) {
    struct stat info = {};
    if (!parent.look_at(name, info)) return Failure::of_system(parent.path_of(name), errno);
    if (!can_be_ours(info, fonts)) return refusal(parent, name, fonts);
    Result<Directory> dir = parent.below(name);
    // It may have been exchanged since.
    if (dir && !can_be_ours(dir->info(), fonts)) return refusal(parent, name, fonts);
    const bool is_open_to_all = (fonts.info().st_mode & S_IWOTH) != 0;
    if (!dir && dir.failure().error == EACCES && is_open_to_all) return refusal(parent, name, fonts);
    return dir;
}

namespace {

/// Makes the directory NAME in `parent`. Nothing but an empty directory is given away: its owner could have
/// put another one in its place.
Result<Directory> new_below(const Directory& parent, const std::string& name, const Directory& fonts) {
    if (file_calls().make_dir(parent.fd(), name.c_str(), OWNERS) != 0 && errno != EEXIST)
        return Failure::of_system(parent.path_of(name), errno);
    Result<Directory> dir = trusted_below(parent, name, fonts);
    if (!dir || !dir->names().empty()) return dir;
    if (!give_away(dir->fd(), fonts.info(), GROUPS)) return Failure::of_system(dir->path(), errno);
    return dir;
}

}  // namespace

Result<Directory> made_below(const Directory& parent, const std::string& name, const Directory& fonts) {
    return parent.has(name) ? trusted_below(parent, name, fonts) : new_below(parent, name, fonts);
}

namespace {

/// Makes an empty lock file that whoever may write the directory can open.
Outcome make_lock(const Directory& dir, const Directory& fonts) {
    const Descriptor fd(
        file_calls().open(dir.fd(), LOCK, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, LOCK_MODE));
    if (!fd.is_open()) return Failure::of_system(dir.path_of(LOCK), errno);
    (void)give_away(fd.get(), fonts.info(), GROUPS_LOCK_MODE);
    return done();
}

/// The lock file, opened.
Result<Descriptor> lock_file(const Directory& dir, const Directory& fonts) {
    if (!dir.has(LOCK)) {
        // Another process may be faster.
        if (Outcome made = make_lock(dir, fonts); !made && made.failure().error != EEXIST)
            return made.failure();
    }
    Descriptor fd(::openat(dir.fd(), LOCK, O_RDWR | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
    struct stat info = {};
    if (!fd.is_open() || ::fstat(fd.get(), &info) != 0) return Failure::of_system(dir.path_of(LOCK), errno);
    if (!S_ISREG(info.st_mode) || info.st_nlink != 1 || !is_trusted(info, fonts.info()))
        return refusal(dir, LOCK, fonts);
    return fd;
}

/// Removes our directory that was begun under this name and is still empty but for what we make there.
void remove_begun(const Directory& fonts, const std::string& name) {
    {
        const Result<Directory> dir = fonts.below(name);
        if (dir) {
            for (const char* part : {MADE, SET_ASIDE})
                (void)file_calls().unlink(dir->fd(), part, AT_REMOVEDIR);
            // Last: without it, somebody else could make one and begin.
            (void)file_calls().unlink(dir->fd(), LOCK, 0);
        }
    }
    (void)file_calls().unlink(fonts.fd(), name.c_str(), AT_REMOVEDIR);
}

/// Makes our directory under another name, with all that is in it.
Outcome make_begun(const Directory& fonts, const std::string& name) {
    const Result<Directory> dir = new_below(fonts, name, fonts);
    if (!dir) return dir.failure();
    for (const char* part : {MADE, SET_ASIDE}) {
        if (const Result<Directory> made = new_below(*dir, part, fonts); !made) return made.failure();
    }
    return make_lock(*dir, fonts);
}

/// Whether the process that has begun a directory of ours lives no more. This one has begun none so far; its
/// number was another's before.
bool is_dead_ones(std::string_view process) {
    const auto pid = number_in<pid_t>(process);
    return pid && *pid > 0 && (*pid == ::getpid() || (::kill(*pid, 0) != 0 && errno == ESRCH));
}

// It is complete, and its owner's, from the moment when it can be found: who is killed while making it locks
// nobody out.
Outcome make_own(const Directory& fonts) {
    const std::string prefix = std::string(OWN_DIRECTORY_NAME) + '-';
    for (const std::string& name : fonts.names()) {
        if (name.starts_with(prefix) && is_dead_ones(std::string_view(name).substr(prefix.size())))
            remove_begun(fonts, name);
    }
    const std::string begun = prefix + std::to_string(::getpid());
    Outcome made = make_begun(fonts, begun);
    if (made && file_calls().rename(fonts.fd(), begun.c_str(), fonts.fd(), OWN_DIRECTORY_NAME) == 0)
        return done();
    if (made) made = Failure::of_system(fonts.path_of(OWN_DIRECTORY_NAME), errno);
    remove_begun(fonts, begun);
    return made;
}

/// Our directory. Several processes may begin to make it; the first one to be ready makes it.
Result<Directory> own_directory(const Directory& fonts) {
    for (int attempt = 0; attempt < MOST_ATTEMPTS && !fonts.has(OWN_DIRECTORY_NAME); ++attempt) {
        const Outcome made = make_own(fonts);
        if (!made && !fonts.has(OWN_DIRECTORY_NAME) && made.failure().error != ENOENT) return made.failure();
    }
    return trusted_below(fonts, OWN_DIRECTORY_NAME, fonts);
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
        if (is_given_up()) return Failure{.subject = path, .reason = Reason::GIVEN_UP};
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

namespace {

/// The lock, taken. Somebody may have put another file in the place of the one that was waited for.
Result<Descriptor> taken_lock(const Directory& own, const Directory& fonts, int longest_wait) {
    for (int attempt = 0; attempt < MOST_ATTEMPTS; ++attempt) {
        Result<Descriptor> lock = lock_file(own, fonts);
        if (!lock) return lock;
        if (const Outcome taken = take_lock(lock->get(), fonts.path(), longest_wait); !taken)
            return taken.failure();
        struct stat held = {};
        struct stat named = {};
        if (::fstat(lock->get(), &held) == 0 && own.look_at(LOCK, named) && held.st_ino == named.st_ino &&
            held.st_dev == named.st_dev)
            return lock;
    }
    return Failure::of_system(own.path_of(LOCK), EAGAIN);
}

}  // namespace

// The user knows nothing of this directory, unless somebody else has put something there.
Result<std::unique_ptr<OwnDirectory>> OwnDirectory::enter(const Directory& fonts, bool waits) {
    Result<std::unique_ptr<OwnDirectory>> own = entered(fonts, waits);
    // The one whose lock was waited for may have been removed, as unused.
    for (int attempt = 1; !own && own.failure().error == ENOENT && attempt < MOST_ATTEMPTS; ++attempt)
        own = entered(fonts, waits);
    if (own || own.failure().reason != Reason::SYSTEM) return own;
    return Failure::of_system(fonts.path(), own.failure().error);
}

// As long as this has the lock nobody begins a change there.
bool OwnDirectory::remove_unused(const Directory& fonts) {
    const Result<std::unique_ptr<OwnDirectory>> own = enter(fonts, false);
    constexpr std::size_t PARTS = 3;  // the lock and the directories for files
    if (!own || (*own)->dir().names().size() != PARTS) return false;
    if (!(*own)->made().names().empty() || !(*own)->set_aside().names().empty()) return false;
    remove_begun(fonts, NAME);
    return !fonts.has(NAME);
}

Result<std::unique_ptr<OwnDirectory>> OwnDirectory::entered(const Directory& fonts, bool waits) {
    Result<Directory> dir = own_directory(fonts);
    if (!dir) return dir.failure();
    Result<Descriptor> lock = taken_lock(*dir, fonts, waits ? patience() : 0);
    if (!lock) return lock.failure();
    Result<Directory> made = made_below(*dir, MADE, fonts);
    if (!made) return made.failure();
    Result<Directory> set_aside = made_below(*dir, SET_ASIDE, fonts);
    if (!set_aside) return set_aside.failure();
    return std::unique_ptr<OwnDirectory>(new OwnDirectory(fonts.info(), std::move(*dir), std::move(*made),
                                                          std::move(*set_aside), std::move(*lock)));
}

Result<Descriptor> OwnDirectory::create(const Directory& where, const std::string& name,
                                        const std::string& subject) const {
    make_way(where, name);
    Descriptor fd(file_calls().open(where.fd(), name.c_str(),
                                    O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!fd.is_open()) return Failure::of_system(subject, errno);
    // The journal is for whoever has the next look.
    if (where.is_same_as(dir_)) (void)give_away(fd.get(), owner_, GROUPS_LOCK_MODE);
    return fd;
}

void OwnDirectory::lend_to_group(int fd) const {
    if (!runs_as_superuser()) give_away(fd, owner_);
}

/// A name for a directory that is in the way, if there is one left.
std::optional<std::string> OwnDirectory::free_name() const {
    if (!knows_free_names_) {
        knows_free_names_ = true;
        const std::vector<std::string> taken = dir_.names();
        const std::unordered_set<std::string> names(taken.begin(), taken.end());
        for (int number = MOST_LEFT - 1; number >= 0; --number) {
            std::string left = "left-" + std::to_string(number);
            if (!names.contains(left)) free_names_.push_back(std::move(left));
        }
    }
    if (free_names_.empty()) return std::nullopt;
    std::string name = std::move(free_names_.back());
    free_names_.pop_back();
    return name;
}

/// Removes what has the name. A directory is not ours; it gets another name.
void OwnDirectory::make_way(const Directory& where, const std::string& name) const {
    if (file_calls().unlink(where.fd(), name.c_str(), 0) == 0 || errno == ENOENT) return;
    if (const std::optional<std::string> left = free_name())
        (void)file_calls().rename(where.fd(), name.c_str(), dir_.fd(), left->c_str());
}

Result<std::string> OwnDirectory::read(const Directory& where, const std::string& name) const {
    return read_trusted(where, name, owner_);
}

// The name is looked at once more: the second name of an open file may just have been removed.
Result<std::string> read_trusted(const Directory& where, const std::string& name, const struct stat& fonts) {
    const std::string path = where.path_of(name);
    const auto is_ours = [&fonts](const struct stat& info) {
        return S_ISREG(info.st_mode) && info.st_nlink == 1 && is_trusted(info, fonts);
    };
    struct stat named = {};
    if (!where.look_at(name, named)) return Failure::of_system(path, errno);
    if (!is_ours(named)) return Failure{path, Reason::NOT_OURS};
    const Descriptor file(::openat(where.fd(), name.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
    struct stat opened = {};
    if (!file.is_open() || ::fstat(file.get(), &opened) != 0 || !where.look_at(name, named))
        return Failure::of_system(path, errno);
    const bool is_same = opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
    if (!is_same || !is_ours(opened) || !is_ours(named)) return Failure{path, Reason::NOT_OURS};
    return read_open_file(file.get(), path);
}

Result<std::string> OwnDirectory::read(const char* name) const {
    return read(dir_, name);
}

Outcome OwnDirectory::remove_journal() const {
    if (file_calls().unlink(dir_.fd(), JOURNAL, 0) != 0 && errno != ENOENT)
        return Failure::of_system(dir_.path_of(JOURNAL), errno);
    (void)file_calls().sync(dir_.fd());
    return done();
}

Outcome OwnDirectory::forget_trash() const {
    if (!set_aside_.has(MANIFEST) || file_calls().unlink(set_aside_.fd(), MANIFEST, 0) == 0) return done();
    return Failure::of_system(set_aside_.path_of(MANIFEST), errno);
}

void OwnDirectory::clear() const {
    for (const Directory* dir : {&made_, &set_aside_}) {
        for (const std::string& name : dir->names()) make_way(*dir, name);
    }
}

}  // namespace gw
