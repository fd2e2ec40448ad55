// SPDX-License-Identifier: MIT
//
// What we keep in a font directory, in its subdirectory ".glyphward": the lock, the journal of the change
// that is going on, and the files that this change makes ("new") and sets aside ("old"). It belongs to the
// owner of the font directory, and only those who may write there can open it, so a mere reader cannot hold
// the lock.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/directory.h"
#include "core/failure.h"

namespace gw {

class OwnDirectory {
  public:
    static constexpr const char* NAME = OWN_DIRECTORY_NAME;
    static constexpr const char* JOURNAL = "journal";
    static constexpr const char* LINES = "lines";        ///< see line_register.h
    static constexpr const char* MANIFEST = "manifest";  ///< of what is set aside: see trash_bin.h

    /// Makes the directory in `fonts`, if it is missing, and takes its lock, for which it waits a few
    /// seconds. While it is made it is called ".glyphward-PROCESS"; the next one to make it removes what a
    /// process has left that lives no more. A failure of the system names `fonts`. Fails when another process
    /// has the lock (`Reason::IN_USE`), and for what somebody else has put there under this name
    /// (`Reason::NOT_OURS`; `Reason::OPEN_TO_ALL` where everybody may write).
    static Result<std::unique_ptr<OwnDirectory>> enter(const Directory& fonts, bool waits = true);
    /// Removes the directory if no change of `fonts` has come to its end: there is nothing in it but what is
    /// made at the first one. False when it stays.
    static bool remove_unused(const Directory& fonts);
    ~OwnDirectory() = default;
    OwnDirectory(const OwnDirectory&) = delete;
    OwnDirectory& operator=(const OwnDirectory&) = delete;

    [[nodiscard]] const Directory& dir() const { return dir_; }
    [[nodiscard]] const Directory& made() const { return made_; }
    [[nodiscard]] const Directory& set_aside() const { return set_aside_; }

    /// Opens a new file in this directory, in `made` or in `set_aside`, of the owner of the font directory.
    /// A failure names the file `subject`, which is one that the user knows.
    [[nodiscard]] Result<Descriptor> create(const Directory& where, const std::string& name,
                                            const std::string& subject) const;
    /// The bytes of a file of ours; fails for one that cannot be relied on.
    [[nodiscard]] Result<std::string> read(const char* name) const;
    /// The same for one in `made` or in `set_aside`.
    [[nodiscard]] Result<std::string> read(const Directory& where, const std::string& name) const;
    /// Gives an open file to the group that may write the fonts, so that its members trust it. The superuser
    /// does nothing: everybody trusts that one's files.
    void lend_to_group(int fd) const;
    /// Removes the journal: the change is final, or taken back.
    [[nodiscard]] Outcome remove_journal() const;
    /// What was set aside is not for the trash, because the change is taken back.
    [[nodiscard]] Outcome forget_trash() const;
    /// Removes what is in `made` and in `set_aside`. Directories that somebody has put there get the names
    /// "left-0" to "left-999" in this directory; what are more stay.
    void clear() const;

  private:
    static Result<std::unique_ptr<OwnDirectory>> entered(const Directory& fonts, bool waits);
    [[nodiscard]] std::optional<std::string> free_name() const;
    void make_way(const Directory& where, const std::string& name) const;
    OwnDirectory(const struct stat& owner, Directory dir, Directory made, Directory set_aside,
                 Descriptor lock);

    struct stat owner_;
    Directory dir_;
    Directory made_;
    Directory set_aside_;
    Descriptor lock_;
    mutable bool knows_free_names_ = false;
    mutable std::vector<std::string> free_names_;  // the first one is at the end
};

/// Whether what was found in a font directory under our name can be relied on: it belongs to the directory's
/// owner, to the superuser or to this user. Where a group, but not everybody, may write the fonts, its
/// members can change everything there, and what belongs to that group counts too.
[[nodiscard]] bool is_trusted(const struct stat& info, const struct stat& fonts);

/// The directory NAME in `parent`, which is ours or below it, if it can be relied on.
Result<Directory> trusted_below(const Directory& parent, const std::string& name, const Directory& fonts);
/// The same; it is made if it is missing, for the owner of the font directory.
Result<Directory> made_below(const Directory& parent, const std::string& name, const Directory& fonts);
/// The bytes of the file NAME in one of our directories; fails for what is no regular file with one name, and
/// for one that cannot be relied on. `fonts` is the information of the font directory.
Result<std::string> read_trusted(const Directory& where, const std::string& name, const struct stat& fonts);

/// How long to wait for a lock, in milliseconds. For tests.
void set_lock_patience(int milliseconds);
/// Takes the lock on an open file, waiting for it; the file then says which process has it. `path` is for the
/// message.
Outcome take_lock(int fd, const std::string& path, int longest_wait);

}  // namespace gw
