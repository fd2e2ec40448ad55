// SPDX-License-Identifier: MIT
#include "store/file_turn.h"

#include <utility>

namespace gw {

Result<FileTurn> take_turn_at(const std::string& path) {
    const Result<Directory> dir = Directory::open(path.substr(0, path.rfind('/') + 1));
    if (!dir) return FileTurn();
    Result<FileTurn> turn = OwnDirectory::enter(*dir);
    if (turn) return turn;
    if (turn.failure().reason != Reason::IN_USE) return FileTurn();
    Failure in_use = turn.failure();
    in_use.subject = path;
    return in_use;
}

}  // namespace gw
