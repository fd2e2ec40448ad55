// SPDX-License-Identifier: MIT
//
// The system calls by which the engine changes the disk. All of its changes go through this table, so a test
// can let any one of them fail, or end the process there.
#pragma once

#include <sys/types.h>
#include <time.h>

#include <cstddef>

namespace gw {

/// Named and used like the system's calls with a directory's descriptor in front. Each returns -1 and sets
/// `errno` on failure, but for `allocate`, which returns the error number or 0. `set_mode` also takes a
/// descriptor that was opened with `O_PATH`.
struct FileCalls {
    int (*open)(int dir, const char* name, int flags, mode_t mode);
    int (*make_dir)(int dir, const char* name, mode_t mode);
    int (*rename)(int old_dir, const char* old_name, int new_dir, const char* new_name);
    int (*link)(int old_dir, const char* old_name, int new_dir, const char* new_name);
    int (*unlink)(int dir, const char* name, int flags);
    ssize_t (*write)(int fd, const void* bytes, std::size_t count);
    int (*truncate)(int fd, off_t size);
    int (*allocate)(int fd, off_t offset, off_t size);
    int (*sync)(int fd);
    int (*set_mode)(int fd, mode_t mode);
    int (*set_owner)(int fd, uid_t owner, gid_t group);
    int (*set_times)(int fd, const timespec times[2]);
    /// All that was written to the file system of `fd`: `syncfs`.
    int (*sync_all)(int fd);
};

/// The system's own calls.
[[nodiscard]] const FileCalls& system_file_calls();
/// The calls in use: the system's own unless a test has given others.
[[nodiscard]] const FileCalls& file_calls();
/// Uses these calls from now on; the table must outlive its use.
void use_file_calls(const FileCalls& calls);

}  // namespace gw
