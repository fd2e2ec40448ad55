// SPDX-License-Identifier: MIT
//
// The index of a font directory, and where it really is when it is a link. Links are followed one by one, so
// nobody whose directory lies on the way can lead us to a file of somebody else's.
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>

#include "core/directory.h"
#include "core/failure.h"
#include "platform/host_paths.h"

namespace gw {

class IndexFile {
  public:
    /// Looks for it. Refuses (`Reason::NOT_OURS`) a link that is not trusted, and a file that has a second
    /// name which somebody else than its owner can have made. `fonts` must outlive this.
    static Result<IndexFile> find(const Directory& fonts, const char* name);

    /// The file's information, at the end of all links.
    [[nodiscard]] const struct stat& info() const { return info_; }
    /// Whether a link led to it.
    [[nodiscard]] bool is_linked() const { return links_ > 0; }
    /// Opens it without following anything. Fails with EAGAIN when it is not the file any more that was
    /// found.
    [[nodiscard]] Result<Descriptor> open_to_read() const;
    [[nodiscard]] Result<Descriptor> open_to_write() const;

  private:
    IndexFile(const Directory& fonts, const char* name);
    [[nodiscard]] const Directory& home() const { return home_ ? *home_ : *fonts_; }
    Outcome follow(int link);
    [[nodiscard]] bool is_safe(const struct stat& info) const;
    [[nodiscard]] Result<Descriptor> checked(Descriptor file) const;

    const Directory* fonts_;
    std::optional<Directory> home_;  // where the last link led
    std::string name_;
    std::string path_;  // for messages
    struct stat info_ = {};
    int links_ = 0;
};

/// The text of the index; `info` gets the information of the file that was read.
Result<std::string> read_index(const Directory& fonts, struct stat& info);

/// Overwrites an index that cannot be replaced: it is a link, has other names, or belongs to somebody else.
/// Fails when it is not the file any more that `looked_at` describes. A longer file first gets blank lines at
/// its end, and then loses them.
Outcome overwrite_index(const Directory& fonts, const struct stat& looked_at, std::string_view text,
                        const char* name = FONT_INDEX_NAME);

}  // namespace gw
