// SPDX-License-Identifier: MIT
//
// A directory for one test on the sandbox's small disk, and a way to fill that disk.
#pragma once

#include <stdlib.h>
#include <sys/statvfs.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "support/temp_dir.h"

namespace gw::test {

class SmallDisk {
  public:
    static constexpr const char* ROOT = "/small/";

    SmallDisk() : path_(std::string(ROOT) + "test-XXXXXX") {
        if (::mkdtemp(path_.data()) == nullptr) {
            throw std::system_error(errno, std::generic_category(),
                                    "these tests want the sandbox's small disk");
        }
        path_ += '/';
    }
    ~SmallDisk() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
        std::filesystem::remove(filler(), ignored);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    /// The directory, ending in "/".
    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::string file(const std::string& name) const { return path_ + name; }
    void write(const std::string& name, const std::string& bytes) const {
        std::ofstream(file(name), std::ios::binary) << bytes;
    }
    [[nodiscard]] std::string read(const std::string& name) const { return TempDir::read_bytes(file(name)); }
    [[nodiscard]] bool exists(const std::string& name) const { return std::filesystem::exists(file(name)); }
    /// See `entries_in`.
    [[nodiscard]] std::ptrdiff_t entries() const { return entries_in(path_); }

    /// Fills the disk so that this many blocks stay free.
    void leave_blocks(unsigned long blocks) const {
        struct statvfs info = {};
        if (::statvfs(ROOT, &info) != 0 || info.f_bavail < blocks)
            throw std::runtime_error("it is full already");
        std::ofstream(filler(), std::ios::binary)
            << std::string((info.f_bavail - blocks) * info.f_frsize, 'x');
    }

  private:
    static std::string filler() { return std::string(ROOT) + "filler"; }
    std::string path_;
};

}  // namespace gw::test
