// SPDX-License-Identifier: MIT
//
// Fonts in the trash under the names that the lists of fonts have: all sizes of a bitmap font that one action
// has deleted are one of them, as in those lists.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <ctime>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "core/failure.h"
#include "store/font_action.h"
#include "store/trash.h"

namespace gw {

struct DeletedFont {
    std::string dir = {};                      ///< ends in "/"
    std::string entry = {};                    ///< of the trash of the directory
    std::string name = {};                     ///< as lists show it; the file's for one that no index listed
    std::vector<std::string> file_names = {};  ///< name its fonts within the entry
    std::vector<std::string> font_names = {};  ///< XLFD names
    std::vector<std::string> files = {};       ///< with their metrics
    std::time_t time = 0;
    uid_t user = 0;  ///< who has deleted it
    off_t bytes = 0;
    bool was_replaced = false;  ///< see `TrashedFont::was_replaced`
};

/// A time as users read it: "2026-11-22 18:30", local time.
[[nodiscard]] std::string local_time_text(std::time_t time);

/// The fonts of an entry, by their names.
[[nodiscard]] std::vector<DeletedFont> fonts_of_entry(const TrashEntry& entry);
/// How a trash is looked into; see store/trash.h.
using LookIntoTrash = Result<std::vector<TrashEntry>> (*)(const std::string& dir);
/// The fonts that can come back in any of these directories, the newest first. Directories that cannot be
/// looked into have none.
[[nodiscard]] std::vector<DeletedFont> deleted_fonts(const std::vector<std::string>& dirs,
                                                     LookIntoTrash look = trash_entries);
/// The fonts in entries that an action has made. An entry of which nothing is left has one font without a
/// name.
[[nodiscard]] std::vector<DeletedFont> fonts_of_action(const std::vector<FontAction::Kept>& entries);

/// What came of bringing fonts back, or of removing them for good.
struct ReturnOfFonts {
    std::vector<DeletedFont> done;
    std::vector<std::pair<DeletedFont, Failure>> left;  ///< those that are still in the trash, and why
    std::vector<FontAction::Came> came;                 ///< so that it can be undone
    std::size_t untried = 0;  ///< so many were not tried before the work was stopped
};
/// Who is asked while many fonts come back or are removed for good. Each answer is whether to go on.
struct DeletedFontsWatch {
    /// Before a font; `number` counts from 1.
    std::function<bool(std::size_t number, const DeletedFont& font)> before =
        [](std::size_t, const DeletedFont&) { return true; };
    std::function<bool(const DeletedFont& font, const Failure& why)> after_failure =
        [](const DeletedFont&, const Failure&) { return true; };
    /// When what is back is made final: nothing can be stopped any more.
    std::function<void()> at_end = [] {};
};
/// Brings these fonts back as one action, each of them completely or not at all. What cannot come back stays
/// in the trash. When all come back, the files that came in their places, in any directory, are taken out.
/// What is back when the work is stopped stays so; but fonts in whose places others came all come back, or
/// none of them.
[[nodiscard]] ReturnOfFonts bring_fonts_back(const std::vector<DeletedFont>& fonts,
                                             const std::vector<FontAction::Came>& in_their_places = {},
                                             const DeletedFontsWatch& watch = {});

/// Removes these fonts from the trash for good, some of them at a time.
[[nodiscard]] ReturnOfFonts delete_for_good(const std::vector<DeletedFont>& fonts,
                                            const DeletedFontsWatch& watch = {});

}  // namespace gw
