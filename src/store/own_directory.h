// SPDX-License-Identifier: MIT
//
// What we keep in a font directory, in its subdirectory ".glyphward": the lock, the journal of the change
// that is going on, and the files that this change makes ("new") and sets aside ("old"). It belongs to the
// owner of the font directory, and only those who may write there can open it, so a mere reader cannot hold
// the lock.
#pragma once

#include <memory>
#include <string>

#include "core/directory.h"
#include "core/failure.h"

namespace gw {

class OwnDirectory {
  public:
    static constexpr const char* NAME = OWN_DIRECTORY_NAME;
    static constexpr const char* JOURNAL = "journal";

    /// Makes the directory in `fonts`, if it is missing, and takes its lock, for which it waits a few
    /// seconds. Fails when another process has the lock (`Reason::IN_USE`), and for what somebody else has
    /// put there under this name.
    static Result<std::unique_ptr<OwnDirectory>> enter(const Directory& fonts, bool waits = true);
    ~OwnDirectory() = default;
    OwnDirectory(const OwnDirectory&) = delete;
    OwnDirectory& operator=(const OwnDirectory&) = delete;

    [[nodiscard]] const Directory& dir() const { return dir_; }
    [[nodiscard]] const Directory& made() const { return made_; }
    [[nodiscard]] const Directory& set_aside() const { return set_aside_; }

    /// Opens a new file in this directory, in `made` or in `set_aside`, of the owner of the font directory.
    [[nodiscard]] Result<Descriptor> create(const Directory& where, const std::string& name) const;
    /// Removes the journal: the change is final, or taken back.
    [[nodiscard]] Outcome remove_journal() const;
    /// Removes what is in `made` and in `set_aside`.
    void clear() const;

  private:
    OwnDirectory(const struct stat& owner, Directory dir, Directory made, Directory set_aside,
                 Descriptor lock);

    struct stat owner_;
    Directory dir_;
    Directory made_;
    Directory set_aside_;
    Descriptor lock_;
};

/// Whether what was found in a font directory under our name can be relied on, by its owner. Where a group
/// may write the fonts, its members may write this too.
[[nodiscard]] bool is_trusted(const struct stat& info, const struct stat& fonts);

/// How long to wait for a lock, in milliseconds. For tests.
void set_lock_patience(int milliseconds);
/// Takes the lock on an open file, waiting for it; the file then says which process has it. `path` is for the
/// message.
Outcome take_lock(int fd, const std::string& path, int longest_wait);

}  // namespace gw
