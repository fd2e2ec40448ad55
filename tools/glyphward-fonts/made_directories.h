// SPDX-License-Identifier: MIT
//
// Directories that a command makes for what it will put there. When that fails they go again.
#pragma once

#include <string>
#include <vector>

#include "core/failure.h"

namespace gw::fonts {

class MadeDirectories {
  public:
    MadeDirectories() = default;
    /// Removes those in which there is nothing but what the engine keeps for changes, the last one first.
    ~MadeDirectories();
    MadeDirectories(const MadeDirectories&) = delete;
    MadeDirectories& operator=(const MadeDirectories&) = delete;

    /// Makes one in a directory that is there. One that is there is no failure, and stays.
    Outcome make(const std::string& directory);
    /// The same with those above it that are missing.
    Outcome make_with_parents(const std::string& directory);
    /// There is something in them now.
    void keep() { made_.clear(); }

  private:
    std::vector<std::string> made_;
};

}  // namespace gw::fonts
