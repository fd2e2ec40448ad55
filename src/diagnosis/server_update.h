// SPDX-License-Identifier: MIT
//
// What a cure does to the font path of the running server. A server refuses a path as a whole when it cannot
// use one element; then it gets as much as it takes, and what it has dropped is said.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/failure.h"
#include "diagnosis/sentence.h"
#include "fontpath/path_element.h"
#include "fontpath/server_view.h"

namespace gw::diagnosis {

/// Where on the path the element is, by any name; the size of the path when it is not there.
[[nodiscard]] std::size_t place_on(const std::vector<std::string>& path, const std::string& element,
                                   PathHost host);

/// Gives the server this path. `for_the_sake_of` is the element that it must take; with "" any path will do.
/// Fails when the server refuses that one, or has gone; its path is then as it was, as far as it takes that.
/// `remarks` gets what else it has dropped.
Outcome give_path(ServerView& server, const std::vector<std::string>& wanted,
                  const std::string& for_the_sake_of, std::vector<Sentence>& remarks);

/// Lets the server look again at a directory that has changed. One that it has is reread; one that is only
/// configured comes to the end of its path, where the next login would put it, and is returned. That the
/// server refuses it is only remarked on.
std::optional<std::string> update(ServerView& server, const std::string& directory,
                                  const std::vector<std::string>& configured, std::vector<Sentence>& remarks);
/// The same when that change was undone: takes off what `update` has added, and otherwise lets it reread what
/// it has. A server that refuses keeps its path.
void look_again(ServerView& server, const std::optional<std::string>& added);

}  // namespace gw::diagnosis
