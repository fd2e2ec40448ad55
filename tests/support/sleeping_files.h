// SPDX-License-Identifier: MIT
//
// A directory that does not answer, as on a network mount whose server is gone. sleeping_files.cc takes the
// place of the system's functions that look at files: linked with a test, or as a shared library that
// LD_PRELOAD names, for a program.
#pragma once

#include <string>
#include <vector>

namespace gw::test {

/// The environment variable that names the directory to a program with the library.
inline constexpr const char* SLEEPING_DIRECTORY = "GLYPHWARD_TEST_SLEEPING_DIRECTORY";

/// During its life, every other process of this one hangs as soon as it looks at the directory or below. This
/// process does not hang; its looks fail with EIO and are noted.
class SleepingDirectory {
  public:
    explicit SleepingDirectory(const std::string& directory);
    ~SleepingDirectory();
    SleepingDirectory(const SleepingDirectory&) = delete;
    SleepingDirectory& operator=(const SleepingDirectory&) = delete;

    /// What this process has looked at, where it would have hung.
    [[nodiscard]] std::vector<std::string> looked_at() const;
};

/// During its life, SIGKILL has no effect: processes hang as in a system call that cannot be interrupted.
class NobodyDies {
  public:
    NobodyDies();
    ~NobodyDies();
    NobodyDies(const NobodyDies&) = delete;
    NobodyDies& operator=(const NobodyDies&) = delete;

    /// The processes that were to be killed.
    [[nodiscard]] static const std::vector<int>& spared();
};

}  // namespace gw::test
