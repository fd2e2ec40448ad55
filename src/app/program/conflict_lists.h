// SPDX-License-Identifier: MIT
//
// How long conflicts live. The next installation or deletion empties `the_conflict_list`, but a dialog may
// still show what is in it. Then those conflicts move to a list of their own, which is released when no
// dialog shows it any more.
#pragma once

#include <vector>

#include "core/gw_list.h"
#include "model/gw_conflict.h"

namespace gw {

/// The list of conflicts that a dialog shows. It exists as long as the dialog shows it.
class ConflictView {
  public:
    ConflictView() { views.push_back(this); }
    ~ConflictView();
    ConflictView(const ConflictView&) = delete;
    ConflictView& operator=(const ConflictView&) = delete;

    void show(GW_LIST<GWConflict>* list) { list_ = list; }
    void let_go() { list_ = nullptr; }
    /// Null when nothing is shown.
    [[nodiscard]] GW_LIST<GWConflict>* list() const { return list_; }
    /// Whether any dialog shows conflicts now.
    [[nodiscard]] static bool is_any_shown();

  private:
    friend void clear_conflict_list();
    static inline std::vector<ConflictView*> views;
    static bool is_shown(const GW_LIST<GWConflict>* list);
    GW_LIST<GWConflict>* list_ = nullptr;
};

/// Empties `the_conflict_list` for a new installation or deletion.
void clear_conflict_list();
/// Releases all conflicts, at the end of the run.
void release_conflicts();

}  // namespace gw
