// SPDX-License-Identifier: MIT
#include "model/file_facts.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>

namespace gw {

namespace {

Result<struct stat> look_at(const std::string& path) {
    struct stat info = {};
    if (::stat(path.c_str(), &info) != 0) return Failure::of_system(path, errno);
    return info;
}

}  // namespace

Result<FileFacts> facts_of_file(const std::string& path) {
    const Result<struct stat> info = look_at(path);
    if (!info) return info.failure();
    return FileFacts{info->st_size, info->st_mtime, info->st_uid};
}

Result<bool> have_equal_bytes(const std::string& one, const std::string& another) {
    off_t sizes[2] = {};
    for (const std::string* path : {&one, &another}) {
        const Result<struct stat> info = look_at(*path);
        if (!info) return info.failure();
        if (!S_ISREG(info->st_mode)) return Failure{*path, Reason::NOT_A_FILE};
        sizes[path == &one ? 0 : 1] = info->st_size;
    }
    if (sizes[0] != sizes[1]) return false;
    std::ifstream first(one, std::ios::binary);
    if (!first) return Failure::of_system(one, errno);
    std::ifstream second(another, std::ios::binary);
    if (!second) return Failure::of_system(another, errno);
    using Bytes = std::istreambuf_iterator<char>;
    return std::equal(Bytes(first), Bytes(), Bytes(second), Bytes());
}

}  // namespace gw
