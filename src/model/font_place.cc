// SPDX-License-Identifier: MIT
#include "model/font_place.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>

#include "core/directory.h"
#include "core/rights.h"

namespace gw {

namespace {

// Read once, because the user never changes while the program runs.
const uid_t effective_uid = ::geteuid();

constexpr unsigned BLOCKS_PER_KILOBYTE = 2;

bool bits_allow_writing(uid_t owner, mode_t mode) {
    return is_writeable_by(owner, mode, effective_uid);
}

bool can_open(const char* path, int flags) {
    const Descriptor file(::open(path, flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    return file.is_open();
}

/// Whether an empty file can be made at `path`; it is removed again. One that an earlier run has left is
/// removed first; anything else of that name is left alone, and then nothing can be made.
bool can_make(const std::string& path) {
    struct stat left = {};
    if (::lstat(path.c_str(), &left) == 0 && S_ISREG(left.st_mode) && left.st_size == 0 && left.st_nlink == 1)
        ::unlink(path.c_str());
    const Descriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (file.is_open()) ::unlink(path.c_str());
    return file.is_open();
}

/// Remembers the directory in which a scratch file was last made. Fonts that are made one by one ask about
/// the same directory again, and making and removing a file takes longer than everything else. The answer is
/// used again while the directory is unchanged, but only for a second, because a file system can become
/// read-only or full without a change of the directory.
class LastWritableDirectory {
  public:
    [[nodiscard]] bool is(const std::string& dir, const struct stat& info) const {
        return dir == dir_ && info.st_dev == seen_.st_dev && info.st_ino == seen_.st_ino &&
               info.st_mode == seen_.st_mode && info.st_uid == seen_.st_uid &&
               info.st_ctim.tv_sec == seen_.st_ctim.tv_sec && info.st_ctim.tv_nsec == seen_.st_ctim.tv_nsec &&
               Clock::now() - when_ < std::chrono::seconds(1);
    }
    void set(const std::string& dir) {
        dir_ = ::stat(dir.c_str(), &seen_) == 0 ? dir : std::string();
        when_ = Clock::now();
    }

  private:
    using Clock = std::chrono::steady_clock;
    std::string dir_;
    struct stat seen_ = {};
    Clock::time_point when_;
};

/// Whether a scratch file can be made in `dir`; `info` is the result of `stat` for it.
bool takes_scratch_file(const std::string& dir, const struct stat& info) {
    static LastWritableDirectory last;
    if (last.is(dir, info)) return true;
    if (!can_make(dir + "/.glyphwd_dummy")) return false;
    last.set(dir);
    return true;
}

}  // namespace

FontPlace::Rights FontPlace::rights() {
    if (rights_ != Rights::NOT_ASKED) return rights_;
    const std::string& dir = seen_.path();
    struct stat info = {};
    if (::stat(dir.c_str(), &info) != 0 || !takes_scratch_file(dir, info)) {
        rights_ = Rights::NONE;
    } else {
        // Kept: a directory that takes a scratch file is writable whatever its bits say.
        rights_ = bits_allow_writing(info.st_uid, info.st_mode) ? Rights::BY_FILE : Rights::ALL;
    }
    return rights_;
}

bool FontPlace::is_read_only(const GW_FSPEC_LIST& files) {
    if (rights() != Rights::BY_FILE) return rights() == Rights::NONE;
    return !std::all_of(files.begin(), files.end(),
                        [this](const GW_FILE_SPEC* spec) { return can_write(*spec); });
}

std::optional<SeenFile> FontPlace::look(const GW_FILE_SPEC& spec) {
    return spec.get_dir() == seen_.path() ? seen_.look(spec.get_name()) : look_at_file(spec.get_path());
}

// Who else's file this user may open for writing is up to lists and file systems, so each is tried. So is one
// that may be locked against all changes.
bool FontPlace::can_write(const GW_FILE_SPEC& spec) {
    const std::optional<SeenFile> file = look(spec);
    if (!file || !bits_allow_writing(file->owner, file->mode)) return false;
    if (file->owner != effective_uid || file->is_unchangeable) return can_open(spec.get_path(), O_RDWR);
    const auto [known, is_new] = own_files_.try_emplace({file->device, file->mode});
    if (is_new) known->second = can_open(spec.get_path(), O_RDWR);
    return known->second;
}

unsigned FontPlace::known_kilobytes(const GW_FSPEC_LIST& files) {
    unsigned kilobytes = 0;
    for (const GW_FILE_SPEC* spec : files) {
        const bool is_here = spec->get_dir() == seen_.path();
        const std::optional<SeenFile>* file = is_here ? seen_.known(spec->get_name()) : nullptr;
        if (file == nullptr) return 0;
        if (*file) kilobytes += static_cast<unsigned>((*file)->blocks) / BLOCKS_PER_KILOBYTE;
    }
    return kilobytes;
}

unsigned kilobytes_of(const GW_FSPEC_LIST& files) {
    unsigned kilobytes = 0;
    for (const GW_FILE_SPEC* spec : files) {
        struct stat info = {};
        if (::stat(spec->get_path(), &info) == 0)
            kilobytes += static_cast<unsigned>(info.st_blocks) / BLOCKS_PER_KILOBYTE;
    }
    return kilobytes;
}

}  // namespace gw
