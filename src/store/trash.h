// SPDX-License-Identifier: MIT
//
// What changes of font directories have taken out, and how it comes back. Each directory has its own trash,
// with an entry for each change that took something out while `keeps_what_is_taken_out` was on (see
// trash_policy.h; how it is kept is in trash_bin.h).
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <ctime>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "core/failure.h"
#include "store/font_action.h"

namespace gw {

struct TrashedFont {
    std::string file_name;                ///< names the font within its entry
    std::vector<std::string> font_names;  ///< XLFD names, or none for files that no index listed
    std::vector<std::string> files;       ///< with their metrics; none when only lines were taken out
    off_t bytes = 0;
    bool was_replaced = false;  ///< another font came in its place, and goes when this one comes back
};

struct TrashEntry {
    std::string dir;     ///< ends in "/"
    std::string id;      ///< names the entry within its directory
    std::string action;  ///< the same for all entries of one action of the user
    std::time_t time = 0;
    uid_t user = 0;  ///< who has taken it out
    std::vector<TrashedFont> fonts;
    off_t bytes = 0;

    /// Whether any of its fonts was replaced.
    [[nodiscard]] bool is_replacement() const;
};

/// What can come back in this directory, the newest first. Nothing is changed, but that a change that did not
/// come to its end is settled first. Fails when the user may not look into the trash.
Result<std::vector<TrashEntry>> trash_entries(const std::string& dir);
/// The same without settling anything: nothing at all is changed.
Result<std::vector<TrashEntry>> look_into_trash(const std::string& dir);
/// The entries of the action that took something out last in any of these directories; those that cannot be
/// looked into have none.
[[nodiscard]] std::vector<TrashEntry> entries_of_last_action(const std::vector<std::string>& dirs);
/// The same for a known action.
[[nodiscard]] std::vector<TrashEntry> entries_of_action(const std::string& action,
                                                        const std::vector<std::string>& dirs);

// Each of these is one change, also of several directories, or part of the user's action that is going on
// (see font_action.h): files, index and "fonts.scale" follow together, or everything stays as it is. What
// came in a font's place goes, and is kept in its turn. The failures tell what is in the way:
// `Reason::FILE_IN_THE_WAY` and `Reason::NAME_IN_THE_WAY` name a file of the directory, and
// `Reason::NOT_IN_TRASH` says that somebody was faster.

/// Brings all fonts of an entry back.
Outcome bring_back(const std::string& dir, const std::string& id);
/// Brings one font of an entry back; the others stay in the trash.
Outcome bring_back_font(const std::string& dir, const std::string& id, const std::string& file_name);
/// The same for fonts of an entry that are named by their files, group by group: `goes_on` is asked before
/// each group, with its number from 0. Where it says no, the groups before are back and the others stay in
/// the trash. But where other fonts came in the places of any of them, nothing is changed then: that is
/// `Reason::GIVEN_UP`. Returns how many groups are back.
Result<std::size_t> bring_back_groups(const std::string& dir, const std::string& id,
                                      const std::vector<std::vector<std::string>>& groups,
                                      const std::function<bool(std::size_t)>& goes_on);
/// Brings all fonts of these entries back: undoes an action.
Outcome bring_back_all(const std::vector<TrashEntry>& entries);
/// Takes the files out again that an action has brought, with their lines. A file that somebody has changed
/// since stays.
Outcome take_out_again(const std::vector<FontAction::Came>& came);

/// Which of these files, that a change would take out of this directory now, could not come back. The names
/// are without the directory. Only looks.
[[nodiscard]] std::set<std::string> would_be_lost(const std::string& dir, const std::set<std::string>& files);

/// Removes an entry for good.
Outcome empty_trash_entry(const std::string& dir, const std::string& id);
/// Removes these fonts of an entry for good; the others stay in the trash.
Outcome empty_trash_of_fonts(const std::string& dir, const std::string& id,
                             const std::set<std::string>& file_names);
/// Removes all entries of a directory for good.
Outcome empty_trash(const std::string& dir);

}  // namespace gw
