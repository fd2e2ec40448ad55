// SPDX-License-Identifier: MIT
//
// Processes that change the same small file take turns: each reads what the other has written.
#pragma once

#include <memory>
#include <string>

#include "core/failure.h"
#include "store/own_directory.h"

namespace gw {

/// The right to change a file; given back with the object.
using FileTurn = std::unique_ptr<OwnDirectory>;

/// Waits for the lock in the directory of the file at `path`. Fails when another process keeps it
/// (`Reason::IN_USE`). Null where no lock can be made: the file itself may still be writable.
Result<FileTurn> take_turn_at(const std::string& path);

}  // namespace gw
