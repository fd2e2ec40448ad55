// SPDX-License-Identifier: MIT
//
// Everything that an installation or a deletion has done: counts, and a line for each font with what happened
// to it and why. The summary shows it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "app/conflicts/decisions.h"
#include "app/kit/table_list.h"
#include "app/program/failures.h"

namespace gw {

/// In the order of the lines in a summary.
enum class WorkKind { FAILED, KEPT, REPLACED, INSTALLED, DELETED };

struct WorkLine {
    WorkKind kind = WorkKind::KEPT;
    std::string what;  ///< a font as lists show it; of a failure also a file or directory
    std::string why;
};

class WorkAccount {
  public:
    /// The first fonts that are done are named; others are only counted.
    static constexpr std::size_t MOST_NAMES = 1000;

    void add(const WorkLine& line);
    void add(const std::vector<FailureText>& failures);
    /// Fonts that are done: `kind` is `INSTALLED` or `DELETED`.
    void add_done(WorkKind kind, unsigned count, const std::vector<std::string>& names);
    void add(const SummaryNote& note);

    [[nodiscard]] bool is_empty() const { return lines_.empty() && notes_.empty(); }
    [[nodiscard]] unsigned count(WorkKind kind) const;
    /// Whether anything is to be told but what is done.
    [[nodiscard]] bool has_more_than_success() const;
    /// "3 fonts installed.", and a line for each other count that is not 0.
    [[nodiscard]] std::string counts_in_words(bool installs) const;
    /// The lines, the failures first; the notes last, each below its heading.
    [[nodiscard]] std::vector<TableRow> rows() const;

  private:
    std::map<WorkKind, unsigned> counts_;
    std::vector<WorkLine> lines_;
    std::vector<SummaryNote> notes_;
};

/// What would come of the decisions if all of them could be carried out, by list position - 1. To be asked
/// before they are: later the conflicts do not know what was in the way.
[[nodiscard]] std::vector<WorkLine> planned_lines(const Decisions& decisions);
/// The user has stopped the work before this was done.
void give_up(WorkLine& planned);
/// What has come of them: fonts that `report` does not have among those done are left out, because their
/// failures tell more.
[[nodiscard]] std::vector<WorkLine> lines_after(const std::vector<WorkLine>& planned,
                                                const FontReport& report);
/// What would stay if nothing more was decided.
[[nodiscard]] std::vector<WorkLine> pending_lines(const GW_LIST<GWConflict>& conflicts);

/// Why nothing can be decided about a conflict, in a few words; "" if it can.
[[nodiscard]] std::string obstacle_in_words(const GWConflict& conflict);

}  // namespace gw
