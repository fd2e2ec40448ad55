// SPDX-License-Identifier: MIT
//
// A private directory for one test, removed with everything in it when the test ends.
#pragma once

#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace gw::test {

/// How many entries the directory has, hidden ones included, but for the one that a change of fonts keeps in
/// it.
inline std::ptrdiff_t entries_in(const std::string& path) {
    const std::filesystem::directory_iterator entries(path);
    return std::count_if(begin(entries), end(entries),
                         [](const auto& entry) { return entry.path().filename() != ".glyphward"; });
}

class TempDir {
  public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "glyphward-test-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) throw std::filesystem::filesystem_error("mkdtemp", {});
        path_ = pattern + '/';
    }
    ~TempDir() {
        std::error_code ignored;
        // A test may have removed its own write permission.
        for (const auto& entry : std::filesystem::recursive_directory_iterator(
                 path_, std::filesystem::directory_options::skip_permission_denied, ignored)) {
            if (!entry.is_symlink() && entry.is_directory()) {
                std::filesystem::permissions(entry, std::filesystem::perms::owner_all,
                                             std::filesystem::perm_options::add, ignored);
            }
        }
        std::filesystem::remove_all(path_, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    /// The directory, ending in "/".
    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] const char* c_str() const { return path_.c_str(); }
    [[nodiscard]] std::string file(std::string_view name) const { return path_ + std::string(name); }

    /// Writes a file below the directory, byte for byte, and returns its path. Missing directories are made.
    std::string write(std::string_view name, std::string_view bytes) const {
        std::string target = file(name);
        std::filesystem::create_directories(std::filesystem::path(target).parent_path());
        std::ofstream(target, std::ios::binary) << bytes;
        return target;
    }
    /// The bytes of a file below the directory; empty when it is missing.
    [[nodiscard]] std::string read(std::string_view name) const { return read_bytes(file(name)); }
    [[nodiscard]] bool exists(std::string_view name) const { return std::filesystem::exists(file(name)); }
    std::string make_dir(std::string_view name) const {
        std::filesystem::create_directories(file(name));
        return file(name) + '/';
    }

    static std::string read_bytes(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

  private:
    std::string path_;
};

}  // namespace gw::test
