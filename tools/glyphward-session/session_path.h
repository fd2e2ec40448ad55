// SPDX-License-Identifier: MIT
//
// Which font path a session should have: the configured elements in front, in their order, then what the X
// server has besides. An element that the server cannot take makes it refuse the whole path, so each one is
// looked at first.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace gw::session {

using Elements = std::vector<std::string>;

/// Something that was left out, an element or a file, and why.
struct Remark {
    std::string what;
    std::string why;

    bool operator==(const Remark&) const = default;
};

/// What the configuration files say.
struct Configuration {
    Elements elements;           ///< the effective font path, as composed
    std::vector<Remark> unread;  ///< databases that exist and cannot be read
};

/// Reads the configuration of the installation below `root`, without a trailing slash. Nothing is written.
[[nodiscard]] Configuration read_configuration(const std::string& root);

/// What two elements have in common that are the same directory with the same attributes: the text without
/// the slashes at the directory's end.
[[nodiscard]] std::string identity(std::string_view element);

/// How an element looks from here.
enum class Condition {
    USABLE,
    GONE,        ///< no server can take it: there is no font directory, or it cannot be named to a server
    UNREADABLE,  ///< this user cannot see; the server may
};
struct Verdict {
    Condition condition = Condition::USABLE;
    std::string why;  ///< empty for a usable element
};

/// Looks at the directory of an element that begins with "/"; attributes behind a ":" do not belong to it.
/// Any other element, such as a font server, is for the X server to judge.
[[nodiscard]] Verdict judge(const std::string& element);

/// For each configured element why it is left out, wherever the server may run; empty when it is not.
[[nodiscard]] std::vector<std::string> reasons_to_skip(const Elements& configured);

/// The path that the server should get.
struct Plan {
    Elements path;
    std::size_t configured = 0;   ///< so many at the beginning of `path` come from the configuration
    std::vector<Remark> skipped;  ///< configured elements that are not in `path`
    std::vector<Remark> dropped;  ///< elements of the server that are not
};

/// `server` is the path that the server has. The directories among its elements are looked at when it runs on
/// this host; the file system of another one is not known here.
[[nodiscard]] Plan make_plan(const Elements& configured, const Elements& server, bool server_is_here);

/// Puts a path on a server, all of it or nothing; false when it was refused.
using SetPath = std::function<bool(const Elements&)>;

struct Outcome {
    Elements path;     ///< what the server has now, unless it is empty: then it has what it had
    Elements refused;  ///< the elements that it did not take
};

/// Puts `wanted` on the server, which has `current`. When the whole is refused, as much of it as the server
/// takes; what it had stays there meanwhile, if it can. The order is always that of `wanted`.
[[nodiscard]] Outcome put(const Elements& wanted, const Elements& current, const SetPath& set);

/// `text` for one line of a terminal: control characters become "?".
[[nodiscard]] std::string printable(std::string_view text);

}  // namespace gw::session
