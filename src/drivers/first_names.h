// SPDX-License-Identifier: MIT
//
// What a list shows of a large source until all names are known. The tools that name fonts take seconds for
// thousands; most fonts say in an instant what they are called.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "core/gw_dir.h"
#include "modules/gw_fsm_list.h"

namespace gw {

/// The readable names of the first fonts of the sources, by the order of file names, as a list sorts them: as
/// many as can be read in about 0.1 s, and at most 2,000. They may differ in details from those that the
/// tools find. Empty for sources of few files, for which nobody waits.
[[nodiscard]] std::vector<std::string> first_names(GW_FSM_LIST& modules, const std::deque<GW_DIR>& sources);

/// As long as one exists, what looks for fonts of a source calls `show` with the first names, if there are
/// any, before it finds all of them.
class FirstNamesShown {
  public:
    using Show = std::function<void(const std::vector<std::string>&)>;

    explicit FirstNamesShown(Show show);
    ~FirstNamesShown();
    FirstNamesShown(const FirstNamesShown&) = delete;
    FirstNamesShown& operator=(const FirstNamesShown&) = delete;

    /// Does nothing when there is no such object, and where all names are found as fast.
    static void show_those_of(GW_FSM_LIST& modules, const std::deque<GW_DIR>& sources);

  private:
    Show show_;
    FirstNamesShown* before_;
    static inline FirstNamesShown* newest = nullptr;
};

}  // namespace gw
