// SPDX-License-Identifier: MIT
#include "diagnosis/readable_cure.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>

#include "core/directory.h"
#include "core/file_calls.h"
#include "core/text.h"
#include "diagnosis/server_rights.h"
#include "diagnosis/server_update.h"
#include "diagnosis/undo.h"

namespace gw::diagnosis {

namespace {

constexpr mode_t PERMISSIONS = 07777;
constexpr mode_t READING = S_IRUSR | S_IRGRP | S_IROTH;
// The owner may look into a directory, too: what puts it on a font path at login does.
constexpr mode_t PASSING = S_IRUSR | S_IXUSR | S_IXGRP | S_IXOTH;

/// A file of ours, open for its permissions only.
struct OwnFile {
    Descriptor fd;
    struct stat info;

    [[nodiscard]] mode_t mode() const { return info.st_mode & PERMISSIONS; }
};

// Whoever may write a directory can give a file of another user a second name there.
bool is_own(const struct stat& info) {
    if (info.st_uid != ::geteuid()) return false;
    return S_ISDIR(info.st_mode) || (S_ISREG(info.st_mode) && info.st_nlink == 1);
}

Result<OwnFile> open_own(const std::string& full_path) {
    const std::string path(without_trailing_slashes(full_path));
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos || slash + 1 == path.size() || goes_back(path))
        return Failure{path, Reason::NOT_OURS};
    const Result<Directory> parent = Directory::open(path.substr(0, slash + 1));
    if (!parent) return parent.failure();
    OwnFile file{
        Descriptor(::openat(parent->fd(), path.c_str() + slash + 1, O_PATH | O_NOFOLLOW | O_CLOEXEC)), {}};
    if (!file.fd.is_open() || ::fstat(file.fd.get(), &file.info) != 0) return Failure::of_system(path, errno);
    if (!is_own(file.info)) return Failure{path, Reason::NOT_OURS};
    return file;
}

/// A mode that was changed.
struct Changed {
    std::string path;
    ino_t inode;
    mode_t before;
    mode_t after;
};

Result<std::optional<Changed>> give(const std::string& path, mode_t bits) {
    const Result<OwnFile> file = open_own(path);
    if (!file) return file.failure();
    const mode_t useful = bits & (S_ISDIR(file->info.st_mode) ? PASSING : READING);
    const mode_t mode = file->mode() | useful;
    if (mode == file->mode()) return std::optional<Changed>();
    if (file_calls().set_mode(file->fd.get(), mode) != 0) return Failure::of_system(path, errno);
    return std::optional(Changed{path, file->info.st_ino, file->mode(), mode});
}

/// What is not as it was left stays; a file that has gone needs nothing.
Outcome take_back(const Changed& changed) {
    const Result<OwnFile> file = open_own(changed.path);
    if (!file) return file.failure().is_absence() ? done() : Outcome(file.failure());
    if (file->info.st_ino != changed.inode || file->mode() != changed.after)
        return Failure{changed.path, Reason::CHANGED_SINCE};
    if (file_calls().set_mode(file->fd.get(), changed.before) == 0) return done();
    return Failure::of_system(changed.path, errno);
}

/// From the last one to the first: what is in a directory can be reached only while that can be passed.
Outcome take_back_all(const std::vector<Changed>& all) {
    Outcome first;
    for (auto changed = all.rbegin(); changed != all.rend(); ++changed) {
        const Outcome back = take_back(*changed);
        if (!back && first) first = back;
    }
    return first;
}

Result<std::vector<Changed>> give_all(Rights rights) {
    // Directories come before what is in them.
    std::sort(rights.begin(), rights.end());
    std::vector<Changed> all;
    for (const auto& [path, bits] : rights) {
        const auto changed = give(path, bits);
        if (!changed) {
            (void)take_back_all(all);
            return changed.failure();
        }
        if (*changed) all.push_back(**changed);
    }
    return all;
}

}  // namespace

Result<Deed> make_readable(const Cure& cure, ServerView& server, const Surroundings& surroundings) {
    const auto given = give_all(cure.rights);
    if (!given) return given.failure();
    Deed deed{{Said::DONE_MADE_READABLE, {cure.element}}, {}, {}};
    const auto added = update(server, cure.element, surroundings.configured, deed.remarks);
    deed.undo = once(cure.element, [all = *given, added, &server]() -> Outcome {
        Outcome back = take_back_all(all);
        if (back) look_again(server, added);
        return back;
    });
    return deed;
}

}  // namespace gw::diagnosis
