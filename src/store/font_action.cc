// SPDX-License-Identifier: MIT
#include "store/font_action.h"

#include <algorithm>
#include <utility>

namespace gw {

namespace {

FontAction*& current_action() {
    static FontAction* action = nullptr;
    return action;
}

}  // namespace

FontAction::FontAction() : outer_(std::exchange(current_action(), this)) {}

FontAction::~FontAction() {
    current_action() = outer_;
}

DirectoryChange* FontAction::find(const Directory& dir) const {
    const auto found = std::find_if(open_.begin(), open_.end(),
                                    [&](const auto& change) { return change->dir().is_same_as(dir); });
    return found != open_.end() ? found->get() : nullptr;
}

Result<std::unique_ptr<DirectoryChange>> FontAction::begin(Directory dir) {
    const std::pair<dev_t, ino_t> identity(dir.info().st_dev, dir.info().st_ino);
    if (const auto known = in_use_.find(identity); known != in_use_.end()) return known->second;
    Result<std::unique_ptr<DirectoryChange>> begun = DirectoryChange::begin(std::move(dir));
    if (!begun && begun.failure().reason == Reason::IN_USE) in_use_.emplace(identity, begun.failure());
    return begun;
}

// No file goes before all indexes are written and all files have come, so a font that moves from one
// directory to another is never in neither. Where something comes is made final first.
std::vector<FontAction::Failed> FontAction::commit() {
    std::stable_partition(open_.begin(), open_.end(),
                          [](const auto& change) { return change->brings_files(); });
    if (open_.size() == 1) return commit_alone();
    Outcome outcome;
    for (const auto& change : open_) outcome = outcome ? change->commit_index() : outcome;
    for (const auto& change : open_) outcome = outcome ? change->commit_files() : outcome;
    std::vector<Failed> failed;
    for (const auto& change : open_) {
        if (outcome) outcome = change->commit_end();
        if (outcome) continue;
        change->abandon();
        failed.push_back({change->dir().path(), outcome.failure()});
    }
    open_.clear();
    return failed;
}

std::vector<FontAction::Failed> FontAction::commit_alone() {
    const std::unique_ptr<DirectoryChange> change = std::move(open_.front());
    open_.clear();
    const Outcome committed = change->commit();
    if (committed) return {};
    return {{change->dir().path(), committed.failure()}};
}

Outcome in_change(const std::string& path, const std::function<Outcome(DirectoryChange&)>& step) {
    Result<Directory> dir = Directory::open(path);
    if (!dir) return dir.failure();
    FontAction* action = current_action();
    DirectoryChange* change = action != nullptr ? action->find(*dir) : nullptr;
    std::unique_ptr<DirectoryChange> own;
    if (change == nullptr) {
        Result<std::unique_ptr<DirectoryChange>> begun =
            action != nullptr ? action->begin(std::move(*dir)) : DirectoryChange::begin(std::move(*dir));
        if (!begun) return begun.failure();
        own = std::move(*begun);
        change = own.get();
    }
    const DirectoryChange::Mark mark = change->mark();
    Outcome outcome = step(*change);
    if (!outcome) {
        change->take_back_to(mark);
    } else if (action == nullptr) {
        outcome = change->commit();
    }
    if (action != nullptr && own) action->open_.push_back(std::move(own));
    return outcome;
}

Outcome as_one_change(const std::function<Outcome()>& steps) {
    FontAction* action = current_action();
    if (action == nullptr) {
        FontAction own;
        Outcome outcome = steps();
        if (!outcome) return outcome;
        const std::vector<FontAction::Failed> failed = own.commit();
        return failed.empty() ? done() : Outcome(failed.front().why);
    }
    std::vector<DirectoryChange::Mark> marks;
    for (const auto& change : action->open_) marks.push_back(change->mark());
    Outcome outcome = steps();
    for (std::size_t i = 0; !outcome && i < action->open_.size(); ++i) {
        if (i < marks.size()) {
            action->open_[i]->take_back_to(marks[i]);
        } else {
            action->open_[i]->take_back_all();
        }
    }
    return outcome;
}

}  // namespace gw
