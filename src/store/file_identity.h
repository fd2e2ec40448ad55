// SPDX-License-Identifier: MIT
//
// Which file it was, and whether it is unchanged: a name may have got another file since, a file system gives
// the number of a removed file to the next one, and a file can be written in place.
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>
#include <string_view>

namespace gw {

struct FileIdentity {
    struct Content {
        off_t size;
        time_t seconds;
        long nanoseconds;
        bool operator==(const Content&) const = default;
    };
    ino_t inode = 0;
    std::optional<Content> content = {};  ///< unknown in journals of the first version

    [[nodiscard]] static FileIdentity of(const struct stat& info);
    /// Whether this is that file, with that content as far as it is known.
    [[nodiscard]] bool fits(const struct stat& info) const;
    /// As four words: inode, size, seconds and nanoseconds of the last change; or as the first one alone.
    [[nodiscard]] std::string text() const;
    bool operator==(const FileIdentity&) const = default;
};

/// Removes the word at the beginning of `rest`, and the blank behind it.
std::string_view take_word(std::string_view& rest);
/// Removes a stamp of four words, or of one, from the beginning of `rest`; nothing when there is none.
std::optional<FileIdentity> take_stamp(std::string_view& rest, bool with_content);

}  // namespace gw
