// SPDX-License-Identifier: MIT
//
// A font directory as an X server finds it: whether it can get there, what its index says to the server, and
// whether the files are there that the index names. No font is opened.
#pragma once

#include <string>
#include <vector>

#include "diagnosis/answer.h"
#include "diagnosis/sentence.h"
#include "diagnosis/server_rights.h"
#include "fontfiles/server_index.h"

namespace gw::diagnosis {

/// A font file that the index does not name.
struct UnlistedFont {
    std::string name;
    bool is_newer = false;  ///< than the index
};

struct DirectoryFacts {
    std::string directory;  ///< as it was asked for, ending in "/"
    ServerIndex index;      ///< what the server reads of its files; empty when there is nothing to read
    ServerAliases aliases;
    bool is_refused = false;  ///< the server does not take it, for the first of the remarks
    bool is_known = true;     ///< false when this user may not look at it, or it does not answer
    Trouble trouble = Trouble::NONE;
    std::vector<std::string> unreadable;  ///< see `ElementReport`
    std::vector<Sentence> remarks;        ///< what is wrong with it, the worst first; none if nothing is
    std::vector<UnlistedFont> unlisted;   ///< where there is an index, by name
};

/// Looks at a directory that answers. Reads it, its index and its aliases once.
[[nodiscard]] DirectoryFacts look_at_directory(const std::string& directory, const ServerUser& server);

/// Its index and its aliases alone, as the server would read them.
[[nodiscard]] DirectoryFacts read_indexes(const std::string& directory);

/// The name of the user, or the number where it has none; "" for no user.
[[nodiscard]] std::string name_of_user(const std::optional<uid_t>& user);

}  // namespace gw::diagnosis
