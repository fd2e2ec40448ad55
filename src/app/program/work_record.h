// SPDX-License-Identifier: MIT
//
// What an installation or a deletion still has to do. Both use the same lists, so only one of them runs at a
// time. Each handles one selected entry per idle step.
#pragma once

#include <cstddef>
#include <vector>

#include "app/kit/signal.h"
#include "model/font_report.h"
#include "store/font_action.h"

struct WorkRecord {
    std::vector<int> positions;  ///< the selected positions, 1-based, ascending
    int done = 0;                ///< fonts installed or deleted so far
    std::size_t index = 0;       ///< of the next position to handle
    std::size_t untried = 0;     ///< so many at the end were not tried, because the user has stopped the work

    [[nodiscard]] bool is_in_progress() const { return index < positions.size(); }
};

extern WorkRecord the_wp_cl_data;

/// To be called at the beginning and at the end of an installation or deletion.
void forbid_other_work();
void permit_other_work();

namespace gw {

/// From now on, what is done to fonts is one change of each directory. A directory that has gone before its
/// change begins is made anew by the maker, if there is one.
void begin_font_action(FontAction::Maker maker = {});
/// Makes these changes final. Fonts in directories where that fails are failures in the report after all,
/// with this consequence, and the lists of fonts are read again. Returns how many names these fonts have.
int commit_font_action(FontReport& report, Sequel sequel);

/// For a program that ends in the middle of an action: makes the fonts that are done final, and tells what
/// fails.
void keep_what_is_done();

/// Emitted by `forbid_other_work` and `permit_other_work`: whether work may be started from now on.
Signal<bool>& work_permissions();

}  // namespace gw
