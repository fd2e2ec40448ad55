// SPDX-License-Identifier: MIT
//
// Which font path a session should have. The server asks the elements in order, and the first one that has an
// answer decides what a program gets. So what the server has keeps its place, and configured elements that
// are missing come behind; only those whose order somebody has chosen come first, in that order. The server
// refuses the whole path when it cannot use one element of it, so each one is checked first.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "fontpath/path_element.h"

namespace gw::session {

using Elements = std::vector<std::string>;

/// An element or a file that was left out, and why.
struct Remark {
    std::string what;
    std::string why;

    bool operator==(const Remark&) const = default;
};

/// What the configuration files say.
struct Configuration {
    Elements elements;           ///< the effective font path, as composed
    std::size_t chosen = 0;      ///< so many at its beginning stand in an order that somebody has chosen
    std::vector<Remark> unread;  ///< databases that exist and cannot be read
};

/// Reads the configuration of the installation below `root`, without a trailing slash. Nothing is written.
/// Somebody has chosen the order of the front parts of the user's and the locale's file, and of a database
/// that does not have the bytes of the file `setup_record`.
[[nodiscard]] Configuration read_configuration(const std::string& root, const std::string& setup_record);

/// What this process finds out about an element.
enum class Condition {
    USABLE,
    GONE,        ///< no server can take it: there is no font directory, or it cannot be named to a server
    UNREADABLE,  ///< this user cannot see; the server may
};
struct Verdict {
    Condition condition = Condition::USABLE;
    std::string why;  ///< empty for a usable element
};

/// Checks the directory of an element that begins with "/"; attributes after a ":" are not part of its name.
/// Of a catalogue the directory of its links is checked, and nothing behind them. One that did not answer
/// when it was last asked (see `find_silent`) is not looked at. Any other element, such as a font server, can
/// be checked by the X server only.
[[nodiscard]] Verdict judge(const std::string& element);

/// For each configured element the reason why it is left out, wherever the server runs; empty when it is not
/// left out. All directories are first asked whether they answer.
[[nodiscard]] std::vector<std::string> reasons_to_skip(const Elements& configured);

/// The path that the server should get.
struct Plan {
    Elements path;
    Elements configured;          ///< those in `path` that the configuration names, as they are in `path`
    std::vector<Remark> skipped;  ///< configured elements that are not in `path`
    std::vector<Remark> dropped;  ///< elements of the server that are not
};

/// `server` is the path that the server has. All directories are first asked whether they answer; one that
/// does not keeps its place if the server has it, and is not added to the path. The server's directories are
/// looked at only when the server runs on this host, because the file system of another host cannot be seen
/// from here. That the superuser's font directory is not there yet is not remarked on.
[[nodiscard]] Plan make_plan(const Configuration& configured, const Elements& server, PathHost host);

/// Sets a server's path as a whole; false when the server refused it.
using SetPath = std::function<bool(const Elements&)>;

struct Outcome {
    Elements path;     ///< what the server has now, unless it is empty: then it has what it had
    Elements refused;  ///< the elements that it did not take
};

/// Replaces the server's path `current` by `wanted`. When the server refuses the whole path, sets as much of
/// it as the server accepts, in the order of `wanted`; while that is tried out, the elements that the server
/// had stay on its path if possible.
[[nodiscard]] Outcome put(const Elements& wanted, const Elements& current, PathHost host, const SetPath& set);

/// `text` for one line of a terminal: control characters become "?".
[[nodiscard]] std::string printable(std::string_view text);

}  // namespace gw::session
