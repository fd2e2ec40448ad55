// SPDX-License-Identifier: MIT
#include "app/program/undo_record.h"

#include <utility>

namespace gw {

namespace {

UndoRecord& record() {
    static UndoRecord of_last_work;
    return of_last_work;
}

}  // namespace

const UndoRecord& undo_record() {
    return record();
}

void note_undoable(UndoableWork kind, const std::vector<FontAction::Kept>& entries,
                   const std::vector<FontAction::Came>& came) {
    if (entries.empty()) return;
    UndoRecord& all = record();
    if (all.kind != kind) all = {kind, {}, {}};
    all.entries.insert(all.entries.end(), entries.begin(), entries.end());
    all.came.insert(all.came.end(), came.begin(), came.end());
    undo_changes().emit();
}

void forget_undoable() {
    record() = {};
    undo_changes().emit();
}

UndoRecord take_undoable() {
    UndoRecord taken = std::exchange(record(), {});
    undo_changes().emit();
    return taken;
}

Signal<>& undo_changes() {
    static Signal<> changes;
    return changes;
}

}  // namespace gw
