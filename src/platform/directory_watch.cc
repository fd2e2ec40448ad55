// SPDX-License-Identifier: MIT
#include "platform/directory_watch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <utility>

#include "core/text.h"

namespace gw {

namespace {

constexpr unsigned CONTENT = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE | IN_ATTRIB;
constexpr unsigned SELF = IN_DELETE_SELF | IN_MOVE_SELF;
constexpr std::size_t BUFFER_SIZE = 16384;
// A program that writes all the time must not keep this one; what is left is told at the next call.
constexpr int MOST_ROUNDS = 64;

/// The directory that a path is in, and its last component. The path has no slash at its end.
std::pair<std::string, std::string> split(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return {"", path};
    return {path.substr(0, slash == 0 ? 1 : slash), path.substr(slash + 1)};
}

}  // namespace

DirectoryWatch::DirectoryWatch() : fd_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

void DirectoryWatch::watch(const std::vector<std::string>& directories) {
    directories_.clear();
    for (const std::string& directory : directories) {
        if (directories_.size() == MOST) break;
        if (directory.starts_with('/')) directories_.insert(directory);
    }
    unsettled_.clear();
    // What is watched before and after keeps its number, so no event is lost in between.
    const auto before = std::exchange(watches_, {});
    for (const std::string& directory : directories_) settle(directory);
    for (const auto& [watch, targets] : before) {
        if (!watches_.contains(watch)) ::inotify_rm_watch(fd_.get(), watch);
    }
}

/// Watches the directory or, if it is not there or cannot be read, the nearest one above it.
void DirectoryWatch::settle(const std::string& directory) {
    Target target = {directory, ""};
    std::string path(without_trailing_slashes(directory));
    while (!add(path, target)) {
        if (path.empty() || path == "/") return;
        std::tie(path, target.awaited) = split(path);
    }
    // It may have come between the two looks.
    if (!target.awaited.empty()) (void)add(std::string(without_trailing_slashes(directory)), {directory, ""});
}

bool DirectoryWatch::add(const std::string& path, const Target& target) {
    const char* name = path.empty() ? "/" : path.c_str();
    const int watch = ::inotify_add_watch(fd_.get(), name, CONTENT | SELF | IN_ONLYDIR);
    if (watch < 0) return false;
    watches_[watch].push_back(target);
    return true;
}

void DirectoryWatch::forget(int watch) {
    const auto found = watches_.find(watch);
    if (found == watches_.end()) return;
    for (const Target& target : found->second) unsettled_.insert(target.directory);
    watches_.erase(found);
}

void DirectoryWatch::note(int watch, unsigned events, const std::string& name,
                          std::set<std::string>& changed) {
    if ((events & IN_Q_OVERFLOW) != 0) changed = unsettled_ = directories_;
    const auto found = watches_.find(watch);
    if (found == watches_.end()) return;
    const bool is_over = (events & (SELF | IN_IGNORED | IN_UNMOUNT)) != 0;
    for (const Target& target : found->second) {
        const bool is_meant = target.awaited.empty() ? !name.starts_with('.') : name == target.awaited;
        if (!is_over && !is_meant) continue;
        changed.insert(target.directory);
        if (!target.awaited.empty()) unsettled_.insert(target.directory);
    }
    // A directory that was moved away is still watched by its number, but not under its name.
    if ((events & IN_MOVE_SELF) != 0) ::inotify_rm_watch(fd_.get(), watch);
    if (is_over) forget(watch);
}

void DirectoryWatch::settle_again() {
    for (const std::string& directory : std::exchange(unsettled_, {})) {
        for (auto& [watch, targets] : watches_)
            std::erase_if(targets, [&](const Target& target) { return target.directory == directory; });
        settle(directory);
    }
    std::erase_if(watches_, [this](const auto& entry) {
        return entry.second.empty() && ::inotify_rm_watch(fd_.get(), entry.first) <= 0;
    });
}

std::set<std::string> DirectoryWatch::take_changes() {
    std::set<std::string> changed;
    alignas(struct inotify_event) std::array<char, BUFFER_SIZE> buffer;
    for (int round = 0; round < MOST_ROUNDS; ++round) {
        const ssize_t length = ::read(fd_.get(), buffer.data(), buffer.size());
        if (length <= 0) break;
        for (std::size_t at = 0; at + sizeof(inotify_event) <= static_cast<std::size_t>(length);) {
            inotify_event event = {};
            std::memcpy(&event, buffer.data() + at, sizeof event);
            at += sizeof event;
            // The name is filled up with NULs.
            note(event.wd, event.mask, event.len > 0 ? buffer.data() + at : "", changed);
            at += event.len;
        }
    }
    settle_again();
    return changed;
}

}  // namespace gw
