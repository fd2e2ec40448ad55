// SPDX-License-Identifier: MIT
//
// What a deletion of selected entries would take away, and the question that says so.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace gw {

struct DeletionPlan {
    std::vector<std::string> fonts;            ///< as the list shows them
    std::map<std::string, unsigned> files_of;  ///< how many files, by the names of their owners
    unsigned not_kept = 0;                     ///< so many of the fonts could not be brought back
    unsigned staying = 0;                      ///< so many entries are aliases, or fonts that are read-only
};

/// For these positions of the list of installed fonts. Nothing is changed.
[[nodiscard]] DeletionPlan plan_deletion(const std::vector<int>& positions);

/// The question, in several lines. It says that the deletion cannot be undone only where that is so.
[[nodiscard]] std::string question_in_words(const DeletionPlan& plan);

}  // namespace gw
