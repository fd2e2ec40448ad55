// SPDX-License-Identifier: MIT
#include "store/directory_change.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <utility>

#include "core/file_calls.h"
#include "core/rights.h"
#include "fontfiles/index_text.h"
#include "platform/host_paths.h"
#include "store/index_file.h"
#include "store/joint_change.h"
#include "store/leftovers.h"
#include "store/take_back.h"

namespace gw {

namespace {

constexpr mode_t ANYBODY_BEFORE_UMASK = 0777;
constexpr int MOST_ATTEMPTS = 5;
constexpr mode_t PERMISSIONS = 07777;

const std::string INDEX(FONT_INDEX_NAME);

/// Whether a change has left anything behind that did not come to its end.
bool has_left_overs(const Directory& own) {
    std::error_code unreadable;
    return own.has(OwnDirectory::JOURNAL) || !final_names(own).empty() ||
           !std::filesystem::is_empty(own.path_of("new"), unreadable) ||
           !std::filesystem::is_empty(own.path_of("old"), unreadable);
}

/// Whether the file is still the one that was looked at.
bool is_unchanged(const struct stat& a, const struct stat& b) {
    return a.st_ino == b.st_ino && a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec &&
           a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

}  // namespace

DirectoryChange::DirectoryChange(Directory dir, std::unique_ptr<OwnDirectory> own)
    : dir_(std::move(dir)), own_(std::move(own)) {}

DirectoryChange::~DirectoryChange() {
    abandon();
}

Result<std::unique_ptr<DirectoryChange>> DirectoryChange::begin(const std::string& path) {
    Result<Directory> dir = Directory::open(path);
    if (!dir) return dir.failure();
    return begin(std::move(*dir));
}

Result<std::unique_ptr<DirectoryChange>> DirectoryChange::begin(Directory dir, bool waits) {
    Result<std::unique_ptr<OwnDirectory>> own = OwnDirectory::enter(dir, waits);
    std::unique_ptr<DirectoryChange> change;
    if (own) {
        if (Outcome recovered = recover(dir, **own); !recovered) return recovered.failure();
        finish_joint_changes(**own);
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

Result<std::string> DirectoryChange::look_at_index() {
    has_index_ = dir_.look_at(INDEX, index_info_);
    if (!has_index_ && errno == ENOENT) return std::string();
    if (!has_index_) return Failure::of_system(dir_.path_of(INDEX), errno);
    const bool is_link = S_ISLNK(index_info_.st_mode);
    // A file in its place would have another owner.
    const bool is_anothers = !runs_as_superuser() && index_info_.st_uid != ::geteuid();
    overwrites_index_ = is_link || index_info_.st_nlink != 1 || is_anothers;
    return read_index(dir_, content_info_);
}

Outcome DirectoryChange::load_index() {
    Result<std::string> bytes = look_at_index();
    if (!bytes) return bytes.failure();
    edit_ = std::make_unique<IndexEdit>(std::move(*bytes));
    return done();
}

/// Without a register, or with one that cannot be relied on, a new one begins.
void DirectoryChange::load_our_lines() {
    if (!own_) return;
    if (const Result<std::string> text = own_->read(OwnDirectory::LINES); text)
        our_lines_ = LineRegister::parse(*text);
}

/// Puts back what other programs have dropped of our lines.
void DirectoryChange::put_lost_lines_back() {
    if (own_ && has_index_) our_lines_.put_back(*edit_, dir_);
    beginning_ = mark();
}

/// What stands in the journal behind this is not done. If it cannot be cut off, the change can only be taken
/// back.
Outcome DirectoryChange::cut_journal(off_t size) {
    if (file_calls().truncate(journal_.get(), size) == 0) return done();
    broken_ = Failure::of_system(dir_.path(), errno);
    return *broken_;
}

Outcome DirectoryChange::note(const std::vector<journal::Record>& records) {
    if (broken_) return *broken_;
    std::string lines;
    if (!journal_.is_open()) {
        Result<Descriptor> file = own_->create(own_->dir(), OwnDirectory::JOURNAL);
        if (!file) return Failure::of_system(dir_.path(), file.failure().error);
        journal_ = std::move(*file);
        lines = journal::HEADING;
    }
    const off_t end = ::lseek(journal_.get(), 0, SEEK_END);
    for (const journal::Record& record : records) lines += line_of(record);
    // Nobody would take back what a longer one says.
    if (end + static_cast<off_t>(lines.size()) > journal::MOST_BYTES)
        return Failure::of_system(dir_.path(), EFBIG);
    int error = write_all(journal_.get(), lines);
    if (error == 0 && file_calls().sync(journal_.get()) != 0) error = errno;
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

/// An index that may not be written is not replaced either.
Outcome DirectoryChange::may_write_index() const {
    if (!has_index_ || ::faccessat(dir_.fd(), INDEX.c_str(), W_OK, AT_EACCESS) == 0) return done();
    // Another program has removed it meanwhile; the new one takes its place.
    if (errno == ENOENT) return done();
    return Failure::of_system(dir_.path_of(INDEX), errno);
}

Outcome DirectoryChange::make_index() {
    if (has_index_) return may_write_index();
    if (!own_) return *broken_;
    Result<Descriptor> fd = own_->create(own_->made(), INDEX);
    if (!fd) return Failure::of_system(dir_.path_of(INDEX), fd.failure().error);
    FileWriter file(std::move(*fd), dir_.path_of(INDEX));
    file.write("0\n");
    if (Outcome finished = file.finish(); !finished) return finished;
    if (file_calls().rename(own_->made().fd(), INDEX.c_str(), dir_.fd(), INDEX.c_str()) != 0)
        return Failure::of_system(dir_.path_of(INDEX), errno);
    return load_index();
}

Outcome DirectoryChange::make_metrics_dir() {
    const std::string name(journal::METRICS);
    if (dir_.has(name)) return done();
    if (Outcome noted = note({journal::MadeDir{name}}); !noted) return noted;
    if (file_calls().make_dir(dir_.fd(), name.c_str(), ANYBODY_BEFORE_UMASK) != 0)
        return Failure::of_system(dir_.path_of(name), errno);
    return done();
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
    if (!own_) return *broken_;
    if (!journal::can_name(name)) return Failure{path, Reason::NAME_UNFIT_FOR_INDEX};
    if (Outcome allowed = may_be_replaced(name); !allowed) return allowed.failure();
    const std::string number = std::to_string(next_number_++);
    Result<Descriptor> fd = own_->create(own_->made(), number);
    if (!fd) return Failure::of_system(path, fd.failure().error);
    StagedFile file(std::move(*fd), path, name, number);
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

Outcome DirectoryChange::put(const StagedFile& file) {
    const Result<PlaceBelow> place = PlaceBelow::of(dir_, file.name());
    if (!place) return place.failure();
    const bool replaces = place->dir().has(place->name());
    std::vector<journal::Record> records;
    const unsigned number = next_number_++;
    if (replaces) records.emplace_back(journal::Out{number, file.name()});
    records.emplace_back(journal::Put{FileIdentity::of(file.info()), file.name()});
    if (Outcome noted = note(records); !noted) return noted;
    const std::string aside = std::to_string(number);
    const FileCalls& calls = file_calls();
    const int old_place = place->dir().fd();
    if (replaces &&
        calls.link(old_place, place->name().c_str(), own_->set_aside().fd(), aside.c_str()) != 0 &&
        calls.rename(old_place, place->name().c_str(), own_->set_aside().fd(), aside.c_str()) != 0) {
        return Failure::of_system(file.path(), errno);
    }
    if (calls.rename(own_->made().fd(), file.number_.c_str(), old_place, place->name().c_str()) != 0)
        return Failure::of_system(file.path(), errno);
    for (auto [found, end] = places_of_leaving_.equal_range(file.name()); found != end; ++found) {
        if (std::exchange(leaving_[found->second].stays, true)) continue;
        staying_.push_back(found->second);
    }
    return done();
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
    return {records_.size(), edit_->edits(), leaving_.size(), staying_.size(), afterwards_.size()};
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

void DirectoryChange::take_back_to(const Mark& mark) {
    edit_->take_back_to(mark.edits);
    forget_leaving(mark.leaving, mark.staying);
    afterwards_.resize(mark.afterwards);
    if (records_.size() <= mark.records) return;
    const auto first = records_.begin() + static_cast<std::ptrdiff_t>(mark.records);
    // What cannot be taken back stays in the journal, for the next time.
    if (const Outcome taken = take_back(dir_, *own_, {first, records_.end()}); !taken) {
        broken_ = taken.failure();
        return;
    }
    (void)cut_journal(offsets_[mark.records]);
    records_.resize(mark.records);
    offsets_.resize(mark.records);
}

/// Makes the register of our lines as it is to be.
Result<journal::Register> DirectoryChange::prepare_register() {
    our_lines_.follow(lines_, differences_, dir_);
    Result<Descriptor> fd = own_->create(own_->made(), OwnDirectory::LINES);
    if (!fd) return fd.failure();
    FileWriter file(std::move(*fd), dir_.path_of(INDEX));
    file.set_owner({runs_as_superuser() ? dir_.info().st_uid : ::geteuid(), dir_.info().st_gid});
    file.write(our_lines_.text());
    if (Outcome finished = file.finish(); !finished) return finished.failure();
    return journal::Register{FileIdentity::of(file.info()), own_->dir().has(OwnDirectory::LINES)};
}

/// The old register is kept for taking it back, and the new one takes its place.
Outcome DirectoryChange::put_register_in_place() {
    constexpr const char* LINES = OwnDirectory::LINES;
    const FileCalls& calls = file_calls();
    const int own = own_->dir().fd();
    if (calls.rename(own, LINES, own_->set_aside().fd(), LINES) != 0 && errno != ENOENT)
        return Failure::of_system(dir_.path_of(INDEX), errno);
    if (calls.rename(own_->made().fd(), LINES, own, LINES) != 0)
        return Failure::of_system(dir_.path_of(INDEX), errno);
    return done();
}

Outcome DirectoryChange::prepare_index() {
    Result<Descriptor> fd = own_->create(own_->made(), INDEX);
    if (!fd) return fd.failure();
    FileWriter file(std::move(*fd), dir_.path_of(INDEX));
    if (has_index_) file.set_owner({index_info_.st_uid, index_info_.st_gid});
    if (has_index_ && text_.size() <= before_.size()) file.set_mode(index_info_.st_mode & PERMISSIONS);
    file.write(text_);
    if (has_index_) file.be_later_than(index_info_);
    if (Outcome finished = file.finish(); !finished) return finished;
    return note_index(journal::Index{FileIdentity::of(file.info()), has_index_});
}

Outcome DirectoryChange::note_index(const journal::Record& record) {
    const Result<journal::Register> lines = prepare_register();
    if (!lines) return lines.failure();
    std::vector<journal::Record> records;
    for (const auto& [line, number] : lines_) {
        if (number > journal::MOST_LINES) return Failure::of_system(dir_.path_of(INDEX), EOVERFLOW);
        records.emplace_back(journal::Line{number, line});
    }
    records.push_back(record);
    records.emplace_back(*lines);
    return note(records);
}

/// Makes a file with the index as it was, for taking it back.
Outcome DirectoryChange::copy_old_index() {
    Result<Descriptor> fd = own_->create(own_->set_aside(), INDEX);
    if (!fd) return fd.failure();
    if (overwrites_index_) own_->lend_to_group(fd->get());
    FileWriter copy(std::move(*fd), dir_.path_of(INDEX));
    // Behind a link it may be anybody's, whom the next one to read the copy would not trust.
    if (!S_ISLNK(index_info_.st_mode)) copy.set_owner({content_info_.st_uid, content_info_.st_gid});
    copy.set_mode(content_info_.st_mode & PERMISSIONS);
    copy.write(before_);
    return copy.finish();
}

// A file system without hard links gets a copy.
Outcome DirectoryChange::set_index_aside() {
    if (!has_index_) return done();
    const FileCalls& calls = file_calls();
    if (calls.link(dir_.fd(), INDEX.c_str(), own_->set_aside().fd(), INDEX.c_str()) == 0) return done();
    return errno == ENOENT ? done() : copy_old_index();
}

Outcome DirectoryChange::prepare_overwriting() {
    if (Outcome copied = copy_old_index(); !copied) return copied;
    Result<Descriptor> fd = own_->create(own_->made(), INDEX);
    if (!fd) return fd.failure();
    own_->lend_to_group(fd->get());
    FileWriter file(std::move(*fd), dir_.path_of(INDEX));
    file.write(text_);
    if (Outcome finished = file.finish(); !finished) return finished;
    return note_index(journal::Overwrite{});
}

/// Whether the index is still as it was read.
bool DirectoryChange::index_is_unchanged() const {
    struct stat now = {};
    if (dir_.look_at(INDEX, now) != has_index_) return false;
    if (!has_index_) return true;
    if (!is_unchanged(now, index_info_)) return false;
    return !S_ISLNK(now.st_mode) ||
           (::fstatat(dir_.fd(), INDEX.c_str(), &now, 0) == 0 && is_unchanged(now, content_info_));
}

Outcome DirectoryChange::put_index_in_place() {
    if (overwrites_index_) return overwrite_index(dir_, index_info_, text_);
    if (file_calls().rename(own_->made().fd(), INDEX.c_str(), dir_.fd(), INDEX.c_str()) == 0) return done();
    return Failure::of_system(dir_.path_of(INDEX), errno);
}

// The index is looked at again just before the new one takes its place, because programs that know nothing of
// the lock write it too.
Outcome DirectoryChange::write_index() {
    if (lines_.empty()) return done();
    for (int attempt = 0; attempt < MOST_ATTEMPTS; ++attempt) {
        if (Outcome allowed = may_write_index(); !allowed) return allowed;
        const std::size_t before = records_.size();
        // An index that is a link, or has other names, stays what it is.
        Outcome prepared = overwrites_index_ ? prepare_overwriting() : prepare_index();
        if (prepared && !overwrites_index_) prepared = set_index_aside();
        if (!prepared) return prepared;
        if (index_is_unchanged()) {
            Outcome written = put_index_in_place();
            return written ? put_register_in_place() : written;
        }
        if (Outcome merged = merge_index(before); !merged) return merged;
    }
    return Failure::of_system(dir_.path_of(INDEX), EAGAIN);
}

Outcome DirectoryChange::merge_index(std::size_t records) {
    (void)file_calls().unlink(own_->set_aside().fd(), INDEX.c_str(), 0);
    if (Outcome cut = cut_journal(offsets_[records]); !cut) return cut;
    records_.resize(records);
    offsets_.resize(records);
    return edit_again();
}

void DirectoryChange::collect_edits() {
    before_ = edit_->before();
    text_ = edit_->text();
    differences_ = edit_->differences();
    lines_ = occurrences(before_, differences_);
}

/// Makes the same edits to the index that another program has written meanwhile.
Outcome DirectoryChange::edit_again() {
    Result<std::string> bytes = look_at_index();
    if (!bytes) return bytes.failure();
    before_ = std::move(*bytes);
    lines_ = occurrences(before_, differences_);
    LineNumbers wanted = lines_;
    for (auto& [line, number] : wanted) number = std::max(0, number + differences_[line]);
    text_ = with_occurrences(before_, wanted);
    return done();
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
        const Result<PlaceBelow> place = PlaceBelow::of(dir_, leaving->name);
        const int error = place ? place->rename_to(own_->set_aside(), std::to_string(number)) : ENOENT;
        if (error == 0 || error == ENOENT || error == ENOTDIR) continue;
        const Failure failure = Failure::of_system(dir_.path_of(leaving->name), error);
        if (!leaving->may_stay) return failure;
        tell(failure.with(Sequel::FILE_REMAINS));
    }
    return done();
}

Outcome DirectoryChange::forget_journal() {
    if (!own_) return done();
    if (!journal_.is_open()) {
        own_->clear();
        return done();
    }
    if (Outcome gone = own_->remove_journal(); !gone) return gone;
    records_.clear();
    offsets_.clear();
    journal_ = Descriptor();
    own_->clear();
    return done();
}

Outcome DirectoryChange::commit_index() {
    collect_edits();
    return broken_ ? Outcome(*broken_) : write_index();
}

Outcome DirectoryChange::commit_files() {
    return move_out();
}

Outcome DirectoryChange::commit_end() {
    (void)file_calls().sync(dir_.fd());
    Outcome forgotten = forget_journal();
    if (forgotten) finish();
    return forgotten;
}

void DirectoryChange::abandon() {
    take_back_all();
    if (records_.empty()) tell_unless_done(forget_journal());
}

void DirectoryChange::undo_on_disk() {
    Mark all = mark();
    all.records = 0;
    take_back_to(all);
    if (records_.empty()) tell_unless_done(forget_journal());
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
    records_.clear();
    offsets_.clear();
    journal_ = Descriptor();
    if (is_gone) own_->clear();
    finish();
    return is_gone;
}

void DirectoryChange::end_leading(const std::string& token) const {
    (void)file_calls().unlink(own_->dir().fd(), final_name(token).c_str(), 0);
}

bool DirectoryChange::brings_files() const {
    return std::any_of(records_.begin(), records_.end(), [](const journal::Record& record) {
        return std::holds_alternative<journal::Put>(record);
    });
}

// On a full disk there is no room for a journal or for a second index, but what only deletes makes room.
Outcome DirectoryChange::commit_for_good() {
    for (int attempt = 1; has_index_ && !lines_.empty() && !index_is_unchanged(); ++attempt) {
        if (attempt == MOST_ATTEMPTS) return Failure::of_system(dir_.path_of(INDEX), EAGAIN);
        if (Outcome edited = edit_again(); !edited) return edited;
    }
    if (has_index_ && !lines_.empty()) {
        if (Outcome written = overwrite_index(dir_, index_info_, text_); !written) return written;
    }
    for (const Leaving& leaving : leaving_) {
        const Result<PlaceBelow> place = PlaceBelow::of(dir_, leaving.name);
        if (leaving.stays || !place ||
            file_calls().unlink(place->dir().fd(), place->name().c_str(), 0) == 0 || errno == ENOENT)
            continue;
        tell(Failure::of_system(dir_.path_of(leaving.name), errno).with(Sequel::FILE_REMAINS));
    }
    return done();
}

/// What follows a change that is final.
void DirectoryChange::finish() {
    leaving_.clear();
    places_of_leaving_.clear();
    staying_.clear();
    lines_.clear();
    for (const Step& step : std::exchange(afterwards_, {})) step.run();
}

Outcome DirectoryChange::commit() {
    const bool only_deletes = records_.empty() && edit_->text().size() <= edit_->before().size();
    Outcome outcome = commit_index();
    if (outcome) outcome = commit_files();
    if (outcome) outcome = commit_end();
    if (outcome) return outcome;
    undo_on_disk();
    if (records_.empty() && only_deletes && outcome.failure().is_lack_of_room()) outcome = commit_for_good();
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
    if ((!own || !has_left_overs(*own)) && (!dir || !has_leftovers(*dir))) return done();
    const Result<std::unique_ptr<DirectoryChange>> change = DirectoryChange::begin(std::move(*dir), false);
    if (change || change.failure().reason == Reason::IN_USE) return done();
    return change.failure().reason == Reason::SYSTEM ? Outcome(Failure{path, Reason::UNFINISHED})
                                                     : Outcome(change.failure());
}

}  // namespace gw
