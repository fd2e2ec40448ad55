// SPDX-License-Identifier: MIT
#include "app/program/conflict_lists.h"

#include <algorithm>
#include <memory>

#include "app/program/program_objects.h"

namespace gw {

namespace {

struct ConflictsDeleter {
    void operator()(GW_LIST<GWConflict>* list) const {
        delete_elements(*list);
        delete list;
    }
};
using OwnedConflicts = std::unique_ptr<GW_LIST<GWConflict>, ConflictsDeleter>;

// Constructed before main, so that it still exists when the program releases the conflicts.
std::vector<OwnedConflicts> lists_that_are_shown;

}  // namespace

ConflictView::~ConflictView() {
    std::erase(views, this);
}

bool ConflictView::is_shown(const GW_LIST<GWConflict>* list) {
    return std::any_of(views.begin(), views.end(),
                       [list](const ConflictView* view) { return view->list_ == list; });
}

bool ConflictView::is_any_shown() {
    return std::any_of(views.begin(), views.end(),
                       [](const ConflictView* view) { return view->list_ != nullptr; });
}

void clear_conflict_list() {
    if (ConflictView::is_shown(&the_conflict_list)) {
        OwnedConflicts shown(new GW_LIST<GWConflict>);
        for (GWConflict* conflict : the_conflict_list) shown->append(conflict);
        for (ConflictView* view : ConflictView::views) {
            if (view->list_ == &the_conflict_list) view->list_ = shown.get();
        }
        lists_that_are_shown.push_back(std::move(shown));
        the_conflict_list.clear();
    }
    delete_elements(the_conflict_list);
    std::erase_if(lists_that_are_shown,
                  [](const OwnedConflicts& list) { return !ConflictView::is_shown(list.get()); });
}

void release_conflicts() {
    delete_elements(the_conflict_list);
    lists_that_are_shown.clear();
}

}  // namespace gw
