// SPDX-License-Identifier: MIT
//
// How new files of a change get their names: one by one, or many that are written to the disk at once. The
// rest of a change is in directory_change.cc.
#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "core/file_calls.h"
#include "core/long_work.h"
#include "store/directory_change.h"
#include "store/take_back.h"

namespace gw {

namespace {

constexpr std::size_t MOST_ARRIVALS = 64;
constexpr off_t MOST_BYTES_OF_ARRIVALS = 16L * 1024 * 1024;
/// For so few, writing everything that is on its way to the disk could take longer.
constexpr std::size_t FEW_ARRIVALS = 4;
constexpr long XFS_MAGIC = 0x58465342;

/// Whether names reach the disk in the order in which they were made, and writing all that was written says
/// when that failed. On a network, or through a program, each file has to be asked for.
bool keeps_names_in_order(int dir) {
    struct statfs info = {};
    if (::fstatfs(dir, &info) != 0) return false;
    switch (info.f_type) {
        case EXT4_SUPER_MAGIC:
        case XFS_MAGIC:
        case BTRFS_SUPER_MAGIC:
        case TMPFS_MAGIC:
        case OVERLAYFS_SUPER_MAGIC:
            return true;
        default:
            return false;
    }
}

}  // namespace

void DirectoryChange::gather_arrivals() {
    gathers_ = own_ && keeps_names_in_order(own_->made().fd());
}

bool DirectoryChange::has_arrival(const std::string& name) const {
    return std::any_of(arrivals_.begin(), arrivals_.end(),
                       [&](const Arrival& arrival) { return arrival.name == name; });
}

Outcome DirectoryChange::put(StagedFile& file) {
    if (!file.is_left_to_others()) return put_if(file, [] { return true; });
    const Result<PlaceBelow> place = PlaceBelow::of(dir_, file.name());
    if (!place) return place.failure();
    const bool is_new = !place->dir().has(place->name());
    return is_new && gathers_ ? link_in(file, *place) : put_at_once(file);
}

/// The file is on the disk, and then its record, before it gets its name.
Outcome DirectoryChange::put_at_once(StagedFile& file) {
    if (has_arrival(file.name())) {
        if (Outcome settled = settle_arrivals(); !settled) return settled;
    }
    if (file_calls().sync(file.descriptor().get()) != 0) return Failure::of_system(file.path(), errno);
    if (!file.take_descriptor().close()) return Failure::of_system(file.path(), errno);
    return put_if(file, [] { return true; });
}

/// The file gets its name at once, and keeps the one in our directory until it is on the disk.
Outcome DirectoryChange::link_in(StagedFile& file, const PlaceBelow& place) {
    const Mark before = mark();
    const journal::Record record = journal::Put{FileIdentity::of(file.info()), file.name()};
    // That there is a journal must be on the disk before anything comes.
    if (Outcome noted = records_.empty() ? note({record}) : append({record}); !noted) return noted;
    if (file_calls().link(own_->made().fd(), file.number_.c_str(), place.dir().fd(), place.name().c_str()) !=
        0) {
        // Not all file systems let a file have two names.
        gathers_ = false;
        take_back_to(before);
        return put_at_once(file);
    }
    stay_where_something_comes(file.name());
    arrivals_.push_back(
        {file.take_descriptor(), file.name(), static_cast<unsigned>(std::stoul(file.number_))});
    bytes_of_arrivals_ += file.info().st_size;
    const bool are_many = arrivals_.size() >= MOST_ARRIVALS || bytes_of_arrivals_ >= MOST_BYTES_OF_ARRIVALS;
    return are_many ? settle_arrivals() : done();
}

Outcome DirectoryChange::write_arrivals_to_disk() {
    const FileCalls& calls = file_calls();
    if (arrivals_.size() > FEW_ARRIVALS && calls.sync_all(own_->made().fd()) == 0) return done();
    // What failed may have been another program's file.
    for (const Arrival& arrival : arrivals_) {
        if (calls.sync(arrival.file.get()) != 0) return Failure::of_system(dir_.path_of(arrival.name), errno);
    }
    return calls.sync(journal_.get()) == 0 ? done() : Outcome(Failure::of_system(dir_.path(), errno));
}

/// Files whose bytes did not reach the disk would not do so the next time either: then nothing stays.
Outcome DirectoryChange::settle_arrivals() {
    if (arrivals_.empty()) return done();
    if (broken_) return *broken_;
    breathe();
    if (Outcome written = write_arrivals_to_disk(); !written) {
        broken_ = written.failure();
        return written;
    }
    for (const Arrival& arrival : arrivals_) {
        (void)file_calls().unlink(own_->made().fd(), std::to_string(arrival.number).c_str(), 0);
        staged_.erase(arrival.number);
    }
    arrivals_.clear();
    bytes_of_arrivals_ = 0;
    return done();
}

}  // namespace gw
