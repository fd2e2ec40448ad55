// SPDX-License-Identifier: MIT
//
// The functions go straight to the system where they can, because a sanitizer has put its own in front of the
// library's.
#include "support/sleeping_files.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Plain arrays: other libraries look at files before the constructors of this one run.
char sleeping[PATH_MAX] = "";
bool is_set = false;
pid_t watched = 0;
bool nobody_dies = false;

std::vector<std::string>& noted() {
    static std::vector<std::string> paths;
    return paths;
}

std::vector<int>& spared_processes() {
    static std::vector<int> processes;
    return processes;
}

void set_sleeping(const char* directory) {
    is_set = true;
    std::strncpy(sleeping, directory != nullptr ? directory : "", sizeof sleeping - 1);
    for (std::size_t end = std::strlen(sleeping); end > 0 && sleeping[end - 1] == '/'; --end)
        sleeping[end - 1] = '\0';
}

bool is_asleep(const char* path) {
    if (!is_set) set_sleeping(std::getenv(gw::test::SLEEPING_DIRECTORY));
    const std::size_t length = std::strlen(sleeping);
    return length > 0 && std::strncmp(path, sleeping, length) == 0 &&
           (path[length] == '\0' || path[length] == '/');
}

/// Whether the look fails; it does not return where it hangs.
bool fails(int dir, const char* path) {
    char whole[2 * PATH_MAX] = "";
    if (path == nullptr || *path == '\0') return false;
    if (*path != '/' && dir != AT_FDCWD) {
        char link[64];
        std::snprintf(link, sizeof link, "/proc/self/fd/%d", dir);
        const long length = ::syscall(SYS_readlinkat, AT_FDCWD, link, whole, PATH_MAX - 1);
        if (length > 0 && !(length == 1 && whole[0] == '/')) whole[length] = '/';
    }
    std::strncat(whole, path, PATH_MAX - 1);
    if (!is_asleep(whole)) return false;
    while (watched == 0 || ::getpid() != watched) ::pause();
    noted().emplace_back(whole);
    errno = EIO;
    return true;
}

template <class Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

int look(int dir, const char* path, void* info, int flags) {
    return fails(dir, path) ? -1 : static_cast<int>(::syscall(SYS_newfstatat, dir, path, info, flags));
}

int opened(int dir, const char* path, int flags, mode_t mode) {
    return fails(dir, path) ? -1 : static_cast<int>(::syscall(SYS_openat, dir, path, flags, mode));
}

mode_t mode_of(int flags, std::va_list more) {
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0;
}

}  // namespace

// The library declares some of these with attributes that a definition need not repeat.
extern "C" {

int stat(const char* path, struct stat* info) {
    return look(AT_FDCWD, path, info, 0);
}
int stat64(const char* path, struct stat64* info) {
    return look(AT_FDCWD, path, info, 0);
}
int lstat(const char* path, struct stat* info) {
    return look(AT_FDCWD, path, info, AT_SYMLINK_NOFOLLOW);
}
int lstat64(const char* path, struct stat64* info) {
    return look(AT_FDCWD, path, info, AT_SYMLINK_NOFOLLOW);
}
int fstatat(int dir, const char* path, struct stat* info, int flags) {
    return look(dir, path, info, flags);
}
int fstatat64(int dir, const char* path, struct stat64* info, int flags) {
    return look(dir, path, info, flags);
}
int statx(int dir, const char* path, int flags, unsigned mask, struct statx* info) {
    return fails(dir, path) ? -1 : static_cast<int>(::syscall(SYS_statx, dir, path, flags, mask, info));
}
int access(const char* path, int mode) {
    return fails(AT_FDCWD, path) ? -1 : static_cast<int>(::syscall(SYS_faccessat, AT_FDCWD, path, mode));
}
int faccessat(int dir, const char* path, int mode, int flags) {
    return fails(dir, path) ? -1 : static_cast<int>(::syscall(SYS_faccessat2, dir, path, mode, flags));
}
ssize_t readlink(const char* path, char* target, size_t size) {
    return fails(AT_FDCWD, path) ? -1 : ::syscall(SYS_readlinkat, AT_FDCWD, path, target, size);
}
int mkdir(const char* path, mode_t mode) {
    return fails(AT_FDCWD, path) ? -1 : static_cast<int>(::syscall(SYS_mkdirat, AT_FDCWD, path, mode));
}

int open(const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const mode_t mode = mode_of(flags, more);
    va_end(more);
    return opened(AT_FDCWD, path, flags, mode);
}
int open64(const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const mode_t mode = mode_of(flags, more);
    va_end(more);
    return opened(AT_FDCWD, path, flags, mode);
}
int openat(int dir, const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const mode_t mode = mode_of(flags, more);
    va_end(more);
    return opened(dir, path, flags, mode);
}
int openat64(int dir, const char* path, int flags, ...) {
    std::va_list more;
    va_start(more, flags);
    const mode_t mode = mode_of(flags, more);
    va_end(more);
    return opened(dir, path, flags, mode);
}

FILE* fopen(const char* path, const char* mode) {
    return fails(AT_FDCWD, path) ? nullptr : next<decltype(&fopen)>("fopen")(path, mode);
}
FILE* fopen64(const char* path, const char* mode) {
    return fails(AT_FDCWD, path) ? nullptr : next<decltype(&fopen64)>("fopen64")(path, mode);
}
DIR* opendir(const char* path) {
    return fails(AT_FDCWD, path) ? nullptr : next<decltype(&opendir)>("opendir")(path);
}
char* realpath(const char* path, char* resolved) {
    return fails(AT_FDCWD, path) ? nullptr : next<decltype(&realpath)>("realpath")(path, resolved);
}

int kill(pid_t process, int signal) {
    if (!nobody_dies || signal != SIGKILL) return static_cast<int>(::syscall(SYS_kill, process, signal));
    spared_processes().push_back(process);
    return 0;
}

}  // extern "C"

namespace gw::test {

SleepingDirectory::SleepingDirectory(const std::string& directory) {
    noted().clear();
    watched = ::getpid();
    set_sleeping(directory.c_str());
}

SleepingDirectory::~SleepingDirectory() {
    set_sleeping("");
    watched = 0;
}

std::vector<std::string> SleepingDirectory::looked_at() const {
    return noted();
}

NobodyDies::NobodyDies() {
    spared_processes().clear();
    nobody_dies = true;
}

NobodyDies::~NobodyDies() {
    nobody_dies = false;
}

const std::vector<int>& NobodyDies::spared() {
    return spared_processes();
}

}  // namespace gw::test
