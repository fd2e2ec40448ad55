// SPDX-License-Identifier: MIT
//
// The aliases that this user has had made: "fonts.alias" in a directory that has nothing else for X servers
// but an empty index. Each change is a transaction of that directory.
#pragma once

#include <string>
#include <vector>

#include "core/failure.h"
#include "fontfiles/alias_text.h"

namespace gw::diagnosis {

/// What adding an alias has changed.
struct AddedAlias {
    std::string directory;
    std::string alias;
    std::string font;
    bool is_new = true;            ///< false when a line said just that before; nothing was added then
    std::string font_before = {};  ///< what the alias stood for; "" when it was not there
    std::vector<std::string> made_directories = {};  ///< the outer one first
    std::vector<std::string> known = {};             ///< the aliases that were there already, in lower case
};

/// Adds the alias to the directory's file, and makes both if they are missing. An alias of ours that stands
/// for another font is changed. Fails for one that is there and is not ours (`Reason::IS_AN_ALIAS`), and when
/// the font leads back to the alias by the aliases of `path` (`Reason::LEADS_BACK`).
Result<AddedAlias> add_own_alias(const std::string& directory, const std::string& alias,
                                 const std::string& font, const std::vector<std::string>& path);

/// Adds all of them in one transaction: when one of them cannot be added, none is. Of two with the same name
/// the second one counts.
Outcome add_own_aliases(const std::string& directory, const std::vector<AliasOfFont>& aliases,
                        const std::vector<std::string>& path);

/// Whether the directory has aliases that have come since.
[[nodiscard]] bool has_newer_aliases(const AddedAlias& added);

/// Undoes it. Fails when the alias is not there any more as it was left (`Reason::CHANGED_SINCE`).
Outcome remove_own_alias(const AddedAlias& added);
/// Removes the directories that were made for it, unless somebody has put anything else there.
void remove_made_directories(const AddedAlias& added);

}  // namespace gw::diagnosis
