// SPDX-License-Identifier: MIT
#include "core/file_calls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

namespace gw {

namespace {

int open_file(int dir, const char* name, int flags, mode_t mode) {
    return ::openat(dir, name, flags, mode);
}

int link_file(int old_dir, const char* old_name, int new_dir, const char* new_name) {
    return ::linkat(old_dir, old_name, new_dir, new_name, 0);
}

constexpr FileCalls SYSTEM = {open_file,   ::mkdirat,         ::renameat, link_file, ::unlinkat, ::write,
                              ::ftruncate, ::posix_fallocate, ::fsync,    ::fchmod,  ::fchown,   ::futimens};

const FileCalls*& current() {
    static const FileCalls* calls = &SYSTEM;
    return calls;
}

}  // namespace

const FileCalls& system_file_calls() {
    return SYSTEM;
}

const FileCalls& file_calls() {
    return *current();
}

void use_file_calls(const FileCalls& calls) {
    current() = &calls;
}

}  // namespace gw
