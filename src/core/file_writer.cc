// SPDX-License-Identifier: MIT
#include "core/file_writer.h"

#include <unistd.h>

#include <cerrno>

#include "core/file_calls.h"

namespace gw {

bool FileWriter::fail(int error) {
    if (error_ == 0) error_ = error;
    return false;
}

Outcome FileWriter::outcome() const {
    return error_ == 0 ? done() : Outcome(Failure::of_system(path_, error_));
}

bool FileWriter::write(std::string_view bytes) {
    if (error_ != 0) return false;
    const off_t start = make_room_ ? ::lseek(fd_.get(), 0, SEEK_CUR) : -1;
    int error = write_all(fd_.get(), bytes);
    while (start >= 0 && Failure::of_system(path_, error).is_lack_of_room() && make_room_()) {
        error = ::lseek(fd_.get(), start, SEEK_SET) == start ? write_all(fd_.get(), bytes) : errno;
    }
    return error == 0 || fail(error);
}

bool FileWriter::gather(std::string_view bytes) {
    constexpr std::size_t WRITTEN_TOGETHER = 65536;
    gathered_ += bytes;
    return gathered_.size() < WRITTEN_TOGETHER ? error_ == 0 : write_gathered();
}

bool FileWriter::write_gathered() {
    const bool is_written = write(gathered_);
    gathered_.clear();
    return is_written;
}

Outcome FileWriter::finish() {
    if (!gathered_.empty()) write_gathered();
    if (error_ != 0) return outcome();
    struct stat made = {};
    if (::fstat(fd_.get(), &made) != 0) fail(errno);
    if (owner_ && (owner_->first != made.st_uid || owner_->second != made.st_gid))
        (void)file_calls().set_owner(fd_.get(), owner_->first, owner_->second);
    if (earlier_ && made.st_mtim.tv_sec <= earlier_->st_mtim.tv_sec) {
        const timespec times[2] = {made.st_atim, {earlier_->st_mtim.tv_sec + 1, 0}};
        (void)file_calls().set_times(fd_.get(), times);
    }
    // Otherwise an index that names the file could reach the disk before the file.
    if (file_calls().set_mode(fd_.get(), mode_) != 0) fail(errno);
    if (!is_left_to_others_ && file_calls().sync(fd_.get()) != 0) fail(errno);
    if (::fstat(fd_.get(), &info_) != 0) fail(errno);
    if (!is_left_to_others_) close();
    return outcome();
}

void FileWriter::close() {
    if (fd_.is_open() && !fd_.close()) fail(errno);
}

}  // namespace gw
