// SPDX-License-Identifier: MIT
//
// The processes that run, as the system tells them.
#pragma once

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <system_error>
#include <thread>

namespace gw::test {

/// The processes of this program's name, by their ids.
inline std::set<std::string> processes_called(const std::string& name) {
    std::set<std::string> ids;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream file(entry.path() / "comm");
        std::string found;
        if (std::getline(file, found) && found == name) ids.insert(entry.path().filename());
    }
    return ids;
}

/// Whether the process has the file at `path` open.
inline bool has_open(const std::string& id, const std::string& path) {
    std::error_code gone;
    std::filesystem::directory_iterator files("/proc/" + id + "/fd", gone);
    return std::any_of(begin(files), end(files),
                       [&](const auto& file) { return std::filesystem::equivalent(file, path, gone); });
}

/// Whether the process has gone. It may be a moment until the system has taken a killed one away.
inline bool goes(const std::string& program, const std::string& id) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (processes_called(program).contains(id)) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::yield();
    }
    return true;
}

}  // namespace gw::test
