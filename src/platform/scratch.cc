// SPDX-License-Identifier: MIT
#include "platform/scratch.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "core/text.h"

namespace gw {

Outcome create_scratch_file(const std::string& path) {
    const int fd =
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (fd < 0 && errno == EEXIST) return Failure{path, Reason::NOT_OURS};
    if (fd < 0) return Failure::of_system(path, errno);
    ::close(fd);
    return done();
}

// Without MFD_CLOEXEC, so that the commands inherit it.
UnnamedScratchFile::UnnamedScratchFile() : fd_(::memfd_create("glyphward", 0)) {}

UnnamedScratchFile::~UnnamedScratchFile() {
    if (fd_ >= 0) ::close(fd_);
}

std::string UnnamedScratchFile::path() const {
    return fd_ < 0 ? std::string() : "/proc/self/fd/" + std::to_string(fd_);
}

bool is_foreign_dir(const char* dir) {
    // With a trailing slash, `lstat` would follow a link.
    const std::string path(without_trailing_slashes(dir));
    struct stat info = {};
    return ::lstat(path.c_str(), &info) == 0 && (!S_ISDIR(info.st_mode) || info.st_uid != ::geteuid());
}

Outcome may_use_scratch_dir(const std::string& dir) {
    if (!is_foreign_dir(dir.c_str())) return done();
    return Failure{dir, Reason::NOT_OURS}.with(Sequel::NOT_USED);
}

}  // namespace gw
