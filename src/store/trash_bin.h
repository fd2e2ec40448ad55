// SPDX-License-Identifier: MIT
//
// The trash of a font directory on the disk: "trash" in our own directory, with a directory for each entry.
// That has the files of a change under their numbers, and the manifest. What changes the trash is for those
// who hold the lock.
//
// A change sets aside what it takes out, in "old", and writes the manifest there last. From the moment when
// the change is final, the manifest says that these files are for the trash: they are moved file by file, the
// manifest last. So an entry that has its manifest is complete, and whoever has the next look goes on with
// what a killed process has begun. An entry is emptied in the opposite order.
#pragma once

#include <sys/types.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "core/directory.h"
#include "core/failure.h"
#include "store/own_directory.h"
#include "store/trash_manifest.h"

namespace gw {

class TrashBin {
  public:
    static constexpr const char* NAME = "trash";
    static constexpr const char* MANIFEST = OwnDirectory::MANIFEST;

    /// The trash of `fonts`, which must outlive it; nothing where there is none that can be relied on.
    static std::optional<TrashBin> find(const Directory& fonts, const Directory& own);
    /// The same; it is made if it is missing.
    static Result<TrashBin> make(const Directory& fonts, const Directory& own);

    /// The entries, the oldest first, whatever is in them.
    [[nodiscard]] std::vector<std::string> entries() const;
    /// The directory of an entry.
    [[nodiscard]] Result<Directory> entry(const std::string& name) const;
    /// The manifest with those fonts that can come back: all their files are there, and those without files
    /// miss a line in the index. Nothing when there are none, or when the entry is too old.
    [[nodiscard]] std::optional<trash::Manifest> offered(const std::string& name) const;

    /// Removes an entry. After a failure it is not offered any more, or as it was.
    [[nodiscard]] Outcome remove(const std::string& name) const;
    /// Removes these fonts of an entry, and the entry when it has no other. `own` is our directory, with its
    /// lock.
    [[nodiscard]] Outcome remove_fonts(const OwnDirectory& own, const std::string& name,
                                       const std::set<std::string>& file_names) const;
    /// Removes what is too old, what has nothing left, and what was being removed.
    void sweep() const;
    /// Removes the oldest entries until the trash is as small as it has to be.
    void prune() const;
    /// Removes the oldest entry but for these; false when none could be removed.
    [[nodiscard]] bool give_way(const std::vector<std::string>& but) const;

    /// Moves what a final change has set aside into the trash.
    static void keep_what_was_set_aside(const Directory& fonts, const OwnDirectory& own);

  private:
    TrashBin(const Directory& fonts, Directory dir) : fonts_(&fonts), dir_(std::move(dir)) {}
    [[nodiscard]] bool is_there(const Directory& entry, const trash::KeptFont& font) const;
    [[nodiscard]] bool is_done_with(const std::string& name) const;
    [[nodiscard]] off_t size_of(const std::string& name) const;
    [[nodiscard]] Outcome take_in(const Directory& set_aside, const trash::Manifest& manifest) const;

    const Directory* fonts_;
    Directory dir_;
};

/// Whether a file can be kept, and come back: it is a regular one with one name that belongs to somebody who
/// is trusted here.
[[nodiscard]] bool is_fit_for_trash(const struct stat& info, const Directory& fonts);

/// Writes a manifest under this name into one of our directories.
Outcome write_manifest(const OwnDirectory& own, const Directory& where, const std::string& name,
                       const trash::Manifest& manifest, const Directory& fonts);

/// Opens the directory of an entry, for taking back what came from it.
Result<Directory> trash_entry_of(const Directory& fonts, const Directory& own, const std::string& name);

}  // namespace gw
