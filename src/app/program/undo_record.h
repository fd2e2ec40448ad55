// SPDX-License-Identifier: MIT
//
// What the last installation or deletion has put into the trash, so that it can be undone as a whole: also
// what was decided about its conflicts.
#pragma once

#include <vector>

#include "app/kit/signal.h"
#include "store/font_action.h"

namespace gw {

enum class UndoableWork { DELETION, REPLACEMENT };

struct UndoRecord {
    UndoableWork kind = UndoableWork::DELETION;
    std::vector<FontAction::Kept> entries;  ///< none when there is nothing to undo
    std::vector<FontAction::Came> came;     ///< what came in the places of replaced fonts
};
const UndoRecord& undo_record();

/// A part of the work is done: these entries were made. They are undone together with those of the same kind
/// that were noted before.
void note_undoable(UndoableWork kind, const std::vector<FontAction::Kept>& entries,
                   const std::vector<FontAction::Came>& came);
/// Other work begins.
void forget_undoable();
/// The work is undone now: returns the record, and forgets it.
UndoRecord take_undoable();

/// Emitted when the record has changed.
Signal<>& undo_changes();

}  // namespace gw
