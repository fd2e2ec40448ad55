// SPDX-License-Identifier: MIT
//
// Whether the process at the other end of a socket sees the files that this one sees.
#pragma once

#include <sys/types.h>

#include <optional>
#include <vector>

#include "fontpath/server_view.h"

namespace gw {

/// Who is at the other end of a local socket.
struct Peer {
    pid_t process = 0;  ///< 0 when it is not a process that this one can see
    std::optional<uid_t> user;
};

/// No value when the socket is no local one, but leads to another host, or may lead there.
[[nodiscard]] std::optional<Peer> peer_of(int socket);

/// The primary and supplementary groups of a process; none when it cannot be looked at.
[[nodiscard]] std::vector<gid_t> groups_of(pid_t process);

struct PlaceOfProcess {
    ServerPlace place = ServerPlace::UNKNOWN;
    bool is_certain = false;  ///< seen, and not only probable
};
/// What the system says of the file system of a process.
[[nodiscard]] PlaceOfProcess place_of(pid_t process);

/// Whether the server opens a font of a directory that is on its path, but not here. A directory that does
/// not answer is not looked at.
[[nodiscard]] bool has_files_of_its_own(ServerView& server);

}  // namespace gw
