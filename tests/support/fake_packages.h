// SPDX-License-Identifier: MIT
//
// A package manager: one to which every file below one directory belongs, or a script.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include "platform/package_owner.h"
#include "support/temp_dir.h"

namespace gw::test {

class FakePackages {
  public:
    FakePackages(const std::string& dir, const std::string& package)
        : FakePackages("shift 2\nfor f; do\ncase $f in " + std::filesystem::canonical(dir).string() +
                       "/*) echo \"" + package + ": $f\";;\nesac\ndone\nexit 1\n") {}
    explicit FakePackages(const std::string& script) : path_(std::getenv("PATH")) {
        home_.write("bin/dpkg-query", "#!/bin/sh\n" + script);
        std::filesystem::permissions(home_.file("bin/dpkg-query"), std::filesystem::perms(0755));
        ::setenv("PATH", (home_.file("bin:") + path_).c_str(), 1);
        forget_package_owners();
    }
    ~FakePackages() {
        ::setenv("PATH", path_.c_str(), 1);
        forget_package_owners();
    }
    FakePackages(const FakePackages&) = delete;
    FakePackages& operator=(const FakePackages&) = delete;

  private:
    std::string path_;
    TempDir home_;
};

}  // namespace gw::test
