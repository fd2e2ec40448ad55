// SPDX-License-Identifier: MIT
#include "app/program/work_record.h"

#include <optional>

#include "app/program/program_objects.h"
#include "store/font_action.h"

WorkRecord the_wp_cl_data;

void forbid_other_work() {
    gw::work_permissions().emit(false);
}

void permit_other_work() {
    gw::work_permissions().emit(true);
}

namespace gw {

namespace {

/// The user's action that is going on. A program that ends in the middle keeps the fonts that are done.
struct CurrentAction {
    std::optional<FontAction> action;
    ~CurrentAction() {
        if (action) action->commit();
    }
};

CurrentAction& current() {
    static CurrentAction action;
    return action;
}

}  // namespace

void begin_font_action() {
    current().action.reset();
    current().action.emplace();
}

int commit_font_action(FontReport& report, Sequel sequel) {
    if (!current().action) return 0;
    int names = 0;
    for (const FontAction::Failed& failed : current().action->commit())
        names += report.fail_all_in(failed.dir, failed.why.with(sequel));
    current().action.reset();
    if (names > 0) fill_program_lists();
    return names;
}

Signal<bool>& work_permissions() {
    static Signal<bool> permissions;
    return permissions;
}

}  // namespace gw
