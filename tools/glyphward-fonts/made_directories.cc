// SPDX-License-Identifier: MIT
#include "glyphward-fonts/made_directories.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "core/directory.h"
#include "core/file_calls.h"
#include "core/text.h"
#include "store/own_directory.h"

namespace gw::fonts {

namespace {

constexpr mode_t DIRECTORY_MODE = 0755;

void remove_if_empty(const std::string& path) {
    const Result<Directory> dir = Directory::open(path);
    if (!dir) return;
    const std::vector<std::string> names = dir->names();
    if (names.size() > 1) return;
    if (!names.empty() && (names.front() != OWN_DIRECTORY_NAME || !OwnDirectory::remove_unused(*dir))) return;
    (void)file_calls().unlink(AT_FDCWD, path.c_str(), AT_REMOVEDIR);
}

}  // namespace

MadeDirectories::~MadeDirectories() {
    for (auto path = made_.rbegin(); path != made_.rend(); ++path) remove_if_empty(*path);
}

Outcome MadeDirectories::make(const std::string& directory) {
    const std::string path(without_trailing_slashes(directory));
    if (file_calls().make_dir(AT_FDCWD, path.c_str(), DIRECTORY_MODE) == 0) {
        made_.push_back(path);
        return done();
    }
    const int error = errno;
    struct stat info = {};
    const bool is_there = error == EEXIST && ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
    return is_there ? done() : Outcome(Failure::of_system(directory, error));
}

Outcome MadeDirectories::make_with_parents(const std::string& directory) {
    const std::string path(without_trailing_slashes(directory));
    struct stat info = {};
    if (::stat(path.c_str(), &info) == 0) return make(path);
    const std::string parent = std::filesystem::path(path).parent_path();
    if (!parent.empty() && parent != path) {
        if (Outcome above = make_with_parents(parent); !above) return above;
    }
    return make(path);
}

}  // namespace gw::fonts
