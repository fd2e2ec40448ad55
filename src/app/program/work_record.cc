// SPDX-License-Identifier: MIT
#include "app/program/work_record.h"

#include <optional>
#include <utility>

#include "app/program/program_objects.h"
#include "app/program/undo_record.h"
#include "fontpath/trash_places.h"

WorkRecord the_wp_cl_data;

void forbid_other_work() {
    gw::forget_undoable();
    gw::work_permissions().emit(false);
}

void permit_other_work() {
    gw::work_permissions().emit(true);
}

namespace gw {

namespace {

/// Where something was deleted, the user may look for it later.
void remember_trash(const FontAction& action) {
    for (const FontAction::Kept& kept : action.kept()) tell_unless_done(remember_trash_place(kept.dir));
}

/// The user's action that is going on.
std::optional<FontAction>& current() {
    static std::optional<FontAction> action;
    return action;
}

}  // namespace

void begin_font_action(FontAction::Maker maker) {
    current().reset();
    current().emplace();
    current()->make_missing_directories(std::move(maker));
}

void keep_what_is_done() {
    if (!current()) return;
    for (const FontAction::Failed& failed : current()->commit()) tell(failed.why);
    remember_trash(*current());
    current().reset();
}

int commit_font_action(FontReport& report, Sequel sequel) {
    if (!current()) return 0;
    int names = 0;
    for (const FontAction::Failed& failed : current()->commit())
        names += report.fail_all_in(failed.dir, failed.why.with(sequel));
    remember_trash(*current());
    const std::vector<FontAction::Kept> kept = current()->kept();
    const std::vector<FontAction::Came> came = current()->came();
    current().reset();
    const bool deletes = sequel == Sequel::FONT_STAYS;
    note_undoable(deletes ? UndoableWork::DELETION : UndoableWork::REPLACEMENT, kept, came);
    if (names > 0) fill_program_lists();
    return names;
}

Signal<bool>& work_permissions() {
    static Signal<bool> permissions;
    return permissions;
}

}  // namespace gw
