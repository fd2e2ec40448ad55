// SPDX-License-Identifier: MIT
//
// What an X server may read, by owners, modes and access control lists. It runs as a user of its own, often
// as nobody who may enter a home directory.
#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "diagnosis/cure.h"

namespace gw::diagnosis {

struct ServerUser {
    std::optional<uid_t> user;  ///< none when it is not known; then it is one of the others
    std::vector<gid_t> groups;
};

/// The permission bits that the file at `path`, whose links are followed, lacks for the server to read it, or
/// to pass the directory; 0 for none. `info` is of the same file.
[[nodiscard]] mode_t missing_rights(const std::string& path, const struct stat& info,
                                    const ServerUser& server);
/// Whether entries of its access control list refuse the server the file: then no permission bits help.
[[nodiscard]] bool is_kept_out_by_list(const std::string& path, const ServerUser& server);

/// Whether the path goes back with "..". An index can name such a file, so that it leads out of its directory
/// to a file that is nobody's business.
[[nodiscard]] bool goes_back(std::string_view path);

/// The files and directories at these paths that lack rights, each with the bits that it lacks. What is not
/// there, or cannot be looked at, or is named by a path that goes back, is not among them. None where a list
/// keeps the server out of one.
[[nodiscard]] Rights missing_rights(const std::vector<std::string>& paths, const ServerUser& server);

/// What a server needs for the fonts of a directory: each directory on the way to it, itself, its index and
/// its aliases, and the files that its index names and the server has a use for.
[[nodiscard]] std::vector<std::string> needed_for(const std::string& directory);

}  // namespace gw::diagnosis
