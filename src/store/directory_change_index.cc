// SPDX-License-Identifier: MIT
//
// The indexes of a directory that changes: how they are read, edited, written and merged with what other
// programs write meanwhile. The rest of a change is in directory_change.cc.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "core/file_calls.h"
#include "core/font_policy.h"
#include "core/rights.h"
#include "fontfiles/index_text.h"
#include "fontfiles/scalable_index.h"
#include "platform/host_paths.h"
#include "store/directory_change.h"
#include "store/index_file.h"

namespace gw {

namespace {

constexpr int MOST_ATTEMPTS = 5;
constexpr mode_t PERMISSIONS = 07777;
const std::string INDEX(FONT_INDEX_NAME);
const std::string SCALABLE(SCALABLE_INDEX_NAME);
const std::string NO_ENTRIES("0\n");

/// Whether the file is still the one that was looked at.
bool is_unchanged(const struct stat& a, const struct stat& b) {
    return a.st_ino == b.st_ino && a.st_size == b.st_size && a.st_mtim.tv_sec == b.st_mtim.tv_sec &&
           a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

/// The new text of "fonts.scale", if it gets one, with these lines.
std::optional<std::string> with_lines(std::optional<std::string> text,
                                      const std::optional<std::string>& before,
                                      const std::vector<std::string>& lines) {
    if (lines.empty()) return text;
    const std::string whole = text ? *text : before.value_or(NO_ENTRIES);
    LineNumbers wanted;
    for (const std::string& line : lines) wanted[line] = 1;
    for (const auto& [line, number] : occurrences(whole, wanted))
        wanted[line] = std::max(wanted[line], number);
    std::string changed = with_occurrences(whole, wanted);
    return changed == whole ? text : std::optional(std::move(changed));
}

/// How many lines of each text the new one has less.
LineNumbers lines_lost_by(const Result<std::string>& old, std::string_view made) {
    LineNumbers lost;
    if (!old) return lost;
    std::size_t start = begins_with_an_entry(*old) ? 0 : index_line_end(*old, 0);
    for (std::size_t end = 0; start < old->size(); start = end) {
        end = index_line_end(*old, start);
        ++lost[old->substr(start, end - start)];
    }
    for (const auto& [line, number] : occurrences(made, lost)) lost[line] -= number;
    std::erase_if(lost, [](const auto& line) { return line.second <= 0; });
    return lost;
}

}  // namespace

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

/// An index that may not be written is not replaced either.
Outcome DirectoryChange::may_write_index() const {
    if (!has_index_ || ::faccessat(dir_.fd(), INDEX.c_str(), W_OK, AT_EACCESS) == 0) return done();
    // Another program has removed it meanwhile; the new one takes its place.
    if (errno == ENOENT) return done();
    return Failure::of_system(dir_.path_of(INDEX), errno);
}

Outcome DirectoryChange::make_index() {
    if (has_index_) return may_write_index();
    if (!own_) return about(dir_.path_of(INDEX), *broken_);
    if (!font_policy().makes_index_with_first_font()) return make_index_at_once();
    makes_index_ = true;
    return done();
}

Outcome DirectoryChange::make_index_at_once() {
    const std::string path = dir_.path_of(INDEX);
    Result<Descriptor> fd = with_room([&] { return own_->create(own_->made(), INDEX, path); });
    if (!fd) return fd.failure();
    own_->lend_to_group(fd->get());
    FileWriter file(std::move(*fd), path);
    file.set_room_maker([this] { return give_way(); });
    file.write(NO_ENTRIES);
    if (Outcome finished = file.finish(); !finished) return finished;
    if (file_calls().rename(own_->made().fd(), INDEX.c_str(), dir_.fd(), INDEX.c_str()) != 0)
        return Failure::of_system(path, errno);
    return load_index();
}

/// Makes the register of our lines as it is to be.
Result<journal::Register> DirectoryChange::prepare_register() {
    our_lines_.follow(lines_, differences_, dir_);
    Result<Descriptor> fd = own_->create(own_->made(), OwnDirectory::LINES, dir_.path_of(INDEX));
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
    Result<Descriptor> fd = own_->create(own_->made(), INDEX, dir_.path_of(INDEX));
    if (!fd) return fd.failure();
    if (!has_index_) own_->lend_to_group(fd->get());
    FileWriter file(std::move(*fd), dir_.path_of(INDEX));
    if (has_index_) file.set_owner({index_info_.st_uid, index_info_.st_gid});
    if (has_index_ && (whole_ || only_deletes())) file.set_mode(index_info_.st_mode & PERMISSIONS);
    file.write(text_);
    if (has_index_) file.be_later_than(index_info_);
    if (Outcome finished = file.finish(); !finished) return finished;
    return note_index(journal::Index{FileIdentity::of(file.info()), has_index_});
}

Outcome DirectoryChange::note_index(const journal::Record& record) {
    const Result<journal::Register> lines = prepare_register();
    if (!lines) return lines.failure();
    std::vector<journal::Record> records;
    for (const auto& [line, number] : whole_ ? LineNumbers() : lines_) {
        if (number > journal::MOST_LINES) return Failure::of_system(dir_.path_of(INDEX), EOVERFLOW);
        records.emplace_back(journal::Line{number, line});
    }
    records.push_back(record);
    records.emplace_back(*lines);
    return note(records);
}

/// Makes a file with the index as it was, for taking it back.
Outcome DirectoryChange::copy_old_index() {
    Result<Descriptor> fd = own_->create(own_->set_aside(), INDEX, dir_.path_of(INDEX));
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
    Result<Descriptor> fd = own_->create(own_->made(), INDEX, dir_.path_of(INDEX));
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
    // A whole index is written even if it is the same: its time says that it was looked after.
    const bool is_new = makes_index_ && !has_index_;
    if (whole_ ? !whole_->fonts_dir : lines_.empty() && !is_new) return done();
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
        if (whole_) break;
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

Result<DirectoryChange::Indexes> DirectoryChange::indexes() const {
    Indexes texts;
    if (has_index_) texts.fonts_dir = edit_->before();
    const Result<std::string> scalable = dir_.read(SCALABLE);
    if (scalable) {
        texts.fonts_scale = *scalable;
    } else if (!scalable.failure().is_absence()) {
        return scalable.failure();
    }
    return texts;
}

void DirectoryChange::replace_indexes(Indexes texts) {
    whole_ = std::move(texts);
    if (!whole_->fonts_dir && has_index_) (void)take_out(INDEX, false);
    if (!whole_->fonts_scale && font_policy().keeps_scalable_index()) (void)take_out(SCALABLE, false);
}

void DirectoryChange::collect_edits() {
    before_ = edit_->before();
    text_ = whole_ ? whole_->fonts_dir.value_or(before_) : edit_->text();
    if (makes_index_ && text_.empty()) text_ = NO_ENTRIES;
    differences_ = whole_ ? index_differences(before_, text_) : edit_->differences();
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
    if (makes_index_ && text_.empty()) text_ = NO_ENTRIES;
    return done();
}

Outcome DirectoryChange::write_indexes() {
    Outcome written = broken_ ? Outcome(*broken_) : write_index();
    return written ? keep_scalable_index() : written;
}

Outcome DirectoryChange::commit_index() {
    collect_edits();
    // No index names a file that is not on the disk.
    if (Outcome settled = settle_arrivals(); !settled) return settled;
    lost_scalable_lines_.clear();
    const Mark before = mark();
    return with_room([&] {
        if (records_.size() > before.records) take_back_to(before);
        return write_indexes();
    });
}

/// The text that "fonts.scale" should have, if it should have another one.
Result<std::optional<std::string>> DirectoryChange::next_scalable_index() const {
    const Result<std::string> old = dir_.read(SCALABLE);
    if (!old && old.failure().error != ENOENT) return old.failure();
    if (whole_) return old && *old == whole_->fonts_scale ? std::nullopt : whole_->fonts_scale;
    const auto leaves = [this](const std::string& file) { return dir_.has(file) && !will_have(file); };
    const std::optional<std::string> before = old ? std::optional<std::string>(*old) : std::nullopt;
    return with_lines(scalable_index(before, text_, differences_, leaves), before, scalable_lines_);
}

/// A new one is for those to write who may write the index.
Result<DirectoryChange::StagedFile> DirectoryChange::stage_scalable_index(const struct stat* old,
                                                                          const std::string& text) {
    Result<StagedFile> file = stage(SCALABLE);
    if (!file) return file;
    if (old != nullptr || has_index_)
        file->set_mode((old != nullptr ? *old : content_info_).st_mode & PERMISSIONS);
    file->write(text);
    if (Outcome finished = file->finish(); !finished) return finished.failure();
    return file;
}

/// In a sticky directory nobody can replace the file of another.
Outcome DirectoryChange::may_take_place_of_scalable_index() const {
    struct stat old = {};
    if (!dir_.look_at(SCALABLE, old)) return done();
    const uid_t user = ::geteuid();
    const bool is_anothers = !is_superuser(user) && old.st_uid != user && dir_.info().st_uid != user;
    if ((dir_.info().st_mode & S_ISVTX) != 0 && is_anothers)
        return Failure::of_system(dir_.path_of(SCALABLE), EPERM);
    return may_be_replaced(SCALABLE);
}

/// Lets "fonts.scale" follow the index. One that may not be changed stays as it is; the fonts are none the
/// worse for it until somebody runs mkfontdir. Programs that know nothing of the lock write it too, so it is
/// looked at again just before the new one takes its place.
Outcome DirectoryChange::keep_scalable_index() {
    const bool concerns_it = whole_ || concern_outlines(differences_) || !scalable_lines_.empty();
    if (!font_policy().keeps_scalable_index() || !concerns_it) return done();
    for (int attempt = 0; attempt < MOST_ATTEMPTS; ++attempt) {
        struct stat old = {};
        const bool was_there = dir_.look_at(SCALABLE, old);
        const Result<std::optional<std::string>> text = next_scalable_index();
        Outcome possible = text ? may_take_place_of_scalable_index() : Outcome(text.failure());
        if (!possible) return tell(possible.failure().with(Sequel::LOST_BY_MKFONTDIR)), done();
        if (!*text) return done();
        if (keeps_) lost_scalable_lines_ = lines_lost_by(dir_.read(SCALABLE), **text);
        const Result<StagedFile> file = stage_scalable_index(was_there ? &old : nullptr, **text);
        if (!file) return file.failure();
        const auto is_still_it = [&] {
            struct stat now = {};
            return dir_.look_at(SCALABLE, now) == was_there && (!was_there || is_unchanged(now, old));
        };
        const Mark before = mark();
        if (Outcome put = put_if(*file, is_still_it); put || put.failure().error != EAGAIN) return put;
        take_back_to(before);
    }
    return Failure::of_system(dir_.path_of(SCALABLE), EAGAIN);
}

/// The same where there is no room: lines go from the file that is there.
void DirectoryChange::shorten_scalable_index() const {
    if (!font_policy().keeps_scalable_index() || !concern_outlines(differences_)) return;
    struct stat old = {};
    if (!dir_.look_at(SCALABLE, old)) return;
    const Result<std::optional<std::string>> text = next_scalable_index();
    Outcome shortened = text ? done() : Outcome(text.failure());
    if (text && *text) shortened = overwrite_index(dir_, old, **text, SCALABLE_INDEX_NAME);
    tell_unless_done(shortened.with(Sequel::LOST_BY_MKFONTDIR));
}

}  // namespace gw
