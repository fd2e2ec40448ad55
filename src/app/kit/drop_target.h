// SPDX-License-Identifier: MIT
//
// Lets other programs drop things on a window, by the XDND protocol (version 5), which Motif does not have.
// The program is only a target. Each step is a message from the other program, the source, and none of them
// is waited for: a source that dies or says nothing costs nothing. What it says is not believed: texts have a
// limit, and its window may be gone at any time.
//
//   source                    we
//   XdndEnter, XdndPosition   XdndStatus: whether we would take it
//   XdndDrop                  ask for the selection XdndSelection; when it is there, XdndFinished
//   XdndLeave
#pragma once

#include <optional>
#include <string>

#include <X11/Intrinsic.h>

namespace gw {

struct DropClient {
    const char* type;      ///< the only type that is taken, as "text/uri-list"
    bool (*is_welcome)();  ///< asked whenever the pointer moves, and when something is dropped
    /// Called with what was dropped; with nothing when it did not arrive, or is larger than `MOST_DROPPED`.
    void (*take)(std::optional<std::string> bytes);
};

/// More bytes are not taken in one drop.
inline constexpr std::size_t MOST_DROPPED = 16UL * 1024 * 1024;

/// From now on things can be dropped on this window: a shell, which need not be realized yet.
void accept_drops(Widget shell, const DropClient& client);

}  // namespace gw
