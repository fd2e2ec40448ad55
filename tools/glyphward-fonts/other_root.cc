// SPDX-License-Identifier: MIT
#include "glyphward-fonts/other_root.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "core/directory.h"
#include "core/rights.h"

namespace gw::fonts {

namespace {

namespace fs = std::filesystem;

/// Where the old root is in the new one; "" while there is none, or it is nowhere.
struct Outside {
    bool is_other_root = false;
    std::string place = {};
    std::string working_directory = {};
};
Outside& old_root() {
    static Outside of_process;
    return of_process;
}

Outcome write_to(const char* path, const std::string& text) {
    const Descriptor file(::open(path, O_WRONLY | O_CLOEXEC));
    if (!file.is_open() || ::write(file.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        return Failure::of_system(path, errno);
    return done();
}

/// The user and group of this process keep their numbers, so that files are made as they would be without it.
Outcome make_user_namespace() {
    const std::string user = std::to_string(::geteuid());
    const std::string group = std::to_string(::getegid());
    if (::unshare(CLONE_NEWUSER) != 0) return Failure::of_system("--root", errno);
    if (Outcome step = write_to("/proc/self/uid_map", user + ' ' + user + " 1\n"); !step) return step;
    if (Outcome step = write_to("/proc/self/setgroups", "deny"); !step) return step;
    return write_to("/proc/self/gid_map", group + ' ' + group + " 1\n");
}

/// Devices and processes are what they are, also in an image whose own directories for them are empty.
void bind_system(const std::string& directory) {
    for (const char* place : {"/dev", "/proc"}) {
        std::error_code error;
        const std::string target = directory + place;
        if (fs::is_symlink(target, error) || !fs::is_directory(target, error)) continue;
        (void)::mount(place, target.c_str(), nullptr, MS_BIND | MS_REC, nullptr);
    }
}

/// Scratch files of this process are made in "/tmp", which must not be the old root then. It is a file system
/// of this process's own, and has the old root in a directory.
std::string bind_in_own_tmp(const std::string& tmp) {
    constexpr const char* PLACE = "/outside";
    constexpr mode_t MODE = 0755;
    if (::mount("tmpfs", tmp.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, "mode=1777") != 0) return "";
    const std::string target = tmp + PLACE;
    if (::mkdir(target.c_str(), MODE) != 0) return "";
    if (::mount("/", target.c_str(), nullptr, MS_BIND | MS_REC, nullptr) != 0) return "";
    return std::string("/tmp") + PLACE;
}

/// Makes the old root visible below the new one, for this process and its children only. Nothing is written:
/// the directory is one that every system has. Without the right to mount there is no such place.
std::string bind_old_root(const std::string& directory) {
    if (::unshare(CLONE_NEWNS) != 0) return "";
    if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return "";
    bind_system(directory);
    for (const char* place : {"/mnt", "/media", "/srv"}) {
        std::error_code error;
        const std::string target = directory + place;
        if (fs::is_symlink(target, error) || !fs::is_directory(target, error)) continue;
        if (::mount("/", target.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0) return place;
    }
    std::error_code error;
    const std::string tmp = directory + "/tmp";
    return !fs::is_symlink(tmp, error) && fs::is_directory(tmp, error) ? bind_in_own_tmp(tmp) : "";
}

}  // namespace

Outcome enter_root(const std::string& directory) {
    std::error_code error;
    const std::string root = fs::canonical(directory, error).string();
    if (error) return Failure::of_system(directory, error.value());
    old_root() = {true, "", fs::current_path(error).string()};
    if (!runs_as_superuser()) {
        if (Outcome step = make_user_namespace(); !step) return step;
    }
    if (root != "/") old_root().place = bind_old_root(root);
    if (::chroot(root.c_str()) != 0 || ::chdir("/") != 0) return Failure::of_system(directory, errno);
    return done();
}

bool is_in_other_root() {
    return old_root().is_other_root;
}

std::string outside(const std::string& path) {
    if (!old_root().is_other_root) return path;
    if (old_root().place.empty()) return "";
    const fs::path full =
        path.starts_with('/') ? fs::path(path) : fs::path(old_root().working_directory) / path;
    return old_root().place + full.lexically_normal().string();
}

std::string as_the_user_says(std::string text) {
    const std::string& place = old_root().place;
    if (place.empty()) return text;
    for (std::size_t at = text.find(place + '/'); at != std::string::npos; at = text.find(place + '/', at))
        text.erase(at, place.size());
    return text;
}

}  // namespace gw::fonts
