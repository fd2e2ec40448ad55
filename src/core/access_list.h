// SPDX-License-Identifier: MIT
//
// POSIX access control lists. Where a file has one, its mode says only half of who may read it: what seem to
// be the permissions of its group are the most that any entry for a user or a group gives.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace gw {

/// What a list says about somebody.
enum class ListVerdict {
    NO_LIST,         ///< there is none that counts, or it cannot be read: the mode decides
    GRANTED,         ///< what was asked for is given
    REFUSED,         ///< by the entry for the owner or for all others, which the mode has, too
    REFUSED_BY_NAME  ///< by entries for users and groups; no change of the mode's other bits helps
};

/// Whether the list of the file or directory at `path`, whose links are followed, gives that user all of
/// `needed`: bits of those that a mode has for others (`S_IROTH`, `S_IXOTH`). `info` is of the same file.
[[nodiscard]] ListVerdict access_by_list(const std::string& path, const struct stat& info, uid_t user,
                                         const std::vector<gid_t>& groups, mode_t needed);

}  // namespace gw
