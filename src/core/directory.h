// SPDX-License-Identifier: MIT
//
// A directory that was opened once. What is done in it is done through its descriptor, so nobody can exchange
// it, or a directory on the way to it, between two steps.
#pragma once

#include <sys/stat.h>

#include <string>
#include <vector>

#include "core/failure.h"

namespace gw {

/// A file descriptor that is closed in the end.
class Descriptor {
  public:
    explicit Descriptor(int fd = -1) : fd_(fd) {}
    ~Descriptor();
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&& other) noexcept;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] bool is_open() const { return fd_ >= 0; }
    [[nodiscard]] int get() const { return fd_; }
    /// Gives it up without closing it.
    void release() { fd_ = -1; }
    /// Closes it now; false when the system reports that data was lost.
    bool close();

  private:
    int fd_;
};

/// The name of our own directory in a font directory; nothing that looks for fonts enters it.
inline constexpr const char* OWN_DIRECTORY_NAME = ".glyphward";

/// Whether a link in the directory `home` may be followed: link and directory belong to the superuser or to
/// the user of this process, and not everybody can put another link in its place. The members of a group that
/// may write there can; whoever gives them that right trusts them.
[[nodiscard]] bool is_trusted_link(const struct stat& link, const struct stat& home);

/// The names in the open directory, in no order; none when it cannot be read.
[[nodiscard]] std::vector<std::string> names_in(int dir);

class Directory {
  public:
    /// Opens the directory at `path`. A link on the way is followed only if `is_trusted_link`, and otherwise
    /// refused (`Reason::NOT_OURS`).
    static Result<Directory> open(const std::string& path);

    /// The directory NAME in this one; the same rule for links.
    [[nodiscard]] Result<Directory> below(const std::string& name) const;

    [[nodiscard]] int fd() const { return fd_.get(); }
    /// The path that it was opened by, ending in "/". Only for messages and comparisons.
    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::string path_of(const std::string& name) const { return path_ + name; }
    [[nodiscard]] const struct stat& info() const { return info_; }
    [[nodiscard]] bool is_same_as(const Directory& other) const;

    /// The file's information, not following a link; false when there is none.
    bool look_at(const std::string& name, struct stat& info) const;
    [[nodiscard]] bool has(const std::string& name) const;
    /// The names in it, in no order; none when it cannot be read.
    [[nodiscard]] std::vector<std::string> names() const;
    /// The bytes of the regular file NAME, at most `FILE_LIMIT`. Opened without waiting; a link is refused.
    [[nodiscard]] Result<std::string> read(const std::string& name) const;

    /// A file that is larger is no font and no table of fonts.
    static constexpr off_t FILE_LIMIT = 64L * 1024 * 1024;

  private:
    Directory(Descriptor fd, const std::string& path, const struct stat& info);

    Descriptor fd_;
    std::string path_;
    struct stat info_;
};

/// A file that was opened for reading, and the directory that it is in.
struct ReadableFile {
    Descriptor fd;
    struct stat home;
};
/// Opens the regular file at `path` for reading, without waiting for the other end of a pipe. A link, on the
/// way or in its place, is followed only if `is_trusted_link`; in its place also one that leads to a file in
/// the same directory. Otherwise the owner of the directory could let this user read any file. Fails also for
/// what is no regular file, and for one of more than `Directory::FILE_LIMIT` bytes.
Result<ReadableFile> open_to_read(const std::string& path);
/// Whether a copy that everybody may read may be made of the file: everybody may read it, or it is this
/// user's and has no second name. The superuser may also take such a file of the owner of its directory.
/// `path` is for the message.
Outcome may_be_given_to_all(const ReadableFile& file, const std::string& path);

/// Reads from an open regular file to its end; `path` is for the message. Fails for everything that is no
/// regular file, and for one of more than `Directory::FILE_LIMIT` bytes.
Result<std::string> read_open_file(int fd, const std::string& path);
/// Writes all bytes; 0 or the `errno`.
int write_all(int fd, std::string_view bytes);

}  // namespace gw
