// SPDX-License-Identifier: MIT
#include "fontfiles/fontset_working_copy.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>

#include "platform/host_paths.h"
#include "platform/scratch.h"

namespace gw {

FontsetWorkingCopy::FontsetWorkingCopy()
    : file(FONTSET_FILE_NAME, scratch_path(SCRATCH_ROOT).c_str(), FILE_TYPE_REGULAR) {}

FontsetWorkingCopy::~FontsetWorkingCopy() {
    if (is_own_file()) file.remove();
}

void FontsetWorkingCopy::set_bytes(std::string_view new_bytes) {
    bytes = std::string(new_bytes);
    if (in_memory) return;
    Outcome step = make_file();
    if (step) step = write_file();
    if (tell_unless_done(step.with(Sequel::FONTSETS_IN_MEMORY))) return;
    if (is_own_file()) file.remove();
    in_memory = true;
}

/// Makes an empty scratch file, in place of an old one that belongs to this user.
Outcome FontsetWorkingCopy::make_file() {
    struct stat info = {};
    if (::lstat(file.get_path(), &info) == 0) {
        if (!S_ISREG(info.st_mode) || info.st_uid != ::geteuid())
            return Failure{file.get_path(), Reason::NOT_OURS};
        file.remove();
    }
    if (Outcome made = create_scratch_file(file.get_path()); !made) return made;
    if (::lstat(file.get_path(), &info) != 0) return Failure::of_system(file.get_path(), errno);
    device = info.st_dev;
    inode = info.st_ino;
    return done();
}

Outcome FontsetWorkingCopy::write_file() {
    file.open("w");
    for (std::string_view rest = bytes; file.outcome() && !rest.empty();) {
        const std::size_t block = std::min<std::size_t>(rest.size(), INT_MAX);
        file.write(rest.data(), static_cast<int>(block));
        rest.remove_prefix(block);
    }
    file.close();
    return file.outcome();
}

bool FontsetWorkingCopy::is_own_file() const {
    struct stat info = {};
    return inode != 0 && ::lstat(file.get_path(), &info) == 0 && info.st_ino == inode &&
           info.st_dev == device;
}

}  // namespace gw
