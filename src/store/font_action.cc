// SPDX-License-Identifier: MIT
#include "store/font_action.h"

#include <sys/stat.h>

#include <algorithm>
#include <utility>

#include "store/joint_change.h"

namespace gw {

namespace {

constexpr int MOST_ATTEMPTS = 5;

FontAction*& current_action() {
    static FontAction* action = nullptr;
    return action;
}

}  // namespace

FontAction::FontAction() : outer_(std::exchange(current_action(), this)), token_(new_joint_token()) {}

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
    if (begun) (*begun)->set_action(token_);
    if (begun) (*begun)->gather_arrivals();
    if (!begun && begun.failure().reason == Reason::IN_USE) in_use_.emplace(identity, begun.failure());
    return begun;
}

// No file goes before all indexes are written and all files have come. Where something comes leads.
std::vector<FontAction::Failed> FontAction::commit() {
    std::stable_partition(open_.begin(), open_.end(),
                          [](const auto& change) { return change->brings_files(); });
    if (open_.empty()) return {};
    if (open_.size() == 1) return commit_each();
    Outcome outcome;
    for (const auto& change : open_) outcome = outcome ? change->commit_index() : outcome;
    for (const auto& change : open_) outcome = outcome ? change->commit_files() : outcome;
    if (outcome) outcome = make_final();
    if (!outcome && outcome.failure().is_lack_of_room() && !open_.front()->brings_files()) {
        for (const auto& change : open_) change->undo_on_disk();
        return commit_each();
    }
    std::vector<Failed> failed;
    for (const auto& change : open_) {
        if (outcome) continue;
        change->abandon();
        failed.push_back({change->dir().path(), outcome.failure()});
    }
    open_.clear();
    return failed;
}

/// Makes all changes final in one moment.
Outcome FontAction::make_final() {
    std::vector<DirectoryChange*> begun;
    for (const auto& change : open_) {
        if (change->has_journal()) begun.push_back(change.get());
    }
    if (begun.size() > 1) {
        DirectoryChange& leader = *begun.front();
        begun.erase(begun.begin());
        const std::string token = new_joint_token();
        for (DirectoryChange* change : begun) {
            if (Outcome noted = change->depend_on(leader, token); !noted) return noted;
        }
        if (Outcome led = leader.lead(begun, token); !led) return led;
        bool all_ended = true;
        for (DirectoryChange* change : begun) all_ended = change->end_as_final() && all_ended;
        leader.end_as_final();
        if (all_ended) leader.end_leading(token);
    } else if (begun.size() == 1) {
        if (Outcome ended = begun.front()->commit_end(); !ended) return ended;
    }
    // The others have nothing to do but what follows.
    for (const auto& change : open_) {
        tell_unless_done(change->commit_end());
        note_kept(*change);
    }
    return done();
}

/// Makes each change final, or not, without the others.
std::vector<FontAction::Failed> FontAction::commit_each() {
    std::vector<Failed> failed;
    for (const auto& change : std::exchange(open_, {})) {
        if (const Outcome committed = change->commit(); !committed)
            failed.push_back({change->dir().path(), committed.failure()});
        note_kept(*change);
    }
    return failed;
}

void FontAction::note_kept(const DirectoryChange& change) {
    if (!change.kept_entry().empty()) kept_.push_back({change.dir().path(), change.kept_entry()});
    if (!change.came().empty()) came_.push_back({change.dir().path(), change.came()});
}

Result<FontAction::Begun> FontAction::begin_in(const std::string& path, FontAction* action) {
    Result<Directory> dir = Directory::open(path);
    if (!dir) return dir.failure();
    if (DirectoryChange* change = action != nullptr ? action->find(*dir) : nullptr; change != nullptr)
        return Begun{change, nullptr};
    Result<std::unique_ptr<DirectoryChange>> begun =
        action != nullptr ? action->begin(std::move(*dir)) : DirectoryChange::begin(std::move(*dir));
    if (!begun) return begun.failure();
    DirectoryChange* change = begun->get();
    return Begun{change, std::move(*begun)};
}

// Another process may remove the directory while this one waits for its lock: one that it has made for an
// installation that has failed.
Result<FontAction::Begun> FontAction::begin_anyhow(const std::string& path, FontAction* action,
                                                   IfMissing if_missing) {
    Result<Begun> begun = begin_in(path, action);
    for (int attempt = 1; !begun && begun.failure().is_absence() && attempt < MOST_ATTEMPTS; ++attempt) {
        struct stat info = {};
        if (::stat(path.c_str(), &info) != 0) {
            if (if_missing == IfMissing::FAIL || action == nullptr || !action->maker_) break;
            if (Outcome made = action->maker_(path); !made) return made.failure();
        }
        begun = begin_in(path, action);
    }
    return begun;
}

Outcome in_change(const std::string& path, const std::function<Outcome(DirectoryChange&)>& step,
                  IfMissing if_missing) {
    FontAction* action = current_action();
    Result<FontAction::Begun> begun = FontAction::begin_anyhow(path, action, if_missing);
    if (!begun) return begun.failure();
    auto& [change, own] = *begun;
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
