// SPDX-License-Identifier: MIT
//
// Tells when something changes in directories: a file comes, goes or is written, or the directory itself
// comes or goes. Nothing is asked meanwhile; the kernel tells it through a descriptor.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "core/directory.h"

namespace gw {

class DirectoryWatch {
  public:
    /// No more directories are watched.
    static constexpr std::size_t MOST = 256;

    DirectoryWatch();

    /// Readable when something may have changed; -1 when the system gives no more of them, and then nothing
    /// is ever told. It belongs to this object.
    [[nodiscard]] int descriptor() const { return fd_.get(); }

    /// From now on watches these directories, absolute paths, and no others. One that is not there yet is
    /// told when it comes. A directory that does not answer must not be among them.
    void watch(const std::vector<std::string>& directories);

    /// The directories in which something has changed since the last call, as they were given to `watch`.
    /// Does not wait. Files whose names begin with a dot do not count. If too much has changed at once for
    /// the kernel to keep, all directories are returned.
    [[nodiscard]] std::set<std::string> take_changes();

  private:
    /// Why something is watched: for the directory itself, or for the file `awaited` on the way to it.
    struct Target {
        std::string directory;
        std::string awaited;  ///< "" for the directory itself
    };

    void settle(const std::string& directory);
    void settle_again();
    bool add(const std::string& path, const Target& target);
    void forget(int watch);
    void note(int watch, unsigned events, const std::string& name, std::set<std::string>& changed);

    Descriptor fd_;
    std::set<std::string> directories_;
    std::map<int, std::vector<Target>> watches_;  ///< by the kernel's number
    std::set<std::string> unsettled_;             ///< to be watched anew
};

}  // namespace gw
