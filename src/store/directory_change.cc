// SPDX-License-Identifier: MIT
#include "store/directory_change.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <utility>

#include "core/file_calls.h"
#include "core/font_policy.h"
#include "core/long_work.h"
#include "core/rights.h"
#include "fontfiles/index_text.h"
#include "fontfiles/scalable_index.h"
#include "platform/host_paths.h"
#include "store/index_file.h"
#include "store/joint_change.h"
#include "store/leftovers.h"
#include "store/take_back.h"
#include "store/trash_bin.h"
#include "store/trash_policy.h"

namespace gw {

namespace {

constexpr mode_t ANYBODY_BEFORE_UMASK = 0777;
constexpr int MOST_ATTEMPTS = 5;

const std::string INDEX(FONT_INDEX_NAME);
const std::string SCALABLE(SCALABLE_INDEX_NAME);

/// Whether a change has left anything behind that did not come to its end.
bool has_unfinished_change(const Directory& own) {
    std::error_code unreadable;
    return own.has(OwnDirectory::JOURNAL) || !final_names(own).empty() ||
           !std::filesystem::is_empty(own.path_of("new"), unreadable) ||
           !std::filesystem::is_empty(own.path_of("old"), unreadable);
}

}  // namespace

DirectoryChange::DirectoryChange(Directory dir, std::unique_ptr<OwnDirectory> own)
    : dir_(std::move(dir)), own_(std::move(own)), keeps_(keeps_what_is_taken_out()) {}

Failure DirectoryChange::about(std::string path, Failure failure) {
    failure.subject = std::move(path);
    return failure;
}

DirectoryChange::~DirectoryChange() {
    abandon();
}

// While the lock is waited for, the directory may go, and another one may get its name.
Result<std::unique_ptr<DirectoryChange>> DirectoryChange::begin(const std::string& path) {
    for (int attempt = 1;; ++attempt) {
        Result<Directory> dir = Directory::open(path);
        if (!dir) return dir.failure();
        Result<std::unique_ptr<DirectoryChange>> change = begin(std::move(*dir));
        if (change || !change.failure().is_absence() || attempt == MOST_ATTEMPTS) return change;
    }
}

Result<std::unique_ptr<DirectoryChange>> DirectoryChange::begin(Directory dir, bool waits) {
    Result<std::unique_ptr<OwnDirectory>> own = OwnDirectory::enter(dir, waits);
    std::unique_ptr<DirectoryChange> change;
    if (own) {
        if (Outcome recovered = recover(dir, **own); !recovered) return recovered.failure();
        finish_joint_changes(**own);
        if (const auto bin = TrashBin::find(dir, (*own)->dir())) bin->sweep();
        change.reset(new DirectoryChange(std::move(dir), std::move(*own)));
    } else {
        // Where there never was a change, nobody else can be in the middle of one.
        if (!own.failure().is_lack_of_room() || dir.has(OwnDirectory::NAME)) return own.failure();
        change.reset(new DirectoryChange(std::move(dir), nullptr));
        change->broken_ = own.failure();
    }
    Outcome loaded = change->load_index();
    if (loaded) change->load_our_lines();
    if (loaded && change->own_ && clear_leftovers(*change)) loaded = change->load_index();
    if (!loaded) return loaded.failure();
    change->put_lost_lines_back();
    return change;
}

/// What stands in the journal behind this is not done. If it cannot be cut off, the change can only be taken
/// back.
Outcome DirectoryChange::cut_journal(off_t size) {
    if (file_calls().truncate(journal_.get(), size) == 0) return done();
    broken_ = Failure::of_system(dir_.path(), errno);
    return *broken_;
}

/// The records are on the disk then, with all before them.
Outcome DirectoryChange::note(const std::vector<journal::Record>& records) {
    return with_room([&] { return append_once(records, true); });
}

/// The records are in the journal, and on the disk with the next ones that are noted.
Outcome DirectoryChange::append(const std::vector<journal::Record>& records) {
    return with_room([&] { return append_once(records, false); });
}

Outcome DirectoryChange::append_once(const std::vector<journal::Record>& records, bool goes_to_disk) {
    if (broken_) return *broken_;
    if (!journal_.is_open()) {
        Result<Descriptor> file = own_->create(own_->dir(), OwnDirectory::JOURNAL, dir_.path());
        if (!file) return file.failure();
        journal_ = std::move(*file);
    }
    const off_t end = ::lseek(journal_.get(), 0, SEEK_END);
    if (end < 0) return Failure::of_system(dir_.path(), errno);
    // It is also empty when all that it said was taken back.
    std::string lines(end == 0 ? journal::HEADING : std::string_view());
    for (const journal::Record& record : records) lines += line_of(record);
    // Nobody would take back what a longer one says.
    if (end + static_cast<off_t>(lines.size()) > journal::MOST_BYTES)
        return Failure::of_system(dir_.path(), EFBIG);
    int error = write_all(journal_.get(), lines);
    if (error == 0 && goes_to_disk && file_calls().sync(journal_.get()) != 0) error = errno;
    if (error != 0) {
        if (Outcome cut = cut_journal(end); !cut) return cut;
        return Failure::of_system(dir_.path(), error);
    }
    for (const journal::Record& record : records) {
        records_.push_back(record);
        offsets_.push_back(end);
    }
    return done();
}

/// Whether nothing comes, but for lines that were put back.
bool DirectoryChange::only_deletes() const {
    return records_.empty() && !whole_ && !makes_index_ && !edit_->enters_behind(beginning_.edits);
}

Outcome DirectoryChange::make_metrics_dir() {
    const std::string name(journal::METRICS);
    if (dir_.has(name)) return done();
    if (Outcome noted = note({journal::MadeDir{name}}); !noted) return noted;
    return with_room([&] {
        const bool is_made = file_calls().make_dir(dir_.fd(), name.c_str(), ANYBODY_BEFORE_UMASK) == 0;
        return is_made ? done() : Outcome(Failure::of_system(dir_.path_of(name), errno));
    });
}

Outcome DirectoryChange::may_be_replaced(const std::string& name) const {
    const Result<PlaceBelow> place = PlaceBelow::of(dir_, name);
    if (!place) return place.failure();
    struct stat old = {};
    if (!place->dir().look_at(place->name(), old)) return done();
    if (S_ISDIR(old.st_mode)) return Failure::of_system(dir_.path_of(name), EISDIR);
    if (S_ISREG(old.st_mode) && ::faccessat(place->dir().fd(), place->name().c_str(), W_OK, AT_EACCESS) != 0)
        return Failure::of_system(dir_.path_of(name), errno);
    return done();
}

Result<DirectoryChange::StagedFile> DirectoryChange::stage(const std::string& name) {
    const std::string path = dir_.path_of(name);
    if (!own_) return about(path, *broken_);
    if (!journal::can_name(name)) return Failure{path, Reason::NAME_UNFIT_FOR_INDEX};
    if (Outcome allowed = may_be_replaced(name); !allowed) return allowed.failure();
    staged_.insert(next_number_);
    const std::string number = std::to_string(next_number_++);
    Result<Descriptor> fd = with_room([&] { return own_->create(own_->made(), number, path); });
    if (!fd) return fd.failure();
    if (name == SCALABLE) own_->lend_to_group(fd->get());
    StagedFile file(std::move(*fd), path, name, number);
    file.set_room_maker([this] { return give_way(); });
    if (gathers_ && name != SCALABLE) file.leave_to_others();
    struct stat old = {};
    const Result<PlaceBelow> place = PlaceBelow::of(dir_, name);
    if (place && place->dir().look_at(place->name(), old)) file.set_owner({old.st_uid, old.st_gid});
    return file;
}

bool DirectoryChange::changes_a_file(const StagedFile& file) const {
    const Result<PlaceBelow> place = PlaceBelow::of(dir_, file.name());
    if (!place || !place->dir().has(place->name()) || !will_have(file.name())) return false;
    const Result<std::string> old = place->dir().read(place->name());
    const Result<std::string> made = own_->made().read(file.number_);
    return !old || !made || *old != *made;
}

/// Fails with EAGAIN when `still` says, at the last moment, that the file is not to be replaced.
Outcome DirectoryChange::put_if(const StagedFile& file, const std::function<bool()>& still) {
    const journal::Put record = {FileIdentity::of(file.info()), file.name()};
    Outcome moved = move_in(own_->made(), file.number_, file.name(), record, still);
    if (moved) staged_.erase(static_cast<unsigned>(std::stoul(file.number_)));
    return moved;
}

/// A file comes from one of our directories, under this name. There is no moment without a file of the name,
/// if there was one.
Outcome DirectoryChange::move_in(const Directory& from, const std::string& from_name, const std::string& name,
                                 const journal::Record& record, const std::function<bool()>& still) {
    const std::string path = dir_.path_of(name);
    const Result<PlaceBelow> place = PlaceBelow::of(dir_, name);
    if (!place) return place.failure();
    const bool replaces = place->dir().has(place->name());
    std::vector<journal::Record> records;
    const unsigned number = next_number_++;
    if (replaces) records.emplace_back(journal::Out{number, name});
    records.push_back(record);
    if (Outcome noted = note(records); !noted) return noted;
    if (!still()) return Failure::of_system(path, EAGAIN);
    const std::string aside = std::to_string(number);
    const FileCalls& calls = file_calls();
    const int old_place = place->dir().fd();
    if (replaces &&
        calls.link(old_place, place->name().c_str(), own_->set_aside().fd(), aside.c_str()) != 0 &&
        calls.rename(old_place, place->name().c_str(), own_->set_aside().fd(), aside.c_str()) != 0) {
        return Failure::of_system(path, errno);
    }
    if (calls.rename(from.fd(), from_name.c_str(), old_place, place->name().c_str()) != 0)
        return Failure::of_system(path, errno);
    stay_where_something_comes(name);
    return done();
}

/// What was to go stays when another file has its name.
void DirectoryChange::stay_where_something_comes(const std::string& name) {
    for (auto [found, end] = places_of_leaving_.equal_range(name); found != end; ++found) {
        if (std::exchange(leaving_[found->second].stays, true)) continue;
        staying_.push_back(found->second);
    }
}

bool DirectoryChange::take_out(const std::string& name, bool may_stay) {
    if (!journal::can_name(name)) return false;
    places_of_leaving_.emplace(name, leaving_.size());
    leaving_.push_back({name, may_stay});
    return true;
}

void DirectoryChange::afterwards(const std::string& key, std::function<void()> step) {
    const bool is_known = std::any_of(afterwards_.begin(), afterwards_.end(),
                                      [&](const Step& known) { return known.key == key; });
    if (!is_known) afterwards_.push_back({key, std::move(step)});
}

bool DirectoryChange::will_have(const std::string& name) const {
    const auto [first, end] = places_of_leaving_.equal_range(name);
    const bool leaves =
        std::any_of(first, end, [&](const auto& place) { return !leaving_[place.second].stays; });
    return !leaves && dir_.has(name);
}

void DirectoryChange::enter(const std::string& line) {
    edit_->enter(line);
}

int DirectoryChange::strike_out(const std::string& file_name, int most) {
    return edit_->strike_out(file_name, most);
}

std::vector<std::string> DirectoryChange::font_names(const std::string& file_name) const {
    return edit_->font_names(file_name);
}

DirectoryChange::Mark DirectoryChange::mark() const {
    return {records_.size(), next_number_,       edit_->edits(),         leaving_.size(),
            staying_.size(), afterwards_.size(), scalable_lines_.size(), makes_index_};
}

void DirectoryChange::take_back_all() {
    take_back_to(beginning_);
}

void DirectoryChange::forget_leaving(std::size_t leaving, std::size_t staying) {
    for (; staying_.size() > staying; staying_.pop_back()) leaving_[staying_.back()].stays = false;
    for (; leaving_.size() > leaving; leaving_.pop_back()) {
        auto [found, end] = places_of_leaving_.equal_range(leaving_.back().name);
        while (found->second != leaving_.size() - 1) ++found;
        places_of_leaving_.erase(found);
    }
}

/// Files that were begun and have no name go at once: where the disk is full, the next font needs their room.
void DirectoryChange::drop_staged(unsigned first) {
    std::erase_if(arrivals_, [first](const Arrival& arrival) { return arrival.number >= first; });
    for (auto number = staged_.lower_bound(first); number != staged_.end(); number = staged_.erase(number)) {
        if (own_) (void)file_calls().unlink(own_->made().fd(), std::to_string(*number).c_str(), 0);
    }
}

// As long as a file has both names, it can be found without its record.
void DirectoryChange::take_back_to(const Mark& mark) {
    edit_->take_back_to(mark.edits);
    forget_leaving(mark.leaving, mark.staying);
    afterwards_.resize(mark.afterwards);
    scalable_lines_.resize(mark.scalable_lines);
    makes_index_ = mark.makes_index;
    take_back_records(mark.records);
    drop_staged(mark.next_number);
}

void DirectoryChange::take_back_records(std::size_t first) {
    if (records_.size() <= first) return;
    const auto begin = records_.begin() + static_cast<std::ptrdiff_t>(first);
    // What cannot be taken back stays in the journal, for the next time.
    if (const Outcome taken = take_back(dir_, *own_, {begin, records_.end()}); !taken) {
        broken_ = taken.failure();
        return;
    }
    (void)cut_journal(offsets_[first]);
    records_.resize(first);
    offsets_.resize(first);
}

Outcome DirectoryChange::set_aside(const std::string& name, unsigned number) const {
    const Result<PlaceBelow> place = PlaceBelow::of(dir_, name);
    if (!place) return about(dir_.path_of(name), place.failure());
    const int error = place->rename_to(own_->set_aside(), std::to_string(number));
    return error == 0 ? done() : Outcome(Failure::of_system(dir_.path_of(name), error));
}

Outcome DirectoryChange::remove(const std::string& name) const {
    const Result<PlaceBelow> place = PlaceBelow::of(dir_, name);
    if (!place) return about(dir_.path_of(name), place.failure());
    if (file_calls().unlink(place->dir().fd(), place->name().c_str(), 0) == 0) return done();
    return Failure::of_system(dir_.path_of(name), errno);
}

Outcome DirectoryChange::move_out() {
    std::vector<journal::Record> records;
    std::vector<std::pair<const Leaving*, unsigned>> going;
    for (const Leaving& leaving : leaving_) {
        if (leaving.stays) continue;
        going.emplace_back(&leaving, next_number_);
        records.emplace_back(journal::Out{next_number_++, leaving.name});
    }
    if (records.empty()) return done();
    if (Outcome noted = note(records); !noted) return noted;
    for (const auto& [leaving, number] : going) {
        breathe();
        Outcome gone = set_aside(leaving->name, number);
        if (gone || gone.failure().is_absence()) continue;
        if (!leaving->may_stay) return gone;
        tell(gone.failure().with(Sequel::FILE_REMAINS));
    }
    return done();
}

Outcome DirectoryChange::forget_journal() {
    if (!own_) return done();
    if (!journal_.is_open()) {
        own_->clear();
        return done();
    }
    if (Outcome gone = own_->remove_journal(); !gone) return about(dir_.path(), gone.failure());
    end_journal();
    return done();
}

/// What follows when there is no journal any more.
void DirectoryChange::end_journal() {
    records_.clear();
    offsets_.clear();
    journal_ = Descriptor();
    TrashBin::keep_what_was_set_aside(dir_, *own_);
    own_->clear();
}

Outcome DirectoryChange::commit_files() {
    Outcome moved = move_out();
    if (moved) prepare_trash();
    return moved;
}

Outcome DirectoryChange::commit_end() {
    (void)file_calls().sync(dir_.fd());
    Outcome forgotten = forget_journal();
    if (forgotten) finish();
    return forgotten;
}

/// Removes the journal of what was taken back.
void DirectoryChange::drop_journal() {
    if (!records_.empty()) return;
    const Outcome forgotten = own_ ? own_->forget_trash() : done();
    kept_entry_.clear();
    came_.clear();
    tell_unless_done(forgotten ? forget_journal() : forgotten);
}

void DirectoryChange::abandon() {
    take_back_all();
    drop_journal();
}

void DirectoryChange::undo_on_disk() {
    Mark all = mark();
    all.records = 0;
    take_back_to(all);
    arrivals_.clear();
    drop_journal();
}

Outcome DirectoryChange::depend_on(const DirectoryChange& leader, const std::string& token) {
    const std::optional<std::string> path = joint_path(leader.dir_);
    return path ? note({journal::With{token, *path}}) : done();
}

Outcome DirectoryChange::lead(const std::vector<DirectoryChange*>& others, const std::string& token) {
    if (others.size() > MOST_JOINED) return Failure::of_system(dir_.path(), E2BIG);
    std::vector<journal::Record> records;
    for (const DirectoryChange* other : others) {
        if (const auto path = joint_path(other->dir_)) records.emplace_back(journal::And{*path});
    }
    if (Outcome noted = note(records); !noted) return noted;
    (void)file_calls().sync(dir_.fd());
    const int own = own_->dir().fd();
    if (file_calls().rename(own, OwnDirectory::JOURNAL, own, final_name(token).c_str()) != 0)
        return Failure::of_system(dir_.path(), errno);
    (void)file_calls().sync(own);
    return done();
}

bool DirectoryChange::end_as_final() {
    (void)file_calls().sync(dir_.fd());
    const bool is_gone = static_cast<bool>(own_->remove_journal());
    // What cannot be removed says itself that the change is final.
    if (is_gone) {
        end_journal();
    } else {
        records_.clear();
        offsets_.clear();
        journal_ = Descriptor();
    }
    finish();
    return is_gone;
}

void DirectoryChange::end_leading(const std::string& token) const {
    (void)file_calls().unlink(own_->dir().fd(), final_name(token).c_str(), 0);
}

bool DirectoryChange::brings_files() const {
    return std::any_of(records_.begin(), records_.end(), [](const journal::Record& record) {
        const auto* put = std::get_if<journal::Put>(&record);
        return (put != nullptr && put->name != SCALABLE) || std::holds_alternative<journal::Back>(record);
    });
}

/// The next change puts them back.
Outcome DirectoryChange::leave_lost_lines_out() {
    const std::size_t put_back =
        std::erase_if(differences_, [](const auto& line) { return line.second > 0; });
    return put_back > 0 ? edit_again() : done();
}

// On a full disk there is no room for a journal or for a second index, but what only deletes makes room.
Outcome DirectoryChange::commit_for_good() {
    if (Outcome left_out = leave_lost_lines_out(); !left_out) return left_out;
    for (int attempt = 1; has_index_ && !lines_.empty() && !index_is_unchanged(); ++attempt) {
        if (attempt == MOST_ATTEMPTS) return Failure::of_system(dir_.path_of(INDEX), EAGAIN);
        if (Outcome edited = edit_again(); !edited) return edited;
    }
    if (has_index_ && !lines_.empty()) {
        if (Outcome written = overwrite_index(dir_, index_info_, text_); !written) return written;
    }
    shorten_scalable_index();
    for (const Leaving& leaving : leaving_) {
        if (leaving.stays) continue;
        const Outcome gone = remove(leaving.name);
        if (!gone && !gone.failure().is_absence()) tell(gone.failure().with(Sequel::FILE_REMAINS));
    }
    return done();
}

/// What follows a change that is final.
void DirectoryChange::finish() {
    if (const auto bin = entries_in_use_.empty() ? std::nullopt : trash()) bin->sweep();
    leaving_.clear();
    places_of_leaving_.clear();
    staying_.clear();
    lines_.clear();
    for (const Step& step : std::exchange(afterwards_, {})) step.run();
}

Outcome DirectoryChange::commit() {
    const bool was_only_deleting = only_deletes();
    Outcome outcome = commit_index();
    if (outcome) outcome = commit_files();
    if (outcome) outcome = commit_end();
    if (outcome) return outcome;
    undo_on_disk();
    if (records_.empty() && was_only_deleting && outcome.failure().is_lack_of_room())
        outcome = commit_for_good();
    if (outcome) {
        finish();
    } else {
        abandon();
    }
    return outcome;
}

Outcome settle(const std::string& path) {
    Result<Directory> dir = Directory::open(path);
    const Result<Directory> own = dir ? dir->below(OwnDirectory::NAME) : Result<Directory>(dir.failure());
    // Who may not look into our directory cannot know more.
    if ((!own || !has_unfinished_change(*own)) && (!dir || !has_leftovers(*dir))) return done();
    const Result<std::unique_ptr<DirectoryChange>> change = DirectoryChange::begin(std::move(*dir), false);
    if (change || change.failure().reason == Reason::IN_USE) return done();
    return change.failure().reason == Reason::SYSTEM ? Outcome(Failure{path, Reason::UNFINISHED})
                                                     : Outcome(change.failure());
}

}  // namespace gw
