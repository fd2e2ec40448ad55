// SPDX-License-Identifier: MIT
#include "fontfiles/fontset_working_copy.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

#include "platform/host_paths.h"
#include "platform/scratch.h"

namespace gw {

FontsetWorkingCopy::FontsetWorkingCopy() : file(FONTSET_FILE_NAME, SCRATCH_ROOT, FILE_TYPE_REGULAR) {}

FontsetWorkingCopy::~FontsetWorkingCopy() {
    if (is_own_file()) file.remove();
}

void FontsetWorkingCopy::set_bytes(std::string_view new_bytes) {
    bytes = std::string(new_bytes);
    if (in_memory || (make_file() && write_file())) return;
    std::fprintf(stderr, "glyphward: %s: %s; changed fontsets stand in memory only\n", file.get_path(),
                 std::strerror(errno));
    if (is_own_file()) file.remove();
    in_memory = true;
}

/// Makes an empty scratch file, in place of an old one that belongs to this user. Sets `errno` when it
/// cannot.
bool FontsetWorkingCopy::make_file() {
    struct stat info {};
    if (::lstat(file.get_path(), &info) == 0) {
        if (!S_ISREG(info.st_mode) || info.st_uid != ::geteuid()) {
            errno = EEXIST;
            return false;
        }
        file.remove();
    }
    if (!create_scratch_file(file.get_path()) || ::lstat(file.get_path(), &info) != 0) return false;
    device = info.st_dev;
    inode = info.st_ino;
    return true;
}

bool FontsetWorkingCopy::write_file() {
    if (file.open("w") == 0) return false;
    bool whole = true;
    for (std::string_view rest = bytes; whole && !rest.empty();) {
        const std::size_t block = std::min<std::size_t>(rest.size(), INT_MAX);
        whole = file.write(rest.data(), static_cast<int>(block)) == static_cast<int>(block);
        rest.remove_prefix(block);
    }
    const int failure = errno;
    file.close();
    errno = failure;
    return whole;
}

bool FontsetWorkingCopy::is_own_file() const {
    struct stat info {};
    return inode != 0 && ::lstat(file.get_path(), &info) == 0 && info.st_ino == inode &&
           info.st_dev == device;
}

}  // namespace gw
