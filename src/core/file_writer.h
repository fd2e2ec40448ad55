// SPDX-License-Identifier: MIT
//
// A new file while its bytes are written: complete on the disk, or a failure.
#pragma once

#include <sys/stat.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "core/directory.h"
#include "core/failure.h"

namespace gw {

class FileWriter {
  public:
    using Owner = std::pair<uid_t, gid_t>;

    /// Writes to the open file; `path` is for messages.
    FileWriter(Descriptor fd, std::string path) : fd_(std::move(fd)), path_(std::move(path)) {}
    /// One that fails at every call.
    FileWriter(std::string path, int error) : path_(std::move(path)), error_(error) {}

    // After a failure all further calls fail for the same reason.

    /// Appends bytes; false when that failed.
    bool write(std::string_view bytes);
    /// The same for what comes in small pieces: they are written many at once, the last ones by `finish`.
    bool gather(std::string_view bytes);
    /// Where the disk is full, this is asked to make room; it returns whether it has made some.
    void set_room_maker(std::function<bool()> make_room) { make_room_ = std::move(make_room); }
    /// The file shall have this owner, if the system allows it.
    void set_owner(Owner owner) { owner_ = owner; }
    /// The file shall have these permissions instead of 0644.
    void set_mode(mode_t mode) { mode_ = mode; }
    /// The file's time shall be later than that of the file with this information, by whole seconds, because
    /// the X server compares those to decide whether it rereads an index.
    void be_later_than(const struct stat& info) { earlier_ = info; }
    /// Writes the file to the disk and gives it its permissions. A failure when the file is not complete.
    Outcome finish();

    /// The first failure, or a success when there was none so far.
    [[nodiscard]] Outcome outcome() const;
    [[nodiscard]] const std::string& path() const { return path_; }
    /// The file's information, once it is finished.
    [[nodiscard]] const struct stat& info() const { return info_; }

  protected:
    /// `finish` leaves it to others to write the file to the disk, and keeps it open for them.
    void leave_to_others() { is_left_to_others_ = true; }
    [[nodiscard]] bool is_left_to_others() const { return is_left_to_others_; }
    [[nodiscard]] const Descriptor& descriptor() const { return fd_; }
    /// Gives the open file away.
    [[nodiscard]] Descriptor take_descriptor() { return std::move(fd_); }
    /// Remembers the first failure; false.
    bool fail(int error);
    /// Forgets the file: what has no descriptor any more is not written to.
    void close();

  private:
    bool write_gathered();
    Descriptor fd_;
    std::string gathered_;
    std::string path_;
    std::function<bool()> make_room_;
    std::optional<Owner> owner_;
    std::optional<struct stat> earlier_;
    mode_t mode_ = 0644;
    struct stat info_ = {};
    int error_ = 0;
    bool is_left_to_others_ = false;
};

}  // namespace gw
